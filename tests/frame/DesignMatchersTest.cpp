#include "tests/support/DesignMatchers.h"

#include <string>

#include "tests/support/TestFactors.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Matches;
using ::testing::Not;
using Table = NCDataMatrix<float>;

std::string Explanation(const DesignMatcher& matcher, const Table& table) {
    ::testing::StringMatchResultListener listener;
    matcher.MatchAndExplain(table, &listener);
    return listener.str();
}

Table WithCell(const Table& table, int row, int column, float value) {
    Table copy = table;
    copy(row, column, value);
    return copy;
}

// The half fraction of three factors with c = ab.
const Table cHalfFraction{{-1, -1, 1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, 1}};
// Two factors of three levels, each pair once.
const Table cNineRuns{
    {65, 65}, {66, 65}, {67, 65}, {65, 66}, {66, 66}, {67, 66}, {65, 67}, {66, 67}, {67, 67}};

TestFactors TwoOfThreeLevels() {
    return TestFactors().Qualitative(3).MultilevelOf(3);
}

TEST(DesignMatchers, BalanceHoldsInAFactorial) {
    EXPECT_THAT(cNineRuns, IsBalanced(TwoOfThreeLevels()));
}

TEST(DesignMatchers, BalanceNamesTheColumnOfAFlippedCell) {
    const TestFactors factors = TwoOfThreeLevels();
    EXPECT_THAT(Explanation(IsBalanced(factors), WithCell(cNineRuns, 4, 2, 67)),
                HasSubstr("column 2"));
}

TEST(DesignMatchers, BalanceMissesALevelThatNeverOccurs) {
    const TestFactors factors = TestFactors().Qualitative(4).MultilevelOf(3);
    EXPECT_THAT(Explanation(IsBalanced(factors), cNineRuns), HasSubstr("3 of 4 levels"));
}

TEST(DesignMatchers, OrthogonalColumnsHoldInAFraction) {
    EXPECT_THAT(cHalfFraction, HasOrthogonalColumns());
}

TEST(DesignMatchers, OrthogonalityIgnoresTheMeanOfAColumn) {
    EXPECT_THAT((Table{{65, 65}, {66, 65}, {65, 66}, {66, 66}}), HasOrthogonalColumns());
}

TEST(DesignMatchers, OrthogonalityNamesThePairOfAFlippedCell) {
    EXPECT_THAT(Explanation(HasOrthogonalColumns(), WithCell(cNineRuns, 1, 2, 67)),
                HasSubstr("columns 1 and 2"));
}

TEST(DesignMatchers, ProportionalFrequenciesHoldInAFactorial) {
    EXPECT_THAT(cNineRuns, HasProportionalFrequencies());
}

TEST(DesignMatchers, ProportionalFrequenciesObjectToAFlippedCell) {
    EXPECT_THAT(Explanation(HasProportionalFrequencies(), WithCell(cNineRuns, 5, 1, 65)),
                HasSubstr("columns 1 and 2"));
}

TEST(DesignMatchers, ProportionalFrequenciesAreStricterThanOrthogonality) {
    const Table curved{{-1, 1}, {0, -1}, {0, -1}, {1, 1}};
    EXPECT_THAT(curved, HasOrthogonalColumns());
    EXPECT_THAT(curved, Not(HasProportionalFrequencies()));
}

TEST(DesignMatchers, LegalLevelsHoldForCodesAndNumbers) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(2);
    EXPECT_THAT((Table{{-1, 65}, {0.5F, 66}}), HasOnlyLegalLevels(factors, DesignOptions()));
}

TEST(DesignMatchers, LegalLevelsObjectToAMissingCell) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_THAT(Explanation(HasOnlyLegalLevels(factors, DesignOptions()), {{-1, 1}, {1, -99}}),
                HasSubstr("row 2, column 2 holds -99"));
}

TEST(DesignMatchers, LegalLevelsObjectToACodeBehindTheLastLevel) {
    const TestFactors factors = TestFactors().MultilevelOf(2).Quantitative();
    EXPECT_THAT(Explanation(HasOnlyLegalLevels(factors, DesignOptions()), {{65, 1}, {67, 1}}),
                HasSubstr("row 2, column 1 holds 67"));
}

TEST(DesignMatchers, LegalLevelsObjectToACodeBetweenLevels) {
    const TestFactors factors = TestFactors().MultilevelOf(3).Quantitative();
    EXPECT_THAT((Table{{65.5F, 1}}), Not(HasOnlyLegalLevels(factors, DesignOptions())));
}

