#include <gtest/gtest.h>

#include <vector>

#include "evaluation/DesignStatistics.h"
#include "foundation/mat/TransformStruct.h"
#include "foundation/utl/Exceptions.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using Table = NCDataMatrix<float>;
using Rows = std::vector<std::vector<float>>;

Rows FromCoded(const Table& coded, const Factors& factors, int blocks = 1, bool pseudo = false) {
    return RowsOf(DesignStatistics::FromCodedMatrix(coded, factors, blocks, pseudo));
}

Rows ForPower(const Table& design,
              const Factors& factors,
              bool lettersCoded,
              bool dropExtra = false,
              bool pseudo = false) {
    return RowsOf(
        DesignStatistics::DesignMatrixPower(design, factors, pseudo, dropExtra, lettersCoded));
}

// --- From coded designs to real units -----------------------------------------------------------

TEST(FromCodedMatrix, EachFactorTakesItsVariables) {
    const TestFactors factors =
        TestFactors().Qualitative(3).Quantitative(10, 20).Multilevel({1, 5, 7}).Qualitative(2);
    EXPECT_EQ(FromCoded({{65, -1, 65, 65}, {66, 0, 66, 66}, {67, 1, 67, 65}}, factors),
              (Rows{{-1, -1, 10, 1, -1}, {1, 0, 15, 5, 1}, {0, 1, 20, 7, -1}}));
}

TEST(FromCodedMatrix, CodesAreRoundedToTheNearestLevel) {
    EXPECT_EQ(FromCoded({{64.5F}, {65.4F}, {65.6F}, {66.4F}}, TestFactors().Qualitative(2)),
              (Rows{{-1}, {-1}, {1}, {1}}));
}

TEST(FromCodedMatrix, TwoBlocksAddOneColumnAndOneAddsNone) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table coded{{-1, 65}, {1, 66}};
    EXPECT_EQ(FromCoded(coded, factors, 2), (Rows{{-1, -1}, {1, 1}}));
    EXPECT_EQ(FromCoded(coded, factors, 1), (Rows{{-1}, {1}}));
    EXPECT_EQ(FromCoded(coded, factors, 0), (Rows{{-1}, {1}}));
}

TEST(FromCodedMatrix, FourBlocksAddThreeColumns) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    EXPECT_EQ(FromCoded({{0, 65}, {0, 66}, {0, 67}, {0, 68}}, factors, 4),
              (Rows{{0, -1, -1, -1}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}));
}

TEST(FromCodedMatrix, BlockThatDoesNotExistIsRefused) {
    EXPECT_THROW((void)FromCoded({{0, 67}}, TestFactors().Quantitatives(1), 2),
                 InvalidOperationException);
}

TEST(FromCodedMatrix, DesignWithTooFewColumnsIsRefused) {
    EXPECT_THROW((void)FromCoded({{0}, {1}}, TestFactors().Quantitatives(2)),
                 InvalidOperationException);
    EXPECT_THROW((void)FromCoded({{0}, {1}}, TestFactors().Quantitatives(1), 2),
                 InvalidOperationException);
}

TEST(FromCodedMatrix, TransformsAreUndone) {
    const TestFactors factors =
        TestFactors().Quantitative(1, 100).Transformed(TransformStruct(TransformStruct::Log10));
    const Table real = DesignStatistics::FromCodedMatrix({{-1}, {0}, {1}}, factors, 1, false);
    EXPECT_NEAR(real(1, 1), 1, 1e-5);
    EXPECT_NEAR(real(2, 1), 10, 1e-5);
    EXPECT_NEAR(real(3, 1), 100, 1e-4);
}

TEST(FromCodedMatrix, PseudoComponentsBecomeShares) {
    const TestFactors factors =
        TestFactors().Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F);
    const Table real =
        DesignStatistics::FromCodedMatrix({{1, 0, 0}, {0.5F, 0.5F, 0}}, factors, 1, true);
    EXPECT_NEAR(real(1, 1), 0.6, 1e-6);
    EXPECT_NEAR(real(1, 2), 0.2, 1e-6);
    EXPECT_NEAR(real(2, 1), 0.4, 1e-6);
}

// --- For power, from letter codes ---------------------------------------------------------------

TEST(DesignMatrixPower, LettersBecomeLevelsFromZero) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative(10, 20);
    EXPECT_EQ(ForPower({{65, -1}, {66, 0}, {67, 1}}, factors, true),
              (Rows{{0, -1, 1}, {1, 0, 1}, {2, 1, 1}}));
}

TEST(DesignMatrixPower, LettersOfMultilevelFactorsBecomeCodedSettings) {
    EXPECT_EQ(ForPower({{65}, {66}, {67}}, TestFactors().Multilevel({10, 15, 30}), true),
              (Rows{{-1, 1}, {-0.5F, 1}, {1, 1}}));
}

