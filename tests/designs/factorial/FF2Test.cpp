#include "designs/factorial/FF2.h"

#include <memory>

#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using Table = NCDataMatrix<float>;

const FF2Builder cBuilder("FF2", "Full Fac (2 levels)", "");

bool IsValidWith(const Factors& factors, EObjective::Type objective, EModel::Type model) {
    DesignOptions options(cBuilder, factors);
    options.SetObjective(objective);
    options.SetModel(model);
    return cBuilder.IsValid(factors, options);
}

bool IsValidByDefault(const Factors& factors) {
    return cBuilder.IsValid(factors, DesignOptions(cBuilder, factors));
}

Table Built(const Factors& factors, const DesignOptions& options) {
    const auto design = cBuilder.Build(factors, options);
    return design ? *design->GetDesignMatrix() : Table();
}

TEST(FF2Builder, RunsArePowersOfTwoForOneToTenColumns) {
    EXPECT_EQ(cBuilder.GetDefaultRuns(TestFactors(), EObjective::Screening), 0U);
    unsigned expected = 2;
    for (int columns = 1; columns <= 10; ++columns, expected *= 2) {
        EXPECT_EQ(
            cBuilder.GetDefaultRuns(TestFactors().Quantitatives(columns), EObjective::Optimization),
            expected);
    }
    EXPECT_EQ(cBuilder.GetDefaultRuns(TestFactors().Quantitatives(11), EObjective::Screening), 0U);
}

TEST(FF2Builder, RunsGoByTheExpandedCount) {
    EXPECT_EQ(
        cBuilder.GetDefaultRuns(TestFactors().Quantitative().Qualitative(3), EObjective::Screening),
        8U);
}

TEST(FF2Builder, OnlyTheDefaultRunsAreLegal) {
    EXPECT_THAT(cBuilder.GetLegalRuns(TestFactors().Quantitatives(5), DesignOptions()),
                ElementsAre(32U));
}

TEST(FF2Builder, AnswersForItsFamily) {
    EXPECT_EQ(cBuilder.IsDesign(), 1);
    EXPECT_EQ(cBuilder.GetMinimumCenterPoints(), 0U);
    EXPECT_EQ(cBuilder.GetDefaultCenterPoints(EObjective::RobustnessVerification), 1U);
    for (const int objective : {0, 1, 2, 3, 5}) {
        EXPECT_EQ(cBuilder.GetDefaultCenterPoints(static_cast<EObjective::Type>(objective)), 3U);
    }
}

TEST(FF2Builder, ModelIsInteractionForScreeningAndRobustness) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const int objective : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(cBuilder.GetDefaultModel(factors, static_cast<EObjective::Type>(objective)),
                  objective == 1 || objective == 4 ? EModel::Interaction : EModel::None)
            << objective;
    }
}

TEST(FF2Builder, TwoToTenFactorsAreValid) {
    for (int count = 0; count <= 12; ++count) {
        EXPECT_EQ(IsValidByDefault(TestFactors().Quantitatives(count)), count >= 2 && count <= 10)
            << count;
    }
}

TEST(FF2Builder, FillerNeedsAFreeSum) {
    EXPECT_FALSE(IsValidByDefault(TestFactors().Quantitatives(3).WithFiller(false)));
    EXPECT_TRUE(IsValidByDefault(TestFactors().Quantitatives(3).WithFiller(true)));
}

TEST(FF2Builder, ConstraintsAreNotValid) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(cBuilder, factors);
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_TRUE(cBuilder.IsValid(factors, options));
    options.GetDesignSpecificOptions()->SetConstraints(
        NCDOE::Constraints({{{{0, 1.0}}, 0.0, true}}), factors);
    EXPECT_FALSE(cBuilder.IsValid(factors, options));
}

TEST(FF2Builder, ObjectiveIsScreeningOrRobustness) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const int objective : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(
            IsValidWith(factors, static_cast<EObjective::Type>(objective), EModel::Interaction),
            objective == 1 || objective == 4)
            << objective;
    }
}

TEST(FF2Builder, ModelIsLinearOrInteraction) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const int model : {0, 1, 2, 3, 4, 5, 6}) {
        EXPECT_EQ(IsValidWith(factors, EObjective::Screening, static_cast<EModel::Type>(model)),
                  model == 1 || model == 2)
            << model;
    }
}

TEST(FF2Builder, FormulationFactorsAreNotValidWithoutAFiller) {
    EXPECT_FALSE(IsValidByDefault(TestFactors().Quantitatives(2).Formulation()));
    EXPECT_TRUE(IsValidByDefault(TestFactors().Quantitatives(2).Formulation().WithFiller(true)));
}

TEST(FF2Builder, FactorOfThreeLevelsIsNotValid) {
    EXPECT_FALSE(IsValidByDefault(TestFactors().Quantitatives(2).Qualitative(3)));
    EXPECT_FALSE(IsValidByDefault(TestFactors().Quantitatives(2).MultilevelOf(3)));
    EXPECT_TRUE(IsValidByDefault(TestFactors().Quantitative().Qualitative(2).MultilevelOf(2)));
}

