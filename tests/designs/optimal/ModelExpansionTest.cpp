#include "designs/optimal/ModelExpansion.h"

#include <gtest/gtest.h>

#include <limits>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "tests/support/TestFactors.h"

namespace {

using DOpt::ModelExpansion;

/// A generator that knows the variables of some factors.
struct Setting {
    Setting(const TestFactors& factors, unsigned blocks = 1) : adapter(factors, blocks) {
        generator.SetVariables(static_cast<int>(adapter.GetDesignFactorCountExpanded()));
        generator.SetIsMixFrom(adapter);
        generator.SetVarRangesFrom(adapter);
        generator.SetTransformsFrom(adapter);
    }
    [[nodiscard]] NCDataMatrix<float> Expand(const NCDataMatrix<float>& rows,
                                             const ModelTerms::List& terms) const {
        ModelExpansion expansion(generator, adapter);
        expansion.AddModelTerms(terms);
        return expansion.MakeMatrix(rows);
    }
    [[nodiscard]] int PotentialTerms(EModel::Type process,
                                     EModel::Type mixture,
                                     const ModelTerms::List& terms) const {
        ModelExpansion expansion(generator, adapter);
        expansion.AddModelTerms(terms);
        expansion.AddPotentialTerms(process, mixture);
        return expansion.GetPotentialTerms();
    }

    DOptFactorAdapter adapter;
    DOptGen generator;
};

TEST(ModelExpansion, PutsTheConstantFirstAndCodesTheRanges) {
    const TestFactors factors = TestFactors().Quantitative(150, 180).Quantitative(0, 4);
    EXPECT_EQ(Setting(factors).Expand({{150, 4}, {165, 1}, {180, 0}}, {}),
              (NCDataMatrix<float>{{1, -1, 1}, {1, 0, -0.5F}, {1, 1, -1}}));
}

TEST(ModelExpansion, CodesInTheScaleOfTheTransform) {
    const TestFactors factors = TestFactors()
                                    .Quantitative(1, 100)
                                    .Transformed(TransformStruct(TransformStruct::Log10))
                                    .Quantitative();
    EXPECT_EQ(Setting(factors).Expand({{1, 0}, {10, 0}, {100, 0}}, {}),
              (NCDataMatrix<float>{{1, -1, 0}, {1, 0, 0}, {1, 1, 0}}));
}

// Its low end is the last level, its high end the first.
TEST(ModelExpansion, AMultilevelFactorIsCodedFromItsLastLevelUp) {
    const TestFactors factors = TestFactors().Multilevel({10, 20, 30}).Quantitative();
    EXPECT_EQ(Setting(factors).Expand({{10, 0}, {30, 0}}, {}),
              (NCDataMatrix<float>{{1, 1, 0}, {1, -1, 0}}));
}

TEST(ModelExpansion, WithoutScaleValuesStayReal) {
    const TestFactors factors = TestFactors().Quantitative(150, 180).Quantitative();
    Setting setting(factors);
    setting.generator.search.scale = false;
    EXPECT_EQ(setting.Expand({{150, 1}}, {{0, 1}}), (NCDataMatrix<float>{{1, 150, 1, 150}}));
}

TEST(ModelExpansion, TermsAreProductsInTheOrderOfTheList) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(Setting(factors).Expand({{0.5F, -1}}, {{}, {0}, {1}, {1, 1}, {0, 1}, {0, 0, 0}}),
              (NCDataMatrix<float>{{1, 0.5F, -1, 1, -0.5F, 0.125F}}));
}

TEST(ModelExpansion, ATermIsTakenOnce) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(Setting(factors).Expand({{0.5F, -1}}, {{0, 1}, {1, 0}, {0, 1}}).SizeColumns(), 4);
}

TEST(ModelExpansion, AQualitativeFactorsTermHasAColumnForEachVariable) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative();
    EXPECT_EQ(Setting(factors).Expand({{1, 0, 0.5F}, {-1, -1, 0.5F}}, {{0, 1}}),
              (NCDataMatrix<float>{{1, 1, 0, 0.5F, 0.5F, 0}, {1, -1, -1, 0.5F, -0.5F, -0.5F}}));
}

