#include "frame/Factors.h"

#include <array>
#include <cmath>

#include "foundation/utl/Exceptions.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::FloatEq;
using Table = NCDataMatrix<float>;

// Shows the protected count.
class OpenFactors : public TestFactors {
  public:
    using Factors::GetNumMixtureFactors;
};

TEST(Factors, NoFactorsAreProcessFactorsOfAnyLevelCount) {
    const TestFactors factors;
    EXPECT_TRUE(factors.IsProcessOnly());
    EXPECT_TRUE(factors.IsAll2Levels());
    EXPECT_TRUE(factors.IsAll3Levels());
    EXPECT_TRUE(factors.IsAllQuantitative());
}

TEST(Factors, NoFactorsAreNoMixture) {
    const TestFactors factors;
    EXPECT_FALSE(factors.IsMixture());
    EXPECT_FALSE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessAndMixture());
}

TEST(Factors, NoFactorsCountZero) {
    const TestFactors factors;
    EXPECT_EQ(factors.GetDesignFactorCountExpanded(), 0U);
    EXPECT_EQ(factors.GetProcessFactorCount(), 0U);
    EXPECT_EQ(factors.GetMixtureFactorCount(), 0U);
    EXPECT_EQ(factors.GetProcessFactorCountExpanded(), 0U);
}

TEST(Factors, FormulationFactorsAloneAreAMixtureOnly) {
    const TestFactors factors = TestFactors().Formulation().Formulation();
    EXPECT_TRUE(factors.IsMixture());
    EXPECT_TRUE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessOnly());
    EXPECT_FALSE(factors.IsProcessAndMixture());
}

TEST(Factors, OneFormulationFactorAmongOthersMakesProcessAndMixture) {
    const TestFactors factors = TestFactors().Quantitative().Formulation();
    EXPECT_TRUE(factors.IsMixture());
    EXPECT_FALSE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessOnly());
    EXPECT_TRUE(factors.IsProcessAndMixture());
}

TEST(Factors, FillerWithFreeSumMakesProcessFactors) {
    OpenFactors factors;
    factors.Formulation().Formulation().Quantitative().WithFiller(true);
    EXPECT_FALSE(factors.IsMixture());
    EXPECT_FALSE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessAndMixture());
    EXPECT_TRUE(factors.IsProcessOnly());
    EXPECT_EQ(factors.GetMixtureFactorCount(), 0U);
    EXPECT_EQ(factors.GetProcessFactorCount(), 3U);
    EXPECT_EQ(factors.GetNumMixtureFactors(), 2U);
}

TEST(Factors, FillerWithFixedSumIsNeitherMixtureNorProcessOnly) {
    const TestFactors factors = TestFactors().Formulation().Formulation().WithFiller(false);
    EXPECT_FALSE(factors.IsMixture());
    EXPECT_FALSE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessOnly());
    EXPECT_EQ(factors.GetMixtureFactorCount(), 2U);
    EXPECT_EQ(factors.GetProcessFactorCount(), 0U);
}

TEST(Factors, FreeSumWithoutFillerStaysAMixture) {
    TestFactors factors = TestFactors().Formulation().Formulation().WithFreeSum();
    EXPECT_TRUE(factors.IsMixtureOnly());
    EXPECT_FALSE(factors.IsProcessOnly());
    EXPECT_EQ(factors.GetMixtureFactorCount(), 2U);
}

TEST(Factors, FormulationFactorHasNoLevelCountUnlessThereIsAFiller) {
    EXPECT_FALSE(TestFactors().Quantitative().Formulation().IsAll2Levels());
    EXPECT_FALSE(TestFactors().Quantitative().Formulation().IsAll3Levels());
    EXPECT_TRUE(TestFactors().Quantitative().Formulation().WithFiller(true).IsAll2Levels());
    EXPECT_TRUE(TestFactors().Quantitative().Formulation().WithFiller(false).IsAll3Levels());
}

