#include "designs/stability/J2Builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "designs/stability/J2Options.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

const J2Builder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::J2, "");
    return dynamic_cast<const J2Builder&>(*builder);
}

DesignOptions Request(const Factors& factors, EObjective::Type objective) {
    const EModel::Type model = Builder().GetDefaultModel(factors, objective);
    return {Builder(), factors, objective, model, EModel::None, 12000};
}

D_OptimalOptions& FamilyOf(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

TestFactors Mixed() {
    return TestFactors().MultilevelOf(3).Qualitative(4).Quantitatives(3);
}

TEST(J2Builder, StandsBetweenLevelsAndDefinitiveScreening) {
    const auto& builders = EDesign::GetClassicDesigns();
    for (std::size_t i = 1; i + 1 < builders.size(); ++i) {
        if (builders[i]->IsDesign() == EDesign::J2) {
            EXPECT_EQ(builders[i - 1]->IsDesign(), EDesign::Levels);
            EXPECT_EQ(builders[i + 1]->IsDesign(), EDesign::DefinitiveScreening);
            return;
        }
    }
    ADD_FAILURE() << "not registered";
}

TEST(J2Builder, HasItsTexts) {
    EXPECT_EQ(Builder().GetShortString(), "J2");
    EXPECT_EQ(Builder().GetDisplayName(), "Reduced Combinatorial");
    EXPECT_EQ(Builder().GetDescription(),
              "Generated from a strict combinatorial perspective in order to create a reduced "
              "design with a balanced distribution of all factor settings. The algorithm selecting "
              "the points treats multilevel and qualitative factors equally.");
}

TEST(J2Builder, DefaultModelFollowsObjectiveAndFactorCount) {
    const auto model = [](const Factors& factors, EObjective::Type objective) {
        return Builder().GetDefaultModel(factors, objective);
    };
    const auto four = TestFactors().MultilevelOf(3).Quantitatives(3);
    const auto five = TestFactors().MultilevelOf(3).Quantitatives(4);
    EXPECT_EQ(model(four, EObjective::Screening), EModel::Interaction);
    EXPECT_EQ(model(five, EObjective::Screening), EModel::Linear);
    // A qualitative factor of 4 levels takes 3 of the expanded ones.
    EXPECT_EQ(model(TestFactors().Qualitative(4).Quantitatives(2), EObjective::Screening),
              EModel::Linear);
    EXPECT_EQ(model(five, EObjective::Optimization), EModel::Quadratic);
    EXPECT_EQ(model(five, EObjective::SystemCharacterization), EModel::Quadratic);
    EXPECT_EQ(model(four, EObjective::RobustnessVerification), EModel::Linear);
    EXPECT_EQ(model(TestFactors().Formulation().Formulation().Formulation(), EObjective::Screening),
              EModel::Linear);
}

TEST(J2Builder, MinimumRunsAreTheColumnsOfTheModelAndOneMore) {
    // 1 + 3 + 3 columns of the main effects and the constant.
    const auto factors = Mixed();
    EXPECT_EQ(Builder().MinimumRuns(factors, Request(factors, EObjective::Screening)), 9U);
    // Interactions of 3 Quantitative and 1 Multilevel factor: 6 more columns than 1 + 4.
    const auto four = TestFactors().MultilevelOf(3).Quantitatives(3);
    EXPECT_EQ(Builder().MinimumRuns(four, Request(four, EObjective::Screening)), 12U);
}

TEST(J2Builder, MinimumRunsAreTheSameWithoutFamilyOptions) {
    for (const auto& factors : {Mixed(), TestFactors().MultilevelOf(3).Quantitatives(3)}) {
        for (const auto objective : {EObjective::Screening, EObjective::Optimization}) {
            DesignOptions options = Request(factors, objective);
            const unsigned with = Builder().MinimumRuns(factors, options);
            options.SetDesignSpecificOptions(nullptr);
            EXPECT_EQ(Builder().MinimumRuns(factors, options), with) << objective;
            // Model 0 stands for the objective's.
            options.SetModel(EModel::None);
            EXPECT_EQ(Builder().MinimumRuns(factors, options), with) << objective;
        }
    }
}

TEST(J2Builder, MinimumRunsReachTheLevelsOfEveryMultilevelFactor) {
    const auto factors = TestFactors().MultilevelOf(40).Qualitative(3);
    EXPECT_EQ(Builder().MinimumRuns(factors, Request(factors, EObjective::Screening)), 40U);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, EObjective::Screening), 42U);
}

