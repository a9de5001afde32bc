#include <vector>

#include "frame/NCDesign.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::Each;
using Table = NCDataMatrix<float>;

std::vector<float> Column(const Table& table, int column) {
    std::vector<float> values;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        values.push_back(table(row, column));
    }
    return values;
}

TEST(MakeFFDesignTable, FirstFactorAlternatesFastest) {
    EXPECT_EQ(NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(3), 8, false, false),
              (Table{{-1, -1, -1},
                     {1, -1, -1},
                     {-1, 1, -1},
                     {1, 1, -1},
                     {-1, -1, 1},
                     {1, -1, 1},
                     {-1, 1, 1},
                     {1, 1, 1}}));
}

TEST(MakeFFDesignTable, LevelFactorsCycleThroughTheirCodes) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).Quantitative();
    EXPECT_EQ(NCDesign::MakeFFDesignTable(factors, 12, false, false),
              (Table{{-1, 65, -1},
                     {1, 65, -1},
                     {-1, 66, -1},
                     {1, 66, -1},
                     {-1, 67, -1},
                     {1, 67, -1},
                     {-1, 65, 1},
                     {1, 65, 1},
                     {-1, 66, 1},
                     {1, 66, 1},
                     {-1, 67, 1},
                     {1, 67, 1}}));
}

TEST(MakeFFDesignTable, ThreeLevelsAddTheMiddle) {
    EXPECT_EQ(
        NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(2), 9, false, true),
        (Table{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {0, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}));
}

TEST(MakeFFDesignTable, FormulationFactorsAreCodedAsContinuous) {
    EXPECT_EQ(
        NCDesign::MakeFFDesignTable(TestFactors().Formulation().MultilevelOf(2), 4, false, false),
        (Table{{-1, 65}, {1, 65}, {-1, 66}, {1, 66}}));
}

TEST(MakeFFDesignTable, MixedLevelsAreBalancedAndOrthogonal) {
    const TestFactors factors =
        TestFactors().Qualitative(3).Quantitative().MultilevelOf(4).Qualitative(5);
    const Table table = NCDesign::MakeFFDesignTable(factors, 120, false, false);
    EXPECT_THAT(table, IsBalanced(factors));
    EXPECT_THAT(table, HasProportionalFrequencies());
}

TEST(MakeFFDesignTable, OtherTypesStayBlankAndDoNotSlowTheNextFactor) {
    const TestFactors factors =
        TestFactors().Quantitative().Other(CEType::Filler, {}, 0).Quantitative();
    EXPECT_EQ(NCDesign::MakeFFDesignTable(factors, 4, false, false),
              (Table{{-1, -99, -1}, {1, -99, -1}, {-1, -99, 1}, {1, -99, 1}}));
}

TEST(MakeFFDesignTable, FactorsThatTheRunsDoNotReachStayBlank) {
    const Table table =
        NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(4), 4, false, false);
    EXPECT_THAT(Column(table, 3), Each(-99.0F));
    EXPECT_THAT(Column(table, 4), Each(-99.0F));
}

TEST(MakeFFDesignTable, RunsShortOfTheNextStrideStillReachTheFactor) {
    const Table table =
        NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(3), 5, false, false);
    EXPECT_THAT(Column(table, 3), ::testing::ElementsAre(-1, -1, -1, -1, 1));
}

TEST(MakeFFDesignTable, BlockColumnStandsLastAndHoldsZeros) {
    const Table table = NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(3), 8, true, false);
    ASSERT_EQ(table.SizeColumns(), 4);
    EXPECT_THAT(Column(table, 4), Each(0.0F));
}

TEST(MakeFFDesignTable, NoRunsMakeNoRows) {
    const Table table =
        NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(3), 0, false, false);
    EXPECT_EQ(table.SizeRows(), 0);
    EXPECT_EQ(table.SizeColumns(), 3);
}

TEST(MakePureFF2DesignTable, WithoutRunsItIsTheWholeFactorial) {
    for (const int runs : {0, -5}) {
        const Table table = NCDesign::MakePureFF2DesignTable(3, runs);
        EXPECT_EQ(table.SizeRows(), 8) << runs;
        EXPECT_THAT(table, HasResolutionAtLeast(4)) << runs;
        EXPECT_THAT(Column(table, 1), ::testing::ElementsAre(-1, 1, -1, 1, -1, 1, -1, 1));
    }
}

TEST(MakePureFF2DesignTable, FirstFactorBeyondTheRunsStandsLow) {
    EXPECT_EQ(NCDesign::MakePureFF2DesignTable(3, 4),
              (Table{{-1, -1, -1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, -1}}));
}

TEST(MakePureFF2DesignTable, LaterFactorsBeyondTheRunsStandAtZero) {
    const Table table = NCDesign::MakePureFF2DesignTable(5, 4);
    EXPECT_THAT(Column(table, 3), Each(-1.0F));
    EXPECT_THAT(Column(table, 4), Each(0.0F));
    EXPECT_THAT(Column(table, 5), Each(0.0F));
}

}  // namespace
