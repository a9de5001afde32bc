#include "designs/optimal/OnionBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "designs/optimal/OnionDesign.h"
#include "foundation/utl/Exceptions.h"
#include "frame/NCDesign.h"
#include "tests/designs/optimal/OnionCases.h"

namespace {

using OnionCases::AtLeast;
using OnionCases::Builder;
using OnionCases::FamilyOf;
using OnionCases::Linear;
using OnionCases::Request;
using OnionCases::Scored;
using OnionCases::WithScores;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr EObjective::Type cObjectives[] = {EObjective::None,
                                            EObjective::Screening,
                                            EObjective::Optimization,
                                            EObjective::SplitObjective,
                                            EObjective::RobustnessVerification,
                                            EObjective::SystemCharacterization};

// --- Models and terms -------------------------------------------------------------------------

TEST(OnionBuilder, ModelFollowsTheObjective) {
    const TestFactors few = TestFactors().Quantitatives(5);
    const TestFactors many = TestFactors().Quantitatives(6);
    std::vector<int> ofFew;
    std::vector<int> ofMany;
    for (const EObjective::Type objective : cObjectives) {
        ofFew.push_back(Builder().GetDefaultModel(few, objective));
        ofMany.push_back(Builder().GetDefaultModel(many, objective));
    }
    EXPECT_THAT(ofFew, ElementsAre(0, 2, 3, 0, 1, 3));
    EXPECT_THAT(ofMany, ElementsAre(0, 1, 3, 0, 1, 3));
}

TEST(OnionBuilder, TermsAreThoseOfTheFullModelOfQuantitativeFactors) {
    for (int n = 2; n <= 32; ++n) {
        const auto factors = TestFactors().Quantitatives(n);
        for (const EModel::Type model : {EModel::Linear, EModel::Interaction, EModel::Quadratic}) {
            DesignOptions options;
            options.SetModel(model);
            const auto terms = D_OptimalOptions().GetModel(EDesign::DOpt, factors, options);
            EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(model, n),
                      static_cast<int>(terms.size()))
                << n << " factors, model " << model;
        }
    }
}

TEST(OnionBuilder, OtherModelsHaveNoTerms) {
    for (const EModel::Type model : {EModel::None, EModel::SpecialCubic, EModel::Cubic}) {
        EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(model, 5), 0) << model;
    }
}

TEST(OnionBuilder, TermsBeyondAnIntAreCutThere) {
    constexpr int most = std::numeric_limits<int>::max();
    for (const int n : {65'536, 1'000'000, most}) {
        EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(EModel::Interaction, n), most) << n;
        EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(EModel::Quadratic, n), most) << n;
    }
    EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(EModel::Linear, most), most);
    // 1 + 65,535 * 65,534 / 2 + 65,535, although the product is no int.
    EXPECT_EQ(OnionBuilder::GetDefaultNoModelTerms(EModel::Interaction, 65'535), 2'147'450'881);
}

TEST(OnionBuilder, RunsPerLayerFollowItsTerms) {
    EXPECT_EQ(Builder().GetMinimumRunsPerLayer(4), 5);
    EXPECT_EQ(Builder().GetRecommendedRunsPerLayer(4, true), 5);
    EXPECT_EQ(Builder().GetRecommendedRunsPerLayer(4, false), 7);
}

// --- Acceptable candidates --------------------------------------------------------------------

TEST(OnionBuilder, WithoutConstraintsNoCandidateCounts) {
    const auto factors = TestFactors().Quantitatives(2);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetCandidateSet(Scored(40, 3));
    EXPECT_EQ(OnionBuilder::GetNumValidScores(options), 0U);
    EXPECT_EQ(OnionBuilder::GetNumValidScores(DesignOptions()), 0U);
}

TEST(OnionBuilder, CandidatesThatKeepTheConstraintsCount) {
    const auto factors = TestFactors().Quantitatives(2);
    for (const int good : {0, 1, 2, 40}) {
        const DesignOptions options = WithScores(factors, EModel::Linear, good);
        EXPECT_EQ(OnionBuilder::GetNumValidScores(options), static_cast<unsigned>(good));
        const auto& family = *options.GetDesignSpecificOptions();
        EXPECT_EQ(OnionBuilder::GetNumValidScores(options),
                  family.GetConstraints().NumOK(family.GetCandidateSet()));
    }
}

