#include "frame/DesignOptions.h"

#include <string>
#include <utility>
#include <vector>

#include "designs/factorial/FF2.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/ProbeBuilder.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using Words = std::vector<std::vector<int>>;

const TestFactors cThree = TestFactors().Quantitatives(3);
const TestFactors cBlend = TestFactors().Formulation().Formulation().Formulation();

std::vector<std::string> OperationsOf(const ProbeBuilder& builder) {
    std::vector<std::string> operations;
    for (const ProbeBuilder::Call& call : builder.calls) {
        operations.push_back(call.operation);
    }
    return operations;
}

TEST(DesignOptions, FieldsHaveTheirDefaults) {
    const DesignOptions options;
    EXPECT_EQ(options.GetBlocks(), 1U);
    EXPECT_EQ(options.GetRuns(), 0U);
    EXPECT_EQ(options.GetCenterPoints(), 3U);
    EXPECT_EQ(options.GetReplicatedRuns(), 0U);
    EXPECT_EQ(options.GetReplicates(), 0U);
    EXPECT_EQ(options.GetMaxRuns(), 12000U);
    EXPECT_EQ(options.GetStarDistance(), 1.0F);
    EXPECT_EQ(options.GetObjective(), 1);
    EXPECT_EQ(options.GetModel(), 1);
    EXPECT_EQ(options.GetGenerators(), nullptr);
    EXPECT_EQ(options.GetDesignSpecificOptions(), nullptr);
    EXPECT_EQ(options.GetCreatedFromDesign(), 0);
}

TEST(DesignOptions, SettersSetTheirOwnField) {
    DesignOptions options;
    options.SetBlocks(2);
    options.SetRuns(3);
    options.SetCenterPoints(4);
    options.SetReplicatedRuns(5);
    options.SetReplicates(6);
    options.SetMaxRuns(7);
    options.SetStarDistance(8);
    options.SetObjective(EObjective::RobustnessVerification);
    options.SetModel(EModel::Cubic);
    EXPECT_EQ(options.GetBlocks(), 2U);
    EXPECT_EQ(options.GetRuns(), 3U);
    EXPECT_EQ(options.GetCenterPoints(), 4U);
    EXPECT_EQ(options.GetReplicatedRuns(), 5U);
    EXPECT_EQ(options.GetReplicates(), 6U);
    EXPECT_EQ(options.GetMaxRuns(), 7U);
    EXPECT_EQ(options.GetStarDistance(), 8.0F);
    EXPECT_EQ(options.GetObjective(), EObjective::RobustnessVerification);
    EXPECT_EQ(options.GetModel(), EModel::Cubic);
}

TEST(DesignOptions, CopyHasScalarsOfItsOwn) {
    DesignOptions options;
    options.SetRuns(8);
    DesignOptions copy = options;
    copy.SetRuns(16);
    EXPECT_EQ(options.GetRuns(), 8U);
    EXPECT_EQ(copy.GetRuns(), 16U);
}

TEST(DesignOptions, CopyAndAssignmentShareFamilyOptionsAndGenerators) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    const Generators generators(8);
    options.SetGenerators(&generators);
    const DesignOptions copy = options;
    DesignOptions assigned;
    assigned = options;
    for (const DesignOptions* other : {&copy, &std::as_const(assigned)}) {
        EXPECT_EQ(other->GetDesignSpecificOptions(), options.GetDesignSpecificOptions());
        EXPECT_EQ(other->GetGenerators(), options.GetGenerators());
    }
    options.GetDesignSpecificOptions()->SetConstraints(
        NCDOE::Constraints({{{{0, 1.0}}, 0.5, true}}), cThree);
    EXPECT_FALSE(copy.GetDesignSpecificOptions()->GetConstraints().IsEmpty());
}

TEST(DesignOptions, MoveTakesTheHandlesAlong) {
    DesignOptions options;
    options.SetRuns(8);
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    const DesignSpecificOptions* specific = options.GetDesignSpecificOptions();
    DesignOptions moved = std::move(options);
    EXPECT_EQ(moved.GetRuns(), 8U);
    EXPECT_EQ(moved.GetDesignSpecificOptions(), specific);
    DesignOptions assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.GetRuns(), 8U);
    EXPECT_EQ(assigned.GetDesignSpecificOptions(), specific);
}

