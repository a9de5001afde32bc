#include "designs/plate/ReducedDesign.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/PlateRowCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ReducedDesign TwoByThree(unsigned runs, bool reduced, std::vector<int> list) {
    return {{{2, 3}, {7, 6}},
            EModel::Interaction,
            EDesign::FFM,
            runs,
            reduced,
            std::move(list),
            "Two by three",
            "23x"};
}

TestFactors TwoByThreeFactors() {
    return TestFactors().Quantitative().Qualitative(3);
}

NCDataMatrix<float> FullTwoByThree() {
    return NCDesign::MakeFFDesignTable(TwoByThreeFactors(), 6, false, false);
}

DesignOptions Options(const DesignBuilder& builder, const Factors& factors) {
    DesignOptions options(builder, factors);
    options.SetCenterPoints(0);
    return options;
}

NCDataMatrix<float> Built(const DesignBuilder& builder,
                          const Factors& factors,
                          const DesignOptions& options) {
    const auto design = builder.Build(factors, options);
    return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
}

DesignOptions QuadraticOptions(const DesignBuilder& builder, const Factors& factors) {
    return {builder, factors, EObjective::Optimization, EModel::Quadratic, EModel::Quadratic, 8};
}

TEST(ReducedDesign, CompositeDesignLosesItsSixthRun) {
    const auto builder = plate::BuilderNamed("CCF23a");
    const TestFactors factors = TestFactors().Quantitatives(2);
    NCDataMatrix<float> expected = built::MatrixOf(EDesign::CCF, factors);
    expected.RemoveRows(10, 2);  // all centre points but one
    expected.RemoveRows(6, 1);
    EXPECT_EQ(Built(*builder, factors, QuadraticOptions(*builder, factors)), expected);
}

TEST(ReducedDesign, DefaultsOfTheCompositeRowFillTheSide) {
    const auto builder = plate::BuilderNamed("CCF23a");
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DesignOptions options = QuadraticOptions(*builder, factors);
    EXPECT_EQ(options.GetRuns(), 7U);
    EXPECT_EQ(options.GetCenterPoints(), 1U);
}

TEST(ReducedDesign, QuantitativeAndMultilevelMatchButHaveNoCompositeDesign) {
    const auto builder = plate::BuilderNamed("CCF23a");
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(3);
    EXPECT_FALSE(builder->IsValid(factors, QuadraticOptions(*builder, factors)));
}

TEST(ReducedDesign, RowsAreRemovedFromTheLastToTheFirst) {
    const ReducedDesign row = TwoByThree(3, true, {1, 2, 5});
    const TestFactors factors = TwoByThreeFactors();
    NCDataMatrix<float> expected = FullTwoByThree();
    expected.RemoveRows(5, 1);
    expected.RemoveRows(1, 2);
    EXPECT_EQ(Built(row, factors, Options(row, factors)), expected);
}

TEST(ReducedDesign, ListedRunsAreRepeatedBehindTheLastInTheOrderOfTheList) {
    const ReducedDesign row = TwoByThree(9, false, {2, 6, 6});
    const TestFactors factors = TwoByThreeFactors();
    const auto all = RowsOf(FullTwoByThree());
    const auto rows = RowsOf(Built(row, factors, Options(row, factors)));
    ASSERT_EQ(rows.size(), 9U);
    EXPECT_EQ(std::vector(rows.begin(), rows.begin() + 6), all);
    EXPECT_THAT(std::vector(rows.begin() + 6, rows.end()), ElementsAre(all[1], all[5], all[5]));
}

TEST(ReducedDesign, CentrePointsComeBeforeReplicatedRunsAndReplicates) {
    const ValidatingScope validating;
    const ReducedDesign row = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    DesignOptions options = Options(row, factors);
    options.SetCenterPoints(2);
    options.SetReplicatedRuns(3);
    options.SetReplicates(1);
    const NCDataMatrix<float> matrix = Built(row, factors, options);
    ASSERT_EQ(matrix.SizeRows(), 26);
    for (const int centre : {9, 10, 22, 23}) {
        EXPECT_THAT(built::RowOf(matrix, centre), ElementsAre(0, 65));
    }
    EXPECT_NE(matrix(11, 1), 0.0F);
    EXPECT_EQ(RowsOf(matrix, 1, 13), RowsOf(matrix, 14, 26));
}

TEST(ReducedDesign, CentrePointsOfTheBaseCountAmongThoseAskedFor) {
    const auto builder = plate::BuilderNamed("CCF22a");
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const unsigned centers : {0U, 1U, 4U}) {
        DesignOptions options = QuadraticOptions(*builder, factors);
        options.SetCenterPoints(centers);
        EXPECT_EQ(Built(*builder, factors, options).SizeRows(), centers > 1 ? 11 : 8) << centers;
    }
}