TEST(DesignMatrixPower, LetterWithoutALevelIsRefused) {
    EXPECT_THROW((void)ForPower({{68}}, TestFactors().MultilevelOf(3), true),
                 InvalidOperationException);
}

TEST(DesignMatrixPower, BlockLettersAreLevelsUnlessDropped) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table coded{{-1, 65}, {1, 66}};
    EXPECT_EQ(ForPower(coded, factors, true), (Rows{{-1, 0, 1}, {1, 1, 1}}));
    EXPECT_EQ(ForPower(coded, factors, true, true), (Rows{{-1, 1}, {1, 1}}));
}

// --- For power, from expanded variables ---------------------------------------------------------

TEST(DesignMatrixPower, CodingColumnsBecomeLevelsFromZero) {
    const TestFactors factors = TestFactors().Qualitative(4).Quantitative(0, 10).Qualitative(2);
    EXPECT_EQ(ForPower({{-1, -1, -1, 0, -1}, {1, 0, 0, 5, 1}, {0, 1, 0, 10, -1}, {0, 0, 1, 5, 1}},
                       factors,
                       false),
              (Rows{{0, -1, 0, 1}, {1, 0, 1, 1}, {2, 1, 0, 1}, {3, 0, 1, 1}}));
}

TEST(DesignMatrixPower, InvertsFromCodedMatrix) {
    const TestFactors factors = TestFactors().Qualitative(5).Quantitative(3, 9).MultilevelOf(3);
    const Table coded{{65, -1, 65, 67}, {66, 0, 66, 66}, {69, 1, 67, 65}, {68, 0, 65, 67}};
    const Table expanded = DesignStatistics::FromCodedMatrix(coded, factors, 3, false);
    EXPECT_EQ(ForPower(expanded, factors, false), ForPower(coded, factors, true));
    EXPECT_EQ(ForPower(expanded, factors, false, true), ForPower(coded, factors, true, true));
}

TEST(DesignMatrixPower, CellThatIsNoCodingStays) {
    EXPECT_EQ(ForPower({{0.25F, 0.5F}}, TestFactors().Qualitative(3), false), (Rows{{0.25F, 1}}));
}

// Deliberate: the value passes the transform, the limits do not.
TEST(DesignMatrixPower, LimitsAreNotTransformed) {
    const TestFactors factors =
        TestFactors().Quantitative(1, 100).Transformed(TransformStruct(TransformStruct::Log10));
    const Table matrix = DesignStatistics::DesignMatrixPower({{10}}, factors, false, false, false);
    EXPECT_NEAR(matrix(1, 1), (1 - 50.5) / 49.5, 1e-6);
}

TEST(DesignMatrixPower, MixtureSharesBecomePseudoComponentsWithoutAConstant) {
    const TestFactors factors =
        TestFactors().Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F);
    const Table matrix = DesignStatistics::DesignMatrixPower(
        {{0.6F, 0.2F, 0.2F}, {0.4F, 0.4F, 0.2F}}, factors, false, false, false);
    ASSERT_EQ(matrix.SizeColumns(), 3);
    EXPECT_NEAR(matrix(1, 1), 1, 1e-6);
    EXPECT_NEAR(matrix(1, 2), 0, 1e-6);
    EXPECT_NEAR(matrix(2, 1), 0.5, 1e-6);
}

TEST(DesignMatrixPower, MixtureWithAProcessFactorHasAConstant) {
    const TestFactors factors = TestFactors().Formulation().Formulation().Quantitative();
    EXPECT_EQ(ForPower({{1, 0, -1}, {0, 1, 1}}, factors, true),
              (Rows{{1, 0, -1, 1}, {0, 1, 1, 1}}));
}

TEST(DesignMatrixPower, SharesOfAFreeSumAreCodedAsProcessValues) {
    const TestFactors factors =
        TestFactors().Formulation(0.1F, 0.3F).Formulation(0.1F, 0.3F).WithFiller(true);
    const Table matrix =
        DesignStatistics::DesignMatrixPower({{0.1F, 0.3F}}, factors, false, false, false);
    ASSERT_EQ(matrix.SizeColumns(), 3);
    EXPECT_NEAR(matrix(1, 1), -1, 1e-6);
    EXPECT_NEAR(matrix(1, 2), 1, 1e-6);
}

TEST(DesignMatrixPower, LeavesTheDesignAsItIs) {
    const Table design{{65}, {66}};
    (void)ForPower(design, TestFactors().Qualitative(2), true);
    EXPECT_EQ(RowsOf(design), (Rows{{65}, {66}}));
}

}  // namespace
