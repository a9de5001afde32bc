#include "designs/optimal/ModelTerms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/support/TestFactors.h"

namespace {

using ModelTerms::List;
using ModelTerms::Request;
using ModelTerms::Term;
using testing::Contains;
using testing::Not;

List Make(const Factors& factors, const Request& request) {
    return ModelTerms::Make(ModelTerms::Describe(factors), request);
}

Request Process(EModel::Type model) {
    return {model};
}

Request Mixture(EModel::Type model) {
    return {EModel::None, model};
}

const EModel::Type cAllModels[] = {EModel::None,
                                   EModel::Linear,
                                   EModel::Interaction,
                                   EModel::Quadratic,
                                   EModel::SpecialCubic,
                                   EModel::Cubic,
                                   EModel::LinearQuadratic};

}  // namespace

TEST(ModelTerms, InteractionOfTwoQuantitativeFactorsHasFourTerms) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), Process(EModel::Interaction)),
              (List{{}, {0}, {1}, {0, 1}}));
}

TEST(ModelTerms, LinearStopsAtTheMainEffects) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), Process(EModel::Linear)), (List{{}, {0}, {1}}));
}

TEST(ModelTerms, MainEffectsAreThereWithoutAModel) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), Process(EModel::None)), (List{{}, {0}, {1}}));
}

TEST(ModelTerms, NoFactorsLeaveTheConstant) {
    EXPECT_EQ(Make(TestFactors(), Process(EModel::Cubic)), (List{{}}));
}

TEST(ModelTerms, AQualitativeFactorHasInteractionsButNoSquare) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2).Qualitative(3), Process(EModel::Quadratic)),
              (List{{}, {0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 0}, {1, 1}}));
}

TEST(ModelTerms, LinearQuadraticHasSquaresOnly) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), Process(EModel::LinearQuadratic)),
              (List{{}, {0}, {1}, {0, 0}, {1, 1}}));
}

TEST(ModelTerms, SpecialCubicOfAMixtureHasBothCubicPairs) {
    EXPECT_EQ(Make(TestFactors().Formulation().Formulation().Formulation(),
                   Mixture(EModel::SpecialCubic)),
              (List{{},
                    {0},
                    {1},
                    {2},
                    {0, 1},
                    {0, 2},
                    {1, 2},
                    {0, 0},
                    {1, 1},
                    {2, 2},
                    {0, 0, 1},
                    {0, 1, 1},
                    {0, 0, 2},
                    {0, 2, 2},
                    {1, 1, 2},
                    {1, 2, 2}}));
}

TEST(ModelTerms, CubicOfAMixtureEndsWithTheCubes) {
    const List terms = Make(TestFactors().Formulation().Formulation(), Mixture(EModel::Cubic));
    EXPECT_EQ(
        terms,
        (List{{}, {0}, {1}, {0, 1}, {0, 0}, {1, 1}, {0, 0, 1}, {0, 1, 1}, {0, 0, 0}, {1, 1, 1}}));
}

TEST(ModelTerms, CubicOfProcessFactorsHasCubesButNoCubicPairs) {
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), Process(EModel::Cubic)),
              (List{{}, {0}, {1}, {0, 1}, {0, 0}, {1, 1}, {0, 0, 0}, {1, 1, 1}}));
}

TEST(ModelTerms, AQualitativeFactorHasNoCube) {
    EXPECT_THAT(Make(TestFactors().Qualitative(4), Process(EModel::Cubic)),
                Not(Contains(Term{0, 0, 0})));
}

TEST(ModelTerms, EachKindOfFactorsHasItsOwnModel) {
    const TestFactors factors =
        TestFactors().Quantitatives(2).Formulation().Formulation().Formulation();
    EXPECT_EQ(Make(factors, {EModel::Quadratic, EModel::Interaction}),
              (List{{}, {0}, {1}, {2}, {3}, {4}, {0, 1}, {2, 3}, {2, 4}, {3, 4}, {0, 0}, {1, 1}}));
}

TEST(ModelTerms, ProcessAndMixtureInteractWhateverTheirModels) {
    const TestFactors factors = TestFactors().Quantitative().Formulation();
    EXPECT_EQ(Make(factors, {EModel::Linear, EModel::Linear, true}), (List{{}, {0}, {1}, {0, 1}}));
}

TEST(ModelTerms, ProcessAndMixtureDoNotInteractUnasked) {
    const TestFactors factors = TestFactors().Quantitative().Formulation();
    EXPECT_THAT(Make(factors, {EModel::Cubic, EModel::Cubic, false}), Not(Contains(Term{0, 1})));
}

TEST(ModelTerms, TheBlockFollowsTheMainEffects) {
    Request request = Process(EModel::Interaction);
    request.blocks = 2;
    EXPECT_EQ(Make(TestFactors().Quantitatives(2), request), (List{{}, {0}, {1}, {2}, {0, 1}}));
}

TEST(ModelTerms, OneBlockHasNoTerm) {
    Request request = Process(EModel::Linear);
    request.blocks = 1;
    EXPECT_EQ(Make(TestFactors().Quantitatives(1), request), (List{{}, {0}}));
}

TEST(ModelTerms, DefinitiveScreeningHasNoInteractionsWhateverTheModel) {
    for (const EModel::Type model : cAllModels) {
        const TestFactors factors = TestFactors().Quantitatives(3).Formulation();
        for (const Term& term :
             Make(factors, {model, model, true, 1, EDesign::DefinitiveScreening})) {
            EXPECT_FALSE(term.size() == 2 && term[0] != term[1]) << model;
        }
    }
}

TEST(ModelTerms, ReducedCombinatorialHasNoSquareOfTwoLevels) {
    const TestFactors factors = TestFactors().MultilevelOf(2).MultilevelOf(3).Quantitative();
    const List terms = Make(factors, {EModel::Quadratic, EModel::None, false, 1, EDesign::J2});
    EXPECT_THAT(terms, Not(Contains(Term{0, 0})));
    EXPECT_THAT(terms, Contains(Term{1, 1}));
    EXPECT_THAT(terms, Contains(Term{2, 2}));
}

TEST(ModelTerms, OtherDesignsHaveASquareOfTwoLevels) {
    EXPECT_THAT(Make(TestFactors().MultilevelOf(2), Process(EModel::Quadratic)),
                Contains(Term{0, 0}));
}

TEST(ModelTerms, NoTermOccursTwice) {
    for (const EModel::Type process : cAllModels) {
        for (const EModel::Type mixture : cAllModels) {
            const TestFactors factors =
                TestFactors().Quantitatives(2).Qualitative(3).Formulation().Formulation();
            List terms = Make(factors, {process, mixture, true, 2});
            const std::set<Term> distinct(terms.begin(), terms.end());
            EXPECT_EQ(distinct.size(), terms.size()) << process << ' ' << mixture;
        }
    }
}

// The number of monomials of degree up to d in n variables is C(n + d, d).
TEST(ModelTerms, AQuadraticModelHasAllMonomialsOfDegreeTwo) {
    for (int count = 1; count <= 8; ++count) {
        EXPECT_EQ(Make(TestFactors().Quantitatives(count), Process(EModel::Quadratic)).size(),
                  static_cast<std::size_t>((count + 1) * (count + 2) / 2));
    }
}
