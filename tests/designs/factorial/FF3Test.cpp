#include "designs/factorial/FF3.h"

#include <array>
#include <cstddef>
#include <memory>

#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using Table = NCDataMatrix<float>;

const FF3Builder cBuilder("FF3", "Full Fac (3 levels)", "");
const TestFactors cQuantitative = TestFactors().Quantitatives(3);
const TestFactors cWithQualitative = TestFactors().Quantitatives(2).Qualitative(3);

bool IsValidWith(const Factors& factors, int objective, int model, unsigned maxRuns = 12000) {
    DesignOptions options(cBuilder, factors);
    options.SetObjective(static_cast<EObjective::Type>(objective));
    options.SetModel(static_cast<EModel::Type>(model));
    options.SetMaxRuns(maxRuns);
    return cBuilder.IsValid(factors, options);
}

Table Built(const Factors& factors, EObjective::Type objective, unsigned centerPoints) {
    DesignOptions options(cBuilder, factors);
    options.SetObjective(objective);
    options.SetModel(cBuilder.GetDefaultModel(factors, objective));
    options.SetCenterPoints(centerPoints);
    const auto design = cBuilder.Build(factors, options);
    return design ? *design->GetDesignMatrix() : Table();
}

TEST(FF3Builder, RunsArePowersOfThreeForOneToSixFactors) {
    constexpr std::array<unsigned, 9> cRuns{0, 3, 9, 27, 81, 243, 729, 0, 0};
    for (std::size_t count = 0; count < cRuns.size(); ++count) {
        EXPECT_EQ(cBuilder.GetDefaultRuns(TestFactors().Quantitatives(static_cast<int>(count)),
                                          EObjective::Optimization),
                  cRuns[count])
            << count;
    }
}

TEST(FF3Builder, RunsGoByTheFactorCount) {
    EXPECT_EQ(
        cBuilder.GetDefaultRuns(TestFactors().Qualitative(3).Qualitative(3), EObjective::Screening),
        9U);
}

TEST(FF3Builder, OnlyTheDefaultRunsAreLegal) {
    EXPECT_THAT(cBuilder.GetLegalRuns(cQuantitative, DesignOptions()), ElementsAre(27U));
}

TEST(FF3Builder, AnswersForItsFamily) {
    EXPECT_EQ(cBuilder.IsDesign(), 2);
    EXPECT_EQ(cBuilder.GetMinimumCenterPoints(), 0U);
}

TEST(FF3Builder, ModelGoesByObjective) {
    constexpr std::array cModels{EModel::None,
                                 EModel::Interaction,
                                 EModel::Quadratic,
                                 EModel::None,
                                 EModel::Interaction,
                                 EModel::Quadratic};
    for (std::size_t objective = 0; objective < cModels.size(); ++objective) {
        EXPECT_EQ(cBuilder.GetDefaultModel(cQuantitative, static_cast<EObjective::Type>(objective)),
                  cModels[objective])
            << objective;
    }
}

TEST(FF3Builder, QuantitativeFactorsServeQuadraticModelsForOptimization) {
    for (int objective = 0; objective <= 5; ++objective) {
        for (int model = 0; model <= 6; ++model) {
            const bool expected = (objective == 2 || objective == 5) && model == 3;
            EXPECT_EQ(IsValidWith(cQuantitative, objective, model), expected)
                << objective << ' ' << model;
        }
    }
}

TEST(FF3Builder, QualitativeFactorServesModelsWithoutSquaresForScreening) {
    for (int objective = 0; objective <= 5; ++objective) {
        for (int model = 0; model <= 6; ++model) {
            const bool expected = (objective == 1 || objective == 4) && (model == 1 || model == 2);
            EXPECT_EQ(IsValidWith(cWithQualitative, objective, model), expected)
                << objective << ' ' << model;
        }
    }
}

TEST(FF3Builder, MultilevelFactorsServeOptimizationButNotScreening) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(3);
    EXPECT_TRUE(IsValidWith(factors, 2, 3));
    EXPECT_FALSE(IsValidWith(factors, 1, 2));
}

