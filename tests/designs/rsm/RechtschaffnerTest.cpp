#include "designs/rsm/Rechtschaffner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using testing::ElementsAre;

const DesignBuilder& Screening() {
    return *AllDesigns::GetDesignBuilder(EDesign::Rechtschaffner, "Screening");
}

const DesignBuilder& Optimization() {
    return *AllDesigns::GetDesignBuilder(EDesign::Rechtschaffner, "Optimization (RSM)");
}

NCDataMatrix<float> Runs(const DesignBuilder& builder, const Factors& factors) {
    DesignOptions options(builder, factors);
    options.SetCenterPoints(0);
    const auto design = builder.Build(factors, options);
    return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
}

NCDataMatrix<float> Runs(const DesignBuilder& builder, int count) {
    const TestFactors factors = TestFactors().Quantitatives(count);
    return Runs(builder, factors);
}

// A design is saturated when its model matrix is square and regular.
bool IsSaturated(const NCDataMatrix<float>& runs, oracles::Terms terms) {
    const oracles::Table model = oracles::ModelMatrix(runs, runs.SizeColumns(), terms);
    return model.size() == model[0].size() && oracles::Rank(model) == model.size();
}

NCDataMatrix<float> WithRowRepeated(NCDataMatrix<float> runs, int from, int to) {
    runs.SetRow(to, runs.GetRow(from));
    return runs;
}

bool IsValid(const DesignBuilder& builder,
             const Factors& factors,
             EObjective::Type objective,
             EModel::Type model,
             unsigned maxRuns = DesignOptions::cNoRunLimit) {
    DesignOptions options;
    options.SetObjective(objective);
    options.SetModel(model);
    options.SetMaxRuns(maxRuns);
    return builder.IsValid(factors, options);
}

}  // namespace

TEST(Rechtschaffner, TwoBuildersDifferInTheirData) {
    EXPECT_EQ(Screening().GetShortString(), "RSR");
    EXPECT_EQ(Optimization().GetShortString(), "RSS");
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::Rechtschaffner, ""), nullptr);
}

TEST(Rechtschaffner, OtherObjectivesHaveNoData) {
    const RechtschaffnerBuilder builder(EObjective::RobustnessVerification, "X", "X", "X");
    try {
        (void)builder.GetDesignData();
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "GetDesignData: can only be 'RSM' or 'Screening'.");
    }
}

TEST(Rechtschaffner, ThreeScreeningFactorsHaveSingleHighsFromTheLastOn) {
    const std::vector<std::vector<float>> expected{
        {-1, -1, -1}, {-1, 1, 1}, {1, -1, 1}, {1, 1, -1}, {-1, -1, 1}, {-1, 1, -1}, {1, -1, -1}};
    EXPECT_EQ(RowsOf(Runs(Screening(), 3)), expected);
}

TEST(Rechtschaffner, FourScreeningFactorsHaveElevenRuns) {
    const std::vector<std::vector<float>> expected{{-1, -1, -1, -1},
                                                   {-1, 1, 1, 1},
                                                   {1, -1, 1, 1},
                                                   {1, 1, -1, 1},
                                                   {1, 1, 1, -1},
                                                   {1, 1, -1, -1},
                                                   {1, -1, 1, -1},
                                                   {1, -1, -1, 1},
                                                   {-1, 1, 1, -1},
                                                   {-1, 1, -1, 1},
                                                   {-1, -1, 1, 1}};
    EXPECT_EQ(RowsOf(Runs(Screening(), 4)), expected);
}

