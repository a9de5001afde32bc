#include "designs/optimal/D_OptimalBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

const D_OptimalBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    return dynamic_cast<const D_OptimalBuilder&>(*builder);
}

D_OptimalOptions& FamilyOf(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

TestFactors Blend(int components) {
    TestFactors factors;
    for (int i = 0; i < components; ++i) {
        factors.Formulation();
    }
    return factors;
}

DesignOptions Request(const Factors& factors, EObjective::Type objective, EModel::Type model) {
    return {Builder(),
            factors,
            objective,
            model,
            Builder().GetDefaultMixtureModel(factors, objective, 12000),
            12000};
}

bool IsValid(const Factors& factors,
             EObjective::Type objective = EObjective::Screening,
             EModel::Type model = EModel::Linear) {
    return Builder().IsValid(factors, Request(factors, objective, model));
}

TEST(DOptimalBuilder, StandsBehindTheMixtureFamilies) {
    EXPECT_EQ(Builder().GetShortString(), "DOpt");
    EXPECT_EQ(Builder().GetDisplayName(), "D-Optimal");
    const auto& classic = EDesign::GetClassicDesigns();
    for (std::size_t i = 1; i < classic.size(); ++i) {
        if (classic[i]->IsDesign() == EDesign::DOpt) {
            EXPECT_EQ(classic[i - 1]->IsDesign(), EDesign::SimC);
        }
    }
}

TEST(DOptimalBuilder, HasNoModelOfItsOwn) {
    try {
        (void)Builder().GetDefaultModel(TestFactors(), EObjective::Screening);
        FAIL() << "answered";
    } catch (const InvalidOperationException& error) {
        EXPECT_STREQ(error.what(), "DOpt::GetDefaultModel");
    }
}

TEST(DOptimalBuilder, IsNoPartOfAPlate) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions options(Builder(), factors);
    EXPECT_FALSE(Builder().IsREDMUPRecommended(factors, options));
    EXPECT_TRUE(Builder().IsValid(factors, options, true, false));
    EXPECT_FALSE(Builder().IsValid(factors, options, false, true));
}

TEST(DOptimalBuilder, PriorityIsWeakForAnyNumberOfFactors) {
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(1)), 0);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(2)), 24);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(48)), 24);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(60)), 24);
}

TEST(DOptimalBuilder, SearchesFiveTimesByDefault) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    EXPECT_EQ(FamilyOf(options).GetRepetitions(), 5);
    EXPECT_EQ(FamilyOf(options).GetRunRange(), 2);
}

// --- Validity ---------------------------------------------------------------------------------

TEST(DOptimalBuilder, OneMixtureFactorOrTwoAreNoMixture) {
    EXPECT_FALSE(IsValid(Blend(1)));
    EXPECT_FALSE(IsValid(Blend(2)));
    EXPECT_TRUE(IsValid(Blend(3)));
    EXPECT_FALSE(IsValid(Blend(2).Quantitatives(2)));
    EXPECT_TRUE(IsValid(Blend(20)));
    EXPECT_FALSE(IsValid(Blend(21)));
}

TEST(DOptimalBuilder, FactorsAreTwoAtLeastAndThirtyTwoAtMost) {
    EXPECT_FALSE(IsValid(TestFactors()));
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(1)));
    EXPECT_TRUE(IsValid(TestFactors().Quantitatives(2)));
    EXPECT_TRUE(IsValid(TestFactors().Quantitatives(32)));
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(33)));
    EXPECT_FALSE(IsValid(TestFactors().Qualitative(3).Quantitatives(31)));
}

TEST(DOptimalBuilder, ProcessAndMixtureTogetherAreEighteenAtMost) {
    EXPECT_TRUE(IsValid(Blend(3).Quantitatives(15)));
    EXPECT_FALSE(IsValid(Blend(3).Quantitatives(16)));
    DesignOptions options =
        Request(Blend(3).Quantitatives(15), EObjective::Screening, EModel::Linear);
    options.SetBlocks(2);
    EXPECT_FALSE(Builder().IsValid(Blend(3).Quantitatives(15), options));
}

