#include "designs/plate/REDMUP.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <string>

#include "designs/plate/REDMUPOptions.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/CustomDesign.h"
#include "tests/oracles/PlateOracle.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/PlateCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using built::ColumnOf;
using built::RowOf;
using PlateCases::cSizes;
using PlateCases::Options;
using PlateCases::PlatesOf;
using ::testing::Each;
using ::testing::ElementsAre;
using Table = NCDataMatrix<float>;

Table MatrixOf(const Factors& factors, const DesignOptions& options) {
    return *PlateCases::Builder().Build(factors, options)->GetDesignMatrix();
}

// The text of the exception that building raises; empty when a design is built.
std::string FailureOf(const Factors& factors, const DesignOptions& options) {
    std::unique_ptr<NCDesign> design;
    try {
        design = PlateCases::Builder().Build(factors, options);
    } catch (const Exception& exception) {
        EXPECT_EQ(design, nullptr) << "half a design is left";
        return exception.what();
    }
    return {};
}

// Some columns of a set of factors, described afresh: no view of the engine's.
TestFactors Pick(const Factors& all, const std::vector<unsigned long long>& group) {
    TestFactors picked;
    for (const unsigned long long number : group) {
        const int factor = static_cast<int>(number);
        picked.Other(
            all.GetFactorType(factor), all.GetFactorSettings(factor), all.GetLevelCount(factor));
    }
    if (picked.GetQualitativeCount() + picked.GetMultilevelCount() <
            picked.GetDesignFactorCount() &&
        all.HasFiller()) {
        for (unsigned i = 0; i < picked.GetDesignFactorCount(); ++i) {
            if (picked.GetFactorType(static_cast<int>(i)) == CEType::Formulation) {
                picked.WithFiller(all.IsFormulationSumFree());
            }
        }
    }
    return picked;
}

PlateOracle::Side SideOf(const Factors& all, const REDMUPOptions::REDMUPSubDesign& design) {
    const TestFactors group = Pick(all, design.factors);
    const auto builder = AllDesigns::GetDesignBuilder(design.designType, design.designData);
    return {design.factors,
            *builder->Build(group, *design.options)->GetDesignMatrix(),
            design.runOrder};
}

bool IsServed(const REDMUPOptions& plates) {
    return plates.GetHorizontalDesign().options && plates.GetVerticalDesign().options;
}

// --- Wells ------------------------------------------------------------------------------------

// Every well of every set and format is the combination that the plain loops tell.
class PlateWells : public ::testing::TestWithParam<REDMUPOptions::EPlateSize> {};

INSTANTIATE_TEST_SUITE_P(Sizes, PlateWells, ::testing::ValuesIn(cSizes));

TEST_P(PlateWells, AreTheCombinationsOfBothSides) {
    int looked = 0;
    for (const PlateCases::FactorSet& set : PlateCases::FactorSets()) {
        SCOPED_TRACE(set.name);
        DesignOptions options = Options(set.factors);
        REDMUPOptions& plates = PlatesOf(options);
        plates = REDMUPOptions(set.factors);
        plates.GetHorizontalDesign().options.reset();
        plates.GetVerticalDesign().options.reset();
        plates.SetPlateSize(GetParam(), set.factors, true);
        if (!IsServed(plates)) {
            continue;
        }
        const auto expected = PlateOracle::Wells(SideOf(set.factors, plates.GetHorizontalDesign()),
                                                 SideOf(set.factors, plates.GetVerticalDesign()),
                                                 set.factors.GetDesignFactorCount(),
                                                 1);
        const Table matrix = MatrixOf(set.factors, options);
        ASSERT_EQ(matrix.SizeRows(), static_cast<int>(expected.size()));
        ASSERT_EQ(matrix.SizeColumns(), static_cast<int>(set.factors.GetDesignFactorCount()));
        for (int run = 1; run <= matrix.SizeRows(); ++run) {
            ASSERT_EQ(RowOf(matrix, run), expected[static_cast<std::size_t>(run - 1)])
                << "run " << run;
        }
        EXPECT_THAT(matrix, HasOnlyLegalLevels(set.factors, DesignOptions()));
        ++looked;
    }
    EXPECT_GT(looked, 15);
}

