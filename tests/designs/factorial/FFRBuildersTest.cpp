#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "designs/factorial/FFR_III.h"
#include "designs/factorial/FFR_IV.h"
#include "designs/factorial/FFR_V.h"
#include "frame/AllDesigns.h"
#include "frame/Constraints.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr std::array<EDesign::Type, 3> cFamilies{EDesign::FFR_III, EDesign::FFR_IV, EDesign::FFR_V};

const FractionalFactorialBuilder& Builder(EDesign::Type type) {
    return dynamic_cast<const FractionalFactorialBuilder&>(*AllDesigns::GetDesignBuilder(type, ""));
}

TestFactors Quantitatives(int count) {
    TestFactors factors;
    factors.Quantitatives(count);
    return factors;
}

bool IsValid(EDesign::Type type, const Factors& factors) {
    return Builder(type).IsValid(factors, DesignOptions(Builder(type), factors));
}

bool IsValidFor(EDesign::Type type, EObjective::Type objective, EModel::Type model) {
    const TestFactors factors = Quantitatives(7);
    DesignOptions options(Builder(type), factors);
    options.SetObjective(objective);
    options.SetModel(model);
    return Builder(type).IsValid(factors, options);
}

std::vector<unsigned int> LegalRuns(EDesign::Type type, int count, unsigned int maxRuns = 12000) {
    const TestFactors factors = Quantitatives(count);
    DesignOptions options(Builder(type), factors);
    options.SetMaxRuns(maxRuns);
    return Builder(type).GetLegalRuns(factors, options);
}

std::vector<int> LegalBlocks(EDesign::Type type, int count, unsigned int runs) {
    const TestFactors factors = Quantitatives(count);
    DesignOptions options(Builder(type), factors);
    options.SetRuns(runs);
    return Builder(type).GetLegalBlocks(factors, options, false);
}

}  // namespace

TEST(FFRBuilders, RunsByFactorsAreThoseOfTheTable) {
    struct Row {
        int first;
        int last;
        std::array<unsigned int, 3> runs;
    };
    const std::vector<Row> table{
        {-1, 2, {0, 0, 0}},
        {3, 3, {4, 0, 0}},
        {4, 4, {0, 8, 0}},
        {5, 5, {8, 0, 16}},
        {6, 6, {8, 16, 32}},
        {7, 7, {8, 16, 64}},
        {8, 8, {0, 16, 64}},
        {9, 11, {16, 32, 128}},
        {12, 15, {16, 32, 256}},
        {16, 16, {0, 32, 256}},
        {17, 17, {32, 64, 256}},
        {18, 21, {32, 64, 512}},
        {22, 29, {32, 64, 1024}},
        {30, 31, {32, 64, 0}},
        {32, 32, {64, 64, 0}},
        {33, 63, {64, 0, 0}},
        {64, 70, {0, 0, 0}},
    };
    for (const Row& row : table) {
        for (int factors = row.first; factors <= row.last; ++factors) {
            for (std::size_t i = 0; i < cFamilies.size(); ++i) {
                EXPECT_EQ(Builder(cFamilies[i]).RunsForFactors(factors), row.runs[i])
                    << factors << " factors, " << Builder(cFamilies[i]).GetShortString();
            }
        }
    }
}

TEST(FFRBuilders, AreRegisteredUnderTheirNames) {
    EXPECT_EQ(Builder(EDesign::FFR_III).GetShortString(), "FFR_III");
    EXPECT_EQ(Builder(EDesign::FFR_IV).GetShortString(), "FFR_IV");
    EXPECT_EQ(Builder(EDesign::FFR_V).GetShortString(), "FFR_V");
    EXPECT_EQ(Builder(EDesign::FFR_III).GetDisplayName(), "Frac Fac Res III");
    EXPECT_EQ(Builder(EDesign::FFR_IV).GetDisplayName(), "Frac Fac Res IV");
    EXPECT_EQ(Builder(EDesign::FFR_V).GetDisplayName(), "Frac Fac Res V+");
}

TEST(FFRBuilders, AreValidExactlyWhereThereAreRuns) {
    for (const EDesign::Type type : cFamilies) {
        for (int count = 1; count <= 70; ++count) {
            EXPECT_EQ(IsValid(type, Quantitatives(count)), Builder(type).RunsForFactors(count) > 0)
                << Builder(type).GetShortString() << ", " << count;
        }
    }
}