TEST(DesignOptions, DefaultsOfThreeTwoLevelFactors) {
    const DesignOptions options(FF2Builder("FF2", "", ""), cThree);
    EXPECT_EQ(options.GetObjective(), 1);
    EXPECT_EQ(options.GetModel(), 2);
    EXPECT_EQ(options.GetRuns(), 8U);
    EXPECT_EQ(options.GetCenterPoints(), 3U);
    EXPECT_EQ(options.GetBlocks(), 1U);
    EXPECT_EQ(options.GetStarDistance(), -99.0F);
    EXPECT_EQ(options.GetCreatedFromDesign(), 1);
    EXPECT_EQ(options.GetMaxRuns(), 12000U);
    EXPECT_EQ(options.GetReplicates(), 0U);
    EXPECT_EQ(options.GetReplicatedRuns(), 0U);
    EXPECT_EQ(options.GetDesignSpecificOptions(), nullptr);
    EXPECT_EQ(options.GetGenerators(), nullptr);
}

TEST(DesignOptions, DefaultsTakeEveryAnswerOfTheBuilder) {
    ProbeBuilder builder;
    builder.type = EDesign::CCC;
    builder.replicatedRuns = 2;
    builder.minimumCenterPoints = 4;
    builder.starDistance = 1.75F;
    builder.specificOptions = std::make_shared<DesignSpecificOptions>();
    builder.defaultRuns = [](EObjective::Type objective) {
        return 20U + static_cast<unsigned>(objective);
    };
    const DesignOptions options(builder, cThree);
    EXPECT_EQ(options.GetReplicatedRuns(), 2U);
    EXPECT_EQ(options.GetCenterPoints(), 4U);
    EXPECT_EQ(options.GetStarDistance(), 1.75F);
    EXPECT_EQ(options.GetDesignSpecificOptions(), builder.specificOptions.get());
    EXPECT_EQ(options.GetRuns(), 21U);
    EXPECT_EQ(options.GetCreatedFromDesign(), EDesign::CCC);
}

TEST(DesignOptions, FamilyWithoutScreeningModelDefaultsToOptimization) {
    ProbeBuilder builder;
    builder.defaultModel = [](EObjective::Type objective) {
        return objective == EObjective::Optimization ? EModel::Cubic : EModel::None;
    };
    const DesignOptions options(builder, cThree);
    EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
    EXPECT_EQ(options.GetModel(), EModel::Cubic);
}

TEST(DesignOptions, FamilyWithoutAnyModelDefaultsToOptimizationWithoutModel) {
    ProbeBuilder builder;
    builder.defaultModel = [](EObjective::Type) { return EModel::None; };
    const DesignOptions options(builder, cThree);
    EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
    EXPECT_EQ(options.GetModel(), EModel::None);
}

// Tells process, mixture and plain defaults apart, and which run limit they were asked under.
class ModelProbe : public ProbeBuilder {
  public:
    EModel::Type GetDefaultProcessModel(const Factors&,
                                        EObjective::Type,
                                        unsigned int maxRuns) const override {
        limits.push_back(maxRuns);
        return EModel::LinearQuadratic;
    }
    EModel::Type GetDefaultMixtureModel(const Factors&,
                                        EObjective::Type,
                                        unsigned int maxRuns) const override {
        limits.push_back(maxRuns);
        return EModel::SpecialCubic;
    }
    mutable std::vector<unsigned int> limits;
};

TEST(DesignOptions, MixtureModelIsTakenWhereFactorsAndFamilyAreMixtureOnly) {
    ModelProbe builder;
    EXPECT_EQ(DesignOptions(builder, cBlend).GetModel(), EModel::LinearQuadratic);
    builder.mixtureOnly = true;
    EXPECT_EQ(DesignOptions(builder, cThree).GetModel(), EModel::LinearQuadratic);
    EXPECT_EQ(DesignOptions(builder, cBlend).GetModel(), EModel::SpecialCubic);
}