TEST(REDMUP, RunsWalkDownThePlatesColumns) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    DesignOptions options = Options(factors);
    REDMUPOptions& plates = PlatesOf(options);
    ASSERT_TRUE(plates.SetHorizontalDesign(
        factors, {3, 4, 5}, EDesign::FF2, "", 8, 0, EModel::Interaction));
    ASSERT_TRUE(
        plates.SetVerticalDesign(factors, {0, 1, 2}, EDesign::FF2, "", 8, 0, EModel::Interaction));
    plates.GetHorizontalDesign().runOrder = {2, 9, 4, 3, 5, 6, 7, 8, 1, 10, 11, 12};
    plates.GetVerticalDesign().runOrder = {5, 2, 3, 4, 1, 6, 7, 8};
    const Table matrix = MatrixOf(factors, options);
    ASSERT_EQ(matrix.SizeRows(), 96);
    // Vertical run 5 and 8, horizontal run 2, a centre point, and 12, another one.
    EXPECT_THAT(RowOf(matrix, 1), ElementsAre(-1, -1, 1, 1, -1, -1));
    EXPECT_THAT(RowOf(matrix, 8), ElementsAre(1, 1, 1, 1, -1, -1));
    EXPECT_THAT(RowOf(matrix, 9), ElementsAre(-1, -1, 1, 0, 0, 0));
    EXPECT_THAT(RowOf(matrix, 96), ElementsAre(1, 1, 1, 0, 0, 0));
}

TEST(REDMUP, FactorsStandInTheOrderOfTheirGroup) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3).Qualitative(2);
    DesignOptions options = Options(factors);
    REDMUPOptions& plates = PlatesOf(options);
    ASSERT_TRUE(
        plates.SetHorizontalDesign(factors, {2, 0}, EDesign::FFM, "", 6, 0, EModel::Interaction));
    ASSERT_TRUE(
        plates.SetVerticalDesign(factors, {3, 1}, EDesign::FF2, "", 4, 0, EModel::Interaction));
    plates.GetHorizontalDesign().runOrder = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    plates.GetVerticalDesign().runOrder = {1, 2, 3, 4, 5, 6, 7, 8};
    const Table matrix = MatrixOf(factors, options);
    // The first factor of a group changes fastest.
    EXPECT_THAT(RowOf(matrix, 1), ElementsAre(-1, -1, 65, 65));
    EXPECT_THAT(RowOf(matrix, 2), ElementsAre(-1, -1, 65, 66));
    EXPECT_THAT(RowOf(matrix, 3), ElementsAre(-1, 1, 65, 65));
    EXPECT_THAT(RowOf(matrix, 9), ElementsAre(-1, -1, 66, 65));
    EXPECT_THAT(RowOf(matrix, 25), ElementsAre(1, -1, 65, 65));
}

TEST(REDMUP, CentrePointsOfTheSidesStandInTheWells) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const Table matrix = MatrixOf(factors, Options(factors));
    int centres = 0;
    for (int run = 1; run <= matrix.SizeRows(); ++run) {
        const auto row = RowOf(matrix, run);
        centres += std::count(row.begin(), row.end(), 0.0F) == 4 ? 1 : 0;
    }
    EXPECT_EQ(matrix.SizeRows(), 96);
    EXPECT_EQ(centres, 8 * 4);  // 8 of 12 columns by 4 of 8 rows
}

TEST(REDMUP, VerticalDesignDecidesOnAFactorOfBothGroups) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Options(factors);
    REDMUPOptions& plates = PlatesOf(options);
    ASSERT_TRUE(
        plates.SetHorizontalDesign(factors, {0, 1}, EDesign::FF2, "", 4, 0, EModel::Interaction));
    ASSERT_TRUE(
        plates.SetVerticalDesign(factors, {1, 2}, EDesign::FF2, "", 4, 0, EModel::Interaction));
    const Table matrix = MatrixOf(factors, options);
    const Table vertical = SideOf(factors, plates.GetVerticalDesign()).runs;
    const auto& order = plates.GetVerticalDesign().runOrder;
    for (int run = 1; run <= 96; ++run) {
        const auto row = static_cast<int>(order[static_cast<std::size_t>((run - 1) % 8)]);
        EXPECT_EQ(matrix(run, 2), vertical(row, 1)) << "run " << run;
    }
}

// Proportions of a blend are read through the factors of their side.
TEST(REDMUP, ProportionsOfABlendAddUp) {
    for (const auto& [low, high] : {std::pair{0.2F, 0.6F}, std::pair{0.0F, 0.5F}}) {
        const TestFactors factors = PlateCases::Blend(3, low, high).Quantitatives(2);
        DesignOptions options = Options(factors);
        const auto view = PlatesOf(options).GetVerticalDesign().GetREDMUPFactors(factors);
        const Table matrix = MatrixOf(factors, options);
        for (int run = 1; run <= matrix.SizeRows(); ++run) {
            float whole = 0;
            for (int factor = 0; factor < 3; ++factor) {
                whole += view->FromCoded(factor, matrix(run, factor + 1), true);
            }
            EXPECT_NEAR(whole, 1.0F, 1e-5F) << "run " << run;
        }
    }
}