TEST(FFRBuilders, DefaultOptionsScreenWithThreeCentrePoints) {
    const TestFactors factors = Quantitatives(5);
    const DesignOptions options(Builder(EDesign::FFR_V), factors);
    EXPECT_EQ(options.GetObjective(), EObjective::Screening);
    EXPECT_EQ(options.GetModel(), EModel::Interaction);
    EXPECT_EQ(options.GetRuns(), 16U);
    EXPECT_EQ(options.GetCenterPoints(), 3U);
    EXPECT_EQ(options.GetStarDistance(), -99.0F);
}

TEST(FFRBuilders, ResolutionThreeAndFourTakeTheLinearModelOnly) {
    for (const EDesign::Type type : {EDesign::FFR_III, EDesign::FFR_IV}) {
        EXPECT_TRUE(IsValidFor(type, EObjective::Screening, EModel::Linear));
        EXPECT_TRUE(IsValidFor(type, EObjective::RobustnessVerification, EModel::Linear));
        EXPECT_FALSE(IsValidFor(type, EObjective::Screening, EModel::Interaction));
        EXPECT_EQ(Builder(type).GetDefaultModel(Quantitatives(7), EObjective::Screening),
                  EModel::Linear);
    }
}

TEST(FFRBuilders, ResolutionFiveTakesTheInteractionModelToo) {
    EXPECT_TRUE(IsValidFor(EDesign::FFR_V, EObjective::Screening, EModel::Linear));
    EXPECT_TRUE(IsValidFor(EDesign::FFR_V, EObjective::Screening, EModel::Interaction));
    EXPECT_FALSE(IsValidFor(EDesign::FFR_V, EObjective::Screening, EModel::Quadratic));
}

TEST(FFRBuilders, OtherObjectivesAreNotServed) {
    for (const EDesign::Type type : cFamilies) {
        EXPECT_FALSE(IsValidFor(type, EObjective::Optimization, EModel::Linear));
        EXPECT_FALSE(IsValidFor(type, EObjective::SystemCharacterization, EModel::Linear));
        EXPECT_EQ(Builder(type).GetDefaultModel(Quantitatives(7), EObjective::Optimization),
                  EModel::None);
    }
}

TEST(FFRBuilders, LevelFactorsNeedTwoLevels) {
    for (const EDesign::Type type : cFamilies) {
        EXPECT_TRUE(IsValid(type, Quantitatives(5).Qualitative(2).MultilevelOf(2)));
        EXPECT_FALSE(IsValid(type, Quantitatives(6).MultilevelOf(3)));
        // Five factors and one of three levels count as seven columns.
        EXPECT_FALSE(IsValid(type, Quantitatives(5).Qualitative(3)));
    }
}

TEST(FFRBuilders, FormulationFactorsNeedAFreeSum) {
    TestFactors mixture = Quantitatives(5);
    mixture.Formulation().Formulation();
    EXPECT_FALSE(IsValid(EDesign::FFR_IV, mixture));
    EXPECT_FALSE(IsValid(EDesign::FFR_IV, TestFactors(mixture).WithFiller(false)));
    EXPECT_TRUE(IsValid(EDesign::FFR_IV, TestFactors(mixture).WithFiller(true)));
}

TEST(FFRBuilders, WhatFractionsShareExcludesMixtures) {
    TestFactors mixture = Quantitatives(5);
    const FractionalFactorialBuilder& builder = Builder(EDesign::FFR_IV);
    mixture.Formulation().Formulation();
    EXPECT_FALSE(builder.IsFractionalValid(mixture, DesignOptions()));
    EXPECT_TRUE(builder.IsFractionalValid(Quantitatives(7), DesignOptions()));
}

TEST(FFRBuilders, ConstraintsAreNotServed) {
    const TestFactors factors = Quantitatives(7);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    const auto specific = std::make_shared<DesignSpecificOptions>();
    options.SetDesignSpecificOptions(specific);
    EXPECT_TRUE(Builder(EDesign::FFR_IV).IsValid(factors, options));
    const NCDOE::Constraint lower{.terms = {{.factor = 0, .coefficient = 1}}};
    specific->SetConstraints(NCDOE::Constraints({lower}), factors);
    EXPECT_FALSE(Builder(EDesign::FFR_IV).IsValid(factors, options));
}