TEST(ModelExpansion, ARepeatedQualitativeFactorDropsTheTerm) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative();
    EXPECT_EQ(Setting(factors).Expand({{1, 0, 1}}, {{0, 0}, {0, 0, 1}}).SizeColumns(), 4);
}

TEST(ModelExpansion, TheMixtureVariableOfTheLargestRangeIsLeftOut) {
    const TestFactors factors =
        TestFactors().Formulation(0.1F, 0.3F).Formulation(0, 0.8F).Formulation(0, 0.2F);
    const Setting setting(factors);
    ModelExpansion expansion(setting.generator, setting.adapter);
    EXPECT_EQ(expansion.GetSlackVariable(), 2);
    expansion.AddModelTerms({{0, 1}, {0, 2}, {1, 1}, {2, 2}});
    EXPECT_EQ(expansion.GetModelTerms(), 5);
    // 0.2 of 0.1 to 0.3 is 0, 0.2 of 0 to 0.2 is 1.
    const NCDataMatrix<float> matrix = expansion.MakeMatrix({{0.2F, 0.6F, 0.2F}});
    EXPECT_NEAR(matrix(1, 2), 0, 1e-6);
    EXPECT_NEAR(matrix(1, 3), 1, 1e-6);
    EXPECT_NEAR(matrix(1, 4), 0, 1e-6);  // first by third
    EXPECT_NEAR(matrix(1, 5), 1, 1e-6);  // square of the third
}

TEST(ModelExpansion, OfEqualMixtureRangesTheFirstIsLeftOut) {
    const TestFactors factors =
        TestFactors().Quantitative().Formulation().Formulation().Formulation();
    const Setting setting(factors);
    EXPECT_EQ(ModelExpansion(setting.generator, setting.adapter).GetSlackVariable(), 2);
}

TEST(ModelExpansion, WithAFreeSumNothingIsLeftOut) {
    const TestFactors factors = TestFactors().Formulation().Formulation().WithFiller(true);
    const Setting setting(factors);
    EXPECT_EQ(ModelExpansion(setting.generator, setting.adapter).GetSlackVariable(), 0);
}

// The caller's first factor stands behind the second here.
TEST(ModelExpansion, TermsNameFactorsInTheCallersOrder) {
    const TestFactors factors =
        TestFactors().Formulation(0, 0.5F).Quantitative().Formulation().Formulation(0, 0.5F);
    const NCDataMatrix<float> matrix =
        Setting(factors).Expand({{-1, 0.5F, 0.25F, 0.25F}}, {{0, 1}});
    EXPECT_EQ(matrix, (NCDataMatrix<float>{{1, -1, 1, 0, -1}}));
}

TEST(ModelExpansion, TheBlockHasColumnsAndTermsOfItsOwn) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(Setting(factors, 3).Expand({{1, -1, 0, 1}}, {{2}, {0, 2}}),
              (NCDataMatrix<float>{{1, 1, -1, 0, 1, 0, 1}}));
}

TEST(ModelExpansion, AMissingValueLeavesItsColumnsMissing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(Setting(factors).Expand({{-99, 1}}, {{0, 1}, {1, 1}}),
              (NCDataMatrix<float>{{1, -99, 1, -99, 1}}));
}

TEST(ModelExpansion, WhatIsNoNumberIsMissing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Setting(factors).Expand({{notANumber, 1}}, {{0, 1}}),
              (NCDataMatrix<float>{{1, -99, 1, -99}}));
}

TEST(ModelExpansion, AFactorWithoutARangeIsMissing) {
    const TestFactors factors = TestFactors().Quantitative(3, 3).Quantitative();
    EXPECT_EQ(Setting(factors).Expand({{3, 1}}, {}), (NCDataMatrix<float>{{1, -99, 1}}));
}

TEST(ModelExpansion, ALinearModelHasPairsAndSquaresAsPotentialTerms) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Linear, EModel::None, {}), 6);
}

TEST(ModelExpansion, TermsOfTheModelAreNoPotentialTerms) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Interaction, EModel::None, {{0, 1}, {0, 2}}),
              4);
}

