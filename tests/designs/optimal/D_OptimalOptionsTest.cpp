#include "designs/optimal/D_OptimalOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "designs/optimal/DOptFactorAdapter.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/CustomDesign.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

namespace {

using Model = D_OptimalOptions::Model;

/// A family that tells what it was asked for.
class AskedBuilder : public CustomDesignBuilder {
  public:
    AskedBuilder() : CustomDesignBuilder("Asked", "Asked", "") {}
    [[nodiscard]] EModel::Type GetDefaultMixtureModel(const Factors& /*factors*/,
                                                      EObjective::Type objective,
                                                      unsigned int maxRuns) const override {
        return objective == EObjective::Optimization && maxRuns == INT_MAX ? EModel::SpecialCubic
                                                                           : EModel::None;
    }
    [[nodiscard]] bool IsPMInteractionDefault(const Factors& /*factors*/,
                                              const DesignOptions& options) const override {
        return options.GetObjective() == EObjective::Optimization;
    }
};

std::string MessageOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

CandidateSet SomeCandidates() {
    CandidateSet set;
    set.SetCandidateSet({{1, 2}, {3, 4}}, {2, 0, 0});
    set.SetRowNames({"a", "b"});
    set.SetPercentages({40, 60});
    return set;
}

/// No field at its default.
D_OptimalOptions Unusual() {
    D_OptimalOptions options;
    options.SetDOptMixtureModel(EModel::LinearQuadratic);
    options.SetSelectDesignBy(EDesign::IOptimality);
    options.SetPMInteraction(true);
    options.SetUsePotentialTerms(false);
    options.SetBalanceOnFactor(3);
    options.SetOnlyAllowBalanced(true);
    options.SetUseInclusion(false);
    options.SetNewCandidateSet(false);
    options.SetRepetitions(7);
    options.SetRunRange(0);
    options.SetModel({{}, {0}, {0, 1}});
    options.SetInclusions({{5, 6}}, TestFactors().Quantitatives(2));
    options.SetCandidateSet(SomeCandidates());
    return options;
}

void ExpectSameSettings(const D_OptimalOptions& a, const D_OptimalOptions& b) {
    EXPECT_EQ(a.GetMixtureModel(), b.GetMixtureModel());
    EXPECT_EQ(a.GetPMInteraction(), b.GetPMInteraction());
    EXPECT_EQ(a.GetUsePotentialTerms(), b.GetUsePotentialTerms());
    EXPECT_EQ(a.GetBalanceOnFactor(), b.GetBalanceOnFactor());
    EXPECT_EQ(a.GetOnlyAllowBalanced(), b.GetOnlyAllowBalanced());
    EXPECT_EQ(a.GetUseInclusion(), b.GetUseInclusion());
    EXPECT_EQ(a.GetNewCandidateSet(), b.GetNewCandidateSet());
    EXPECT_EQ(a.GetRepetitions(), b.GetRepetitions());
    EXPECT_EQ(a.GetRunRange(), b.GetRunRange());
}

Model ModelOf(const D_OptimalOptions& options) {
    return options.GetModel(EDesign::DOpt, TestFactors().Quantitatives(2), DesignOptions());
}

const Model cDefaultModel{{}, {0}, {1}};

ConfigurationStore Saved(const D_OptimalOptions& options) {
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    return store;
}

D_OptimalOptions WithConstraints(const std::vector<NCDOE::Constraint>& constraints,
                                 const Factors& factors) {
    D_OptimalOptions options;
    options.SetConstraints(NCDOE::Constraints(constraints), factors);
    return options;
}

NCDataMatrix<float> EngineRows(const std::vector<NCDOE::Constraint>& constraints,
                               const Factors& factors,
                               unsigned int blocks = 1) {
    return *WithConstraints(constraints, factors)
                .GetDOptConstraints(DOptFactorAdapter(factors, blocks));
}

}  // namespace