TEST(Factors, LevelFactorsDecideTheLevelCount) {
    EXPECT_TRUE(TestFactors().Qualitative(2).MultilevelOf(2).Quantitative().IsAll2Levels());
    EXPECT_FALSE(TestFactors().Qualitative(2).MultilevelOf(2).Quantitative().IsAll3Levels());
    EXPECT_TRUE(TestFactors().Qualitative(3).MultilevelOf(3).Quantitative().IsAll3Levels());
    EXPECT_FALSE(TestFactors().Qualitative(3).MultilevelOf(2).IsAll3Levels());
    EXPECT_FALSE(TestFactors().Qualitative(2).MultilevelOf(3).IsAll2Levels());
}

TEST(Factors, QuantitativeFactorPassesForTwoAndThreeLevels) {
    EXPECT_TRUE(TestFactors().Quantitatives(2).IsAll2Levels());
    EXPECT_TRUE(TestFactors().Quantitatives(2).IsAll3Levels());
}

TEST(Factors, AllQuantitativeMeansNeitherMixtureNorLevels) {
    EXPECT_TRUE(TestFactors().Quantitatives(3).IsAllQuantitative());
    EXPECT_FALSE(TestFactors().Quantitative().Qualitative(2).IsAllQuantitative());
    EXPECT_FALSE(TestFactors().Quantitative().MultilevelOf(2).IsAllQuantitative());
    EXPECT_FALSE(TestFactors().Quantitative().Formulation().IsAllQuantitative());
}

TEST(Factors, FormulationFactorsWithAFillerPassAsQuantitative) {
    EXPECT_TRUE(TestFactors().Quantitative().Formulation().WithFiller(true).IsAllQuantitative());
}

TEST(Factors, CountsByTypeLookAtThatTypeOnly) {
    const TestFactors factors =
        TestFactors().Qualitative(2).MultilevelOf(3).Qualitative(4).Quantitative().Formulation();
    EXPECT_EQ(factors.GetQualitativeCount(), 2U);
    EXPECT_EQ(factors.GetMultilevelCount(), 1U);
    EXPECT_EQ(factors.GetMixtureFactorCount(), 1U);
    EXPECT_EQ(factors.GetProcessFactorCount(), 4U);
}

TEST(Factors, QualitativeFactorsExpandToLevelsLessOneColumns) {
    const TestFactors factors = TestFactors().Qualitative(4).Qualitative(3).Quantitative();
    EXPECT_EQ(factors.GetDesignFactorCount(), 3U);
    EXPECT_EQ(factors.GetDesignFactorCountExpanded(), 6U);
    EXPECT_EQ(factors.GetExpandedVariableCount(0), 3U);
    EXPECT_EQ(factors.GetExpandedVariableCount(1), 2U);
    EXPECT_EQ(factors.GetExpandedVariableCount(2), 1U);
}

TEST(Factors, MultilevelFactorExpandsToOneColumn) {
    EXPECT_EQ(TestFactors().MultilevelOf(5).GetDesignFactorCountExpanded(), 1U);
}

TEST(Factors, QualitativeFactorOfOneOrNoLevelExpandsToOneColumn) {
    EXPECT_EQ(TestFactors().Qualitative(1).GetDesignFactorCountExpanded(), 1U);
    EXPECT_EQ(TestFactors().Qualitative(0).GetDesignFactorCountExpanded(), 1U);
    EXPECT_EQ(TestFactors().Qualitative(1).GetExpandedVariableCount(0), 1U);
}

TEST(Factors, ExpandedProcessCountLeavesOutTheMixture) {
    const TestFactors factors = TestFactors().Qualitative(4).Formulation().Formulation();
    EXPECT_EQ(factors.GetDesignFactorCountExpanded(), 5U);
    EXPECT_EQ(factors.GetProcessFactorCountExpanded(), 3U);
}

