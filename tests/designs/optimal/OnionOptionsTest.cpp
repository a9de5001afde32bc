#include "designs/optimal/OnionOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
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

std::vector<int> RunsOf(const OnionOptions& options) {
    std::vector<int> runs;
    for (const LayerOption& layer : options.GetLayers()) {
        runs.push_back(layer.Runs);
    }
    return runs;
}

std::string ExceptionText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

// --- Layers -----------------------------------------------------------------------------------

TEST(OnionOptions, DefaultLayersAreThoseOfTheBuilder) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(5, 5, 7));
    EXPECT_EQ(FamilyOf(options).GetTotalRuns(), 17);
}

TEST(OnionOptions, LayersAreEqualSharesWithLinearModelsInside) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, EModel::Quadratic);
    FamilyOf(options).SetLayers(4, Builder(), factors, options);
    const std::vector<LayerOption> expected{{0.25F, 5, 1, EModel::Linear, {}},
                                            {0.5F, 5, 1, EModel::Linear, {}},
                                            {0.75F, 5, 1, EModel::Linear, {}},
                                            {1.0F, 13, 1, EModel::Quadratic, {}}};
    EXPECT_EQ(FamilyOf(options).GetLayers(), expected);
}

TEST(OnionOptions, OneLayerHasTheWholeModel) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetLayers(1, Builder(), factors, options);
    EXPECT_EQ(FamilyOf(options).GetLayers(),
              (std::vector<LayerOption>{{1.0F, 7, 1, EModel::Linear, {}}}));
}

TEST(OnionOptions, IllegalNumbersOfLayersAreRefusedAndChangeNothing) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    const auto before = FamilyOf(options).GetLayers();
    for (const int layers : {0, -1, INT_MIN, OnionOptions::cMaxLayers + 1, INT_MAX}) {
        EXPECT_EQ(ExceptionText(
                      [&] { FamilyOf(options).SetLayers(layers, Builder(), factors, options); }),
                  "Illegal number of layers")
            << layers;
        EXPECT_EQ(FamilyOf(options).GetLayers(), before);
    }
}

TEST(OnionOptions, NewLayersForgetExplicitTerms) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options).GetLayer(1).OptModels = {{}, {0}};
    FamilyOf(options).SetLayers(3, Builder(), factors, options);
    EXPECT_TRUE(FamilyOf(options).GetLayer(1).OptModels.empty());
}

TEST(OnionOptions, TooFewCandidatesGiveNoLayers) {
    const auto factors = TestFactors().Quantitatives(2);
    const DesignOptions options = WithScores(factors, EModel::Linear, 5);
    EXPECT_EQ(OnionOptions(Builder(), factors, options).GetLayerCount(), 0);
    EXPECT_EQ(
        OnionOptions(Builder(), factors, WithScores(factors, EModel::Linear, 20)).GetLayerCount(),
        2);
}

TEST(OnionOptions, LayersCountFromOne) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    const OnionOptions& family = FamilyOf(options);
    EXPECT_EQ(family.GetLayer(3).Runs, 7);
    EXPECT_THROW((void)family.GetLayer(0), InvalidOperationException);
    EXPECT_THROW((void)family.GetLayer(4), InvalidOperationException);
}

// --- Total runs -------------------------------------------------------------------------------

TEST(OnionOptions, ThePresentTotalChangesNothing) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    // Below the bounds, and yet left alone.
    FamilyOf(options).GetLayer(1).Runs = 1;
    EXPECT_TRUE(FamilyOf(options).SetTotalRuns(13, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(1, 5, 7));
}

TEST(OnionOptions, ADifferenceIsSpreadWithTheRestInTheLastLayer) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    EXPECT_TRUE(FamilyOf(options).SetTotalRuns(17 + 8, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(7, 7, 11));
}

TEST(OnionOptions, WhatTheLastLayerCannotHoldGoesToTheOneBefore) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    // An even share of 12 would bring the last layer to 19, its bound; the rest of 2 goes inwards.
    EXPECT_TRUE(FamilyOf(options).SetTotalRuns(17 + 38, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(17, 19, 19));
}