// 0.1 + 0.9 in float is 2e-8 short of 1, and six digits of a third are 3e-7 short of it.
TEST(OnionBuilder, CandidatesOnABoundCountInSpiteOfRounding) {
    const auto factors = TestFactors().Quantitative(0, 1).Quantitative(0, 1);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetConstraints(NCDOE::Constraints({{{{0, 1}, {1, 1}}, 1, true}}), factors);
    CandidateSet set;
    set.SetCandidateSet({{0.1F, 0.9F}, {0.333333F, 0.666666F}, {0.5F, 0.499F}}, DOpt::NumData());
    FamilyOf(options).SetCandidateSet(set);
    EXPECT_EQ(OnionBuilder::GetNumValidScores(options), 2U);
}

TEST(OnionBuilder, CandidatesWithAMissingValueDoNotCount) {
    const auto factors = TestFactors().Quantitatives(2);
    DesignOptions options = WithScores(factors, EModel::Linear, 5);
    CandidateSet set = Scored(5, 0);
    set.UpdateCandidateSet(2, 1, -99);
    FamilyOf(options).SetCandidateSet(set);
    EXPECT_EQ(OnionBuilder::GetNumValidScores(options), 4U);
}

// --- Layers -----------------------------------------------------------------------------------

TEST(OnionBuilder, ThreeLayersAreUsualWhereNothingIsKnownOfTheCandidates) {
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(OnionBuilder::GetDefaultLayers(Linear(factors), 3), 3);
    EXPECT_EQ(OnionBuilder::GetDefaultLayers(WithScores(factors, EModel::Linear, 0), 3), 3);
    DesignOptions none = Linear(factors);
    none.SetModel(EModel::None);
    EXPECT_EQ(OnionBuilder::GetDefaultLayers(none, 3), 3);
}

// 2 factors: 3 terms of a linear model, 6 candidates a layer beside the centroid, and one layer
// less below 30 candidates.
TEST(OnionBuilder, CandidatesLimitTheLayers) {
    const auto factors = TestFactors().Quantitatives(2);
    const auto layers = [&](int candidates) {
        return OnionBuilder::GetDefaultLayers(WithScores(factors, EModel::Linear, candidates), 2);
    };
    EXPECT_EQ(layers(1), 0);
    EXPECT_EQ(layers(18), 0);  // 17 / 6 - 1 = 1
    EXPECT_EQ(layers(19), 2);  // 18 / 6 - 1
    EXPECT_EQ(layers(24), 2);
    EXPECT_EQ(layers(25), 3);  // 24 / 6 - 1
    EXPECT_EQ(layers(30), 3);  // 29 / 6 - 1
    EXPECT_EQ(layers(31), 3);  // 30 / 6
    EXPECT_EQ(layers(1000), 3);
}

TEST(OnionBuilder, ModelsWithoutTermsHaveNoLayersOfKnownCandidates) {
    const auto factors = TestFactors().Quantitatives(2);
    DesignOptions options = WithScores(factors, EModel::Linear, 100);
    for (const EModel::Type model : {EModel::None, EModel::Cubic}) {
        options.SetModel(model);
        EXPECT_EQ(OnionBuilder::GetDefaultLayers(options, 2), 0) << model;
    }
}

// --- Run counts -------------------------------------------------------------------------------

TEST(OnionBuilder, ThreeFactorsLinearRecommendSeventeenRuns) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Linear(factors);
    EXPECT_EQ(Builder().GetRecommendedRuns(factors, options), 17);
    EXPECT_EQ(options.GetRuns(), 17U);
    EXPECT_EQ(Builder().DefaultRuns(factors, options), 17U);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 17U);
}

TEST(OnionBuilder, RecommendedRunsAreThoseOfTheLayers) {
    for (int n = 2; n <= 12; ++n) {
        const auto factors = TestFactors().Quantitatives(n);
        for (const EObjective::Type objective : cObjectives) {
            const DesignOptions options =
                Request(factors, objective, Builder().GetDefaultModel(factors, objective));
            EXPECT_EQ(Builder().GetRecommendedRuns(factors, options),
                      dynamic_cast<const OnionOptions&>(*options.GetDesignSpecificOptions())
                          .GetTotalRuns())
                << n << " factors, objective " << objective;
            EXPECT_EQ(Builder().GetDefaultRuns(factors, objective),
                      static_cast<unsigned>(Builder().GetRecommendedRuns(factors, options)));
        }
    }
}