TEST(FF2Builder, RunLimitMustReachTheRuns) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(cBuilder, factors);
    options.SetMaxRuns(8);
    EXPECT_TRUE(cBuilder.IsValid(factors, options));
    options.SetMaxRuns(7);
    EXPECT_FALSE(cBuilder.IsValid(factors, options));
    EXPECT_FALSE(options.AssureMaxRuns(cBuilder, factors));
    EXPECT_EQ(options.GetRuns(), 8U);
    EXPECT_EQ(options.GetCenterPoints(), 0U);
}

TEST(FF2Builder, InvalidRequestGivesAnEmptyHandle) {
    const TestFactors factors = TestFactors().Quantitatives(11);
    EXPECT_EQ(cBuilder.Build(factors, DesignOptions(cBuilder, factors)), nullptr);
}

TEST(FF2Builder, CancelFlagIsNotConsulted) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    bool cancel = true;
    EXPECT_NE(cBuilder.Build(factors, DesignOptions(cBuilder, factors), &cancel), nullptr);
}

TEST(FF2, ThreeFactorsStandInStandardOrderBeforeTheirCentrePoints) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Built(factors, DesignOptions(cBuilder, factors)),
              (Table{{-1, -1, -1},
                     {1, -1, -1},
                     {-1, 1, -1},
                     {1, 1, -1},
                     {-1, -1, 1},
                     {1, -1, 1},
                     {-1, 1, 1},
                     {1, 1, 1},
                     {0, 0, 0},
                     {0, 0, 0},
                     {0, 0, 0}}));
}

DesignOptions CoreOnly(const Factors& factors, unsigned blocks = 1) {
    DesignOptions options(cBuilder, factors);
    options.SetCenterPoints(0);
    options.SetBlocks(blocks);
    return options;
}

TEST(FF2, HasFullResolutionForEveryCount) {
    for (int count = 2; count <= 10; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const Table table = Built(factors, CoreOnly(factors));
        EXPECT_EQ(table.SizeRows(), 1 << count);
        EXPECT_THAT(table, HasResolutionAtLeast(count + 1));
        EXPECT_THAT(table, IsFoldOver());
    }
}

TEST(FF2, LevelFactorsTakeTheirCodes) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(2).Quantitative();
    DesignOptions options = CoreOnly(factors);
    options.SetCenterPoints(1);
    EXPECT_EQ(Built(factors, options),
              (Table{{65, 65, -1},
                     {66, 65, -1},
                     {65, 66, -1},
                     {66, 66, -1},
                     {65, 65, 1},
                     {66, 65, 1},
                     {65, 66, 1},
                     {66, 66, 1},
                     {65, 65, 0}}));
}

// The block column is one more two-level column: with two blocks, all main effects and two-factor
// interactions of three factors or more are clear of it.
TEST(FF2, TwoBlocksAreConfoundedWithTheHighestInteractionAlone) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table table = Built(factors, CoreOnly(factors, 2));
    ASSERT_EQ(table.SizeColumns(), 4);
    EXPECT_THAT(table, HasResolutionAtLeast(4));
    EXPECT_THAT(table, ::testing::Not(HasResolutionAtLeast(5)));
}

TEST(FF2, BlocksAreOfOneSizeWithAllLevelsInEach) {
    for (const unsigned blocks : {2U, 4U, 8U}) {
        const TestFactors factors = TestFactors().Quantitatives(4).Qualitative(2);
        const DesignOptions options = CoreOnly(factors, blocks);
        const Table table = Built(factors, options);
        EXPECT_THAT(table, HasOnlyLegalLevels(factors, options));
        EXPECT_THAT(table, IsBalanced(factors));
        EXPECT_THAT(table, HasProportionalFrequencies());
    }
}

TEST(FF2, CentrePointsRotateThroughTheBlocks) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = CoreOnly(factors, 2);
    options.SetCenterPoints(3);
    const Table table = Built(factors, options);
    ASSERT_EQ(table.SizeRows(), 11);
    EXPECT_EQ(table(9, 4), 65);
    EXPECT_EQ(table(10, 4), 66);
    EXPECT_EQ(table(11, 4), 65);
}

TEST(FF2, PermutingTheFactorsPermutesTheColumns) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(2);
    const TestFactors swapped = TestFactors().Qualitative(2).Quantitative();
    const Table table = Built(factors, CoreOnly(factors));
    Table other = Built(swapped, CoreOnly(swapped));
    other.RearrangeColumns({2, 1});
    for (int row = 1; row <= 4; ++row) {
        bool found = false;
        for (int candidate = 1; candidate <= 4; ++candidate) {
            found = found || other.GetRow(candidate) == table.GetRow(row);
        }
        EXPECT_TRUE(found) << row;
    }
}

TEST(FF2, RescalingTheSettingsLeavesTheCodedDesign) {
    const TestFactors factors = TestFactors().Quantitative(0, 1).Quantitative(10, 20);
    const TestFactors rescaled = TestFactors().Quantitative(-5, 700).Quantitative(0, 0.1F);
    EXPECT_EQ(Built(factors, CoreOnly(factors)), Built(rescaled, CoreOnly(rescaled)));
}

TEST(FF2, CloneIsAnFF2OfTheSameMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const FF2 design(factors, CoreOnly(factors));
    const auto clone = design.Clone();
    EXPECT_NE(dynamic_cast<FF2*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
    EXPECT_EQ(&clone->GetFactors(), &factors);
}

}  // namespace