TEST(D_OptimalOptions, TheDefaultConstructorHasItsOwnDefaults) {
    const D_OptimalOptions options;
    EXPECT_EQ(options.GetMixtureModel(), EModel::None);
    EXPECT_EQ(options.GetSelectDesignBy(), EDesign::GEfficiency);
    EXPECT_FALSE(options.GetPMInteraction());
    EXPECT_TRUE(options.GetUsePotentialTerms());
    EXPECT_EQ(options.GetBalanceOnFactor(), -1);
    EXPECT_FALSE(options.GetOnlyAllowBalanced());
    EXPECT_TRUE(options.GetUseInclusion());
    EXPECT_TRUE(options.GetNewCandidateSet());
    EXPECT_EQ(options.GetRepetitions(), 1);
    EXPECT_EQ(options.GetRunRange(), 2);
}

TEST(D_OptimalOptions, TheBuilderIsAskedForTheModels) {
    DesignOptions design;
    design.SetObjective(EObjective::Optimization);
    const D_OptimalOptions options(AskedBuilder(), TestFactors().Quantitatives(2), design);
    EXPECT_EQ(options.GetMixtureModel(), EModel::SpecialCubic);
    EXPECT_TRUE(options.GetPMInteraction());
    EXPECT_EQ(options.GetRepetitions(), 1);
}

TEST(D_OptimalOptions, TheFirstQualitativeFactorIsBalanced) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).Qualitative(2);
    EXPECT_EQ(D_OptimalOptions(AskedBuilder(), factors, DesignOptions()).GetBalanceOnFactor(), 1);
}

TEST(D_OptimalOptions, NothingIsBalancedWithoutAQualitativeFactor) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(3);
    EXPECT_EQ(D_OptimalOptions(AskedBuilder(), factors, DesignOptions()).GetBalanceOnFactor(), -1);
}

TEST(D_OptimalOptions, TheFrameSetsTheMixtureModel) {
    D_OptimalOptions options;
    DesignSpecificOptions& base = options;
    base.SetMixtureModel(EModel::Quadratic);
    EXPECT_EQ(options.GetMixtureModel(), EModel::Quadratic);
}

TEST(D_OptimalOptions, TheFirstInclusionsAreTakenAsTheyAre) {
    D_OptimalOptions options;
    options.SetInclusions({{1, 2, 3}}, TestFactors().Quantitatives(2));
    EXPECT_EQ(options.GetInclusions(), (NCDataMatrix<float>{{1, 2, 3}}));
}

TEST(D_OptimalOptions, StoredInclusionsOfAnotherWidthStay) {
    D_OptimalOptions options;
    const TestFactors factors = TestFactors().Qualitative(3);
    options.SetInclusions({{1, 2, 3}}, factors);
    EXPECT_EQ(MessageOf([&] {
                  options.SetInclusions({{1, 2}}, factors);
              }),
              "The inclusions doesn't match the number of design factors.");
    EXPECT_EQ(options.GetInclusions(), (NCDataMatrix<float>{{1, 2, 3}}));
}

TEST(D_OptimalOptions, StoredInclusionsOfTheExpandedWidthAreReplaced) {
    D_OptimalOptions options;
    const TestFactors factors = TestFactors().Qualitative(3);
    options.SetInclusions({{1, 2}}, factors);
    options.SetInclusions({{3, 4, 5}}, factors);
    EXPECT_EQ(options.GetInclusions(), (NCDataMatrix<float>{{3, 4, 5}}));
}

TEST(D_OptimalOptions, AnExplicitModelTakesThePlaceOfTheDefault) {
    D_OptimalOptions options;
    options.SetModel({{}, {1, 1}});
    EXPECT_EQ(ModelOf(options), (Model{{}, {1, 1}}));
}

TEST(D_OptimalOptions, AnEmptyModelGoesBackToTheDefault) {
    D_OptimalOptions options;
    options.SetModel({{}, {1, 1}});
    options.SetModel({});
    EXPECT_EQ(ModelOf(options), cDefaultModel);
}

TEST(D_OptimalOptions, TheDefaultModelFollowsAllThreeSettings) {
    const TestFactors factors = TestFactors().Quantitative().Formulation();
    DesignOptions design;
    design.SetModel(EModel::Linear);
    design.SetBlocks(3);
    D_OptimalOptions options;
    options.SetDOptMixtureModel(EModel::LinearQuadratic);
    options.SetPMInteraction(true);
    EXPECT_EQ(options.GetDefaultModel(EDesign::DOpt, factors, design),
              (Model{{}, {0}, {1}, {2}, {0, 1}, {1, 1}}));
}