TEST(J2Builder, MinimumRunsFollowAnExplicitModel) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    FamilyOf(options).SetModel({{}, {0}, {1}, {0, 1}});
    EXPECT_EQ(Builder().MinimumRuns(factors, options), 1U + 1 + 1 + 3 + 3);
}

// The index behind the last factor is the block, which has no column of its own here.
TEST(J2Builder, TermsOfFactorsThatDoNotExistAreRefused) {
    const auto factors = Mixed();
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    DesignOptions options = Request(factors, EObjective::Screening);
    for (const int factor : {-1, count + 1, std::numeric_limits<int>::min(), 1'000'000}) {
        FamilyOf(options).SetModel({{}, {0}, {1, factor}});
        EXPECT_THROW((void)Builder().MinimumRuns(factors, options), InvalidOperationException);
        EXPECT_THROW((void)Builder().IsValid(factors, options), InvalidOperationException);
    }
    FamilyOf(options).SetModel({{}, {0}, {count}});
    EXPECT_NO_THROW((void)Builder().MinimumRuns(factors, options));
}

TEST(J2Builder, BlocksCountAsTheirCodingColumns) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    const unsigned once = Builder().MinimumRuns(factors, options);
    options.SetBlocks(3);
    EXPECT_EQ(Builder().MinimumRuns(factors, options), once + 2);
    EXPECT_THAT(Builder().GetLegalBlocks(factors, options, false), testing::ElementsAre(1));
}

TEST(J2Builder, DefaultRunsLeaveDegreesOfFreedom) {
    const auto factors = Mixed();
    EXPECT_EQ(Builder().GetDefaultRuns(factors, EObjective::Screening), 9U + 2);
    const DesignOptions options = Request(factors, EObjective::RobustnessVerification);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 9U);
}

TEST(J2Builder, LegalRunsEndAt255) {
    const auto factors = TestFactors().MultilevelOf(10).Quantitative();
    const auto legal = Builder().GetLegalRuns(factors, Request(factors, EObjective::Screening));
    EXPECT_EQ(legal.front(), 10U);
    EXPECT_EQ(legal.back(), 255U);
    EXPECT_EQ(legal.size(), 246U);
}

TEST(J2Builder, LegalRunsSpanTwentyFiveCountsWhereTheMinimumIsLarge) {
    for (const auto& [levels, last] : {std::pair{231U, 255U}, {232U, 256U}, {240U, 264U}}) {
        const auto factors = TestFactors().MultilevelOf(levels).Quantitative();
        const auto legal = Builder().GetLegalRuns(factors, Request(factors, EObjective::Screening));
        EXPECT_EQ(legal.front(), levels);
        EXPECT_EQ(legal.back(), last) << levels;
    }
}

TEST(J2Builder, IsProposedForManyCombinationsOfAMultilevelFactor) {
    const auto priority = [](const Factors& factors) {
        return int{Builder().GetPriority(factors)};
    };
    EXPECT_EQ(priority(TestFactors().MultilevelOf(3).Quantitatives(3)), 4);  // exactly 24
    EXPECT_EQ(priority(TestFactors().MultilevelOf(5).Quantitatives(2)), 27);
    EXPECT_EQ(priority(TestFactors().MultilevelOf(3).Qualitative(8)), 4);
    EXPECT_EQ(priority(TestFactors().Qualitative(8).Qualitative(8)), 27);
    EXPECT_EQ(priority(TestFactors().MultilevelOf(2).Quantitatives(9)), 27);
    EXPECT_EQ(priority(TestFactors()), 27);
    EXPECT_EQ(priority(TestFactors().MultilevelOf(3).Quantitatives(100)), 4);
    EXPECT_EQ(priority(TestFactors().MultilevelOf(30).Other(CEType::Time, {}, 0)), 27);
}