TEST(Factors, MultilevelCodesGiveTheirSettings) {
    const TestFactors factors = TestFactors().Multilevel({10, 20, 40});
    EXPECT_EQ(factors.FromCoded(0, 65, false), 10);
    EXPECT_EQ(factors.FromCoded(0, 66, false), 20);
    EXPECT_EQ(factors.FromCoded(0, 67, false), 40);
}

TEST(Factors, MultilevelCodesOutsideTheLevelsHaveNoValue) {
    const TestFactors factors = TestFactors().Multilevel({10, 20, 40});
    for (const float code : {68.0F, 64.0F, 64.49F, 0.0F, -1.0F, -99.0F, 1e30F, -1e30F}) {
        EXPECT_EQ(factors.FromCoded(0, code, false), -99.0F) << code;
    }
    EXPECT_EQ(factors.FromCoded(0, std::nanf(""), false), -99.0F);
}

TEST(Factors, MultilevelCodesAreRounded) {
    const TestFactors factors = TestFactors().Multilevel({10, 20, 40});
    EXPECT_EQ(factors.FromCoded(0, 65.4F, false), 10);
    EXPECT_EQ(factors.FromCoded(0, 64.5F, false), 10);
    EXPECT_EQ(factors.FromCoded(0, 65.6F, false), 20);
}

TEST(Factors, QualitativeCodesHaveNoValue) {
    EXPECT_EQ(TestFactors().Qualitative(3).FromCoded(0, 65, false), -99.0F);
}

TEST(Factors, QuantitativeCodesStandBetweenLowAndHigh) {
    const TestFactors factors = TestFactors().Quantitative(10, 20);
    EXPECT_EQ(factors.FromCoded(0, -1, false), 10);
    EXPECT_EQ(factors.FromCoded(0, 0, false), 15);
    EXPECT_EQ(factors.FromCoded(0, 1, false), 20);
    EXPECT_THAT(factors.FromCoded(0, 1.5F, false), FloatEq(22.5F));
}

TEST(Factors, MissingLimitHasNoValue) {
    EXPECT_EQ(TestFactors().Quantitative(-99, 20).FromCoded(0, 0, false), -99.0F);
    EXPECT_EQ(TestFactors().Quantitative(10, -99).FromCoded(0, 0, false), -99.0F);
}

TEST(Factors, SettingsThatAreNoPairHaveNoValue) {
    for (const std::vector<float>& settings :
         {std::vector<float>{}, std::vector<float>{1}, std::vector<float>{1, 2, 3}}) {
        const TestFactors factors = TestFactors().Other(CEType::Quantitative, settings, 0);
        EXPECT_EQ(factors.FromCoded(0, 0, false), -99.0F) << settings.size();
    }
}

TEST(Factors, TransformedFactorIsCodedOnTheWorkingScale) {
    const TestFactors factors =
        TestFactors().Quantitative(1, 100).Transformed(TransformStruct(TransformStruct::Log10));
    EXPECT_NEAR(factors.FromCoded(0, -1, false), 1, 1e-5);
    EXPECT_NEAR(factors.FromCoded(0, 0, false), 10, 1e-4);
    EXPECT_NEAR(factors.FromCoded(0, 1, false), 100, 1e-3);
}

TEST(Factors, LimitWithoutImageUnderTheTransformHasNoValue) {
    const TestFactors factors =
        TestFactors().Quantitative(-5, 100).Transformed(TransformStruct(TransformStruct::Log10));
    EXPECT_EQ(factors.FromCoded(0, 1, false), -99.0F);
}

TestFactors LowerSimplex() {
    return TestFactors().Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F);
}

TestFactors UpperSimplex() {
    return TestFactors().Formulation(0, 0.5F).Formulation(0, 0.5F).Formulation(0, 0.5F);
}

TEST(Factors, PseudoComponentOfALowerSimplexRunsFromLowToHigh) {
    EXPECT_THAT(LowerSimplex().FromCoded(0, 0, true), FloatEq(0.2F));
    EXPECT_THAT(LowerSimplex().FromCoded(0, 0.25F, true), FloatEq(0.3F));
    EXPECT_THAT(LowerSimplex().FromCoded(0, 1, true), FloatEq(0.6F));
}