TEST(D_OptimalOptions, TheDefaultModelKnowsTheDesign) {
    DesignOptions design;
    design.SetModel(EModel::Interaction);
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(D_OptimalOptions().GetModel(EDesign::DefinitiveScreening, factors, design),
              cDefaultModel);
}

TEST(D_OptimalConstraints, NoConstraintsGiveNoRows) {
    const NCDataMatrix<float> rows = EngineRows({}, TestFactors().Quantitatives(2));
    EXPECT_EQ(rows.SizeRows(), 0);
    EXPECT_EQ(rows.SizeColumns(), 3);
}

TEST(D_OptimalConstraints, ALowerBoundKeepsItsSigns) {
    EXPECT_EQ(EngineRows({{{{0, 1}, {1, 2}}, 3, true}}, TestFactors().Quantitatives(2)),
              (NCDataMatrix<float>{{1, 2, -3}}));
}

TEST(D_OptimalConstraints, AnUpperBoundIsNegatedWithItsConstant) {
    EXPECT_EQ(EngineRows({{{{0, 1}, {1, 2}}, 3, false}}, TestFactors().Quantitatives(2)),
              (NCDataMatrix<float>{{-1, -2, 3}}));
}

TEST(D_OptimalConstraints, ColumnsOfLevelFactorsAreLeftOut) {
    const TestFactors factors =
        TestFactors().Qualitative(3).Quantitative().MultilevelOf(3).Quantitative();
    EXPECT_EQ(EngineRows({{{{1, 4}, {3, 5}}, 6, true}}, factors),
              (NCDataMatrix<float>{{4, 5, -6}}));
}

TEST(D_OptimalConstraints, ColumnsStandInTheOrderOfTheEngine) {
    const TestFactors factors =
        TestFactors().Formulation().Quantitative().Formulation().Quantitative();
    EXPECT_EQ(EngineRows({{{{0, 1}, {2, 2}}, 9, true}, {{{1, 3}, {3, 4}}, 8, true}}, factors),
              (NCDataMatrix<float>{{0, 0, 1, 2, -9}, {3, 4, 0, 0, -8}}));
}

TEST(D_OptimalConstraints, TheBlockDoesNotShiftFormulationFactors) {
    const TestFactors factors = TestFactors().Quantitative().Formulation().Formulation();
    EXPECT_EQ(EngineRows({{{{1, 1}, {2, 2}}, 9, true}}, factors, 3),
              (NCDataMatrix<float>{{0, 1, 2, -9}}));
}

TEST(D_OptimalConstraints, AFactorNamedTwiceCountsWithBothCoefficients) {
    EXPECT_EQ(EngineRows({{{{0, 1}, {0, 2}}, 3, true}}, TestFactors().Quantitatives(1)),
              (NCDataMatrix<float>{{3, -3}}));
}

TEST(D_OptimalConstraints, AFactorThatTheAdapterDoesNotHaveIsRefused) {
    const TestFactors three = TestFactors().Quantitatives(3);
    const TestFactors two = TestFactors().Quantitatives(2);
    const D_OptimalOptions options = WithConstraints({{{{2, 1}}, 3, true}}, three);
    EXPECT_EQ(MessageOf([&] {
                  static_cast<void>(options.GetDOptConstraints(DOptFactorAdapter(two, 1)));
              }),
              "Constraints are set on an illegal variable.");
}

// Every row of a lattice breaks the constraint exactly when it breaks the row of the engine.
TEST(D_OptimalConstraints, TheEngineExcludesTheSameRuns) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const bool greaterOrEqual : {true, false}) {
        const NCDOE::Constraint constraint{{{0, 2}, {1, -1}, {0, 1}}, 1, greaterOrEqual};
        const NCDataMatrix<float> row = EngineRows({constraint}, factors);
        for (int i = -5; i <= 5; ++i) {
            for (int j = -5; j <= 5; ++j) {
                NCDataVector<float> run(2);
                run(1, static_cast<float>(i));
                run(2, static_cast<float>(j));
                const float slack = row(1, 1) * run(1) + row(1, 2) * run(2) + row(1, 3);
                EXPECT_EQ(constraint.IsConstrained(run), slack < 0) << i << ' ' << j;
            }
        }
    }
}