TEST(Rechtschaffner, OptimizationAddsOneAxialRunForEachFactor) {
    const NCDataMatrix<float> runs = Runs(Optimization(), 4);
    ASSERT_EQ(runs.SizeRows(), 15);
    const std::vector<std::vector<float>> axial{
        {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    EXPECT_EQ(RowsOf(runs, 12, 15), axial);
    EXPECT_EQ(RowsOf(runs, 1, 11), RowsOf(Runs(Screening(), 4)));
}

TEST(Rechtschaffner, ScreeningIsSaturatedForTheInteractionModel) {
    for (int count = 3; count <= 10; ++count) {
        EXPECT_TRUE(IsSaturated(Runs(Screening(), count), oracles::InteractionTerms)) << count;
    }
}

TEST(Rechtschaffner, OptimizationIsSaturatedForTheQuadraticModel) {
    for (int count = 3; count <= 10; ++count) {
        EXPECT_TRUE(IsSaturated(Runs(Optimization(), count), oracles::QuadraticTerms)) << count;
    }
}

TEST(Rechtschaffner, SaturationCheckObjectsToARepeatedRun) {
    for (int count = 3; count <= 10; ++count) {
        EXPECT_FALSE(
            IsSaturated(WithRowRepeated(Runs(Screening(), count), 1, 2), oracles::InteractionTerms))
            << count;
        EXPECT_FALSE(IsSaturated(WithRowRepeated(Runs(Optimization(), count), 2, 3),
                                 oracles::QuadraticTerms))
            << count;
    }
}

TEST(Rechtschaffner, ThreeFactorsWithTwoHighsWouldNotBeSaturated) {
    // Why three factors have a rule of their own: two of three high is one of three low.
    NCDataMatrix<float> runs = Runs(Screening(), 3);
    runs.SetRow(5, NCDataVector<float>{1, 1, -1});
    runs.SetRow(6, NCDataVector<float>{1, -1, 1});
    runs.SetRow(7, NCDataVector<float>{-1, 1, 1});
    EXPECT_FALSE(IsSaturated(runs, oracles::InteractionTerms));
}

TEST(Rechtschaffner, DefaultRunsGoOnTo32Factors) {
    const auto runs = [](int count, EObjective::Type objective) {
        return Screening().GetDefaultRuns(TestFactors().Quantitatives(count), objective);
    };
    EXPECT_EQ(runs(2, EObjective::Screening), 0U);
    EXPECT_EQ(runs(3, EObjective::Screening), 7U);
    EXPECT_EQ(runs(3, EObjective::Optimization), 10U);
    EXPECT_EQ(runs(4, EObjective::SystemCharacterization), 15U);
    EXPECT_EQ(runs(11, EObjective::Screening), 67U);
    EXPECT_EQ(runs(32, EObjective::Screening), 529U);
    EXPECT_EQ(runs(32, EObjective::Optimization), 561U);
    EXPECT_EQ(runs(33, EObjective::Optimization), 0U);
}

TEST(Rechtschaffner, LegalRunsFollowTheOptionsObjective) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options;
    options.SetObjective(EObjective::Screening);
    EXPECT_THAT(Screening().GetLegalRuns(factors, options), ElementsAre(11));
    options.SetObjective(EObjective::Optimization);
    EXPECT_THAT(Screening().GetLegalRuns(factors, options), ElementsAre(15));
}

TEST(Rechtschaffner, DefaultModelIsForTheOwnObjectiveOnly) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const auto model = [&](const DesignBuilder& builder, EObjective::Type objective) {
        return builder.GetDefaultModel(factors, objective);
    };
    EXPECT_EQ(model(Screening(), EObjective::Screening), EModel::Interaction);
    EXPECT_EQ(model(Screening(), EObjective::RobustnessVerification), EModel::None);
    EXPECT_EQ(model(Screening(), EObjective::Optimization), EModel::None);
    EXPECT_EQ(model(Optimization(), EObjective::Optimization), EModel::Quadratic);
    EXPECT_EQ(model(Optimization(), EObjective::SystemCharacterization), EModel::None);
    EXPECT_EQ(model(Optimization(), EObjective::Screening), EModel::None);
}

TEST(Rechtschaffner, IsValidFromThreeToTenFactors) {
    for (int count = 0; count <= 12; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const bool expected = count >= 3 && count <= 10;
        EXPECT_EQ(IsValid(Screening(), factors, EObjective::Screening, EModel::Interaction),
                  expected)
            << count;
        EXPECT_EQ(IsValid(Optimization(), factors, EObjective::Optimization, EModel::Quadratic),
                  expected)
            << count;
    }
}

TEST(Rechtschaffner, OptimizationTakesTheQuadraticModelOnly) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_TRUE(
        IsValid(Optimization(), factors, EObjective::SystemCharacterization, EModel::Quadratic));
    EXPECT_FALSE(IsValid(Optimization(), factors, EObjective::Optimization, EModel::Interaction));
    EXPECT_FALSE(IsValid(Optimization(), factors, EObjective::Screening, EModel::Quadratic));
}