TEST(REDMUP, OptionsOfTheWholeAddNoRunsAndNoBlocks) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    const Table plain = MatrixOf(factors, options);
    options.SetCenterPoints(7);
    options.SetReplicates(3);
    options.SetReplicatedRuns(5);
    options.SetBlocks(4);
    EXPECT_EQ(MatrixOf(factors, options), plain);
}

// --- Plates -----------------------------------------------------------------------------------

// Two groups of two factors; the others are plate factors.
DesignOptions TwoByTwo(const Factors& factors, int plates) {
    DesignOptions options = Options(factors);
    EXPECT_TRUE(PlatesOf(options).SetHorizontalDesign(
        factors, {0, 1}, EDesign::FF2, "", 4, 0, EModel::Interaction));
    EXPECT_TRUE(PlatesOf(options).SetVerticalDesign(
        factors, {2, 3}, EDesign::FF2, "", 4, 0, EModel::Interaction));
    PlatesOf(options).SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(plates));
    return options;
}

TEST(REDMUPPlates, OnePlateHasNoPlateFactors) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    DesignOptions options = TwoByTwo(factors, 1);
    PlatesOf(options).SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    const Table matrix = MatrixOf(factors, options);
    ASSERT_EQ(matrix.SizeColumns(), 6);
    EXPECT_THAT(ColumnOf(matrix, 5), Each(-99.0F));
    EXPECT_THAT(ColumnOf(matrix, 6), Each(-99.0F));
}

TEST(REDMUPPlates, OnePlateMayHavePlateFactorsOfAnyKind) {
    const TestFactors factors = TestFactors().Quantitatives(4).Qualitative(5).Quantitative();
    EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, 1)), "");
    EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, 0)), "");
    EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, -3)), "");
}

TEST(REDMUPPlates, TwoPlatesCarryTheTwoLevelsOfOneFactor) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    const Table matrix = MatrixOf(factors, TwoByTwo(factors, 2));
    ASSERT_EQ(matrix.SizeRows(), 192);
    for (int run = 1; run <= 192; ++run) {
        EXPECT_EQ(matrix(run, 5), run <= 96 ? -1 : 1) << "run " << run;
    }
}

TEST(REDMUPPlates, LevelFactorsHaveTheirLetterCodes) {
    const TestFactors factors = TestFactors().Quantitatives(4).Qualitative(2).MultilevelOf(2);
    const Table matrix = MatrixOf(factors, TwoByTwo(factors, 4));
    ASSERT_EQ(matrix.SizeRows(), 384);
    for (int run = 1; run <= 384; ++run) {
        const int plate = (run - 1) / 96;
        EXPECT_EQ(matrix(run, 5), 65 + plate % 2) << "run " << run;
        EXPECT_EQ(matrix(run, 6), 65 + plate / 2) << "run " << run;
    }
}

TEST(REDMUPPlates, FormulationFactorsWithAFillerCanBePlateFactors) {
    const TestFactors factors =
        TestFactors().Quantitatives(4).Formulation(0, 0.2F).WithFiller(true);
    EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, 2)), "");
}

// Constant on a plate, all combinations over the plates, the same wells on every plate.
TEST(REDMUPPlates, PlateFactorsAreAFullFactorialOverThePlates) {
    for (const int count : {1, 2, 3, 4}) {
        const TestFactors factors = TestFactors().Quantitatives(4 + count);
        const int plates = 1 << count;
        SCOPED_TRACE(plates);
        const DesignOptions options = TwoByTwo(factors, plates);
        const Table matrix = MatrixOf(factors, options);
        ASSERT_EQ(matrix.SizeRows(), 96 * plates);
        std::set<std::vector<float>> combinations;
        for (int run = 1; run <= matrix.SizeRows(); ++run) {
            const auto row = RowOf(matrix, run);
            const auto first = RowOf(matrix, (run - 1) / 96 * 96 + 1);
            const auto onFirstPlate = RowOf(matrix, (run - 1) % 96 + 1);
            EXPECT_TRUE(std::equal(row.begin() + 4, row.end(), first.begin() + 4)) << run;
            EXPECT_TRUE(std::equal(row.begin(), row.begin() + 4, onFirstPlate.begin())) << run;
            combinations.insert({row.begin() + 4, row.end()});
        }
        EXPECT_EQ(combinations.size(), static_cast<std::size_t>(plates));
    }
}

