#include "designs/optimal/TermCounts.h"

#include <gtest/gtest.h>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/ModelTerms.h"
#include "tests/support/TestFactors.h"

namespace {

using DOpt::TermCounts;

TestFactors Blend(int components) {
    TestFactors factors;
    for (int i = 0; i < components; ++i) {
        factors.Formulation();
    }
    return factors;
}

// Columns of the full model of process factors, the constant left out.
int ColumnsOf(const Factors& factors, EModel::Type model) {
    int columns = -1;
    for (const auto& term : ModelTerms::Make(ModelTerms::Describe(factors), {model})) {
        int width = 1;
        for (const int factor : term) {
            width *= static_cast<int>(factors.GetExpandedVariableCount(factor));
        }
        columns += width;
    }
    return columns;
}

TEST(TermCounts, ProcessCountsAreThoseOfTheTermLists) {
    const TestFactors sets[] = {TestFactors().Quantitatives(1),
                                TestFactors().Quantitatives(5),
                                TestFactors().Qualitative(3).Quantitatives(2),
                                TestFactors().Qualitative(4).MultilevelOf(3).Qualitative(2)};
    for (const TestFactors& factors : sets) {
        SCOPED_TRACE(factors.GetDesignFactorCount());
        const TermCounts counts(factors);
        EXPECT_EQ(counts.Linear(), ColumnsOf(factors, EModel::Linear));
        EXPECT_EQ(counts.Interaction(), ColumnsOf(factors, EModel::Interaction));
        EXPECT_EQ(counts.Quadratic(), ColumnsOf(factors, EModel::Quadratic));
        EXPECT_EQ(counts.MixLinear(), 0);
        EXPECT_EQ(counts.MixQuadratic(), 0);
        EXPECT_EQ(counts.MixSpecialCubic(), 0);
        EXPECT_EQ(counts.ProcessMixture(), 0);
    }
}

TEST(TermCounts, NoFactorsHaveNoTerms) {
    const TermCounts counts{TestFactors()};
    EXPECT_EQ(counts.Linear(), 0);
    EXPECT_EQ(counts.Interaction(), 0);
    EXPECT_EQ(counts.Quadratic(), 0);
}

// Scheffe's polynomials of q components have q, q(q+1)/2 and so on terms; one of them stands in for
// the constant here.
TEST(TermCounts, MixtureCountsAreThoseOfScheffePolynomialsLessOne) {
    for (int q = 2; q <= 8; ++q) {
        SCOPED_TRACE(q);
        const TestFactors factors = Blend(q);
        const TermCounts counts(factors);
        EXPECT_EQ(counts.Mixture(), q);
        EXPECT_EQ(counts.Process(), 0);
        EXPECT_EQ(counts.Linear(), 0);
        EXPECT_EQ(counts.MixLinear(), q - 1);
        EXPECT_EQ(counts.MixQuadratic(), q * (q + 1) / 2 - 1);
        EXPECT_EQ(counts.MixInteraction(), q * (q - 1) / 2);
        EXPECT_EQ(counts.MixSpecialCubic(), (q - 2) * (q - 1) + counts.MixQuadratic());
        EXPECT_EQ(counts.MixCubic(), counts.MixSpecialCubic() + q - 1);
    }
}

TEST(TermCounts, ProcessAndMixtureCross) {
    const TestFactors factors =
        TestFactors().Quantitatives(2).Formulation().Formulation().Formulation().Qualitative(3);
    const TermCounts counts(factors);
    EXPECT_EQ(counts.Variables(), 7);
    EXPECT_EQ(counts.Process(), 4);
    EXPECT_EQ(counts.Linear(), 4);
    EXPECT_EQ(counts.Interaction(), 4 + 1 + 2 + 2);
    EXPECT_EQ(counts.Quadratic(), 9 + 2);
    EXPECT_EQ(counts.ProcessMixture(), 4 * 2);
}

TEST(TermCounts, SharesOfAFreeSumAreProcessVariables) {
    TestFactors factors = Blend(3);
    factors.WithFiller(true);
    const TermCounts counts(factors);
    EXPECT_EQ(counts.Linear(), 3);
    EXPECT_EQ(counts.Interaction(), 6);
    EXPECT_EQ(counts.Quadratic(), 9);
    EXPECT_EQ(counts.MixLinear(), 0);
}

TEST(TermCounts, BlocksOfTheAdapterCountAsAFactor) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DOptFactorAdapter adapter(factors, 3);
    const TermCounts counts(adapter);
    EXPECT_EQ(counts.Linear(), 4);
    EXPECT_EQ(counts.Interaction(), 4 + 1 + 2 + 2);
}

TEST(RecommendedRuns, FollowTheKindsOfFactors) {
    const TestFactors none;
    const TestFactors three = TestFactors().Quantitatives(3);
    const TestFactors seven = TestFactors().Quantitatives(7);
    const TestFactors blend = Blend(4);
    const TestFactors large = Blend(6);
    const TestFactors crossed = Blend(3).Quantitatives(2);
    const TestFactors wide = Blend(5).Quantitatives(5);
    const TestFactors widest = Blend(6).Quantitatives(7);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(none)), 7);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(three)), 6 + 7);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(seven)), 7 + 15);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(blend)), 4 + 6);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(crossed)), 3 + 3 + 4 + 6);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(wide)), 15 + 4 + 7);
    EXPECT_EQ(RecommendedRunsInteraction(TermCounts(widest)), 7 + 5 + 15);

    EXPECT_EQ(RecommendedRunsRobust(TermCounts(none)), 7);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(three)), 6 + 7);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(seven)), 7 + 13);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(blend)), 9 + 7);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(large)), 6 + 6);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(crossed)), 3 + 4 + 7 + 5);
    EXPECT_EQ(RecommendedRunsRobust(TermCounts(wide)), 5 + 15 + 4);

    EXPECT_EQ(RecommendedRunsSmall(TermCounts(none)), 5);
    EXPECT_EQ(RecommendedRunsSmall(TermCounts(three)), 6 + 5);
    EXPECT_EQ(RecommendedRunsSmall(TermCounts(seven)), 7 + 9);
    EXPECT_EQ(RecommendedRunsSmall(TermCounts(blend)), 4 + 4);
    EXPECT_EQ(RecommendedRunsSmall(TermCounts(crossed)), 3 + 3 + 4);
    EXPECT_EQ(RecommendedRunsSmall(TermCounts(wide)), 5 + 5 + 8);

    EXPECT_EQ(RecommendedRunsMix(TermCounts(none)), 5);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(three)), 6 + 5);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(seven)), 7 + 9);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(blend)), 9 + 5);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(large)), 6 + 4);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(crossed)), 3 + 5 + 5);
    EXPECT_EQ(RecommendedRunsMix(TermCounts(wide)), 5 + 9 + 4);
}

}  // namespace