TEST(OnionOptions, FewerRunsStopAtThoseOfTheModels) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    EXPECT_TRUE(FamilyOf(options).SetTotalRuns(15, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(5, 5, 5));
    EXPECT_FALSE(FamilyOf(options).SetTotalRuns(14, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(5, 5, 5));
    EXPECT_FALSE(FamilyOf(options).SetTotalRuns(INT_MIN, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(5, 5, 5));
}

TEST(OnionOptions, TooManyRunsFillTheLayers) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    EXPECT_FALSE(FamilyOf(options).SetTotalRuns(INT_MAX, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(19, 19, 19));
}

TEST(OnionOptions, ExplicitTermsCountInsteadOfTheModels) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    // 6 columns with the constant, which the list does not name.
    FamilyOf(options).GetLayer(2).OptModels = {{0}, {1}, {2}, {0, 1}, {0, 2}};
    EXPECT_FALSE(FamilyOf(options).SetTotalRuns(0, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ElementsAre(5, 7, 5));
}

TEST(OnionOptions, WhereCandidatesAreTooFewTheTermsWin) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = WithScores(factors, EModel::Linear, 33);
    FamilyOf(options).SetLayers(8, Builder(), factors, options);
    ASSERT_LT(Builder().GetMaximumRunsPerLayer(options, 4, 1), 5);
    EXPECT_FALSE(FamilyOf(options).SetTotalRuns(1, factors, options));
    EXPECT_THAT(RunsOf(FamilyOf(options)), ::testing::Each(5));
}

TEST(OnionOptions, WithoutLayersThereAreNoRuns) {
    OnionOptions options;
    const auto factors = TestFactors().Quantitatives(3);
    EXPECT_TRUE(options.SetTotalRuns(0, factors, DesignOptions()));
    EXPECT_FALSE(options.SetTotalRuns(5, factors, DesignOptions()));
}

// Every total, from several starts, with and without known candidates: what can be reached is
// reached, and each layer stays within its bounds.
TEST(OnionOptions, EveryTotalWithinTheBoundsIsReached) {
    for (const int n : {2, 3, 5}) {
        const auto factors = TestFactors().Quantitatives(n);
        for (const EModel::Type model : {EModel::Linear, EModel::Interaction, EModel::Quadratic}) {
            for (const int candidates : {0, 150, 301}) {
                for (int layers = 1; layers <= 6; ++layers) {
                    DesignOptions options = WithScores(factors, model, candidates);
                    OnionOptions& family = FamilyOf(options);
                    family.SetLayers(layers, Builder(), factors, options);
                    int low = 0;
                    int high = 0;
                    std::vector<std::pair<int, int>> bounds;
                    for (int layer = 1; layer <= layers; ++layer) {
                        const int terms =
                            OnionBuilder::GetDefaultNoModelTerms(family.GetLayer(layer).Model, n);
                        const int most = Builder().GetMaximumRunsPerLayer(options, terms, layer);
                        bounds.emplace_back(terms + 1, std::max(most, terms + 1));
                        low += bounds.back().first;
                        high += bounds.back().second;
                    }
                    for (int runs = low - 4; runs <= high + 4; ++runs) {
                        if (runs % 7 == 0) {
                            family.SetLayers(layers, Builder(), factors, options);
                        }
                        const int before = family.GetTotalRuns();
                        const bool reached = family.SetTotalRuns(runs, factors, options);
                        ASSERT_EQ(reached, runs == before || (runs >= low && runs <= high))
                            << runs << " runs, " << layers << " layers, " << n << " factors";
                        ASSERT_EQ(reached, family.GetTotalRuns() == runs);
                        for (int layer = 1; layer <= layers && runs != before; ++layer) {
                            const auto& [least, most] = bounds[static_cast<std::size_t>(layer) - 1];
                            ASSERT_GE(family.GetLayer(layer).Runs, least);
                            ASSERT_LE(family.GetLayer(layer).Runs, most);
                        }
                    }
                }
            }
        }
    }
}

TEST(OnionOptions, EveryLegalTotalOfALinearModelIsReached) {
    const auto factors = TestFactors().Quantitatives(3);
    for (const int candidates : {0, 41, 60, 200}) {
        DesignOptions options = WithScores(factors, EModel::Linear, candidates);
        for (const unsigned runs : Builder().GetLegalRuns(factors, options)) {
            EXPECT_TRUE(FamilyOf(options).SetTotalRuns(static_cast<int>(runs), factors, options))
                << runs << " runs, " << candidates << " candidates";
        }
    }
}

// --- Persistence ------------------------------------------------------------------------------

OnionOptions Unusual() {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, EModel::Quadratic);
    OnionOptions family = FamilyOf(options);
    family.SetLayers(2, Builder(), factors, options);
    family.GetLayer(1) = {0.4F, 8, 3, EModel::Interaction, {{}, {0}, {1}, {0, 1}, {2, 2}}};
    const std::vector<int> starts{1, 5};
    const std::vector<int> numbers{4, 6};
    CandidateSet set;
    set.SetCandidateSet(Scored(10, 0, 3), {1, 2, 3}, &starts, &numbers);
    family.SetCandidateSet(set);
    return family;
}