TEST(DOptimalBuilder, ModelMustServeTheObjective) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const auto objective : {EObjective::Screening, EObjective::RobustnessVerification}) {
        EXPECT_TRUE(IsValid(factors, objective, EModel::Interaction));
        EXPECT_FALSE(IsValid(factors, objective, EModel::Quadratic));
    }
    for (const auto objective : {EObjective::Optimization, EObjective::SystemCharacterization}) {
        EXPECT_FALSE(IsValid(factors, objective, EModel::Linear));
        EXPECT_FALSE(IsValid(factors, objective, EModel::Interaction));
        EXPECT_TRUE(IsValid(factors, objective, EModel::Quadratic));
        EXPECT_TRUE(IsValid(factors, objective, EModel::Cubic));
        EXPECT_FALSE(IsValid(factors, objective, EModel::LinearQuadratic));
        EXPECT_TRUE(IsValid(factors, objective, EModel::None));
    }
}

TEST(DOptimalBuilder, ModelsNeedTheirFactors) {
    const TestFactors process = TestFactors().Quantitatives(3);
    DesignOptions options = Request(process, EObjective::Screening, EModel::None);
    FamilyOf(options).SetDOptMixtureModel(EModel::Linear);
    EXPECT_FALSE(Builder().IsValid(process, options));
    const TestFactors blend = Blend(3);
    options = Request(blend, EObjective::Screening, EModel::Linear);
    FamilyOf(options).SetDOptMixtureModel(EModel::None);
    EXPECT_FALSE(Builder().IsValid(blend, options));
}

TEST(DOptimalBuilder, RunLimitMustReachTheModel) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, EModel::Quadratic);
    ASSERT_EQ(Builder().MinimumRuns(factors, options), 11U);
    options.SetMaxRuns(11);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetMaxRuns(10);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(DOptimalBuilder, ResponseSurfaceNeedsAThirdLevelSomewhere) {
    EXPECT_FALSE(IsValid(
        TestFactors().Qualitative(3).MultilevelOf(2), EObjective::Optimization, EModel::Quadratic));
    EXPECT_TRUE(IsValid(
        TestFactors().Qualitative(3).MultilevelOf(3), EObjective::Optimization, EModel::Quadratic));
    EXPECT_TRUE(IsValid(TestFactors().Qualitative(3).MultilevelOf(2)));
}

TEST(DOptimalBuilder, InvalidRequestGivesAnEmptyHandle) {
    const TestFactors factors = Blend(2);
    EXPECT_EQ(Builder().Build(factors, DesignOptions(Builder(), factors)), nullptr);
}

// --- Runs -------------------------------------------------------------------------------------

TEST(DOptimalBuilder, MinimumIsOneMoreThanTheColumnsOfTheModel) {
    const auto minimum = [](const Factors& factors, EModel::Type model, unsigned blocks = 1) {
        DesignOptions options =
            Request(factors,
                    model >= EModel::Quadratic ? EObjective::Optimization : EObjective::Screening,
                    model);
        options.SetBlocks(blocks);
        return Builder().MinimumRuns(factors, options);
    };
    EXPECT_EQ(minimum(TestFactors().Quantitatives(4), EModel::Linear), 6U);
    EXPECT_EQ(minimum(TestFactors().Quantitatives(4), EModel::Interaction), 12U);
    EXPECT_EQ(minimum(TestFactors().Quantitatives(4), EModel::Quadratic), 16U);
    EXPECT_EQ(minimum(TestFactors().Quantitative().Qualitative(4), EModel::Interaction), 9U);
    EXPECT_EQ(minimum(TestFactors().Quantitatives(4), EModel::Linear, 3), 8U);
    // One component is left out.
    EXPECT_EQ(minimum(Blend(4), EModel::Linear), 5U);
}

