#include "designs/factorial/FFM.h"

#include <memory>

#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using Table = NCDataMatrix<float>;

const FFMBuilder cBuilder("FFM", "Full Fac (Mixed)", "");
const TestFactors cMixed = TestFactors().Quantitatives(2).Qualitative(3);

bool IsValidWith(const Factors& factors, int objective, int model) {
    DesignOptions options(cBuilder, factors);
    options.SetObjective(static_cast<EObjective::Type>(objective));
    options.SetModel(static_cast<EModel::Type>(model));
    return cBuilder.IsValid(factors, options);
}

unsigned Runs(const Factors& factors) {
    return cBuilder.GetDefaultRuns(factors, EObjective::Screening);
}

Table Built(const Factors& factors, unsigned centerPoints) {
    DesignOptions options(cBuilder, factors);
    options.SetCenterPoints(centerPoints);
    const auto design = cBuilder.Build(factors, options);
    return design ? *design->GetDesignMatrix() : Table();
}

TEST(FFMBuilder, RunsAreTheProductOfTheLevelCounts) {
    EXPECT_EQ(Runs(TestFactors()), 1U);
    EXPECT_EQ(Runs(cMixed), 12U);
    EXPECT_EQ(Runs(TestFactors().Qualitative(3).MultilevelOf(5)), 15U);
    EXPECT_EQ(Runs(TestFactors().Formulation().Other(CEType::Time, {}, 7)), 4U);
}

TEST(FFMBuilder, RunsReachTwelveThousandAndNoMore) {
    EXPECT_EQ(Runs(TestFactors().Qualitative(120).MultilevelOf(100)), 12000U);
    EXPECT_EQ(Runs(TestFactors().Qualitative(121).MultilevelOf(100)), 0U);
}

TEST(FFMBuilder, ProductThatIsOnceTooLargeStaysZero) {
    EXPECT_EQ(
        Runs(TestFactors().MultilevelOf(20).MultilevelOf(20).MultilevelOf(20).MultilevelOf(2)), 0U);
    EXPECT_EQ(Runs(TestFactors().MultilevelOf(200).MultilevelOf(200).MultilevelOf(2)), 0U);
}

TEST(FFMBuilder, HugeLevelCountsDoNotWrapAround) {
    const TestFactors factors = TestFactors()
                                    .Other(CEType::Qualitative, {}, 65536)
                                    .Other(CEType::Qualitative, {}, 65536)
                                    .Qualitative(3);
    EXPECT_EQ(Runs(factors), 0U);
}

TEST(FFMBuilder, OnlyTheDefaultRunsAreLegal) {
    EXPECT_THAT(cBuilder.GetLegalRuns(cMixed, DesignOptions()), ElementsAre(12U));
}

TEST(FFMBuilder, AnswersForItsFamily) {
    EXPECT_EQ(cBuilder.IsDesign(), 3);
    EXPECT_EQ(cBuilder.GetMinimumCenterPoints(), 0U);
    EXPECT_THAT(cBuilder.GetLegalBlocks(cMixed, DesignOptions(cBuilder, cMixed), false),
                ElementsAre(1));
}

TEST(FFMBuilder, ModelIsInteractionForScreeningAndRobustness) {
    for (const int objective : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(cBuilder.GetDefaultModel(cMixed, static_cast<EObjective::Type>(objective)),
                  objective == 1 || objective == 4 ? EModel::Interaction : EModel::None)
            << objective;
    }
}

TEST(FFMBuilder, ScreeningAndRobustnessServeLinearAndInteractionModels) {
    for (int objective = 0; objective <= 5; ++objective) {
        for (int model = 0; model <= 6; ++model) {
            const bool expected = (objective == 1 || objective == 4) && (model == 1 || model == 2);
            EXPECT_EQ(IsValidWith(cMixed, objective, model), expected) << objective << ' ' << model;
        }
    }
}

