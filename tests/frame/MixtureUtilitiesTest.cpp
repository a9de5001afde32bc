#include "frame/MixtureUtilities.h"

#include <functional>
#include <string>

#include "foundation/utl/Exceptions.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TestFactors Blend(int count, float low, float high) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.Formulation(low, high);
    }
    return factors;
}

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    return "no exception";
}

TEST(MixtureUtilities, FullRangesAreALowerSimplex) {
    const TestFactors factors = Blend(3, 0, 1);
    EXPECT_TRUE(MixtureUtilities::IsSimplex(factors, false));
    EXPECT_TRUE(MixtureUtilities::IsSimplexLower(factors, false));
}

TEST(MixtureUtilities, RaisedLowsAreALowerSimplex) {
    const TestFactors factors = Blend(3, 0.2F, 0.6F);
    EXPECT_TRUE(MixtureUtilities::IsSimplex(factors, false));
    EXPECT_TRUE(MixtureUtilities::IsSimplexLower(factors, false));
}

TEST(MixtureUtilities, LoweredHighsAreAnUpperSimplex) {
    const TestFactors factors = Blend(3, 0, 0.5F);
    EXPECT_TRUE(MixtureUtilities::IsSimplex(factors, false));
    EXPECT_FALSE(MixtureUtilities::IsSimplexLower(factors, false));
}

TEST(MixtureUtilities, TwoFactorsAreNoSimplexWhateverTheirSettings) {
    EXPECT_FALSE(MixtureUtilities::IsSimplex(Blend(2, 0, 1), false));
    EXPECT_FALSE(MixtureUtilities::IsSimplex(Blend(2, 0.9F, 1), false));  // infeasible
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(Blend(2, 0, 1)));
}

TEST(MixtureUtilities, ProcessFactorBesideTheMixtureMakesItNoSimplex) {
    const TestFactors factors = Blend(3, 0, 1).Quantitative();
    EXPECT_FALSE(MixtureUtilities::IsSimplex(factors, false));
    EXPECT_FALSE(MixtureUtilities::IsSimplexLower(factors, false));
    EXPECT_TRUE(MixtureUtilities::CheckMixtureRanges(factors));
}

TEST(MixtureUtilities, ExcludedRegionIsNoSimplex) {
    EXPECT_FALSE(MixtureUtilities::IsSimplex(Blend(3, 0, 1), true));
    EXPECT_FALSE(MixtureUtilities::IsSimplexLower(Blend(3, 0, 1), true));
}

TEST(MixtureUtilities, InfeasibleExcludedRegionIsToldByTheOrientationOnly) {
    const TestFactors factors = Blend(3, 0.4F, 0.5F);
    EXPECT_FALSE(MixtureUtilities::IsSimplex(factors, true));
    EXPECT_THROW((void)MixtureUtilities::IsSimplexLower(factors, true), Exception);
}

TEST(MixtureUtilities, EqualSlacksAreNoSimplex) {
    // Lows 0, highs 2 in sum: both slacks are 1, and the ranges of 1 would fit.
    const TestFactors factors =
        TestFactors().Formulation(0, 1).Formulation(0, 0.5F).Formulation(0, 0.5F);
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(factors));
    const TestFactors fitting = Blend(4, 0, 0.5F);  // slacks 1 and 1
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(fitting));
}

TEST(MixtureUtilities, RangesMayDifferFromTheSlackByTenPercent) {
    // Slack 1 below; ranges of 1, 1 and 0.92: 0.92 + 0.092 still reaches 1.
    EXPECT_TRUE(MixtureUtilities::CheckMixtureRanges(
        TestFactors().Formulation(0, 1).Formulation(0, 1).Formulation(0, 0.92F)));
    // 0.90 + 0.09 does not.
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(
        TestFactors().Formulation(0, 1).Formulation(0, 1).Formulation(0, 0.9F)));
    // 1.1 - 0.11 stays below 1, 1.2 - 0.12 does not.
    EXPECT_TRUE(MixtureUtilities::CheckMixtureRanges(
        TestFactors().Formulation(0, 1.1F).Formulation(0, 1).Formulation(0, 1)));
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(
        TestFactors().Formulation(0, 1.2F).Formulation(0, 1).Formulation(0, 1)));
}

TEST(MixtureUtilities, NoFormulationFactorsHaveNoMixtureRanges) {
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(TestFactors()));
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(TestFactors().Quantitatives(3)));
    EXPECT_FALSE(MixtureUtilities::IsSimplexLower(TestFactors().Quantitatives(3), false));
}

TEST(MixtureUtilities, FreeSumIsNoSimplex) {
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(Blend(3, 0, 1).WithFreeSum()));
    EXPECT_FALSE(MixtureUtilities::CheckMixtureRanges(Blend(3, 0, 1).WithFiller(true)));
}

TEST(MixtureUtilities, ConstantShareLowersTheTarget) {
    // Target 0.5: slacks 0.5 and 1 against ranges of 0.5.
    EXPECT_TRUE(MixtureUtilities::IsSimplexLower(Blend(3, 0, 0.5F).WithConstantShare(0.5F), false));
    EXPECT_FALSE(MixtureUtilities::IsSimplex(Blend(3, 0, 1).WithConstantShare(0.5F), false));
}

TEST(MixtureUtilities, FillerBesideAFixedSumIsTold) {
    EXPECT_EQ(MessageOf([] {
                  (void)MixtureUtilities::CheckMixtureRanges(Blend(3, 0, 1).WithFiller(false));
              }),
              "A design can include a filler only if the other formulation factors do not add up "
              "to 1.");
}

