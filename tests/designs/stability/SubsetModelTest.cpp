#include "designs/stability/SubsetModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "foundation/mat/TransformStruct.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;

std::vector<float> ModelRow(const Factors& factors, const std::vector<int>& levels) {
    return RowsOf(SubsetModel(factors).MakeDesignMatrix({levels, levels.size()})).front();
}

LevelMatrix FullFactorial(int factors) {
    LevelMatrix subset(1L << factors, factors);
    for (long row = 0; row < subset.nr(); ++row) {
        for (long column = 0; column < factors; ++column) {
            subset(row, column) = static_cast<int>((row >> column) % 2) + 1;
        }
    }
    return subset;
}

TEST(SubsetModel, QuantitativeLevelsAreLowAndHigh) {
    EXPECT_THAT(ModelRow(TestFactors().Quantitatives(2), {1, 2}), ElementsAre(-1, 1));
}

TEST(SubsetModel, MultilevelSettingsAreScaled) {
    const auto factors = TestFactors().Multilevel({10, 20, 40});
    EXPECT_THAT(ModelRow(factors, {1}), ElementsAre(-1));
    EXPECT_THAT(ModelRow(factors, {2}), ElementsAre(FloatNear(-1.0F / 3, 1e-6F)));
    EXPECT_THAT(ModelRow(factors, {3}), ElementsAre(1));
}

TEST(SubsetModel, MultilevelSettingsAreScaledUnderTheTransform) {
    const auto factors = TestFactors()
                             .Multilevel({1, 10, 1000})
                             .Transformed(TransformStruct(TransformStruct::Log10));
    EXPECT_THAT(ModelRow(factors, {2}), ElementsAre(FloatNear(-1.0F / 3, 1e-6F)));
}

TEST(SubsetModel, LevelZeroIsTheMiddleSetting) {
    EXPECT_THAT(ModelRow(TestFactors().Multilevel({10, 25, 30}), {0}), ElementsAre(0.5F));
    // Of an even number of settings the lower one of the middle.
    EXPECT_THAT(ModelRow(TestFactors().Multilevel({10, 15, 25, 30}), {0}), ElementsAre(-0.5F));
}

TEST(SubsetModel, QualitativeLevelsAreRowsOfTheCodingMatrix) {
    const auto factors = TestFactors().Qualitative(3).Quantitative();
    EXPECT_THAT(ModelRow(factors, {1, 1}), ElementsAre(-1, -1, -1));
    EXPECT_THAT(ModelRow(factors, {2, 2}), ElementsAre(1, 0, 1));
    EXPECT_THAT(ModelRow(factors, {3, 2}), ElementsAre(0, 1, 1));
}

TEST(SubsetModel, UnknownLevelsAreMissing) {
    const auto factors = TestFactors().Qualitative(2).MultilevelOf(2);
    EXPECT_THAT(ModelRow(factors, {0, 3}), ElementsAre(-99, -99));
}

TEST(GetConditionNo, FullFactorialHasOne) {
    EXPECT_FLOAT_EQ(GetConditionNo(FullFactorial(3), TestFactors().Quantitatives(3)), 1);
}

// Columns a and b of the runs below: a'a = b'b = 3 and a'b = 1 or -1, so that the eigenvalues of
// the cross products are 4 and 2.
TEST(GetConditionNo, IsThatOfTheSingularValues) {
    LevelMatrix subset(3, 2);
    subset = 1, 1, 1, 2, 2, 2;
    EXPECT_NEAR(GetConditionNo(subset, TestFactors().Quantitatives(2)), std::sqrt(2.0), 1e-6);
}

// Sum to zero coding of three levels: cross products {{2, 1}, {1, 2}}, eigenvalues 3 and 1.
TEST(GetConditionNo, OfAQualitativeFactorFollowsItsCoding) {
    LevelMatrix subset(3, 1);
    subset = 1, 2, 3;
    EXPECT_NEAR(GetConditionNo(subset, TestFactors().Qualitative(3)), std::sqrt(3.0), 1e-6);
}

TEST(GetConditionNo, IsMissingWithoutRuns) {
    EXPECT_EQ(GetConditionNo(LevelMatrix(0, 2), TestFactors().Quantitatives(2)), -99);
}

TEST(GetConditionNo, IsMissingForFewerRunsThanColumns) {
    LevelMatrix subset(2, 1);
    subset = 1, 2;
    EXPECT_EQ(GetConditionNo(subset, TestFactors().Qualitative(4)), -99);
}

TEST(GetConditionNo, IsMissingWhereSettingsCoincide) {
    LevelMatrix subset(2, 1);
    subset = 1, 2;
    EXPECT_EQ(GetConditionNo(subset, TestFactors().Multilevel({5, 5})), -99);
}

TEST(GetConditionNo, ObjectsToAMissingColumn) {
    EXPECT_THROW(
        static_cast<void>(GetConditionNo(FullFactorial(2), TestFactors().Quantitatives(3))),
        dlib::fatal_error);
}

}  // namespace