TEST(FFMBuilder, FactorsAllAtTwoLevelsAreNotValid) {
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitatives(3), 1, 2));
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitative().Qualitative(2).MultilevelOf(2), 1, 2));
}

TEST(FFMBuilder, TwoFactorsAndFourRunsAreTheLeast) {
    EXPECT_FALSE(IsValidWith(TestFactors().Qualitative(5), 1, 2));
    EXPECT_FALSE(IsValidWith(TestFactors().Qualitative(3).Qualitative(1), 1, 2));
    EXPECT_TRUE(IsValidWith(TestFactors().Qualitative(4).Qualitative(1), 1, 2));
    EXPECT_TRUE(IsValidWith(TestFactors().Qualitative(3).Quantitative(), 1, 2));
}

TEST(FFMBuilder, MoreThanTwelveThousandRunsAreNotValid) {
    EXPECT_TRUE(IsValidWith(TestFactors().Qualitative(120).MultilevelOf(100), 1, 2));
    EXPECT_FALSE(IsValidWith(TestFactors().Qualitative(121).MultilevelOf(100), 1, 2));
}

TEST(FFMBuilder, RunLimitIsNotLookedAt) {
    DesignOptions options(cBuilder, cMixed);
    options.SetMaxRuns(1);
    EXPECT_TRUE(cBuilder.IsValid(cMixed, options));
}

TEST(FFMBuilder, FillerNeedsAFreeSum) {
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitative().Qualitative(3).WithFiller(false), 1, 2));
    EXPECT_TRUE(IsValidWith(TestFactors().Quantitative().Qualitative(3).WithFiller(true), 1, 2));
}

TEST(FFMBuilder, FormulationFactorsAreNotValidWithoutAFiller) {
    EXPECT_FALSE(IsValidWith(TestFactors().Qualitative(3).Formulation(), 1, 2));
    EXPECT_TRUE(IsValidWith(TestFactors().Qualitative(3).Formulation().WithFiller(true), 1, 2));
}

TEST(FFMBuilder, ConstraintsAreNotValid) {
    DesignOptions options(cBuilder, cMixed);
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_TRUE(cBuilder.IsValid(cMixed, options));
    options.GetDesignSpecificOptions()->SetConstraints(
        NCDOE::Constraints({{{{0, 1.0}}, 0.0, true}}), cMixed);
    EXPECT_FALSE(cBuilder.IsValid(cMixed, options));
}

TEST(FFMBuilder, InvalidRequestGivesAnEmptyHandle) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(cBuilder.Build(factors, DesignOptions(cBuilder, factors)), nullptr);
}

TEST(FFM, ContinuousFactorsStandAtTwoLevelsAndLevelFactorsAtAllTheirs) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(3);
    EXPECT_EQ(Built(factors, 1),
              (Table{{-1, 65}, {1, 65}, {-1, 66}, {1, 66}, {-1, 67}, {1, 67}, {0, 66}}));
}

TEST(FFM, HoldsEveryCombinationOnce) {
    const TestFactors factors =
        TestFactors().Qualitative(3).Quantitative().MultilevelOf(4).Qualitative(5);
    const Table table = Built(factors, 0);
    EXPECT_EQ(table.SizeRows(), 120);
    EXPECT_THAT(table, IsBalanced(factors));
    EXPECT_THAT(table, HasProportionalFrequencies());
    EXPECT_THAT(table, HasOnlyLegalLevels(factors, DesignOptions()));
}

TEST(FFM, CentrePointsTakeMiddleAndFirstLevels) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(4).MultilevelOf(5);
    EXPECT_THAT(Built(factors, 3), HasCentrePointRows(3, factors));
}

TEST(FFM, CloneIsAnFFMOfTheSameMatrix) {
    const FFM design(cMixed, DesignOptions(cBuilder, cMixed));
    const auto clone = design.Clone();
    EXPECT_NE(dynamic_cast<FFM*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
}

}  // namespace