TEST(MixtureUtilities, LowSettingsThatReachTheTargetAreTold) {
    EXPECT_EQ(
        MessageOf([] { (void)MixtureUtilities::CheckMixtureRanges(Blend(2, 0.5F, 0.75F)); }),
        "The sum of the low settings of the formulation factors is too large 1.The sum must not be "
        "higher than 1.");
}

TEST(MixtureUtilities, LowSettingsAboveALoweredTargetAreTold) {
    EXPECT_EQ(
        MessageOf([] {
            (void)MixtureUtilities::CheckMixtureRanges(Blend(3, 0.25F, 1).WithConstantShare(0.5F));
        }),
        "The sum of the low settings of the formulation factors is too large 0.75.The sum "
        "must not be higher than 0.5.");
}

TEST(MixtureUtilities, HighSettingsBelowTheTargetAreTold) {
    EXPECT_EQ(MessageOf([] { (void)MixtureUtilities::CheckMixtureRanges(Blend(3, 0, 0.25F)); }),
              "The sum of the high settings of the formulation factors is too small 0.75. The sum "
              "must be higher than 1. Change the settings or add a filler factor.");
}

TEST(MixtureUtilities, LowMessageComesBeforeTheHighMessage) {
    // Both are wrong only when a low stands above its high.
    EXPECT_THAT(
        MessageOf([] { (void)MixtureUtilities::CheckMixtureRanges(Blend(2, 0.5F, 0.25F)); }),
        HasSubstr("low settings"));
}

TEST(MixtureUtilities, HighSettingsOnTheTargetAreFeasible) {
    // Slacks 1 and 0.
    EXPECT_NO_THROW((void)MixtureUtilities::CheckMixtureRanges(Blend(4, 0, 0.25F)));
    EXPECT_FALSE(MixtureUtilities::IsSimplexLower(Blend(4, 0, 0.25F), false));
}

TEST(MixtureUtilities, SmallHighSettingsAreFeasibleWithAFillerOfFreeSum) {
    EXPECT_NO_THROW((void)MixtureUtilities::CheckMixtureRanges(Blend(3, 0, 0.1F).WithFiller(true)));
}

TEST(MixtureUtilities, FreeSumWithoutFillerIsStillChecked) {
    EXPECT_THAT(MessageOf([] {
                    (void)MixtureUtilities::CheckMixtureRanges(Blend(3, 0.5F, 1).WithFreeSum());
                }),
                StartsWith("The sum of the low settings"));
}

TEST(MixtureUtilities, UnreachableLowIsRaised) {
    TestFactors factors = TestFactors().Formulation(0, 1).Formulation(0, 0.2F).Formulation(0, 0.2F);
    EXPECT_TRUE(MixtureUtilities::AdjustedMixtureRanges(factors));
    EXPECT_THAT(factors.GetFactorSettings(0), ElementsAre(FloatEq(0.6F), FloatEq(1)));
    EXPECT_THAT(factors.GetFactorSettings(1), ElementsAre(FloatEq(0), FloatEq(0.2F)));
    EXPECT_THAT(factors.GetFactorSettings(2), ElementsAre(FloatEq(0), FloatEq(0.2F)));
    EXPECT_EQ(factors.rangeChanges, 1);
}

TEST(MixtureUtilities, UnreachableHighIsLowered) {
    // Lows 0.5 in sum: no factor can stand more than 0.5 above its low.
    TestFactors factors =
        TestFactors().Formulation(0.25F, 1).Formulation(0.25F, 1).Formulation(0, 0.25F);
    EXPECT_TRUE(MixtureUtilities::AdjustedMixtureRanges(factors));
    EXPECT_THAT(factors.GetFactorSettings(0), ElementsAre(0.25F, 0.75F));
    EXPECT_THAT(factors.GetFactorSettings(1), ElementsAre(0.25F, 0.75F));
    EXPECT_THAT(factors.GetFactorSettings(2), ElementsAre(0, 0.25F));
    EXPECT_EQ(factors.rangeChanges, 2);
}

TEST(MixtureUtilities, ReachableRangesAreLeftAlone) {
    TestFactors factors = Blend(3, 0.2F, 0.6F);
    EXPECT_TRUE(MixtureUtilities::AdjustedMixtureRanges(factors));
    EXPECT_EQ(factors.rangeChanges, 0);
}

TEST(MixtureUtilities, ProcessFactorsAreNotAdjusted) {
    TestFactors factors =
        TestFactors().Quantitative(0, 10).Formulation(0, 1).Formulation(0, 0.2F).Formulation(0,
                                                                                             0.2F);
    EXPECT_TRUE(MixtureUtilities::AdjustedMixtureRanges(factors));
    EXPECT_THAT(factors.GetFactorSettings(0), ElementsAre(0, 10));
    EXPECT_THAT(factors.GetFactorSettings(1), ElementsAre(FloatEq(0.6F), FloatEq(1)));
}

TEST(MixtureUtilities, FreeSumIsNotAdjustedNorChecked) {
    TestFactors factors = Blend(3, 0.9F, 1).WithFreeSum();
    EXPECT_TRUE(MixtureUtilities::AdjustedMixtureRanges(factors));
    EXPECT_EQ(factors.rangeChanges, 0);
}

TEST(MixtureUtilities, InfeasibleRangesAreNotTouched) {
    TestFactors factors = Blend(3, 0.5F, 1);
    EXPECT_THROW(MixtureUtilities::AdjustedMixtureRanges(factors), Exception);
    EXPECT_EQ(factors.rangeChanges, 0);
}

}  // namespace