TEST(Rechtschaffner, ScreeningTakesLinearAndInteractionModels) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_TRUE(IsValid(Screening(), factors, EObjective::Screening, EModel::Linear));
    EXPECT_TRUE(
        IsValid(Screening(), factors, EObjective::RobustnessVerification, EModel::Interaction));
    EXPECT_FALSE(IsValid(Screening(), factors, EObjective::Screening, EModel::Quadratic));
    EXPECT_FALSE(IsValid(Screening(), factors, EObjective::Optimization, EModel::Interaction));
}

TEST(Rechtschaffner, ScreeningTakesASplitObjectiveWithAnyModel) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_TRUE(IsValid(Screening(), factors, EObjective::SplitObjective, EModel::Quadratic));
}

TEST(Rechtschaffner, TwoLevelFactorsPassForScreeningOnly) {
    const TestFactors factors = TestFactors().Quantitatives(3).Qualitative(2);
    EXPECT_TRUE(IsValid(Screening(), factors, EObjective::Screening, EModel::Interaction));
    EXPECT_FALSE(IsValid(Optimization(), factors, EObjective::Optimization, EModel::Quadratic));
}

TEST(Rechtschaffner, LevelFactorsAreRecoded) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(2).MultilevelOf(2);
    const std::vector<std::vector<float>> expected{
        {-1, -1, 65, 65}, {-1, 1, 66, 66}, {1, -1, 66, 66}, {1, 1, 65, 66}, {1, 1, 66, 65}};
    EXPECT_EQ(RowsOf(Runs(Screening(), factors), 1, 5), expected);
}

TEST(Rechtschaffner, RefusesThreeLevelsMixturesAndFillers) {
    const auto valid = [](const Factors& factors) {
        return IsValid(Screening(), factors, EObjective::Screening, EModel::Interaction);
    };
    EXPECT_FALSE(valid(TestFactors().Quantitatives(3).Qualitative(3)));
    EXPECT_FALSE(valid(TestFactors().Quantitatives(3).Formulation()));
    EXPECT_FALSE(valid(TestFactors().Quantitatives(3).Formulation().WithFiller(false)));
    EXPECT_TRUE(valid(TestFactors().Quantitatives(3).Formulation().WithFiller(true)));
}

TEST(Rechtschaffner, NeedsRoomForItsRuns) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    EXPECT_FALSE(IsValid(Screening(), factors, EObjective::Screening, EModel::Linear, 10));
    EXPECT_TRUE(IsValid(Screening(), factors, EObjective::Screening, EModel::Linear, 11));
    EXPECT_FALSE(IsValid(Optimization(), factors, EObjective::Optimization, EModel::Quadratic, 14));
    EXPECT_TRUE(IsValid(Optimization(), factors, EObjective::Optimization, EModel::Quadratic, 15));
}

TEST(Rechtschaffner, RefusesConstraints) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options(Screening(), factors);
    const auto specific = std::make_shared<DesignSpecificOptions>();
    options.SetDesignSpecificOptions(specific);
    EXPECT_TRUE(Screening().IsValid(factors, options));
    specific->SetConstraints(NCDOE::Constraints({NCDOE::Constraint{{{0, 1.0}}, 1.0, false}}),
                             factors);
    EXPECT_FALSE(Screening().IsValid(factors, options));
}

TEST(Rechtschaffner, CenterPointsAndReplicatesFollowTheRuns) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options(Screening(), factors);
    options.SetCenterPoints(2);
    options.SetReplicates(1);
    const auto design = Screening().Build(factors, options);
    const NCDataMatrix<float>& runs = *design->GetDesignMatrix();
    ASSERT_EQ(runs.SizeRows(), 26);
    const std::vector<std::vector<float>> center{{0, 0, 0, 0}, {0, 0, 0, 0}};
    EXPECT_EQ(RowsOf(runs, 12, 13), center);
    EXPECT_EQ(RowsOf(runs, 14, 26), RowsOf(runs, 1, 13));
}

TEST(Rechtschaffner, CloneSharesTheMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const auto design = Screening().Build(factors, DesignOptions(Screening(), factors));
    const auto clone = design->Clone();
    EXPECT_NE(dynamic_cast<const Rechtschaffner*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design->GetDesignMatrix());
}