TEST(J2Builder, ProcessFactorsWithThreeLevelsAreValid) {
    for (const auto& factors : {Mixed(), TestFactors().Qualitative(3)}) {
        EXPECT_TRUE(Builder().IsValid(factors, Request(factors, EObjective::Screening)));
        EXPECT_TRUE(Builder().IsValid(factors, Request(factors, EObjective::Optimization)));
    }
}

TEST(J2Builder, FactorsOfTwoLevelsOnlyAreRefused) {
    for (const auto& factors :
         {TestFactors().Quantitatives(5), TestFactors().MultilevelOf(2).Qualitative(2)}) {
        EXPECT_FALSE(Builder().IsValid(factors, Request(factors, EObjective::Screening)));
    }
}

TEST(J2Builder, AtMost32ExpandedFactorsAreValid) {
    const auto most = TestFactors().MultilevelOf(3).Quantitatives(31);
    EXPECT_TRUE(Builder().IsValid(most, Request(most, EObjective::Screening)));
    const auto more = TestFactors().MultilevelOf(3).Quantitatives(32);
    EXPECT_FALSE(Builder().IsValid(more, Request(more, EObjective::Screening)));
}

TEST(J2Builder, MixturesAreRefused) {
    for (const auto& factors :
         {TestFactors().Formulation().Formulation().Formulation(),
          TestFactors().MultilevelOf(3).Formulation().Formulation().Formulation(),
          TestFactors().MultilevelOf(3).Formulation(0, 0.2F).Formulation(0, 0.2F).WithFiller(
              false)}) {
        EXPECT_FALSE(Builder().IsValid(factors, Request(factors, EObjective::Screening)));
    }
}

TEST(J2Builder, TooFewRunsAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    options.SetRuns(9);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetRuns(8);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    EXPECT_EQ(Builder().Build(factors, options), nullptr);
}

TEST(J2Builder, ARunLimitBelowTheMinimumIsRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    options.SetMaxRuns(8);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    // 0 is no limit, and a limit may lie below the runs asked for.
    options.SetMaxRuns(0);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetMaxRuns(9);
    EXPECT_TRUE(Builder().IsValid(factors, options));
}

TEST(J2Builder, OtherModelsThanTheDefaultAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    options.SetRuns(200);
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(J2Builder, ConstraintsAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, EObjective::Screening);
    NCDOE::Constraint constraint;
    constraint.terms = {{2, 1.0}};
    FamilyOf(options).SetConstraints(NCDOE::Constraints({constraint}), factors);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(J2Builder, DefaultOptionsRepeatTheSearchTenTimesAtOneRunCount) {
    const auto factors = Mixed();
    const DesignOptions options(Builder(), factors);
    const auto* family = dynamic_cast<const J2Options*>(options.GetDesignSpecificOptions());
    ASSERT_NE(family, nullptr);
    EXPECT_EQ(family->GetRepetitions(), 10);
    EXPECT_EQ(family->GetRunRange(), 0);
    EXPECT_EQ(family->GetLevels(), 2);
    EXPECT_EQ(options.GetReplicatedRuns(), 3U);
    EXPECT_EQ(options.GetCenterPoints(), 0U);
    EXPECT_EQ(Builder().GetRecommendedReplicatedRuns(), 3U);
}

TEST(J2Builder, IsNoPartOfAPlate) {
    const auto factors = Mixed();
    const DesignOptions options = Request(factors, EObjective::Screening);
    EXPECT_FALSE(Builder().IsREDMUPRecommended(factors, options));
    EXPECT_FALSE(Builder().IsValid(factors, options, false, true));
    EXPECT_FALSE(Builder().IsCenterPointsAllowed());
}

}  // namespace