TEST(OnionBuilder, WithoutLayersTheDefaultNumberCounts) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options;
    options.SetModel(EModel::Linear);
    EXPECT_EQ(Builder().GetRecommendedRuns(factors, options), 17);
    EXPECT_EQ(Builder().GetMinimumRuns(factors, options), 15);
    DesignOptions tooFew = WithScores(factors, EModel::Linear, 4);
    FamilyOf(tooFew) = OnionOptions();
    FamilyOf(tooFew).SetConstraints(AtLeast(0), factors);
    FamilyOf(tooFew).SetCandidateSet(Scored(4, 0, 3));
    EXPECT_EQ(Builder().GetRecommendedRuns(factors, tooFew), 0);
    EXPECT_EQ(Builder().GetMinimumRuns(factors, tooFew), 0);
    EXPECT_THAT(Builder().GetLegalRuns(factors, tooFew), IsEmpty());
}

// 3 factors: 4, 7 and 10 terms, one run more each.
TEST(OnionBuilder, FewestRunsEstimateTheModelsOfTheLayers) {
    const auto factors = TestFactors().Quantitatives(3);
    const auto least = [&](EObjective::Type objective, EModel::Type model) {
        return Builder().GetMinimumRuns(factors, Request(factors, objective, model));
    };
    EXPECT_EQ(least(EObjective::Screening, EModel::Linear), 15);
    EXPECT_EQ(least(EObjective::Screening, EModel::None), 15);
    EXPECT_EQ(least(EObjective::Screening, EModel::Interaction), 18);
    EXPECT_EQ(least(EObjective::Optimization, EModel::Quadratic), 21);
    EXPECT_EQ(least(EObjective::SystemCharacterization, EModel::Quadratic), 21);
    EXPECT_EQ(least(EObjective::SplitObjective, EModel::Quadratic), 15);
}

// Deliberate: one layer counts as none.
TEST(OnionBuilder, FewestRunsOfOneLayerAreThoseOfTheDefaultNumber) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetLayers(1, Builder(), factors, options);
    EXPECT_EQ(Builder().GetMinimumRuns(factors, options), 15);
    EXPECT_EQ(Builder().GetRecommendedRuns(factors, options), 7);
}

TEST(OnionBuilder, MostRunsOfALayerFollowItsTermsWhereNothingIsKnownOfTheCandidates) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Linear(factors);
    for (int layer = 1; layer <= 3; ++layer) {
        EXPECT_EQ(Builder().GetMaximumRunsPerLayer(options, 4, layer), 19);
    }
}

TEST(OnionBuilder, LayersBeyondTheLastAndALoneCentroidSetNoLimit) {
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(Linear(factors), 4, 4), 12000);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(DesignOptions(), 4, 2), 12000);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(DesignOptions(), 4, 1), 19);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(WithScores(factors, EModel::Linear, 1), 4, 1),
              12000);
}

// 40 candidates beside the centroid in 3 layers: 14 each in the first two, 13 in the last; 19 runs
// would want 28.5.
TEST(OnionBuilder, TwoThirdsOfItsCandidatesLimitALayer) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options = WithScores(factors, EModel::Linear, 41);
    ASSERT_EQ(FamilyOf(const_cast<DesignOptions&>(options)).GetLayerCount(), 3);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(options, 4, 1), 9);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(options, 4, 2), 9);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(options, 4, 3), 8);
    EXPECT_EQ(Builder().GetMaximumRunsPerLayer(WithScores(factors, EModel::Linear, 1000), 4, 1),
              19);
}

TEST(OnionBuilder, LegalRunsReachFromTheFewestToThoseOfAllLayers) {
    const auto factors = TestFactors().Quantitatives(3);
    const auto legal = Builder().GetLegalRuns(factors, Linear(factors));
    std::vector<unsigned> expected(57 - 15 + 1);
    std::iota(expected.begin(), expected.end(), 15U);
    EXPECT_EQ(legal, expected);
}

// 42 candidates beside the centroid: the layers could have 10 runs each, but 42 / 1.5 is 28. Of 40
// they have 9, 9 and 8.
TEST(OnionBuilder, LegalRunsEndAtTwoThirdsOfTheCandidates) {
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Builder().GetLegalRuns(factors, WithScores(factors, EModel::Linear, 41)).back(), 26U);
    EXPECT_EQ(Builder().GetLegalRuns(factors, WithScores(factors, EModel::Linear, 43)).back(), 28U);
    EXPECT_EQ(Builder().GetLegalRuns(factors, WithScores(factors, EModel::Linear, 800)).back(),
              57U);
}