TEST(D_OptimalOptionsStore, EveryFieldComesBack) {
    const D_OptimalOptions options = Unusual();
    const ConfigurationStore store = Saved(options);
    D_OptimalOptions loaded;
    ASSERT_TRUE(loaded.Load(store.OpenRoot().get()));
    ExpectSameSettings(loaded, options);
    EXPECT_EQ(loaded.GetSelectDesignBy(), EDesign::IOptimality);
    EXPECT_EQ(ModelOf(loaded), ModelOf(options));
    EXPECT_EQ(loaded.GetInclusions(), options.GetInclusions());
    EXPECT_EQ(loaded.GetCandidateSet().GetMatrix(), SomeCandidates().GetMatrix());
    EXPECT_EQ(loaded.GetCandidateSet().GetNumData(), SomeCandidates().GetNumData());
    EXPECT_EQ(loaded.GetCandidateSet().GetRowNames(), SomeCandidates().GetRowNames());
    EXPECT_EQ(loaded.GetCandidateSet().GetPercentages(), SomeCandidates().GetPercentages());
}

TEST(D_OptimalOptionsStore, KeysStandWhereHostsLookForThem) {
    const ConfigurationStore store = Saved(Unusual());
    const auto base = store.OpenRoot()->OpenSection("DesignSpecificOptions");
    ASSERT_NE(base, nullptr);
    NCDataMatrix<float> matrix;
    EXPECT_TRUE(base->ReadMatrix("CandidateData", &matrix));
    EXPECT_TRUE(base->ReadMatrix("Inclusions", &matrix));
    const auto own = base->OpenSection("DOptimalOptions");
    ASSERT_NE(own, nullptr);
    int number = -1;
    EXPECT_TRUE(own->ReadInt("DOptMixtureModel", &number));
    EXPECT_EQ(number, 6);
    EXPECT_TRUE(own->ReadInt("SelectDesignBy", &number));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(own->SectionCount("OptModels"), 3);
    std::vector<int> term{99};
    EXPECT_TRUE(own->OpenSection("OptModels", 1)->ReadIntVector("OptModel", &term));
    EXPECT_TRUE(term.empty());
}

TEST(D_OptimalOptionsStore, AMissingSectionIsNotLoaded) {
    ConfigurationStore store;
    D_OptimalOptions options = Unusual();
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("DesignSpecificOptions");
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    ExpectSameSettings(options, Unusual());
}

TEST(D_OptimalOptionsStore, MissingKeysLeaveTheirFields) {
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("DesignSpecificOptions")
        ->OpenOrCreateSection("DOptimalOptions");
    D_OptimalOptions options = Unusual();
    EXPECT_TRUE(options.Load(store.OpenRoot().get()));
    ExpectSameSettings(options, Unusual());
    EXPECT_EQ(ModelOf(options), ModelOf(Unusual()));
    EXPECT_EQ(options.GetInclusions(), Unusual().GetInclusions());
    EXPECT_TRUE(options.GetCandidateSet().HasRowNames());
}

TEST(D_OptimalOptionsStore, NumbersOutsideTheirEnumerationsLeaveTheirFields) {
    ConfigurationStore store;
    const auto own = store.OpenRoot()
                         ->OpenOrCreateSection("DesignSpecificOptions")
                         ->OpenOrCreateSection("DOptimalOptions");
    for (const int number : {INT_MIN, -1, 7, INT_MAX}) {
        own->WriteInt("DOptMixtureModel", number);
        own->WriteInt("SelectDesignBy", number);
        D_OptimalOptions options = Unusual();
        EXPECT_TRUE(options.Load(store.OpenRoot().get()));
        EXPECT_EQ(options.GetMixtureModel(), EModel::LinearQuadratic) << number;
        EXPECT_EQ(options.GetSelectDesignBy(), EDesign::IOptimality) << number;
    }
}