TEST(REDMUPPlates, WithoutPlateFactorsAnyNumberOfPlatesWillDo) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    for (const int plates : {2, 3, 5, 7}) {
        const Table once = MatrixOf(factors, TwoByTwo(factors, 1));
        const ValidatingScope validating;
        const Table matrix = MatrixOf(factors, TwoByTwo(factors, plates));
        ASSERT_EQ(matrix.SizeRows(), once.SizeRows() * plates);
        for (int run = 97; run <= matrix.SizeRows(); ++run) {
            ASSERT_EQ(RowOf(matrix, run), RowOf(matrix, run - 96));
        }
    }
}

TEST(REDMUPPlates, PlateColumnHoldsTheLetters) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = TwoByTwo(factors, 3);
    PlatesOf(options).SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    const Table matrix = MatrixOf(factors, options);
    ASSERT_EQ(matrix.SizeColumns(), 5);
    for (int run = 1; run <= matrix.SizeRows(); ++run) {
        EXPECT_EQ(matrix(run, 5), static_cast<float>('A' + (run - 1) / 96)) << "run " << run;
        const auto row = RowOf(matrix, run);
        const auto before = RowOf(matrix, (run - 1) % 96 + 1);
        EXPECT_TRUE(std::equal(row.begin(), row.begin() + 4, before.begin())) << "run " << run;
    }
}

TEST(REDMUPPlates, PlateColumnStandsBehindThePlateFactors) {
    const TestFactors factors = TestFactors().Quantitatives(4).Qualitative(2);
    DesignOptions options = TwoByTwo(factors, 2);
    PlatesOf(options).SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    const Table matrix = MatrixOf(factors, options);
    ASSERT_EQ(matrix.SizeColumns(), 6);
    EXPECT_THAT(RowOf(matrix, 1)[4], 65);
    EXPECT_THAT(RowOf(matrix, 192)[4], 66);
    EXPECT_THAT(RowOf(matrix, 1)[5], 65);
    EXPECT_THAT(RowOf(matrix, 192)[5], 66);
}

TEST(REDMUPPlates, LargestPlatesHaveTheirWells) {
    const TestFactors factors = TestFactors().Quantitatives(7);
    DesignOptions options = Options(factors);
    REDMUPOptions& plates = PlatesOf(options);
    plates.GetHorizontalDesign().factors = {0, 1};
    plates.GetVerticalDesign().factors = {2, 3};
    plates.SetPlateSize(REDMUPOptions::Wells1536, factors, true);
    plates.SetNumPlates(REDMUPOptions::EightPlates);
    const auto expected = PlateOracle::Wells(SideOf(factors, plates.GetHorizontalDesign()),
                                             SideOf(factors, plates.GetVerticalDesign()),
                                             7,
                                             8);
    const Table matrix = MatrixOf(factors, options);
    ASSERT_EQ(matrix.SizeRows(), 8 * 1536);
    for (int run = 1; run <= matrix.SizeRows(); ++run) {
        const auto row = RowOf(matrix, run);
        const auto& well = expected[static_cast<std::size_t>(run - 1)];
        ASSERT_TRUE(std::equal(row.begin(), row.begin() + 4, well.begin())) << "run " << run;
    }
    EXPECT_EQ(plates.GetDefaultExperimentNames().size(), expected.size());
}

// --- Failures ---------------------------------------------------------------------------------

TEST(REDMUPFailures, PlateOptionsAreMissing) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_EQ(FailureOf(factors, DesignOptions()), "Missing RED-MUP options.");
    DesignOptions other = Options(factors);
    other.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_EQ(FailureOf(factors, other), "Missing RED-MUP options.");
}

TEST(REDMUPFailures, FormulationFactorsStandInBothGroups) {
    const TestFactors factors = PlateCases::Blend(3).Quantitatives(2);
    DesignOptions options = Options(factors);
    PlatesOf(options).GetVerticalDesign().factors = {0, 1};
    PlatesOf(options).GetHorizontalDesign().factors = {2, 3, 4};
    EXPECT_EQ(FailureOf(factors, options), "All formulation factors should be in the same block.");
}

TEST(REDMUPFailures, FormulationFactorsWithAFreeSumMayStandInBothGroups) {
    const TestFactors factors = PlateCases::Blend(2, 0, 0.2F).Quantitatives(2).WithFiller(true);
    DesignOptions options = Options(factors);
    PlatesOf(options).GetVerticalDesign().factors = {0, 2};
    PlatesOf(options).GetHorizontalDesign().factors = {1, 3};
    EXPECT_EQ(FailureOf(factors, options), "");
}

