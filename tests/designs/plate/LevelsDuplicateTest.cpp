#include "designs/plate/LevelsDuplicate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::vector<unsigned> cTimes{2, 3, 4, 6};

DesignOptions Options(const DesignBuilder& builder, const Factors& factors, unsigned maxRuns) {
    DesignOptions options(builder, factors);
    options.SetMaxRuns(maxRuns);
    options.SetCenterPoints(0);
    return options;
}

std::vector<float> Built(const DesignBuilder& builder,
                         const Factors& factors,
                         const DesignOptions& options) {
    const auto design = builder.Build(factors, options);
    return design ? built::ColumnOf(*design->GetDesignMatrix(), 1) : std::vector<float>();
}

TEST(LevelsDuplicate, NameTellsHowOften) {
    const std::map<unsigned, std::string> names{{1, "Levels * 1"},
                                                {2, "Levels Duplicate"},
                                                {3, "Levels Triplicate"},
                                                {4, "Levels Quad."},
                                                {5, "Levels * 5"},
                                                {6, "Levels * 6"}};
    for (const auto& [times, name] : names) {
        const LevelsDuplicate builder(times);
        EXPECT_EQ(builder.GetShortString(), name);
        EXPECT_EQ(builder.GetDisplayName(), name);
        EXPECT_EQ(builder.GetDesignData(), name);
        EXPECT_EQ(builder.GetDescription(), name + " Replicated to fit the plate.");
    }
}

TEST(LevelsDuplicate, StandsOnTheRegisteredLevels) {
    const LevelsDuplicate builder(2);
    EXPECT_EQ(builder.GetBaseBuilder(), AllDesigns::GetDesignBuilder(EDesign::Levels, ""));
    EXPECT_EQ(builder.GetBaseDesignType(), 32);
    EXPECT_EQ(builder.IsDesign(), 34);
    EXPECT_EQ(builder.GetPriority(TestFactors()), 1);
    EXPECT_EQ(builder.GetMinimumCenterPoints(), 0U);
}

TEST(LevelsDuplicate, ModelsAreThoseOfTheLevels) {
    const LevelsDuplicate builder(2);
    const TestFactors factors = TestFactors().MultilevelOf(4);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Screening), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Optimization), EModel::Quadratic);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::SplitObjective), EModel::None);
}

TEST(LevelsDuplicate, IsValidWhereTheLevelsGoSoOftenAndNotOnceMore) {
    for (const unsigned times : cTimes) {
        const LevelsDuplicate builder(times);
        for (const TestFactors& factors :
             {TestFactors().MultilevelOf(4), TestFactors().Qualitative(4)}) {
            for (unsigned limit = 0; limit <= 40; ++limit) {
                EXPECT_EQ(builder.IsValid(factors, Options(builder, factors, limit)),
                          limit / 4 == times)
                    << times << " times under " << limit;
            }
        }
    }
}

TEST(LevelsDuplicate, SingleLevelStandsAsOftenAsTheLimitSays) {
    const LevelsDuplicate builder(6);
    const TestFactors factors = TestFactors().Qualitative(1);
    EXPECT_FALSE(builder.IsValid(factors, Options(builder, factors, 5)));
    EXPECT_TRUE(builder.IsValid(factors, Options(builder, factors, 6)));
    EXPECT_FALSE(builder.IsValid(factors, Options(builder, factors, 7)));
}

TEST(LevelsDuplicate, FactorWithoutLevelsIsInvalid) {
    const LevelsDuplicate builder(2);
    for (const TestFactors& factors :
         {TestFactors().Qualitative(0), TestFactors().MultilevelOf(0)}) {
        EXPECT_FALSE(builder.IsValid(factors, Options(builder, factors, 8)));
    }
}