TEST(DOptimalBuilder, SlackIsTheComponentOfTheLargestRange) {
    const TestFactors factors =
        TestFactors().Formulation(0, 0.2F).Formulation(0, 0.9F).Formulation(0, 0.2F);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::None);
    FamilyOf(options).SetModel({{}, {0}, {1}, {2}, {0, 1}, {0, 2}});
    // {1} and {0, 1} count nothing.
    EXPECT_EQ(Builder().MinimumRuns(factors, options), 1U + 1U + 2U + 1U);
}

TEST(DOptimalBuilder, LegalRunsOfBlocksAreTheirMultiples) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::Linear);
    FamilyOf(options).SetModel({{}, {0}, {1}, {2}, {3}, {0, 1}, {0, 2}, {1, 2}});
    options.SetBlocks(3);
    ASSERT_EQ(Builder().MinimumRuns(factors, options), 10U);
    options.SetCenterPoints(0);
    options.SetMaxRuns(20);
    EXPECT_THAT(Builder().GetLegalRuns(factors, options), ::testing::ElementsAre(12, 15, 18));
}

TEST(DOptimalBuilder, LegalRunsLeaveRoomForReplicatesAndCentrePoints) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::Linear);
    options.SetCenterPoints(2);
    options.SetReplicates(1);
    options.SetMaxRuns(19);
    EXPECT_THAT(Builder().GetLegalRuns(factors, options), ::testing::ElementsAre(5, 6, 7));
    options.SetMaxRuns(13);
    EXPECT_TRUE(Builder().GetLegalRuns(factors, options).empty());
    options.SetMaxRuns(0);
    EXPECT_TRUE(Builder().GetLegalRuns(factors, options).empty());
}

TEST(DOptimalBuilder, EveryBlockHasFourRunsAtLeast) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::Linear);
    options.SetBlocks(5);
    EXPECT_EQ(Builder().GetLegalRuns(factors, options).front(), 20U);
}

TEST(DOptimalBuilder, FewestLegalRunsBuild) {
    const ValidatingScope validating;
    const TestFactors sets[] = {TestFactors().Quantitatives(4),
                                TestFactors().Quantitatives(2).Qualitative(3),
                                Blend(4),
                                Blend(3).Quantitatives(1)};
    for (const TestFactors& factors : sets) {
        DesignOptions options(Builder(), factors);
        options.SetCenterPoints(0);
        FamilyOf(options).SetRunRange(0);
        const std::vector<unsigned> legal = Builder().GetLegalRuns(factors, options);
        for (const std::size_t i : {0U, 1U, 2U, 20U}) {
            SCOPED_TRACE(std::to_string(factors.GetDesignFactorCount()) + " factors, " +
                         std::to_string(legal[i]) + " runs");
            options.SetRuns(legal[i]);
            const auto design = Builder().Build(factors, options);
            ASSERT_NE(design, nullptr);
            EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), static_cast<int>(legal[i]));
        }
    }
}

TEST(DOptimalBuilder, DefaultRunsAreTermsAndDegreesOfFreedom) {
    const auto runs = [](const Factors& factors, EObjective::Type objective) {
        return Builder().GetDefaultRuns(factors, objective);
    };
    const TestFactors four = TestFactors().Quantitatives(4);
    EXPECT_EQ(runs(four, EObjective::Screening), 11U + 3U);
    EXPECT_EQ(runs(four, EObjective::Optimization), 15U + 5U);
    EXPECT_EQ(runs(four, EObjective::RobustnessVerification), 5U + 1U);
    EXPECT_EQ(runs(four, EObjective::SystemCharacterization), 15U + 3U);
    EXPECT_EQ(runs(Blend(4), EObjective::Optimization), 10U + 5U);
    EXPECT_EQ(runs(TestFactors().Quantitatives(8), EObjective::Screening), 9U + 3U);
}