TEST(ReducedDesign, RunsThatMakeABaseWithoutAListedRunGiveAnEmptyHandle) {
    const ReducedDesign removing = TwoByThree(5, true, {6});
    const ReducedDesign repeating = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    for (const unsigned runs : {0U, 1U, 4U}) {
        DesignOptions options = Options(removing, factors);
        options.SetRuns(runs);
        EXPECT_EQ(removing.Build(factors, options), nullptr) << runs;
        options = Options(repeating, factors);
        options.SetRuns(runs);
        EXPECT_EQ(repeating.Build(factors, options), nullptr) << runs;
    }
}

// 12 runs less 4 leave 8; of a table of other runs the list would take others, or too few.
TEST(ReducedDesign, RowListIsForTheRowsOwnTable) {
    const auto builder = plate::BuilderNamed("FFM34b");
    const plate::RowCase row = plate::RowNamed("FFM34b");
    const TestFactors factors = TestFactors().Qualitative(3).Qualitative(4);
    DesignOptions options = plate::SideOptions(*builder, factors, row);
    EXPECT_EQ(Built(*builder, factors, options).SizeRows(), 8);
    for (const unsigned runs : {6U, 7U, 9U}) {
        options.SetRuns(runs);
        options.SetCenterPoints(runs < 8 ? 8 - runs : 0);
        EXPECT_EQ(builder->Build(factors, options), nullptr) << runs;
    }
}

TEST(ReducedDesign, TooManyRunsAreRefusedBeforeTheyAreMade) {
    const ReducedDesign row = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    DesignOptions options = Options(row, factors);
    options.SetReplicates(std::numeric_limits<unsigned>::max());
    EXPECT_THROW((void)row.Build(factors, options), Exception);
}

TEST(ReducedDesign, InvalidRequestGivesAnEmptyHandle) {
    const ReducedDesign row = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    DesignOptions options = Options(row, factors);
    options.SetMaxRuns(9);
    EXPECT_EQ(row.Build(factors, options), nullptr);
}

TEST(ReducedDesign, SideMustHoldTheList) {
    // A side of three runs cannot hold four repeated ones; without a limit it is not asked.
    const ReducedDesign row = TwoByThree(3, false, {1, 2, 3, 4});
    const TestFactors factors = TwoByThreeFactors();
    DesignOptions options = Options(row, factors);
    EXPECT_TRUE(row.IsValid(factors, options));
    options.SetMaxRuns(3);
    EXPECT_FALSE(row.IsValid(factors, options));
}

TEST(ReducedDesign, BaseMustBeValidUnderItsOwnLimit) {
    // The 2^3 has eight runs; a side of 11 leaves it 7 behind four repeated ones.
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const unsigned runs : {11U, 12U}) {
        const ReducedDesign row({{2, 2, 2}, {7, 7, 7}},
                                EModel::Interaction,
                                EDesign::FF2,
                                runs,
                                false,
                                {1, 2, 3, 4},
                                "x",
                                "x");
        DesignOptions options = Options(row, factors);
        options.SetMaxRuns(runs);
        EXPECT_EQ(row.IsValid(factors, options), runs == 12U);
    }
}

TEST(ReducedDesign, TypeWithoutABuilderHasNoDesign) {
    // Two builders share this type, told apart by data that a row does not have.
    const ReducedDesign row(
        {{2, 2}, {7, 7}}, EModel::Interaction, EDesign::Rechtschaffner, 8, true, {1}, "x", "x");
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DesignOptions options = Options(row, factors);
    EXPECT_FALSE(row.IsValid(factors, options));
    EXPECT_EQ(row.Build(factors, options), nullptr);
    EXPECT_EQ(row.GetDefaultRuns(factors, EObjective::Screening), 0U);
    EXPECT_EQ(row.GetDefaultRuns(factors, options), 0U);
    EXPECT_EQ(row.GetMinimumCenterPoints(), 0U);
    EXPECT_THAT(row.GetLegalRuns(factors, options), IsEmpty());
}

TEST(ReducedDesign, DefaultRunsAreThoseOfTheBaseWithoutOrWithTheList) {
    const TestFactors factors = TwoByThreeFactors();
    for (const auto& [row, runs] :
         {std::pair{TwoByThree(5, true, {6}), 5U}, std::pair{TwoByThree(8, false, {1, 6}), 8U}}) {
        EXPECT_EQ(row.GetDefaultRuns(factors, EObjective::Screening), runs);
        EXPECT_EQ(row.GetDefaultRuns(factors, Options(row, factors)), runs);
        EXPECT_THAT(row.GetLegalRuns(factors, Options(row, factors)), ElementsAre(runs));
    }
}