TEST(OnionOptions, LayersAndCandidatesAreReadBack) {
    const OnionOptions saved = Unusual();
    ConfigurationStore store;
    saved.Save(store.OpenRoot().get());
    OnionOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLayers(), saved.GetLayers());
    EXPECT_EQ(loaded.GetCandidateSet().GetMatrix(), saved.GetCandidateSet().GetMatrix());
    EXPECT_EQ(loaded.GetCandidateSet().GetStartPoints(), saved.GetCandidateSet().GetStartPoints());
    EXPECT_EQ(loaded.GetCandidateSet().GetNumbers(), saved.GetCandidateSet().GetNumbers());
    EXPECT_EQ(loaded.GetCandidateSet().GetNumData(), saved.GetCandidateSet().GetNumData());
}

TEST(OnionOptions, CandidatesOfEarlierOptionsDoNotStayBehind) {
    OnionOptions saved = Unusual();
    saved.SetCandidateSet(CandidateSet());
    ConfigurationStore store;
    saved.Save(store.OpenRoot().get());
    OnionOptions loaded = Unusual();
    ASSERT_GT(loaded.GetCandidateSet().SizeRows(), 0);
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetCandidateSet().SizeRows(), 0);
}

TEST(OnionOptions, KeysAreThoseOfTheFormat) {
    ConfigurationStore store;
    Unusual().Save(store.OpenRoot().get());
    const auto layers = store.OpenRoot()
                            ->OpenSection("DesignSpecificOptions")
                            ->OpenSection("OnionOptions")
                            ->OpenSection("Layers");
    ASSERT_NE(layers, nullptr);
    EXPECT_EQ(layers->SectionCount("LayersOption"), 2);
    const auto first = layers->OpenSection("LayersOption", 1);
    double ratio = 0;
    int runs = 0;
    int repetitions = 0;
    int model = 0;
    EXPECT_TRUE(first->ReadDouble("Ratio", &ratio));
    EXPECT_TRUE(first->ReadInt("Runs", &runs));
    EXPECT_TRUE(first->ReadInt("Repetitions", &repetitions));
    EXPECT_TRUE(first->ReadInt("Model", &model));
    EXPECT_FLOAT_EQ(static_cast<float>(ratio), 0.4F);
    EXPECT_EQ(runs, 8);
    EXPECT_EQ(repetitions, 3);
    EXPECT_EQ(model, 2);
    EXPECT_EQ(first->SectionCount("OptModels"), 5);
    std::vector<int> term;
    EXPECT_TRUE(first->OpenSection("OptModels", 4)->ReadIntVector("OptModel", &term));
    EXPECT_THAT(term, ElementsAre(0, 1));
}

TEST(OnionOptions, ALongerListSavedBeforeDoesNotComeBack) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    ConfigurationStore store;
    FamilyOf(options).SetLayers(5, Builder(), factors, options);
    FamilyOf(options).Save(store.OpenRoot().get());
    FamilyOf(options).SetLayers(2, Builder(), factors, options);
    FamilyOf(options).Save(store.OpenRoot().get());
    OnionOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLayerCount(), 2);
}

TEST(OnionOptions, MissingSectionsChangeNothing) {
    OnionOptions options = Unusual();
    const auto before = options.GetLayers();
    ConfigurationStore store;
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("DesignSpecificOptions");
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    store.OpenRoot()
        ->OpenOrCreateSection("DesignSpecificOptions")
        ->OpenOrCreateSection("OnionOptions");
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    EXPECT_EQ(options.GetLayers(), before);
}

TEST(OnionOptions, MissingKeysAndUnknownModelsGiveDefaults) {
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("DesignSpecificOptions")
        ->OpenOrCreateSection("OnionOptions")
        ->OpenOrCreateSection("Layers")
        ->OpenOrCreateSection("LayersOption", 1)
        ->WriteInt("Model", 17);
    OnionOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLayers(), std::vector<LayerOption>{LayerOption()});
}

TEST(OnionOptions, AreReadBackWithTheOptionsOfTheDesign) {
    const auto factors = TestFactors().Quantitatives(3);
    DesignOptions options = Linear(factors);
    FamilyOf(options) = Unusual();
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    DesignOptions loaded(Builder(), factors);
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(FamilyOf(loaded).GetLayers(), Unusual().GetLayers());
}

TEST(OnionOptions, HaveNoJsonForm) {
    EXPECT_EQ(ExceptionText([] { (void)OnionOptions().ToJson(); }),
              "This design does not support being saved as json.");
}

}  // namespace