TEST(DOptimalBuilder, DefaultRunsKeepTheLimitAndRoomForCentrePoints) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Request(factors, EObjective::Optimization, EModel::Quadratic);
    const auto under = [&](unsigned limit) {
        options.SetMaxRuns(limit);
        return Builder().GetDefaultRuns(factors, options);
    };
    EXPECT_EQ(under(0), 20U);
    EXPECT_EQ(under(23), 20U);
    EXPECT_EQ(under(22), 19U);  // three are left
    EXPECT_EQ(under(18), 16U);  // no more than the fewest runs for the model leave
    EXPECT_EQ(under(12), 12U);
    // Centre points have no level in a qualitative factor.
    const TestFactors level = TestFactors().Quantitatives(2).Qualitative(2);
    options = Request(level, EObjective::Screening, EModel::Linear);
    options.SetMaxRuns(7);
    EXPECT_EQ(Builder().GetDefaultRuns(level, options), 7U);
}

TEST(DOptimalBuilder, DefaultRunsWithoutAModelFollowTheObjective) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::None);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 6U + 7U);
    options.SetObjective(EObjective::Optimization);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 9U + 7U);
    options.SetObjective(EObjective::SplitObjective);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 6U + 7U);
}

// --- Models -----------------------------------------------------------------------------------

TEST(DOptimalBuilder, ScreeningAffordsInteractionsOfFewFactors) {
    const auto model = [](const Factors& factors, unsigned maxRuns) {
        return Builder().GetDefaultProcessModel(factors, EObjective::Screening, maxRuns);
    };
    EXPECT_EQ(model(TestFactors().Quantitatives(6), 28), EModel::Interaction);
    EXPECT_EQ(model(TestFactors().Quantitatives(6), 27), EModel::Linear);
    EXPECT_EQ(model(TestFactors().Quantitatives(7), 12000), EModel::Linear);
    EXPECT_EQ(model(TestFactors().Quantitatives(4), 15), EModel::Interaction);
    EXPECT_EQ(model(TestFactors().Quantitatives(4), 14), EModel::Linear);
    EXPECT_EQ(model(Blend(3).Quantitatives(2), 16), EModel::Interaction);
    EXPECT_EQ(model(Blend(3).Quantitatives(2), 15), EModel::Linear);
    EXPECT_EQ(model(Blend(5).Quantitatives(5), 0), EModel::Interaction);
    EXPECT_EQ(model(Blend(5).Quantitatives(6), 12000), EModel::Linear);
    EXPECT_EQ(model(Blend(8).Quantitatives(5), 12000), EModel::Linear);
}

TEST(DOptimalBuilder, OtherObjectivesHaveTheirModels) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const auto model = [&](int objective, unsigned maxRuns = 12000) {
        return Builder().GetDefaultProcessModel(
            factors, static_cast<EObjective::Type>(objective), maxRuns);
    };
    EXPECT_EQ(model(0), EModel::None);
    EXPECT_EQ(model(2), EModel::Quadratic);
    EXPECT_EQ(model(3, 13), EModel::Interaction);
    EXPECT_EQ(model(3, 12), EModel::Linear);
    EXPECT_EQ(model(4), EModel::Linear);
    EXPECT_EQ(model(5), EModel::Quadratic);
    EXPECT_EQ(model(6), EModel::None);
    EXPECT_EQ(Builder().GetDefaultProcessModel(
                  TestFactors().Quantitatives(9), EObjective::SplitObjective, 12000),
              EModel::Linear);
}

TEST(DOptimalBuilder, MixtureModelsFollowTheObjective) {
    const auto model = [](const Factors& factors, EObjective::Type objective, unsigned maxRuns) {
        return Builder().GetDefaultMixtureModel(factors, objective, maxRuns);
    };
    EXPECT_EQ(model(TestFactors().Quantitatives(3), EObjective::Optimization, 12000), EModel::None);
    EXPECT_EQ(model(Blend(3), EObjective::Screening, 12000), EModel::Linear);
    EXPECT_EQ(model(Blend(3), EObjective::Optimization, 12000), EModel::Quadratic);
    EXPECT_EQ(model(Blend(4), EObjective::SplitObjective, 14), EModel::Quadratic);
    EXPECT_EQ(model(Blend(4), EObjective::SplitObjective, 13), EModel::Linear);
    EXPECT_EQ(model(Blend(5), EObjective::SplitObjective, 12000), EModel::Linear);
}