TEST(FFRBuilders, TheRunLimitCountsTheFractionOnly) {
    const TestFactors factors = Quantitatives(7);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    options.SetMaxRuns(16);
    EXPECT_TRUE(Builder(EDesign::FFR_IV).IsValid(factors, options));
    options.SetMaxRuns(15);
    EXPECT_FALSE(Builder(EDesign::FFR_IV).IsValid(factors, options));
}

TEST(FFRBuilders, ResolutionFourOffersLargerFractions) {
    const std::map<int, std::vector<unsigned int>> expected{{4, {8}},
                                                            {6, {16}},
                                                            {7, {16, 32}},
                                                            {8, {16, 32}},
                                                            {9, {32, 64}},
                                                            {11, {32, 64}},
                                                            {12, {32, 64, 128}},
                                                            {16, {32, 64, 128}},
                                                            {17, {64, 128}},
                                                            {18, {64, 128, 256}},
                                                            {32, {64, 128, 256}}};
    for (const auto& [factors, runs] : expected) {
        EXPECT_EQ(LegalRuns(EDesign::FFR_IV, factors), runs) << factors;
    }
}

TEST(FFRBuilders, ResolutionFourHasNoLegalRunsWithoutAFraction) {
    EXPECT_THAT(LegalRuns(EDesign::FFR_IV, 5), testing::IsEmpty());
    EXPECT_THAT(LegalRuns(EDesign::FFR_IV, 33), testing::IsEmpty());
}

TEST(FFRBuilders, TheRunLimitCutsTheLegalRuns) {
    EXPECT_THAT(LegalRuns(EDesign::FFR_IV, 7, 20), testing::ElementsAre(16));
    EXPECT_THAT(LegalRuns(EDesign::FFR_IV, 7, 32), testing::ElementsAre(16, 32));
    EXPECT_THAT(LegalRuns(EDesign::FFR_IV, 7, 15), testing::IsEmpty());
}

TEST(FFRBuilders, ResolutionThreeAndFiveHaveOneRunCount) {
    EXPECT_THAT(LegalRuns(EDesign::FFR_III, 31), testing::ElementsAre(32));
    EXPECT_THAT(LegalRuns(EDesign::FFR_III, 32, 20), testing::ElementsAre(64));
    EXPECT_THAT(LegalRuns(EDesign::FFR_V, 12), testing::ElementsAre(256));
}

TEST(FFRBuilders, LegalBlocksFollowTheBlockGenerators) {
    EXPECT_THAT(LegalBlocks(EDesign::FFR_III, 3, 4), testing::ElementsAre(1));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_III, 7, 8), testing::ElementsAre(1));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_III, 12, 16), testing::ElementsAre(1, 2, 4));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_IV, 7, 16), testing::ElementsAre(1, 2, 4));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_IV, 7, 32), testing::ElementsAre(1, 2, 4, 8));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_V, 26, 1024), testing::ElementsAre(1, 2, 4));
}

TEST(FFRBuilders, MoreThanThirtyOneFactorsHaveNoBlocks) {
    EXPECT_THAT(LegalBlocks(EDesign::FFR_IV, 31, 64), testing::ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::FFR_IV, 32, 64), testing::ElementsAre(1));
}

TEST(FFRBuilders, ResolutionThreeIsTheFirstProposalAboveThirtyTwoFactors) {
    EXPECT_EQ(Builder(EDesign::FFR_III).GetPriority(Quantitatives(12)), 2);
    EXPECT_EQ(Builder(EDesign::FFR_III).GetPriority(Quantitatives(32)), 0);
    EXPECT_EQ(Builder(EDesign::FFR_III).GetPriority(Quantitatives(33)), 1);
    EXPECT_EQ(Builder(EDesign::FFR_IV).GetPriority(Quantitatives(32)), 1);
    EXPECT_EQ(Builder(EDesign::FFR_IV).GetPriority(Quantitatives(60)), 1);
    EXPECT_EQ(Builder(EDesign::FFR_V).GetPriority(Quantitatives(5)), 1);
    EXPECT_EQ(Builder(EDesign::FFR_V).GetPriority(Quantitatives(30)), 0);
}

TEST(FFRBuilders, ServePlates) {
    for (const EDesign::Type type : cFamilies) {
        const TestFactors factors = Quantitatives(7);
        EXPECT_TRUE(Builder(type).IsREDMUPRecommended(factors, DesignOptions()));
        EXPECT_EQ(Builder(type).GetMinimumCenterPoints(), 0U);
        EXPECT_EQ(Builder(type).GetDefaultCenterPoints(EObjective::RobustnessVerification), 1U);
    }
}
