// The whole model of a plate, every term along one side times every term along the other, can be
// estimated from its wells.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "designs/plate/REDMUP.h"
#include "designs/plate/REDMUPOptions.h"
#include "frame/NCDesign.h"
#include "tests/oracles/PlateModel.h"
#include "tests/support/PlateCases.h"

namespace {

using PlateCases::PlatesOf;
using SubDesign = REDMUPOptions::REDMUPSubDesign;

bool IsBlend(const SubDesign& design, const Factors& all) {
    return design.GetREDMUPFactors(all)->IsMixtureOnly();
}

PlateModel::Columns TermsOf(const NCDataMatrix<float>& wells,
                            const Factors& all,
                            const SubDesign& design) {
    return PlateModel::GroupTerms(
        wells, all, design.factors, design.options->GetModel(), IsBlend(design, all));
}

PlateModel::Estimability EstimabilityOf(const NCDataMatrix<float>& wells,
                                        const Factors& all,
                                        const REDMUPOptions& plates) {
    return PlateModel::Estimate(TermsOf(wells, all, plates.GetHorizontalDesign()),
                                TermsOf(wells, all, plates.GetVerticalDesign()));
}

DesignOptions OptionsFor(const Factors& factors, REDMUPOptions::EPlateSize size) {
    DesignOptions options = PlateCases::Options(factors);
    // Otherwise the design of another format would stay where none fits the new one.
    PlatesOf(options).GetHorizontalDesign().options.reset();
    PlatesOf(options).GetVerticalDesign().options.reset();
    PlatesOf(options).SetPlateSize(size, factors, true);
    return options;
}

// Sets of the grid without a design on one side, by format: no family has as many runs as wells are
// there.
const std::map<int, std::set<std::string>> cUnserved{
    {REDMUPOptions::Wells96,
     {"2 qualitative of 3, 4 quantitative",
      "2 qualitative of 4, 4 quantitative",
      "3 quantitative, qualitative of 4, 3 quantitative",
      "2 formulation, 2 quantitative",
      "2 formulation, quantitative and qualitative of 3"}},
    {REDMUPOptions::Wells384,
     {"2 qualitative of 4, 4 quantitative",
      "3 quantitative, qualitative of 4, 3 quantitative",
      "2 formulation, 2 quantitative",
      "2 formulation, quantitative and qualitative of 3"}},
    {REDMUPOptions::Wells1536,
     {"2 formulation, 2 quantitative", "2 formulation, quantitative and qualitative of 3"}},
};

class PlateEstimability : public ::testing::TestWithParam<REDMUPOptions::EPlateSize> {};

INSTANTIATE_TEST_SUITE_P(Sizes, PlateEstimability, ::testing::ValuesIn(PlateCases::cSizes));

TEST_P(PlateEstimability, WholeModelCanBeEstimated) {
    for (const PlateCases::FactorSet& set : PlateCases::FactorSets()) {
        SCOPED_TRACE(set.name);
        DesignOptions options = OptionsFor(set.factors, GetParam());
        const bool served = cUnserved.at(GetParam()).count(set.name) == 0;
        ASSERT_EQ(PlateCases::Builder().IsValid(set.factors, options), served);
        if (!served) {
            continue;
        }
        const auto design = PlateCases::Builder().Build(set.factors, options);
        const auto found =
            EstimabilityOf(*design->GetDesignMatrix(), set.factors, PlatesOf(options));
        EXPECT_GE(found.terms, set.factors.GetDesignFactorCount());
        EXPECT_EQ(found.rank, found.terms);
    }
}

// The check can fail: a plate whose columns are all alike tells nothing of the horizontal factors.
TEST_P(PlateEstimability, PlateOfEqualColumnsIsSeenToBeSingular) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = OptionsFor(factors, GetParam());
    auto& order = PlatesOf(options).GetHorizontalDesign().runOrder;
    order.assign(order.size(), 1);
    const auto design = PlateCases::Builder().Build(factors, options);
    const auto found = EstimabilityOf(*design->GetDesignMatrix(), factors, PlatesOf(options));
    EXPECT_LT(found.rank, found.terms);
    EXPECT_GT(found.rank, 0U);
}

// Effects of plate factors, and how they change all the others, can be told from several plates.
TEST_P(PlateEstimability, PlateFactorsAddTheirEffectsToTheModel) {
    const TestFactors factors = TestFactors().Quantitatives(4).Qualitative(2).Quantitative();
    DesignOptions options = PlateCases::Options(factors);
    REDMUPOptions& plates = PlatesOf(options);
    plates.GetHorizontalDesign().factors = {0, 1};
    plates.GetVerticalDesign().factors = {2, 3};
    plates.SetPlateSize(GetParam(), factors, true);
    plates.SetNumPlates(REDMUPOptions::FourPlates);
    const auto design = PlateCases::Builder().Build(factors, options);
    const NCDataMatrix<float>& wells = *design->GetDesignMatrix();
    PlateModel::Columns sides;
    PlateModel::AppendProducts(sides,
                               TermsOf(wells, factors, plates.GetHorizontalDesign()),
                               TermsOf(wells, factors, plates.GetVerticalDesign()));
    const auto found = PlateModel::Estimate(
        PlateModel::GroupTerms(wells, factors, {4, 5}, EModel::Interaction, false), sides);
    EXPECT_EQ(found.terms, 4U * 4 * 4);
    EXPECT_EQ(found.rank, found.terms);
}

}  // namespace