TEST(DesignOptions, DefaultModelsAreAskedWithoutARunLimit) {
    const ModelProbe builder;
    const DesignOptions options(builder, cThree);
    EXPECT_THAT(builder.limits, ::testing::Each(2147483647U));
    EXPECT_FALSE(builder.limits.empty());
}

TEST(DesignOptions, LaterDefaultsSeeTheEarlierOnes) {
    ProbeBuilder builder;
    builder.replicatedRuns = 2;
    builder.starDistance = 1.75F;
    builder.specificOptions = std::make_shared<DesignSpecificOptions>();
    const DesignOptions options(builder, cThree);
    ASSERT_THAT(OperationsOf(builder),
                ElementsAre("specific options", "star distance of 3", "runs"));
    const DesignOptions& first = builder.calls[0].options;
    EXPECT_EQ(first.GetReplicatedRuns(), 2U);
    EXPECT_EQ(first.GetCenterPoints(), 3U);
    EXPECT_EQ(first.GetModel(), EModel::Quadratic);
    EXPECT_EQ(first.GetRuns(), 0U);
    EXPECT_EQ(first.GetCreatedFromDesign(), EDesign::None);
    EXPECT_EQ(builder.calls[1].options.GetDesignSpecificOptions(), builder.specificOptions.get());
    EXPECT_EQ(builder.calls[2].options.GetStarDistance(), 1.75F);
}

TEST(DesignOptions, ChosenObjectiveAndModelAreTaken) {
    const ProbeBuilder builder;
    const DesignOptions options(builder,
                                cThree,
                                EObjective::RobustnessVerification,
                                EModel::Linear,
                                EModel::SpecialCubic,
                                12000);
    EXPECT_EQ(options.GetObjective(), EObjective::RobustnessVerification);
    EXPECT_EQ(options.GetModel(), EModel::Linear);
    EXPECT_EQ(options.GetCenterPoints(), 1U);
    EXPECT_EQ(options.GetRuns(), 8U);
    EXPECT_EQ(options.GetMaxRuns(), 12000U);
    EXPECT_EQ(options.GetStarDistance(), -99.0F);
    EXPECT_EQ(options.GetCreatedFromDesign(), EDesign::Plugin);
}

TEST(DesignOptions, ChosenMixtureModelIsTakenWhereFactorsAndFamilyAreMixtureOnly) {
    ProbeBuilder builder;
    builder.mixtureOnly = true;
    const auto model = [&](const Factors& factors) {
        return DesignOptions(builder,
                             factors,
                             EObjective::Screening,
                             EModel::Linear,
                             EModel::SpecialCubic,
                             12000)
            .GetModel();
    };
    EXPECT_EQ(model(cBlend), EModel::SpecialCubic);
    EXPECT_EQ(model(cThree), EModel::Linear);
    builder.mixtureOnly = false;
    EXPECT_EQ(model(cBlend), EModel::Linear);
}

// Family options that keep the mixture model they are told.
class MixtureModelOptions : public DesignSpecificOptions {
  public:
    void SetMixtureModel(EModel::Type model) override { mixtureModel = model; }
    EModel::Type mixtureModel = EModel::None;
};

TEST(DesignOptions, FamilyOptionsAreToldTheChosenMixtureModel) {
    ProbeBuilder builder;
    const auto specific = std::make_shared<MixtureModelOptions>();
    builder.specificOptions = specific;
    const DesignOptions options(
        builder, cThree, EObjective::Screening, EModel::Linear, EModel::SpecialCubic, 12000);
    EXPECT_EQ(specific->mixtureModel, EModel::SpecialCubic);
}

TEST(DesignOptions, ChosenRunLimitIsAssured) {
    const DesignOptions options(
        FF2Builder("FF2", "", ""), cThree, EObjective::Screening, EModel::Linear, EModel::None, 10);
    EXPECT_EQ(options.GetMaxRuns(), 10U);
    EXPECT_EQ(options.GetRuns(), 8U);
    EXPECT_EQ(options.GetCenterPoints(), 2U);
}

struct Fitted {
    bool fits;
    unsigned runs;
    unsigned centerPoints;

    friend bool operator==(const Fitted&, const Fitted&) = default;
    friend void PrintTo(const Fitted& fitted, std::ostream* out) {
        *out << (fitted.fits ? "fits" : "does not fit") << " with " << fitted.runs << " runs and "
             << fitted.centerPoints << " centre points";
    }
};