TEST(DesignMatchers, LegalLevelsReachAsFarAsTheStarDistance) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    DesignOptions options;
    options.SetStarDistance(1.5F);
    EXPECT_THAT((Table{{-1.5F}, {1.5F}}), HasOnlyLegalLevels(factors, options));
    EXPECT_THAT((Table{{1.75F}}), Not(HasOnlyLegalLevels(factors, options)));
}

TEST(DesignMatchers, LegalLevelsLookAtTheBlockColumn) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    DesignOptions options;
    options.SetBlocks(2);
    EXPECT_THAT((Table{{-1, 65}, {1, 66}}), HasOnlyLegalLevels(factors, options));
    EXPECT_THAT((Table{{-1, 65}, {1, 67}}), Not(HasOnlyLegalLevels(factors, options)));
}

TEST(DesignMatchers, LegalLevelsCountTheColumns) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_THAT(Explanation(HasOnlyLegalLevels(factors, DesignOptions()), {{1, 1, 1}}),
                HasSubstr("3 columns, not 2"));
}

TEST(DesignMatchers, HalfFractionOfThreeHasResolutionThreeAndNoMore) {
    EXPECT_THAT(cHalfFraction, HasResolutionAtLeast(3));
    EXPECT_THAT(Explanation(HasResolutionAtLeast(4), cHalfFraction),
                HasSubstr("columns 1 * 2 * 3 sums to 4"));
}

TEST(DesignMatchers, ResolutionObjectsToAFlippedCell) {
    EXPECT_THAT(Explanation(HasResolutionAtLeast(2), WithCell(cHalfFraction, 2, 2, 1)),
                HasSubstr("columns 2 sums to 2"));
}

TEST(DesignMatchers, ResolutionNeedsTwoValuesAColumn) {
    EXPECT_THAT(Explanation(HasResolutionAtLeast(3), cNineRuns), HasSubstr("column 1 has 3"));
}

TEST(DesignMatchers, FoldOverHoldsForMirroredRunsInAnyOrder) {
    EXPECT_THAT((Table{{-1, 65}, {0, 66}, {1, 66}, {0, 65}}), IsFoldOver());
}

TEST(DesignMatchers, FoldOverNamesTheRowWithoutMirrorImage) {
    EXPECT_THAT(Explanation(IsFoldOver(), {{-1, 1}, {0, 0}, {1, 1}}), HasSubstr("row 1"));
}

TEST(DesignMatchers, HalfFractionOfThreeIsNoFoldOver) {
    EXPECT_THAT(cHalfFraction, Not(IsFoldOver()));
}

TEST(DesignMatchers, RowSumsHoldWithinTheTolerance) {
    EXPECT_THAT((Table{{0.25F, 0.75F}, {0.5F, 0.501F}}), RowsSumTo(1, 0.01));
}

TEST(DesignMatchers, RowSumsNameTheRowThatMisses) {
    EXPECT_THAT(Explanation(RowsSumTo(1, 0.01), {{0.25F, 0.75F}, {0.5F, 0.6F}}),
                HasSubstr("row 2 sums to 1.1"));
}

NCDOE::Constraints SumAtLeastThree() {
    return NCDOE::Constraints({{{{0, 1.0}, {1, 1.0}}, 3.0, true}});
}

TEST(DesignMatchers, ConstraintsHoldOnTheBound) {
    EXPECT_THAT((Table{{1, 2}, {4, 0}}), KeepsWithin(SumAtLeastThree()));
}

TEST(DesignMatchers, ConstraintsNameTheRowThatBreaksThem) {
    EXPECT_THAT(Explanation(KeepsWithin(SumAtLeastThree()), {{1, 2}, {1, 1}}),
                HasSubstr("row 2 breaks constraint 1 by 1"));
}

TEST(DesignMatchers, ConstraintsObjectToAMissingValue) {
    EXPECT_THAT((Table{{-99, 500}}), Not(KeepsWithin(SumAtLeastThree())));
}

TEST(DesignMatchers, CentrePointsHoldWithMiddleAndFirstLevels) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(4).Qualitative(3);
    EXPECT_THAT((Table{{1, 65, 67}, {0, 66, 65}, {0, 66, 65}}), HasCentrePointRows(2, factors));
}

TEST(DesignMatchers, CentrePointsNameTheCellThatIsOff) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(4).Qualitative(3);
    EXPECT_THAT(
        Explanation(HasCentrePointRows(2, factors), {{1, 65, 67}, {0, 67, 65}, {0, 66, 65}}),
        HasSubstr("row 2, column 2 holds 67"));
}

TEST(DesignMatchers, CentrePointsNeedAsManyRows) {
    EXPECT_THAT((Table{{0.0F}}), Not(HasCentrePointRows(2, TestFactors().Quantitatives(1))));
}

}  // namespace