TEST(Factors, PseudoComponentOfAnUpperSimplexRunsFromHighToLow) {
    EXPECT_THAT(UpperSimplex().FromCoded(0, 0, true), FloatEq(0.5F));
    EXPECT_THAT(UpperSimplex().FromCoded(0, 0.25F, true), FloatEq(0.375F));
    EXPECT_NEAR(UpperSimplex().FromCoded(0, 1, true), 0.0, 1e-7);
}

TEST(Factors, PseudoCodingLeavesQuantitativeFactorsAlone) {
    const TestFactors factors = TestFactors().Quantitative(10, 20);
    EXPECT_EQ(factors.FromCoded(0, 0, true), 15);
}

TEST(Factors, FormulationWithoutPseudoCodingIsCodedAsAnyOther) {
    EXPECT_THAT(LowerSimplex().FromCoded(0, 0, false), FloatEq(0.4F));
}

TEST(Factors, PseudoCodingLetsInfeasibleRangesBeTold) {
    const TestFactors factors = TestFactors().Formulation(0.5F, 1).Formulation(0.5F, 1);
    EXPECT_THROW((void)factors.FromCoded(0, 0, true), Exception);
    EXPECT_THROW((void)factors.GetPseudoComponent(0, 0.5F, false), Exception);
}

TEST(Factors, PseudoComponentOfARealValueUndoesTheCoding) {
    EXPECT_THAT(LowerSimplex().GetPseudoComponent(0, 0.3F, false), FloatEq(0.25F));
    EXPECT_THAT(UpperSimplex().GetPseudoComponent(0, 0.375F, false), FloatEq(0.25F));
}

TEST(Factors, PseudoComponentOfAnExcludedRegionIsTakenFromTheHighSetting) {
    EXPECT_THAT(LowerSimplex().GetPseudoComponent(0, 0.3F, true), FloatEq(0.75F));
}

TEST(Factors, PseudoComponentOfOtherFactorsIsTheValue) {
    const TestFactors factors = TestFactors().Quantitative(10, 20).MultilevelOf(3);
    EXPECT_EQ(factors.GetPseudoComponent(0, 12.5F, false), 12.5F);
    EXPECT_EQ(factors.GetPseudoComponent(1, 2, false), 2);
}

TEST(Factors, PseudoComponentAppliesNoTransform) {
    TestFactors factors = TestFactors().Formulation(0.2F, 0.6F);
    factors.Transformed(TransformStruct(TransformStruct::Log10));
    factors.Formulation(0.2F, 0.6F).Formulation(0.2F, 0.6F);
    EXPECT_THAT(factors.GetPseudoComponent(0, 0.3F, false), FloatEq(0.25F));
}

TEST(Factors, CodingOfAQualitativeFactorSumsToZeroAgainstItsFirstLevel) {
    EXPECT_EQ(*Factors::MakeCodingMatrix(CEType::Qualitative, 3),
              (Table{{-1, -1}, {1, 0}, {0, 1}}));
    EXPECT_EQ(*Factors::MakeCodingMatrix(CEType::Qualitative, 2), (Table{{-1}, {1}}));
    EXPECT_EQ(*Factors::MakeCodingMatrix(CEType::Qualitative, 1), (Table{{-1}}));
    EXPECT_EQ(*Factors::MakeCodingMatrix(CEType::Qualitative, 4),
              (Table{{-1, -1, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
}

TEST(Factors, CodingOfAnyOtherFactorIsASingleOne) {
    for (const CEType::EType type : {CEType::Quantitative,
                                     CEType::Multilevel,
                                     CEType::Formulation,
                                     CEType::Filler,
                                     CEType::Time,
                                     CEType::NotDefined}) {
        EXPECT_EQ(*Factors::MakeCodingMatrix(type, 5), (Table{{1}})) << type;
    }
}

}  // namespace