Fitted Assure(const ProbeBuilder& builder, unsigned runs, unsigned centerPoints, unsigned maxRuns) {
    DesignOptions options;
    options.SetRuns(runs);
    options.SetCenterPoints(centerPoints);
    options.SetMaxRuns(maxRuns);
    const bool fits = options.AssureMaxRuns(builder, cThree);
    return {fits, options.GetRuns(), options.GetCenterPoints()};
}

ProbeBuilder WithLegalRuns(std::vector<unsigned> legalRuns) {
    ProbeBuilder builder;
    builder.legalRuns = std::move(legalRuns);
    return builder;
}

TEST(AssureMaxRuns, TwelveThousandIsNoLimitWhateverTheRuns) {
    const ProbeBuilder builder = WithLegalRuns({8});
    EXPECT_EQ(Assure(builder, 50000, 3, 12000), (Fitted{true, 50000, 3}));
    EXPECT_TRUE(builder.calls.empty());
}

TEST(AssureMaxRuns, WhatFitsStays) {
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 8, 3, 11), (Fitted{true, 8, 3}));
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 8, 3, 100), (Fitted{true, 8, 3}));
}

TEST(AssureMaxRuns, CentrePointsGiveWayFirst) {
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 8, 3, 10), (Fitted{true, 8, 2}));
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 8, 3, 8), (Fitted{true, 8, 0}));
}

TEST(AssureMaxRuns, CentrePointsStopAtTheirMinimum) {
    ProbeBuilder builder = WithLegalRuns({8});
    builder.minimumCenterPoints = 2;
    EXPECT_EQ(Assure(builder, 8, 3, 9), (Fitted{false, 8, 2}));
}

TEST(AssureMaxRuns, OnlyLegalRunCountStaysAndDoesNotFit) {
    EXPECT_EQ(Assure(WithLegalRuns({8}), 8, 3, 7), (Fitted{false, 8, 0}));
}

TEST(AssureMaxRuns, RunsFallToTheLargestLegalCountThatFits) {
    // 16 runs do not fit under 11: 8 do, and 3 centre points grow back.
    EXPECT_EQ(Assure(WithLegalRuns({4, 8, 12, 16}), 16, 3, 11), (Fitted{true, 8, 3}));
    EXPECT_EQ(Assure(WithLegalRuns({4, 8, 12, 16}), 16, 3, 12), (Fitted{true, 12, 0}));
}

TEST(AssureMaxRuns, LastLegalCountServesWhereAllAreSmaller) {
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 100, 3, 20), (Fitted{true, 8, 12}));
}

TEST(AssureMaxRuns, RunsMakeRoomForTheMinimumOfCentrePoints) {
    ProbeBuilder builder = WithLegalRuns({4, 8, 12});
    builder.minimumCenterPoints = 3;
    // The target is 11 - 3 = 8.
    EXPECT_EQ(Assure(builder, 12, 3, 11), (Fitted{true, 8, 3}));
    EXPECT_EQ(Assure(builder, 12, 3, 10), (Fitted{true, 4, 6}));
}

TEST(AssureMaxRuns, LegalRunsAreAskedWithTheLoweredCentrePoints) {
    const ProbeBuilder builder = WithLegalRuns({4, 8});
    (void)Assure(builder, 16, 3, 8);
    ASSERT_EQ(OperationsOf(builder), std::vector<std::string>{"legal runs"});
    EXPECT_EQ(builder.calls[0].options.GetCenterPoints(), 0U);
    EXPECT_EQ(builder.calls[0].options.GetRuns(), 16U);
}

TEST(AssureMaxRuns, LimitNotAboveTheCentrePointsLeavesTheRuns) {
    ProbeBuilder builder = WithLegalRuns({4, 8});
    builder.minimumCenterPoints = 3;
    EXPECT_EQ(Assure(builder, 8, 3, 3), (Fitted{false, 8, 3}));
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 8, 3, 0), (Fitted{false, 8, 0}));
}

