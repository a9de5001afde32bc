#include "designs/plate/PreCreatedDesign.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/PlateRowCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using ::testing::ElementsAre;

// Two columns of two levels and one of four.
PreCreatedDesign Row(EModel::Type model = EModel::Linear) {
    return {{{2, 2, 4}, {7, 7, 6}},
            model,
            {{-1, 1, 65}, {1, 1, 66}, {-1, -1, 67}, {1, -1, 68}},
            "A table",
            "T",
            0};
}

TestFactors RowFactors() {
    return TestFactors().Quantitative().Qualitative(2).MultilevelOf(4);
}

DesignOptions Options(const DesignBuilder& builder, const Factors& factors) {
    DesignOptions options(builder, factors);
    options.SetCenterPoints(0);
    return options;
}

std::vector<std::vector<float>> BuiltRows(const DesignBuilder& builder,
                                          const Factors& factors,
                                          const DesignOptions& options) {
    const auto design = builder.Build(factors, options);
    return design ? RowsOf(*design->GetDesignMatrix()) : std::vector<std::vector<float>>();
}

TEST(PreCreatedDesign, ColumnsGoToTheFactorsAndLevelsToTheirCodes) {
    const PreCreatedDesign row = Row();
    const TestFactors factors = TestFactors().MultilevelOf(4).Quantitative().Qualitative(2);
    EXPECT_THAT(BuiltRows(row, factors, Options(row, factors)),
                ElementsAre(ElementsAre(65, -1, 66),
                            ElementsAre(66, 1, 66),
                            ElementsAre(67, -1, 65),
                            ElementsAre(68, 1, 65)));
}

TEST(PreCreatedDesign, ThreeLevelsOfAMultilevelFactorAreRecoded) {
    const auto builder = plate::BuilderNamed("FF323b");
    const TestFactors factors = TestFactors().MultilevelOf(3).Quantitative();
    DesignOptions options(
        *builder, factors, EObjective::Optimization, EModel::Quadratic, EModel::Quadratic, 8);
    EXPECT_THAT(BuiltRows(*builder, factors, options),
                ElementsAre(ElementsAre(65, -1),
                            ElementsAre(65, 0),
                            ElementsAre(65, 1),
                            ElementsAre(66, -1),
                            ElementsAre(66, 1),
                            ElementsAre(67, -1),
                            ElementsAre(67, 0),
                            ElementsAre(67, 1)));
}

TEST(PreCreatedDesign, ReplicatedRunsComeBeforeTheCentrePoints) {
    const ValidatingScope validating;
    const PreCreatedDesign row = Row();
    const TestFactors factors = RowFactors();
    DesignOptions options = Options(row, factors);
    options.SetCenterPoints(1);
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    const auto rows = BuiltRows(row, factors, options);
    ASSERT_EQ(rows.size(), 14U);
    EXPECT_NE(rows[4][0], 0.0F);
    EXPECT_NE(rows[5][0], 0.0F);
    EXPECT_THAT(rows[6], ElementsAre(0, 65, 66));
    EXPECT_EQ(std::vector(rows.begin(), rows.begin() + 7),
              std::vector(rows.begin() + 7, rows.end()));
}

TEST(PreCreatedDesign, RunsAreThoseOfTheTable) {
    const PreCreatedDesign row = Row();
    const TestFactors factors = RowFactors();
    EXPECT_EQ(row.GetDefaultRuns(factors, EObjective::Screening), 4U);
    EXPECT_EQ(row.GetDefaultRuns(factors, Options(row, factors)), 4U);
    DesignOptions options = Options(row, factors);
    options.SetMaxRuns(2);
    EXPECT_THAT(row.GetLegalRuns(factors, options), ElementsAre(4U));
}

TEST(PreCreatedDesign, NeedsNoCentrePoints) {
    EXPECT_EQ(Row().GetMinimumCenterPoints(), 0U);
    EXPECT_EQ(Row().GetDefaultCenterPoints(EObjective::Screening), 3U);
}

TEST(PreCreatedDesign, IsValidForItsRunsObjectiveModelAndFactors) {
    const PreCreatedDesign row = Row();
    const TestFactors factors = RowFactors();
    const DesignOptions good = Options(row, factors);
    EXPECT_TRUE(row.IsValid(factors, good));
    DesignOptions options = good;
    options.SetMaxRuns(4);
    EXPECT_TRUE(row.IsValid(factors, options));
    options.SetMaxRuns(5);
    EXPECT_FALSE(row.IsValid(factors, options));
    EXPECT_EQ(row.Build(factors, options), nullptr);
    options = good;
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(row.IsValid(factors, options));
    options = good;
    options.SetObjective(EObjective::RobustnessVerification);
    EXPECT_FALSE(row.IsValid(factors, options));
    EXPECT_FALSE(row.IsValid(TestFactors().Quantitatives(3), good));
}

TEST(PreCreatedDesign, DefaultModelFollowsTheRowAndTheObjective) {
    const TestFactors factors = RowFactors();
    EXPECT_EQ(Row().GetDefaultModel(factors, EObjective::Screening), EModel::Linear);
    EXPECT_EQ(Row().GetDefaultModel(factors, EObjective::Optimization), EModel::None);
    EXPECT_EQ(Row(EModel::Quadratic).GetDefaultModel(factors, EObjective::Screening),
              EModel::Quadratic);
}

TEST(PreCreatedDesign, DisplayNameIsTheDescriptionAndShortStringTheData) {
    EXPECT_EQ(Row().GetDescription(), "A table");
    EXPECT_EQ(Row().GetDesignData(), "T");
    EXPECT_EQ(Row().GetPriority(RowFactors()), 1);
    EXPECT_EQ(Row().GetBaseDesignType(), EDesign::Plugin);
}

TEST(PreCreatedDesign, TooManyRunsAreRefusedBeforeTheyAreMade) {
    const PreCreatedDesign row = Row();
    const TestFactors factors = RowFactors();
    DesignOptions options = Options(row, factors);
    options.SetCenterPoints(std::numeric_limits<unsigned>::max());
    EXPECT_THROW((void)row.Build(factors, options), Exception);
}

TEST(PreCreatedDesign, CloneIsOfTheSameClass) {
    const PreCreatedDesign row = Row();
    const TestFactors factors = RowFactors();
    const auto design = row.Build(factors, Options(row, factors));
    ASSERT_NE(design, nullptr);
    EXPECT_NE(dynamic_cast<PreCreatedDesignClass*>(design->Clone().get()), nullptr);
}

}  // namespace