TEST(OnionBuilder, LegalRunsOfOneLayerBeginAtThoseOfTheDefaultNumber) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetLayers(1, Builder(), factors, options);
    EXPECT_THAT(Builder().GetLegalRuns(factors, options), ElementsAre(15, 16, 17, 18, 19));
}

TEST(OnionBuilder, LegalRunsEndAtTwelveThousand) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = WithScores(factors, EModel::Linear, 1);
    const auto legal = Builder().GetLegalRuns(factors, options);
    ASSERT_FALSE(legal.empty());
    EXPECT_EQ(legal.back(), 12000U);
}

TEST(OnionBuilder, WithoutAModelLegalRunsTakeTheDefaultOne) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions none = Linear(factors);
    none.SetModel(EModel::None);
    // The interaction model of 7 terms.
    EXPECT_EQ(Builder().GetLegalRuns(factors, none).back(), 66U);
}

// 17 recommended, 3 degrees of freedom to spare, 15 at least.
TEST(OnionBuilder, ARunLimitLeavesRoomForCentrePoints) {
    const auto factors = TestFactors().Quantitatives(3);
    const auto runs = [&](unsigned limit) {
        DesignOptions options = Linear(factors);
        options.SetMaxRuns(limit);
        return Builder().DefaultRuns(factors, options);
    };
    EXPECT_EQ(runs(0), 17U);
    EXPECT_EQ(runs(12000), 17U);
    EXPECT_EQ(runs(20), 17U);
    EXPECT_EQ(runs(19), 16U);
    EXPECT_EQ(runs(18), 15U);
    EXPECT_EQ(runs(17), 15U);
    EXPECT_EQ(runs(15), 15U);
    EXPECT_EQ(runs(5), 15U);
}

// --- Validity ---------------------------------------------------------------------------------

TEST(OnionBuilder, ModelsBelongToObjectives) {
    const auto factors = TestFactors().Quantitatives(3);
    std::set<std::pair<int, int>> valid;
    for (const EObjective::Type objective : cObjectives) {
        for (int model = EModel::None; model <= EModel::LinearQuadratic; ++model) {
            if (Builder().IsValid(factors,
                                  Request(factors, objective, static_cast<EModel::Type>(model)))) {
                valid.emplace(objective, model);
            }
        }
    }
    std::set<std::pair<int, int>> expected{{1, 1}, {1, 2}, {4, 1}, {4, 2}, {2, 3}, {5, 3}};
    for (int model = EModel::None; model <= EModel::LinearQuadratic; ++model) {
        expected.emplace(0, model);
        expected.emplace(3, model);
    }
    EXPECT_EQ(valid, expected);
}

TEST(OnionBuilder, TwoToThirtyTwoFactorsAreValid) {
    for (int n = 0; n <= 40; ++n) {
        const auto factors = TestFactors().Quantitatives(n);
        EXPECT_EQ(Builder().IsValid(factors, Linear(factors)), n >= 2 && n <= 32) << n;
    }
}

TEST(OnionBuilder, OnlyProcessFactorsWithoutLevelsAreValid) {
    const auto isValid = [](const TestFactors& factors) {
        return Builder().IsValid(factors, Linear(factors));
    };
    EXPECT_TRUE(isValid(TestFactors().Quantitatives(4)));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).MultilevelOf(2)));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).MultilevelOf(5)));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).Qualitative(2)));
    EXPECT_FALSE(isValid(TestFactors().Formulation().Formulation().Formulation()));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(2).Formulation().Formulation()));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(4).WithFiller(true)));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(4).WithFiller(false)));
}

TEST(OnionBuilder, TheRunLimitMustHoldOneLayerOfTheModel) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    options.SetMaxRuns(5);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetMaxRuns(4);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

// No limit is 12,000 here, and so 0 is one that nothing keeps; the default runs take it for none.
TEST(OnionBuilder, ARunLimitOfNoneIsNotValid) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    options.SetMaxRuns(0);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    EXPECT_EQ(Builder().Build(factors, options), nullptr);
    EXPECT_EQ(Builder().GetDefaultRuns(factors, options), 17U);
}