TEST(ReducedDesign, DefaultRunsOfACompositeRowLeaveOutTheCentrePoint) {
    const auto builder = plate::BuilderNamed("FF3333a");
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(builder->GetDefaultRuns(factors, EObjective::Optimization), 11U);
    EXPECT_EQ(builder->GetMinimumCenterPoints(), 1U);
}

TEST(ReducedDesign, BaseSmallerThanTheListLeavesNoRuns) {
    const ReducedDesign row = TwoByThree(1, true, {1, 2, 3, 4, 5, 6});
    for (const TestFactors& factors :
         {TwoByThreeFactors(), TestFactors().Quantitative().Qualitative(2)}) {
        EXPECT_EQ(row.GetDefaultRuns(factors, EObjective::Screening), 0U);
        EXPECT_THAT(row.GetLegalRuns(factors, Options(row, factors)), IsEmpty());
    }
}

TEST(ReducedDesign, BaseWithoutADesignLeavesNoRuns) {
    // Eleven factors are too many for the two-level full factorial.
    const auto builder = plate::BuilderNamed("2*FF2_1");
    const TestFactors factors = TestFactors().Quantitatives(11);
    EXPECT_EQ(builder->GetDefaultRuns(factors, EObjective::Screening), 0U);
    EXPECT_THAT(builder->GetLegalRuns(factors, Options(*builder, factors)), IsEmpty());
}

TEST(ReducedDesign, LegalRunsKeepTheRunLimit) {
    const ReducedDesign row = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    DesignOptions options = Options(row, factors);
    for (const unsigned limit : {7U, 8U}) {
        options.SetMaxRuns(limit);
        EXPECT_EQ(row.GetLegalRuns(factors, options).size(), limit - 7U) << limit;
    }
}

TEST(ReducedDesign, DefaultModelFollowsTheRowAndTheObjective) {
    const TestFactors factors = TwoByThreeFactors();
    // Row model down, objectives 0 to 5 across.
    const std::vector<std::vector<int>> expected{{0, 0, 0, 0, 0, 0},
                                                 {0, 1, 0, 0, 1, 0},
                                                 {0, 2, 0, 0, 2, 0},
                                                 {3, 3, 3, 3, 3, 3},
                                                 {4, 4, 4, 4, 4, 4},
                                                 {5, 5, 5, 5, 5, 5},
                                                 {0, 0, 0, 0, 0, 0}};
    for (int model = 0; model <= 6; ++model) {
        const ReducedDesign row({{2, 3}, {7, 6}},
                                static_cast<EModel::Type>(model),
                                EDesign::FFM,
                                8,
                                false,
                                {1, 6},
                                "x",
                                "x");
        std::vector<int> found;
        for (int objective = 0; objective <= 5; ++objective) {
            found.push_back(row.GetDefaultModel(factors, static_cast<EObjective::Type>(objective)));
        }
        EXPECT_EQ(found, expected[static_cast<std::size_t>(model)]) << model;
    }
}

TEST(ReducedDesign, PriorityIsAsStoredAndZeroCountsAsOne) {
    const TestFactors factors;
    for (const auto& [stored, told] :
         std::vector<std::pair<unsigned, int>>{{0, 1}, {1, 1}, {7, 7}, {300, 255}}) {
        const ReducedDesign row({{2, 2}, {7, 7}},
                                EModel::Interaction,
                                EDesign::FF2,
                                8,
                                false,
                                {1, 2, 3, 4},
                                "x",
                                "x",
                                stored);
        EXPECT_EQ(row.GetPriority(factors), told) << stored;
    }
}

TEST(ReducedDesign, DescriptionStandsInFrontOfItsEnd) {
    const ReducedDesign row({{2, 2}, {7, 7}},
                            EModel::Interaction,
                            EDesign::FF2,
                            8,
                            false,
                            {1, 2, 3, 4},
                            "Name",
                            "N",
                            1,
                            "Twice the same.");
    EXPECT_EQ(row.GetDescription(), "Twice the same. Expanded to fit the plate.");
    EXPECT_EQ(TwoByThree(5, true, {6}).GetDescription(), "Two by three Reduced to fit the plate.");
}

TEST(ReducedDesign, BaseTypeIsThatOfTheAdaptedFamily) {
    EXPECT_EQ(TwoByThree(5, true, {6}).GetBaseDesignType(), EDesign::FFM);
    EXPECT_EQ(TwoByThree(5, true, {6}).IsDesign(), EDesign::Plugin);
}

TEST(ReducedDesign, CloneIsOfTheSameClass) {
    const ReducedDesign row = TwoByThree(8, false, {1, 6});
    const TestFactors factors = TwoByThreeFactors();
    const auto design = row.Build(factors, Options(row, factors));
    ASSERT_NE(design, nullptr);
    EXPECT_NE(dynamic_cast<ReducedDesignClass*>(design->Clone().get()), nullptr);
}

}  // namespace