TEST(D_OptimalOptionsStore, AnEarlierSaveLeavesNothingBehind) {
    ConfigurationStore store = Saved(Unusual());
    D_OptimalOptions().Save(store.OpenRoot().get());
    EXPECT_EQ(store, Saved(D_OptimalOptions()));
}

TEST(D_OptimalOptionsStore, ConstraintsHaveNoSavedForm) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    EXPECT_EQ(Saved(WithConstraints({{{{0, 1}}, 3, true}}, factors)), Saved(D_OptimalOptions()));
}

TEST(D_OptimalOptionsJson, SettingsAndCandidatesComeBack) {
    const D_OptimalOptions options = Unusual();
    D_OptimalOptions read;
    read.FromJson(json_value::parse(options.ToJson().to_text()));
    ExpectSameSettings(read, options);
    EXPECT_EQ(read.GetCandidateSet().GetMatrix(), SomeCandidates().GetMatrix());
}

TEST(D_OptimalOptionsJson, TheMembersHaveTheirNames) {
    EXPECT_EQ(Unusual().ToJson(), json_value::parse(R"({
        "mixtureModelType": "linear+quadratic",
        "processMixtureInteraction": true,
        "balanceOnFactor": 3,
        "useBalancedOnly": true,
        "useInclusions": false,
        "usePotentialTerms": false,
        "isCandidatesetGenerated": false,
        "repetitions": 7,
        "runSpan": 0,
        "candidateSet": {"data": [[1.0, 2.0], [3.0, 4.0]]}
    })"));
}

TEST(D_OptimalOptionsJson, MissingMembersGoBackToTheDefaults) {
    D_OptimalOptions options = Unusual();
    options.FromJson(json_value::make_object());
    ExpectSameSettings(options, D_OptimalOptions());
    EXPECT_EQ(options.GetCandidateSet().SizeRows(), 0);
}

TEST(D_OptimalOptionsJson, WhatHasNoMemberStays) {
    D_OptimalOptions options = Unusual();
    options.FromJson(json_value::make_object());
    EXPECT_EQ(options.GetSelectDesignBy(), EDesign::IOptimality);
    EXPECT_EQ(ModelOf(options), ModelOf(Unusual()));
    EXPECT_EQ(options.GetInclusions(), Unusual().GetInclusions());
}

TEST(D_OptimalOptionsJson, ABoolOfAnotherKindIsFalse) {
    D_OptimalOptions options;
    options.FromJson(json_value::parse(R"({"useInclusions": "yes", "usePotentialTerms": 1})"));
    EXPECT_FALSE(options.GetUseInclusion());
    EXPECT_FALSE(options.GetUsePotentialTerms());
}

TEST(D_OptimalOptionsJson, AnIntegerOfAnotherKindOrRangeIsTheDefault) {
    D_OptimalOptions options = Unusual();
    options.FromJson(json_value::parse(R"({"repetitions": "3", "runSpan": 99999999999})"));
    EXPECT_EQ(options.GetRepetitions(), 1);
    EXPECT_EQ(options.GetRunRange(), 2);
}

TEST(D_OptimalOptionsJson, AValueThatIsNoObjectChangesNothing) {
    D_OptimalOptions options = Unusual();
    options.FromJson(json_value::parse("[]"));
    ExpectSameSettings(options, Unusual());
}

TEST(D_OptimalOptionsJson, AnIllFormedCandidateSetLeavesTheOptions) {
    D_OptimalOptions options = Unusual();
    EXPECT_EQ(MessageOf([&] {
                  options.FromJson(json_value::parse(R"({"candidateSet": {"data": [[1], []]}})"));
              }),
              "Parse error. The Candidate set is ill-formed.");
    ExpectSameSettings(options, Unusual());
    EXPECT_EQ(options.GetCandidateSet().GetMatrix(), SomeCandidates().GetMatrix());
}

TEST(D_OptimalOptionsJson, CandidatesWithLayersHaveNoForm) {
    CandidateSet set;
    set.ConcatCandidateSet(0, {{1}});
    D_OptimalOptions options;
    options.SetCandidateSet(set);
    EXPECT_EQ(MessageOf([&] { static_cast<void>(options.ToJson()); }),
              "Saving Onion designs as json is not supported.");
}