TEST(REDMUPFailures, GroupsHoldFactorsTwiceOrNoneThatExist) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    for (const std::vector<unsigned long long>& bad :
         {std::vector<unsigned long long>{1, 1}, std::vector<unsigned long long>{1, 4}}) {
        DesignOptions options = Options(factors);
        PlatesOf(options).GetVerticalDesign().factors = bad;
        EXPECT_EQ(FailureOf(factors, options), "Incorrect block factor setup.");
        options = Options(factors);
        PlatesOf(options).GetHorizontalDesign().factors = bad;
        EXPECT_EQ(FailureOf(factors, options), "Incorrect block factor setup.");
    }
}

// What is wrong with the design of one side, done to either.
using Harm = std::function<void(REDMUPOptions::REDMUPSubDesign&)>;

void ExpectBothSidesToFail(const std::string& name, const Harm& harm) {
    SCOPED_TRACE(name);
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    harm(PlatesOf(options).GetVerticalDesign());
    EXPECT_EQ(FailureOf(factors, options), "Unable to get the vertical design.");
    options = Options(factors);
    harm(PlatesOf(options).GetHorizontalDesign());
    EXPECT_EQ(FailureOf(factors, options), "Unable to get the horizontal design.");
}

TEST(REDMUPFailures, DesignOfASideIsMissing) {
    ExpectBothSidesToFail("no options", [](auto& side) { side.options.reset(); });
    ExpectBothSidesToFail("no builder", [](auto& side) { side.designType = EDesign::None; });
    ExpectBothSidesToFail("other data", [](auto& side) { side.designData = "x"; });
    ExpectBothSidesToFail("not valid",
                          [](auto& side) { side.options->SetModel(EModel::Quadratic); });
    ExpectBothSidesToFail("no factors", [](auto& side) { side.factors.clear(); });
}

TEST(REDMUPFailures, DesignDoesNotFillItsSide) {
    ExpectBothSidesToFail("a run more", [](auto& side) {
        side.options->SetCenterPoints(side.options->GetCenterPoints() + 1);
    });
    ExpectBothSidesToFail("a run less", [](auto& side) {
        side.options->SetCenterPoints(side.options->GetCenterPoints() - 1);
    });
    ExpectBothSidesToFail("a block column", [](auto& side) {
        side.options->SetRuns(8);
        side.options->SetBlocks(2);
    });
}

// Run counts that a family does not have leave cells blank, although the design is accepted.
TEST(REDMUPFailures, DesignLeavesCellsBlank) {
    struct Case {
        bool vertical;
        EDesign::Type type;
        std::string data;
        unsigned runs;
        TestFactors side;
        EModel::Type model;
    };
    const auto three = TestFactors().Quantitatives(3);
    const auto levels = TestFactors().MultilevelOf(3);
    const std::vector<Case> cases{
        {true, EDesign::PB, "", 6, three, EModel::Linear},
        {true, EDesign::FF2, "", 4, three, EModel::Interaction},
        {true, EDesign::Levels, "", 8, levels, EModel::Linear},
        {true, EDesign::Plugin, "Levels Duplicate", 8, levels, EModel::Linear},
        {false, EDesign::PB, "", 6, three, EModel::Linear},
        {false, EDesign::FF2, "", 4, three, EModel::Interaction},
        {false, EDesign::Levels, "", 8, levels, EModel::Linear},
        {false,
         EDesign::Plugin,
         "Levels Duplicate",
         12,
         TestFactors().MultilevelOf(5),
         EModel::Linear}};
    for (const Case& wrong : cases) {
        SCOPED_TRACE((wrong.vertical ? "rows " : "columns ") +
                     EDesign::GetShortString(wrong.type, wrong.data));
        TestFactors factors = wrong.side;
        factors.Quantitative();
        std::vector<unsigned long long> group(wrong.side.GetDesignFactorCount());
        std::iota(group.begin(), group.end(), 0ULL);
        const std::vector<unsigned long long> other{group.size()};
        DesignOptions options = Options(factors);
        REDMUPOptions& plates = PlatesOf(options);
        plates.GetVerticalDesign().factors = wrong.vertical ? group : other;
        plates.GetHorizontalDesign().factors = wrong.vertical ? other : group;
        plates.SetPlateSize(REDMUPOptions::Wells96, factors, true);
        ASSERT_EQ(FailureOf(factors, options), "");
        const auto set = wrong.vertical ? &REDMUPOptions::SetVerticalDesign
                                        : &REDMUPOptions::SetHorizontalDesign;
        ASSERT_TRUE(
            (plates.*set)(factors, group, wrong.type, wrong.data, wrong.runs, 0, wrong.model));
        EXPECT_EQ(FailureOf(factors, options),
                  wrong.vertical ? "Unable to get the vertical design."
                                 : "Unable to get the horizontal design.");
    }
}