TEST(LevelsDuplicate, QuantitativeAndOtherFactorSetsAreInvalid) {
    const LevelsDuplicate builder(2);
    for (const TestFactors& factors : {TestFactors(),
                                       TestFactors().Quantitative(),
                                       TestFactors().Formulation(0, 1),
                                       TestFactors().Qualitative(4).Qualitative(4),
                                       TestFactors().MultilevelOf(4).Quantitative()}) {
        for (unsigned limit = 1; limit <= 20; ++limit) {
            const DesignOptions options = Options(builder, factors, limit);
            EXPECT_FALSE(builder.IsValid(factors, options));
            EXPECT_EQ(builder.Build(factors, options), nullptr);
        }
    }
}

TEST(LevelsDuplicate, RulesOfTheLevelsHoldToo) {
    const LevelsDuplicate builder(2);
    const TestFactors factors = TestFactors().Qualitative(4);
    DesignOptions options = Options(builder, factors, 8);
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(builder.IsValid(factors, options));
    options.SetModel(EModel::Quadratic);
    EXPECT_FALSE(builder.IsValid(factors, options));
}

TEST(LevelsDuplicate, DefaultRunsAreTheLevelsSoOften) {
    for (const unsigned times : cTimes) {
        const LevelsDuplicate builder(times);
        for (const TestFactors& factors :
             {TestFactors().MultilevelOf(4), TestFactors().Qualitative(4)}) {
            EXPECT_EQ(builder.GetDefaultRuns(factors, EObjective::Screening), 4 * times);
            EXPECT_EQ(DesignOptions(builder, factors).GetRuns(), 4 * times);
        }
        EXPECT_EQ(builder.GetDefaultRuns(TestFactors().Quantitative(), EObjective::Screening),
                  5 * times);
    }
}

TEST(LevelsDuplicate, NoFactorsHaveNoRuns) {
    const LevelsDuplicate builder(2);
    EXPECT_EQ(builder.GetDefaultRuns(TestFactors(), EObjective::Screening), 0U);
    EXPECT_EQ(DesignOptions(builder, TestFactors()).GetRuns(), 0U);
    EXPECT_THAT(builder.GetLegalRuns(TestFactors(), DesignOptions()), IsEmpty());
}

TEST(LevelsDuplicate, RunsOnceSetStayThoseOfAQualitativeFactor) {
    const LevelsDuplicate builder(2);
    DesignOptions options;
    options.SetRuns(11);
    EXPECT_EQ(builder.GetDefaultRuns(TestFactors().Qualitative(4), options), 11U);
    EXPECT_EQ(builder.GetDefaultRuns(TestFactors().MultilevelOf(4), options), 8U);
}

TEST(LevelsDuplicate, LegalRunsOfAMultilevelFactorAreTheLevelsSoOften) {
    const LevelsDuplicate builder(3);
    const TestFactors factors = TestFactors().MultilevelOf(4);
    for (const unsigned limit : {11U, 12U, 14U, 100U}) {
        const auto legal = builder.GetLegalRuns(factors, Options(builder, factors, limit));
        EXPECT_EQ(legal, limit >= 12 ? std::vector<unsigned>{12} : std::vector<unsigned>())
            << limit;
    }
}

TEST(LevelsDuplicate, LegalRunsOfAQualitativeFactorFillTheLimit) {
    const LevelsDuplicate builder(3);
    const TestFactors factors = TestFactors().Qualitative(4);
    const std::map<unsigned, std::vector<unsigned>> expected{
        {3, {}}, {11, {}}, {12, {12}}, {13, {13}}, {15, {15}}, {16, {12}}, {100, {12}}};
    for (const auto& [limit, legal] : expected) {
        EXPECT_EQ(builder.GetLegalRuns(factors, Options(builder, factors, limit)), legal) << limit;
    }
}

TEST(LevelsDuplicate, LegalRunsOfAQuantitativeFactorAreMultiples) {
    const LevelsDuplicate builder(3);
    const TestFactors factors = TestFactors().Quantitative();
    EXPECT_THAT(builder.GetLegalRuns(factors, Options(builder, factors, 14)),
                ElementsAre(6U, 9U, 12U));
}

