#include "designs/plate/TableColumns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TableColumns, TwoQuantitativeFactorsTakeMasksOneAndTwoInOrder) {
    EXPECT_THAT((TableColumns{{2, 3}, {1, 2}}.Match(TestFactors().Quantitatives(2))),
                ElementsAre(1, 2));
    EXPECT_THAT((TableColumns{{3, 2}, {2, 1}}.Match(TestFactors().Quantitatives(2))),
                ElementsAre(2, 1));
}

TEST(TableColumns, QuantitativeAndMultilevelMatchInEitherOrder) {
    const TableColumns columns{{2, 3}, {1, 2}};
    EXPECT_THAT(columns.Match(TestFactors().Quantitative().MultilevelOf(3)), ElementsAre(1, 2));
    EXPECT_THAT(columns.Match(TestFactors().MultilevelOf(3).Quantitative()), ElementsAre(2, 1));
}

TEST(TableColumns, QuantitativeFactorsTakeNoColumnForLevelsOnly) {
    for (const int mask : {4, 6}) {
        EXPECT_THAT((TableColumns{{3}, {mask}}.Match(TestFactors().Quantitative())), IsEmpty())
            << mask;
    }
}

TEST(TableColumns, QuantitativeFactorsFitWhateverTheLevelCount) {
    for (const int mask : {1, 2, 3, 5, 7}) {
        EXPECT_THAT((TableColumns{{5}, {mask}}.Match(TestFactors().Quantitative())), ElementsAre(1))
            << mask;
    }
}

TEST(TableColumns, LevelFactorsNeedTheirBitAndTheirLevelCount) {
    for (int mask = 1; mask <= 7; ++mask) {
        const TableColumns columns{{3}, {mask}};
        EXPECT_EQ(columns.Match(TestFactors().MultilevelOf(3)).size(), (mask & 2) / 2U) << mask;
        EXPECT_EQ(columns.Match(TestFactors().Qualitative(3)).size(), (mask & 4) / 4U) << mask;
        EXPECT_THAT(columns.Match(TestFactors().MultilevelOf(4)), IsEmpty()) << mask;
        EXPECT_THAT(columns.Match(TestFactors().Qualitative(2)), IsEmpty()) << mask;
    }
}

TEST(TableColumns, OtherTypesOfFactorsFitNothing) {
    EXPECT_THAT((TableColumns{{2}, {7}}.Match(TestFactors().Formulation(0, 1))), IsEmpty());
}

TEST(TableColumns, NumberOfFactorsMustBeThatOfTheColumns) {
    const TableColumns columns{{2, 2}, {7, 7}};
    EXPECT_THAT(columns.Match(TestFactors().Quantitatives(1)), IsEmpty());
    EXPECT_THAT(columns.Match(TestFactors().Quantitatives(3)), IsEmpty());
}

TEST(TableColumns, OneFactorWithoutAColumnLeavesNoMatch) {
    EXPECT_THAT((TableColumns{{2, 3}, {7, 6}}.Match(TestFactors().Quantitative().Qualitative(4))),
                IsEmpty());
}

TEST(TableColumns, ColumnsAreTakenByAscendingMaskThenLevelCount) {
    const TableColumns columns{{4, 3, 2}, {7, 7, 3}};
    EXPECT_THAT(columns.Match(TestFactors().Quantitatives(3)), ElementsAre(3, 2, 1));
}

TEST(TableColumns, WidestFirstTakesMasksInItsOwnOrder) {
    const TableColumns columns{{2, 2, 2, 2}, {2, 1, 3, 7}};
    EXPECT_THAT(columns.MatchWidestFirst(TestFactors().Quantitatives(4)), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(columns.Match(TestFactors().Quantitatives(4)), ElementsAre(2, 1, 3, 4));
}

TEST(TableColumns, WidestFirstFallsBackOnTheMatchOfValidity) {
    // The quantitative factor would take the only column that suits the qualitative one.
    const TableColumns columns{{2, 2}, {1, 7}};
    const TestFactors factors = TestFactors().Quantitative().Qualitative(2);
    EXPECT_THAT(columns.MatchWidestFirst(factors), ElementsAre(1, 2));
}

TEST(TableColumns, WidestFirstFindsNothingWhereThereIsNoMatch) {
    EXPECT_THAT((TableColumns{{2}, {7}}.MatchWidestFirst(TestFactors().Qualitative(3))), IsEmpty());
}

}  // namespace