TEST(OnionBuilder, TooFewAcceptableCandidatesAreNotValid) {
    const auto factors = TestFactors().Quantitatives(2);
    for (int candidates = 0; candidates <= 60; ++candidates) {
        const DesignOptions options = WithScores(factors, EModel::Linear, candidates);
        EXPECT_EQ(Builder().IsValid(factors, options), candidates == 0 || candidates >= 19)
            << candidates;
    }
}

TEST(OnionBuilder, ModelsWithoutTermsAreNotValidForKnownCandidates) {
    const auto factors = TestFactors().Quantitatives(2);
    DesignOptions options = WithScores(factors, EModel::Linear, 100);
    options.SetObjective(EObjective::SplitObjective);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetModel(EModel::Cubic);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(OnionBuilder, IsAComputerGeneratedFamily) {
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_TRUE(Builder().IsValid(factors, Linear(factors), true, false));
    EXPECT_TRUE(Builder().IsValid(factors, Linear(factors), false, true));
}

TEST(OnionBuilder, PriorityIsThatOfTheTableUpToFortyEightColumns) {
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(1)), 29);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(48)), 29);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(49)), 24);
    EXPECT_EQ(Builder().GetPriority(TestFactors().Quantitatives(0)), 0);
}

TEST(OnionBuilder, NeedsNoCentrePoints) {
    EXPECT_EQ(Builder().GetMinimumCenterPoints(), 0U);
    EXPECT_EQ(Builder().GetDefaultCenterPoints(EObjective::Screening), 3U);
}

TEST(OnionBuilder, OptionsAreThoseOfTheFamily) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options(Builder(), factors);
    EXPECT_EQ(options.GetObjective(), EObjective::Screening);
    EXPECT_EQ(options.GetModel(), EModel::Interaction);
    EXPECT_NE(dynamic_cast<const OnionOptions*>(options.GetDesignSpecificOptions()), nullptr);
}

// --- Candidates -------------------------------------------------------------------------------

TEST(OnionBuilder, WithoutItsOptionsNoCandidatesAreGenerated) {
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(0, DesignOptions(), factors).SizeRows(), 0);
}

// Layers count from 0 here: vertices and the centroid for the linear ones, edges at their thirds as
// well for the quadratic one.
TEST(OnionBuilder, CandidatesOfALayerAreThoseOfItsModel) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Request(factors, EObjective::Optimization, EModel::Quadratic);
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(0, options, factors).SizeRows(), 8 + 1);
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(1, options, factors).SizeRows(), 8 + 1);
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(2, options, factors).SizeRows(), 8 + 24 + 1);
}

TEST(OnionBuilder, CandidatesGrowToTheRunsOfTheLayer) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).GetLayer(1).Runs = 10;
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(0, options, factors).SizeRows(), 18);
    EXPECT_EQ(OnionBuilder::GenerateCandidateset(1, options, factors).SizeRows(), 9);
}

TEST(OnionBuilder, GeneratedCandidatesKeepTheConstraints) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetConstraints(AtLeast(0.25), factors);
    const auto rows = OnionBuilder::GenerateCandidateset(0, options, factors);
    ASSERT_GT(rows.SizeRows(), 0);
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        EXPECT_GE(rows(row, 1), 0.25F) << "row " << row;
    }
}

TEST(OnionBuilder, CandidatesOfALayerThatDoesNotExistAreRefused) {
    const auto factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Linear(factors);
    EXPECT_THROW((void)OnionBuilder::GenerateCandidateset(3, options, factors),
                 InvalidOperationException);
    EXPECT_THROW((void)OnionBuilder::GenerateCandidateset(-1, options, factors),
                 InvalidOperationException);
}

// There are as many candidates as runs.
TEST(OnionBuilder, MoreCandidatesThanADesignMayHaveRunsAreRefused) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    for (const int runs : {1'000'001, std::numeric_limits<int>::max()}) {
        FamilyOf(options).GetLayer(2).Runs = runs;
        try {
            (void)OnionBuilder::GenerateCandidateset(1, options, factors);
            ADD_FAILURE() << runs;
        } catch (const Exception& error) {
            EXPECT_EQ(
                std::string(error.what()),
                "Layer 2 has " + std::to_string(runs) + " runs. It may have at most 1000000 runs.");
        }
    }
}

}  // namespace