TEST(LevelsDuplicate, MultilevelDesignIsTheLevelsSoOften) {
    const TestFactors factors = TestFactors().MultilevelOf(3);
    const LevelsDuplicate builder(2);
    EXPECT_THAT(Built(builder, factors, Options(builder, factors, 8)),
                ElementsAre(65, 66, 67, 65, 66, 67));
}

TEST(LevelsDuplicate, FirstLevelsFillTheRunsOfAQualitativeFactor) {
    const TestFactors factors = TestFactors().Qualitative(3);
    const LevelsDuplicate builder(2);
    EXPECT_THAT(Built(builder, factors, Options(builder, factors, 8)),
                ElementsAre(65, 66, 67, 65, 66, 67, 65, 66));
}

TEST(LevelsDuplicate, SidesOfPlatesAreFilledExactlyByAQualitativeFactor) {
    for (const unsigned side : {8U, 12U, 16U, 24U, 32U, 48U}) {
        for (unsigned levels = 2; levels <= 24; ++levels) {
            const TestFactors factors = TestFactors().Qualitative(levels);
            for (const unsigned times : cTimes) {
                const LevelsDuplicate builder(times);
                // As the search for a side's design leaves them: the rest is centre points.
                DesignOptions options = Options(builder, factors, side);
                options.SetCenterPoints(side - std::min(side, options.GetRuns()));
                const auto column = Built(builder, factors, options);
                EXPECT_EQ(column.size(), side / levels == times ? side : 0U);
                for (std::size_t row = 0; row < column.size(); ++row) {
                    EXPECT_EQ(column[row], 65.0F + static_cast<float>(row % levels));
                }
            }
        }
    }
}

TEST(LevelsDuplicate, CentrePointsOfAMultilevelFactorFillTheSide) {
    const TestFactors factors = TestFactors().MultilevelOf(3);
    const LevelsDuplicate builder(2);
    DesignOptions options = Options(builder, factors, 8);
    options.SetCenterPoints(2);
    EXPECT_THAT(Built(builder, factors, options), ElementsAre(65, 66, 67, 65, 66, 67, 66, 66));
}

TEST(LevelsDuplicate, ReplicatedRunsAreAddedOnce) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().MultilevelOf(3);
    const LevelsDuplicate builder(2);
    DesignOptions options = Options(builder, factors, 8);
    options.SetReplicatedRuns(1);
    EXPECT_EQ(Built(builder, factors, options).size(), 7U);
}

TEST(LevelsDuplicate, ReplicatesRepeatTheCopies) {
    const LevelsDuplicate builder(2);
    const std::vector<float> once{65, 66, 67, 65, 66, 67};
    std::vector<float> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    for (const TestFactors& factors :
         {TestFactors().MultilevelOf(3), TestFactors().Qualitative(3)}) {
        DesignOptions options = Options(builder, factors, 8);
        options.SetReplicates(1);
        // More runs than the limit: nothing is left to fill.
        EXPECT_THAT(Built(builder, factors, options), ElementsAreArray(twice));
    }
}

TEST(LevelsDuplicate, TooManyRunsAreRefusedBeforeTheyAreMade) {
    const TestFactors factors = TestFactors().MultilevelOf(3);
    const LevelsDuplicate builder(2);
    DesignOptions options = Options(builder, factors, 8);
    options.SetReplicates(std::numeric_limits<unsigned>::max());
    EXPECT_THROW((void)builder.Build(factors, options), Exception);
}

TEST(LevelsDuplicate, CloneIsOfTheSameClass) {
    const TestFactors factors = TestFactors().MultilevelOf(3);
    const LevelsDuplicate builder(2);
    const auto design = builder.Build(factors, Options(builder, factors, 8));
    ASSERT_NE(design, nullptr);
    EXPECT_NE(dynamic_cast<LevelsDuplicateClass*>(design->Clone().get()), nullptr);
}

}  // namespace