TEST(ModelExpansion, AModelWithASquareHasNoFurtherOnes) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Linear, EModel::None, {{1, 1}}), 3);
}

TEST(ModelExpansion, AModelWithASquareAndAllPairsHasTheOtherSquares) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Setting(factors).PotentialTerms(
                  EModel::Linear, EModel::None, {{0, 1}, {0, 2}, {1, 2}, {1, 1}}),
              2);
}

TEST(ModelExpansion, AQuadraticModelHasCubesUpToTenFactors) {
    const TestFactors ten = TestFactors().Quantitatives(10);
    const TestFactors eleven = TestFactors().Quantitatives(11);
    EXPECT_EQ(Setting(ten).PotentialTerms(EModel::Quadratic, EModel::None, {}), 45 + 10);
    EXPECT_EQ(Setting(eleven).PotentialTerms(EModel::Quadratic, EModel::None, {}), 55);
}

TEST(ModelExpansion, QualitativeFactorsHaveNoPotentialSquares) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).MultilevelOf(3);
    // Pairs with 2, 1 and 2 columns, two squares.
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Linear, EModel::None, {}), 5 + 2);
}

TEST(ModelExpansion, PotentialTermsEndAtTheirLimitOfTermsNotOfColumns) {
    const TestFactors factors = TestFactors().Quantitatives(30);
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Linear, EModel::None, {}), 190);
    TestFactors wide;
    for (int i = 0; i < 25; ++i) {
        wide.Qualitative(3);
    }
    EXPECT_EQ(Setting(wide).PotentialTerms(EModel::Linear, EModel::None, {}), 190 * 4);
}

TEST(ModelExpansion, MixturesHavePairsSquaresAndProductsWithTheProcess) {
    const TestFactors factors =
        TestFactors().Quantitative().Formulation().Formulation().Formulation();
    // Without the slack variable: one pair, two squares, two products; the square of the process.
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::Linear, EModel::Linear, {}), 6);
}

TEST(ModelExpansion, QuadraticMixturesHaveCubes) {
    const TestFactors factors = TestFactors().Formulation().Formulation().Formulation();
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::None, EModel::Quadratic, {}), 2);
}

// All pairs of 20 components are the 190 terms that may be added; 19 of them have the slack
// variable.
TEST(ModelExpansion, MixturesOfUpToTwentyHavePotentialPairsAndOfUpToTwelveCubes) {
    const auto terms = [](int components, EModel::Type model) {
        TestFactors factors;
        for (int i = 0; i < components; ++i) {
            factors.Formulation();
        }
        return Setting(factors).PotentialTerms(EModel::None, model, {});
    };
    EXPECT_EQ(terms(20, EModel::Linear), 190 - 19);
    EXPECT_EQ(terms(21, EModel::Linear), 0);
    EXPECT_EQ(terms(12, EModel::Quadratic), 11);
    EXPECT_EQ(terms(13, EModel::Quadratic), 0);
}

TEST(ModelExpansion, WithoutAModelThereAreNoPotentialTerms) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(Setting(factors).PotentialTerms(EModel::None, EModel::None, {}), 0);
}

TEST(ModelExpansion, OtherModelsHaveNoPotentialTerms) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    for (const auto model : {EModel::SpecialCubic, EModel::Cubic, EModel::LinearQuadratic}) {
        EXPECT_EQ(Setting(factors).PotentialTerms(model, EModel::None, {}), 0) << model;
    }
}

TEST(ModelExpansion, TermsOfFactorsThatAreNotThereHaveNoColumn) {
    // In the engine's order the process factor stands first.
    const TestFactors factors =
        TestFactors().Formulation().Formulation().Formulation().Quantitative();
    const NCDataMatrix<float> rows{{0.5F, 1, 0, 0}};
    const auto plain = Setting(factors).Expand(rows, {});
    for (const ModelTerms::Term& term :
         std::vector<ModelTerms::Term>{{0, 4}, {-1, 0}, {-1, 0, 1}, {4, 4}, {3, -1}}) {
        EXPECT_EQ(Setting(factors).Expand(rows, {term}), plain) << term[0] << ", " << term[1];
    }
}

}  // namespace