// Centre points of a family without a block column would hold block letters in its last factor.
TEST(REDMUPFailures, SideHasBlocks) {
    const TestFactors factors = TestFactors().MultilevelOf(3).Quantitatives(3);
    for (const bool vertical : {true, false}) {
        DesignOptions options = Options(factors);
        REDMUPOptions& plates = PlatesOf(options);
        auto& side = vertical ? plates.GetVerticalDesign() : plates.GetHorizontalDesign();
        auto& other = vertical ? plates.GetHorizontalDesign() : plates.GetVerticalDesign();
        side.factors = {0, 1, 2};
        other.factors = {3};
        plates.SetPlateSize(REDMUPOptions::Wells384, factors, true);
        const auto set =
            vertical ? &REDMUPOptions::SetVerticalDesign : &REDMUPOptions::SetHorizontalDesign;
        ASSERT_TRUE((plates.*set)(factors, {0, 1, 2}, EDesign::L9, "", 9, 0, EModel::Linear));
        EXPECT_EQ(FailureOf(factors, options), "");
        for (const unsigned blocks : {2U, 4U}) {
            side.options->SetBlocks(blocks);
            EXPECT_EQ(FailureOf(factors, options),
                      vertical ? "Unable to get the vertical design."
                               : "Unable to get the horizontal design.")
                << blocks << " blocks";
        }
    }
}

TEST(REDMUPFailures, RunOrderNamesRowsThatAreNotThere) {
    ExpectBothSidesToFail("row 0", [](auto& side) { side.runOrder.back() = 0; });
    ExpectBothSidesToFail("a row beyond", [](auto& side) {
        side.runOrder.front() = static_cast<unsigned>(side.runOrder.size()) + 1;
    });
    ExpectBothSidesToFail("a negative row",
                          [](auto& side) { side.runOrder.front() = static_cast<unsigned>(-1); });
    ExpectBothSidesToFail("too short", [](auto& side) { side.runOrder.pop_back(); });
    ExpectBothSidesToFail("too long", [](auto& side) { side.runOrder.push_back(1); });
    ExpectBothSidesToFail("empty", [](auto& side) { side.runOrder.clear(); });
}

TEST(REDMUPFailures, RunOrderMayRepeatARow) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    PlatesOf(options).GetVerticalDesign().runOrder.assign(8, 1);
    EXPECT_EQ(FailureOf(factors, options), "");
}

TEST(REDMUPFailures, FormatChangedWithoutSetup) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    PlatesOf(options).SetPlateSize(REDMUPOptions::Wells384, factors, false);
    EXPECT_EQ(FailureOf(factors, options), "Unable to get the vertical design.");
    PlatesOf(options).RandomizeRunOrder();
    EXPECT_EQ(FailureOf(factors, options), "Unable to get the vertical design.");
}

TEST(REDMUPFailures, PlateFactorsHaveMoreThanTwoLevels) {
    const std::string text = "Plate factors should be quantitative or have 2 settings.";
    for (const TestFactors& factors : {TestFactors().Quantitatives(4).Qualitative(3),
                                       TestFactors().Quantitatives(4).MultilevelOf(3),
                                       TestFactors().Quantitatives(5).Qualitative(4)}) {
        EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, 2)), text);
    }
}

TEST(REDMUPFailures, FormulationFactorsThatAddUpAreNoPlateFactors) {
    const TestFactors factors = TestFactors().Quantitatives(4).Formulation().Formulation();
    EXPECT_EQ(FailureOf(factors, TwoByTwo(factors, 4)),
              "Plate factors should be quantitative or have 2 settings.");
}

TEST(REDMUPFailures, PlateFactorsDoNotFitThePlates) {
    const std::string text = "Incorrect number of plate factors.";
    const TestFactors one = TestFactors().Quantitatives(5);
    const TestFactors two = TestFactors().Quantitatives(6);
    EXPECT_EQ(FailureOf(two, TwoByTwo(two, 2)), text);
    EXPECT_EQ(FailureOf(one, TwoByTwo(one, 4)), text);
    EXPECT_EQ(FailureOf(one, TwoByTwo(one, 3)), text);
    const TestFactors many = TestFactors().Quantitatives(4 + 32);
    EXPECT_EQ(FailureOf(many, TwoByTwo(many, 2)), text);
    const TestFactors wide = TestFactors().Quantitatives(4 + 65);
    EXPECT_EQ(FailureOf(wide, TwoByTwo(wide, 2)), text);
}