TEST(AssureMaxRuns, WithoutLegalRunsTheRunsStay) {
    EXPECT_EQ(Assure(WithLegalRuns({}), 8, 3, 7), (Fitted{false, 8, 0}));
}

TEST(AssureMaxRuns, CentrePointsStayWhereTheyAreNotAllowed) {
    ProbeBuilder builder = WithLegalRuns({4, 8});
    builder.centerPointsAllowed = false;
    EXPECT_EQ(Assure(builder, 8, 3, 10), (Fitted{true, 4, 3}));
    EXPECT_EQ(Assure(builder, 8, 0, 100), (Fitted{true, 8, 0}));
}

TEST(AssureMaxRuns, RunCountsNearTheLargestNumberDoNotWrapAround) {
    EXPECT_EQ(Assure(WithLegalRuns({4, 8}), 4294967295U, 3, 11), (Fitted{true, 8, 3}));
}

// The words of the options' generators, from column 1, as texts.
std::vector<std::string> WordsOf(const DesignOptions& options, int count) {
    std::vector<std::string> words;
    for (int i = 1; i <= count; ++i) {
        words.push_back(
            Generators::GetGeneratorString(options.GetGenerators()->GetGenerator(cThree, i, "")));
    }
    return words;
}

TEST(SetGenerators, StoresACopy) {
    Generators generators(8);
    generators.SetGenerator(1, Generators::A);
    DesignOptions options;
    options.SetGenerators(&generators);
    generators.SetGenerator(1, Generators::B);
    EXPECT_THAT(WordsOf(options, 1), ElementsAre("a"));
}

TEST(SetGenerators, NullEmptiesTheHandle) {
    const Generators generators(8);
    DesignOptions options;
    options.SetGenerators(&generators);
    options.SetGenerators(nullptr);
    EXPECT_EQ(options.GetGenerators(), nullptr);
}

TEST(SetGenerators, BaseFactorsGetLettersInAscendingOrder) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Words{{7}, {2}, {5}, {2, 5, 7}}));
    EXPECT_THAT(WordsOf(options, 4), ElementsAre("c", "a", "b", "abc"));
}

TEST(SetGenerators, HighestLetterIsThatOfTheBaseFactors) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Words{{1}, {2}, {3}, {1, 2}}));
    EXPECT_EQ(options.GetGenerators()->GetMaxChar(), 'c');
}

TEST(SetGenerators, WordIsNegativeWithAnOddCountOfNegativeNumbers) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Words{{1}, {2}, {-1, 2}, {-1, -2}, {1, -2}}));
    EXPECT_THAT(WordsOf(options, 5), ElementsAre("a", "b", "-ab", "ab", "-ab"));
}

TEST(SetGenerators, NegativeBaseFactorKeepsItsSign) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Words{{-3}, {1}}));
    EXPECT_THAT(WordsOf(options, 2), ElementsAre("-b", "a"));
}

TEST(SetGenerators, FailureReturnsFalseAndChangesNothing) {
    const std::vector<Words> faulty{
        {{1}, {}},           // an empty word
        {{1}, {2}, {1}},     // a base factor twice
        {{1}, {2}, {-2}},    // and with another sign
        {{1}, {2}, {1, 3}},  // a number that is no base factor
        {{1, 2}},            // no base factor at all
        {{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {12}},  // no twelfth letter
    };
    for (const Words& words : faulty) {
        DesignOptions options;
        ASSERT_TRUE(options.SetGenerators(Words{{1}, {2}, {1, 2}}));
        EXPECT_FALSE(options.SetGenerators(words)) << ::testing::PrintToString(words);
        EXPECT_THAT(WordsOf(options, 3), ElementsAre("a", "b", "ab"));
    }
}

TEST(SetGenerators, ElevenBaseFactorsAreThereToBeUsed) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(
        Words{{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}, {11}, {1, 11}}));
    EXPECT_EQ(Generators::GetGeneratorString(options.GetGenerators()->GetGenerator(cThree, 12, "")),
              "ak");
}

TEST(SetGenerators, NoWordsMakeGeneratorsWithoutWords) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Words()));
    ASSERT_NE(options.GetGenerators(), nullptr);
    EXPECT_THAT(WordsOf(options, 1), ElementsAre(""));
}

}  // namespace