TEST(FF3Builder, TwoToSixFactorsAreValid) {
    for (int count = 0; count <= 8; ++count) {
        EXPECT_EQ(IsValidWith(TestFactors().Quantitatives(count), 2, 3), count >= 2 && count <= 6)
            << count;
    }
}

TEST(FF3Builder, FactorOfAnotherLevelCountIsNotValid) {
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitative().Qualitative(2), 1, 2));
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitative().MultilevelOf(4), 2, 3));
}

TEST(FF3Builder, RunLimitMustReachTheRuns) {
    EXPECT_TRUE(IsValidWith(cQuantitative, 2, 3, 27));
    EXPECT_FALSE(IsValidWith(cQuantitative, 2, 3, 26));
    EXPECT_TRUE(IsValidWith(TestFactors().Quantitatives(5), 2, 3, 243));
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitatives(5), 2, 3, 242));
}

TEST(FF3Builder, FillerNeedsAFreeSum) {
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitatives(3).WithFiller(false), 2, 3));
    EXPECT_TRUE(IsValidWith(TestFactors().Quantitatives(3).WithFiller(true), 2, 3));
}

TEST(FF3Builder, ConstraintsAreNotValid) {
    DesignOptions options(cBuilder, cQuantitative);
    options.SetObjective(EObjective::Optimization);
    options.SetModel(EModel::Quadratic);
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_TRUE(cBuilder.IsValid(cQuantitative, options));
    options.GetDesignSpecificOptions()->SetConstraints(
        NCDOE::Constraints({{{{0, 1.0}}, 0.0, true}}), cQuantitative);
    EXPECT_FALSE(cBuilder.IsValid(cQuantitative, options));
}

TEST(FF3Builder, FormulationFactorsAreNotValidWithoutAFiller) {
    EXPECT_FALSE(IsValidWith(TestFactors().Quantitatives(2).Formulation(), 2, 3));
    EXPECT_FALSE(IsValidWith(TestFactors().Qualitative(3).Formulation(), 1, 2));
}

TEST(FF3Builder, FormulationFactorsWithAFillerAreValidWithFamilyOptionsToo) {
    const TestFactors factors = TestFactors().Quantitatives(2).Formulation().WithFiller(true);
    DesignOptions options(cBuilder, factors);
    options.SetObjective(EObjective::Optimization);
    options.SetModel(EModel::Quadratic);
    EXPECT_TRUE(cBuilder.IsValid(factors, options));
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_TRUE(cBuilder.IsValid(factors, options));
}

TEST(FF3Builder, InvalidRequestGivesAnEmptyHandle) {
    EXPECT_EQ(cBuilder.Build(cQuantitative, DesignOptions(cBuilder, cQuantitative)), nullptr);
}

TEST(FF3, TwoFactorsStandInStandardOrderBeforeTheirCentrePoints) {
    EXPECT_EQ(
        Built(TestFactors().Quantitatives(2), EObjective::Optimization, 1),
        (Table{
            {-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {0, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}, {0, 0}}));
}

TEST(FF3, LevelFactorsTakeTheirCodes) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3);
    EXPECT_EQ(
        Built(factors, EObjective::Screening, 0),
        (Table{
            {-1, 65}, {0, 65}, {1, 65}, {-1, 66}, {0, 66}, {1, 66}, {-1, 67}, {0, 67}, {1, 67}}));
}

TEST(FF3, CentrePointsTakeMiddleAndFirstLevels) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).MultilevelOf(3);
    EXPECT_THAT(Built(factors, EObjective::Screening, 2), HasCentrePointRows(2, factors));
}

TEST(FF3, HoldsEveryCombinationOnce) {
    for (int count = 2; count <= 6; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const Table table = Built(factors, EObjective::Optimization, 0);
        EXPECT_THAT(table, IsBalanced(factors)) << count;
        EXPECT_THAT(table, HasProportionalFrequencies()) << count;
        EXPECT_THAT(table, IsFoldOver()) << count;
    }
}

TEST(FF3, CloneIsAnFF3OfTheSameMatrix) {
    DesignOptions options(cBuilder, cQuantitative);
    const FF3 design(cQuantitative, options);
    const auto clone = design.Clone();
    EXPECT_NE(dynamic_cast<FF3*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
}

}  // namespace