TEST(REDMUPFailures, MorePlatesThanADesignMayHave) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_THAT(FailureOf(factors, TwoByTwo(factors, 10417)),
                ::testing::HasSubstr("It may have at most 1000000 runs in all."));
    EXPECT_THAT(FailureOf(factors, TwoByTwo(factors, 2147483647)),
                ::testing::HasSubstr("It may have at most 1000000 runs in all."));
}

TEST(REDMUPFailures, AreTranslated) {
    ExceptionMessage::SetTranslator([](std::string_view text) { return "~" + std::string(text); });
    const std::string failure = FailureOf(TestFactors().Quantitatives(4), DesignOptions());
    ExceptionMessage::SetTranslator({});
    EXPECT_EQ(failure, "~Missing RED-MUP options.");
}

// --- Builder ----------------------------------------------------------------------------------

TEST(REDMUPBuilder, AnswersForPlates) {
    const DesignBuilder& builder = PlateCases::Builder();
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_EQ(builder.IsDesign(), EDesign::REDMUP);
    EXPECT_EQ(builder.GetShortString(), "RED-MUP");
    EXPECT_EQ(builder.GetDisplayName(), "RED-MUP");
    EXPECT_EQ(builder.GetDescription(), "RED-MUP");
    EXPECT_EQ(builder.GetMinimumCenterPoints(), 0U);
    EXPECT_FALSE(builder.IsCenterPointsAllowed());
    EXPECT_EQ(builder.GetDefaultRuns(factors, EObjective::Screening), 96U);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Screening), EModel::Interaction);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::RobustnessVerification),
              EModel::Interaction);
    for (const auto objective : {EObjective::None,
                                 EObjective::Optimization,
                                 EObjective::SplitObjective,
                                 EObjective::SystemCharacterization}) {
        EXPECT_EQ(builder.GetDefaultModel(factors, objective), EModel::None);
    }
    EXPECT_EQ(builder.GetPriority(factors), DesignBuilder::priority[30][4]);
    EXPECT_EQ(builder.GetPriority(TestFactors().Qualitative(4).Qualitative(3)),
              DesignBuilder::priority[30][5]);
}

TEST(REDMUPBuilder, StandsBetweenStabilityAndGeneralizedSubsets) {
    const auto& all = AllDesigns::AllPossibleDesigns().GetAllDesigns();
    ASSERT_GE(all.size(), 3U);
    EXPECT_EQ(all[all.size() - 3], AllDesigns::GetStabilityBuilder());
    EXPECT_EQ(all[all.size() - 2], AllDesigns::GetREDMUPBuilder());
    EXPECT_EQ(all[all.size() - 1], AllDesigns::GetGeneralizedSubsetBuilder());
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::REDMUP, ""), AllDesigns::GetREDMUPBuilder());
}

TEST(REDMUPBuilder, LegalRunsAreTheWellsOfThePlate) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    EXPECT_THAT(PlateCases::Builder().GetLegalRuns(factors, options), ElementsAre(96));
    PlatesOf(options).SetPlateSize(REDMUPOptions::Wells384, factors, false);
    EXPECT_THAT(PlateCases::Builder().GetLegalRuns(factors, options), ElementsAre(384));
    PlatesOf(options).SetPlateSize(REDMUPOptions::Wells1536, factors, false);
    EXPECT_THAT(PlateCases::Builder().GetLegalRuns(factors, options), ElementsAre(1536));
    EXPECT_THAT(PlateCases::Builder().GetLegalRuns(factors, DesignOptions()), ElementsAre(96));
}

TEST(REDMUPBuilder, DefaultsAreOnePlateOfNinetySixWells) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Options(factors);
    EXPECT_EQ(options.GetRuns(), 96U);
    EXPECT_EQ(options.GetCenterPoints(), 0U);
    EXPECT_EQ(options.GetModel(), EModel::Interaction);
    EXPECT_EQ(options.GetObjective(), EObjective::Screening);
    EXPECT_EQ(options.GetCreatedFromDesign(), EDesign::REDMUP);
    EXPECT_EQ(PlatesOf(options).GetNumPlates(), 1);
    EXPECT_NE(options.GetDesignSpecificOptions(), Options(factors).GetDesignSpecificOptions());
}

bool IsValid(const Factors& factors, const DesignOptions& options) {
    return PlateCases::Builder().IsValid(factors, options);
}

TEST(REDMUPBuilder, ValidityNeedsPlateOptionsAndBothDesigns) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_TRUE(IsValid(factors, Options(factors)));
    EXPECT_FALSE(IsValid(factors, DesignOptions()));
    DesignOptions options = Options(factors);
    PlatesOf(options).GetHorizontalDesign().options.reset();
    EXPECT_FALSE(IsValid(factors, options));
    options = Options(factors);
    PlatesOf(options).GetVerticalDesign().options.reset();
    EXPECT_FALSE(IsValid(factors, options));
}