TEST(DOptimalBuilder, ProcessAndMixtureInteractByDefaultWhereTheModelHasInteractions) {
    const TestFactors crossed = Blend(3).Quantitatives(1);
    const auto interact =
        [](const Factors& factors, EObjective::Type objective, EModel::Type model) {
            return Builder().IsPMInteractionDefault(factors, Request(factors, objective, model));
        };
    EXPECT_TRUE(interact(crossed, EObjective::Screening, EModel::Interaction));
    EXPECT_FALSE(interact(crossed, EObjective::Screening, EModel::Linear));
    EXPECT_TRUE(interact(crossed, EObjective::Optimization, EModel::Quadratic));
    EXPECT_FALSE(interact(crossed, EObjective::RobustnessVerification, EModel::Linear));
    EXPECT_FALSE(interact(Blend(3), EObjective::Optimization, EModel::Quadratic));
    EXPECT_FALSE(
        interact(TestFactors().Quantitatives(2), EObjective::Optimization, EModel::Quadratic));
}

TEST(DOptimalBuilder, LegalBlocksReachNineUnlessFactorsFillTheSearch) {
    const auto blocks = [](const Factors& factors) {
        return Builder().GetLegalBlocks(factors, DesignOptions(Builder(), factors), false);
    };
    EXPECT_THAT(blocks(TestFactors().Quantitatives(3)),
                ::testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT(blocks(TestFactors().Quantitatives(30)), ::testing::ElementsAre(1, 2, 3));
    EXPECT_THAT(blocks(Blend(3).Quantitatives(9)), ::testing::ElementsAre(1));
}

TEST(DOptimalBuilder, MixedFactorialComesFirstWhereItIsTheSmaller) {
    const auto ffm = AllDesigns::GetDesignBuilder(EDesign::FFM, "");
    // 6 runs against 2 + 2 + 1 terms and 3 degrees of freedom; 24 against fewer.
    EXPECT_EQ(ffm->GetPriority(TestFactors().Qualitative(3).Quantitatives(1)), 1);
    EXPECT_EQ(ffm->GetPriority(TestFactors().Qualitative(3).Quantitatives(3)), 25);
}

TEST(DOptimalBuilder, BlocksOfAMixtureCountAsProcess) {
    const TestFactors blend = Blend(3);
    DesignOptions options = Request(blend, EObjective::Optimization, EModel::Quadratic);
    EXPECT_FALSE(Builder().IsPMInteractionDefault(blend, options));
    options.SetBlocks(2);
    EXPECT_TRUE(Builder().IsPMInteractionDefault(blend, options));
}

TEST(DOptimalBuilder, LegalRunsEndAtTheMostFinishedRuns) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = Request(factors, EObjective::Screening, EModel::Linear);
    options.SetMaxRuns(4'000'000'000U);
    options.SetCenterPoints(3);
    options.SetReplicates(9);
    EXPECT_EQ(Builder().GetLegalRuns(factors, options).back(), 100'000U - 3);
}

TEST(DOptimalBuilder, ComponentWithoutSettingsHasNoRange) {
    const TestFactors factors = TestFactors()
                                    .Other(CEType::Formulation, {}, 0)
                                    .Formulation(0, 0.5F)
                                    .Formulation(0, 0.5F)
                                    .Formulation(0, 0.5F);
    DesignOptions options;
    const auto family = std::make_shared<D_OptimalOptions>();
    family->SetModel({{}, {0}, {1}, {2}, {3}});
    options.SetDesignSpecificOptions(family);
    EXPECT_EQ(Builder().MinimumRuns(factors, options), 5U);
}

}  // namespace