TEST(REDMUPBuilder, ValidityNeedsAFamilyForEachSide) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    for (const bool horizontal : {false, true}) {
        DesignOptions options = Options(factors);
        auto& side = horizontal ? PlatesOf(options).GetHorizontalDesign()
                                : PlatesOf(options).GetVerticalDesign();
        side.options->SetObjective(EObjective::Optimization);
        EXPECT_FALSE(IsValid(factors, options)) << "no quadratic design for this model";
        side.options->SetObjective(EObjective::Screening);
        side.options->SetModel(EModel::Cubic);
        EXPECT_FALSE(IsValid(factors, options));
        side.options->SetModel(EModel::Interaction);
        EXPECT_TRUE(IsValid(factors, options));
        side.factors.clear();
        EXPECT_FALSE(IsValid(factors, options));
        side.factors = {0, 0};
        EXPECT_FALSE(IsValid(factors, options));
    }
}

TEST(REDMUPBuilder, OneFactorOrAPureMixtureHasNoPlate) {
    for (const TestFactors& factors :
         {TestFactors(), TestFactors().Quantitatives(1), PlateCases::Blend(3)}) {
        EXPECT_FALSE(IsValid(factors, Options(factors)));
        EXPECT_NE(FailureOf(factors, Options(factors)), "");
    }
}

// What is valid by the defaults can be built, and the other way round.
TEST(REDMUPBuilder, ValidDefaultsBuild) {
    int valid = 0;
    for (const PlateCases::FactorSet& set : PlateCases::FactorSets()) {
        const DesignOptions options = Options(set.factors);
        EXPECT_EQ(FailureOf(set.factors, options).empty(), IsValid(set.factors, options))
            << set.name;
        valid += IsValid(set.factors, options) ? 1 : 0;
    }
    EXPECT_GT(valid, 15);
}

// --- The design object ------------------------------------------------------------------------

TEST(REDMUPStore, DesignComesBackAlike) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    DesignOptions options = TwoByTwo(factors, 2);
    PlatesOf(options).SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    const REDMUP design(factors, options);
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    ASSERT_NE(store.OpenRoot()->OpenSection("Design"), nullptr);
    ASSERT_NE(store.OpenRoot()->OpenSection("Design")->OpenSection("Redmup"), nullptr);
    EXPECT_NE(
        store.OpenRoot()->OpenSection("Design")->OpenSection("Redmup")->OpenSection("FMatrix"),
        nullptr);
    const ConfigurationStore again = ConfigurationStore::FromText(store.ToText(), "test");
    const REDMUP loaded(factors, *again.OpenRoot());
    ASSERT_NE(loaded.GetDesignMatrix(), nullptr);
    EXPECT_EQ(*loaded.GetDesignMatrix(), *design.GetDesignMatrix());
}

TEST(REDMUPStore, DesignWithoutAMatrixLeavesNone) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUP design(factors, Options(factors));
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    design.ClearDesignMatrix();
    design.Save(store.OpenRoot().get());
    EXPECT_EQ(store.OpenRoot()->OpenSection("Design")->OpenSection("Redmup"), nullptr);
    const REDMUP loaded(factors, *store.OpenRoot());
    EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
}

TEST(REDMUPStore, WithoutADesignNothingIsLoaded) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUP design(factors, Options(factors));
    const auto before = design.GetDesignMatrix();
    ConfigurationStore store;
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetDesignMatrix(), before);
}

TEST(REDMUP, CloneIsAPlateDesignOverTheSameMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const REDMUP design(factors, Options(factors));
    const auto clone = design.Clone();
    EXPECT_NE(dynamic_cast<const REDMUP*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
}

TEST(REDMUP, SameOptionsGiveTheSameDesign) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    const DesignOptions options = Options(factors);
    EXPECT_EQ(MatrixOf(factors, options), MatrixOf(factors, options));
}

// A plate as made from a project that was closed in between.
TEST(REDMUP, LoadedOptionsGiveTheSameDesign) {
    for (const PlateCases::FactorSet& set : PlateCases::FactorSets()) {
        const DesignOptions options = Options(set.factors);
        if (!IsValid(set.factors, options)) {
            continue;
        }
        ConfigurationStore store;
        options.Save(store.OpenRoot().get());
        DesignOptions loaded = Options(set.factors);
        ASSERT_TRUE(loaded.Load(store.OpenRoot().get()));
        EXPECT_EQ(MatrixOf(set.factors, loaded), MatrixOf(set.factors, options)) << set.name;
    }
}

}  // namespace
