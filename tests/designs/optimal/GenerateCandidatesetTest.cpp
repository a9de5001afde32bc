#include "designs/optimal/GenerateCandidateset.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "designs/optimal/DOptGen.h"
#include "tests/designs/optimal/CandidateCases.h"

namespace {

using CandidateCases::Candidates;
using CandidateCases::Generate;
using CandidateCases::MakeOptions;
using CandidateCases::Request;
using CandidateCases::RowSet;
using DOpt::NumData;

TEST(GenerateCandidateset, TwoFactorsHaveCornersAndCentre) {
    const TestFactors factors = TestFactors().Quantitative(10, 20).Quantitative(-3, 5);
    const Candidates made = Generate(factors, {});
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    EXPECT_EQ(made.rows, (NCDataMatrix<float>{{10, -3}, {20, -3}, {10, 5}, {20, 5}, {15, 1}}));
}

TEST(GenerateCandidateset, QuadraticModelsAddEdgeCentres) {
    Request request;
    request.process = EModel::Quadratic;
    request.usePotentialTerms = false;
    const Candidates made = Generate(TestFactors().Quantitatives(2), request);
    EXPECT_EQ(made.counts, (NumData{4, 4, 1}));
    EXPECT_EQ(RowSet(made.rows, 5, 4),
              (std::set<std::vector<float>>{{-1, 0}, {1, 0}, {0, -1}, {0, 1}}));
}

TEST(GenerateCandidateset, PotentialTermsDivideEdgesInThree) {
    Request request;
    request.process = EModel::Quadratic;
    const Candidates made = Generate(TestFactors().Quantitatives(2), request);
    EXPECT_EQ(made.counts, (NumData{4, 8, 1}));
}

TEST(GenerateCandidateset, OneFactorHasItsMiddle) {
    const Candidates made = Generate(TestFactors().Quantitative(2, 4), {});
    EXPECT_EQ(made.rows, (NCDataMatrix<float>{{2}, {4}, {3}}));
    EXPECT_EQ(made.counts, (NumData{2, 1, 0}));
}

TEST(GenerateCandidateset, AFreeMixtureKeepsItsPureComponents) {
    const Candidates made = Generate(TestFactors().Formulation().Formulation().Formulation(), {});
    EXPECT_EQ(RowSet(made.rows, 1, 3),
              (std::set<std::vector<float>>{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
    EXPECT_EQ(made.counts, (NumData{3, 0, 1}));
}

TEST(GenerateCandidateset, ALevelFactorCopiesTheProcessRows) {
    const Candidates made = Generate(TestFactors().Multilevel({10, 20, 30}).Quantitative(0, 1), {});
    // The middle level comes last.
    EXPECT_EQ(made.rows,
              (NCDataMatrix<float>{{10, 0},
                                   {10, 1},
                                   {10, 0.5F},
                                   {30, 0},
                                   {30, 1},
                                   {30, 0.5F},
                                   {20, 0},
                                   {20, 1},
                                   {20, 0.5F}}));
    EXPECT_EQ(made.counts, (NumData{6, 3, 0}));
}

TEST(GenerateCandidateset, LevelsAloneGiveTheirCombinations) {
    const Candidates made = Generate(TestFactors().Qualitative(3).Multilevel({1, 2}), {});
    EXPECT_EQ(made.rows,
              (NCDataMatrix<float>{
                  {-1, -1, 1}, {1, 0, 1}, {0, 1, 1}, {-1, -1, 2}, {1, 0, 2}, {0, 1, 2}}));
    EXPECT_EQ(made.counts, (NumData{6, 0, 0}));
}

TEST(GenerateCandidateset, BlocksAreCodingColumnsBehindTheFactors) {
    Request request;
    request.blocks = 2;
    const Candidates made =
        Generate(TestFactors().Formulation().Formulation().Quantitative(), request);
    ASSERT_EQ(made.rows.SizeColumns(), 4);
    // Process {-1, 1} crossed with two components, and the centre; then the other block.
    ASSERT_EQ(made.rows.SizeRows(), 2 * 5);
    EXPECT_EQ(
        RowSet(made.rows, 1, 5),
        (std::set<std::vector<float>>{
            {1, 0, -1, -1}, {0, 1, -1, -1}, {1, 0, 1, -1}, {0, 1, 1, -1}, {0.5F, 0.5F, 0, -1}}));
    EXPECT_EQ(made.rows(6, 4), 1);
    EXPECT_EQ(made.counts, (NumData{8, 0, 2}));
}

TEST(GenerateCandidateset, GrowsByDoublingAllRows) {
    Request request;
    request.runs = 17;
    request.grow = true;
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Candidates made = Generate(factors, request);
    ASSERT_EQ(made.rows.SizeRows(), 20);
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    for (int row = 6; row <= 20; ++row) {
        EXPECT_EQ(made.rows.GetRow(row), made.rows.GetRow(row - 5));
    }
    request.grow = false;
    EXPECT_EQ(Generate(factors, request).rows.SizeRows(), 5);
}

TEST(GenerateCandidateset, OptionsOfNoFamilyHaveNoConstraintsAndNoMixtureModel) {
    DesignOptions options;
    options.SetModel(EModel::Linear);
    const TestFactors factors = TestFactors().Formulation().Formulation().Formulation();
    NumData counts;
    const auto rows =
        DOpt::GenerateCandidateset(nullptr, factors, options, false, &counts, nullptr, 0);
    EXPECT_EQ(rows.SizeRows(), 3);
    EXPECT_EQ(counts, (NumData{3, 0, 0}));
}

TEST(GenerateCandidateset, AnEmptyPlanCrossesAllRowsOfItsBlock) {
    Request request;
    request.mixture = EModel::None;
    const Candidates made =
        Generate(TestFactors().Quantitatives(2).Formulation().Formulation(), request);
    EXPECT_EQ(made.rows.SizeRows(), 4 * 2);
    EXPECT_EQ(made.counts, (NumData{8, 0, 0}));
}

TEST(GenerateCandidateset, AGeneratorKeepsItsOwnOrder) {
    const TestFactors factors = TestFactors().Formulation().Quantitative().Formulation();
    DOptGen generator;
    const auto rows = DOpt::GenerateCandidateset(
        &generator, factors, MakeOptions(factors, {}), false, nullptr, nullptr, 0);
    ASSERT_NE(generator.GetCandidates(), nullptr);
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        EXPECT_EQ(generator.GetCandidates()->rows(row, 1), rows(row, 2));
        EXPECT_EQ(generator.GetCandidates()->rows(row, 2), rows(row, 1));
    }
    EXPECT_EQ(generator.GetMixtureVariables(), 2);
    EXPECT_EQ(generator.GetStatus(), DOpt::Success);
}

TEST(GenerateCandidateset, AFreeSumMakesMixturesProcessVariables) {
    const TestFactors factors = TestFactors().Formulation(0, 0.4F).Quantitative().WithFiller(true);
    const Candidates made = Generate(factors, {});
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    EXPECT_EQ(RowSet(made.rows, 1, 4),
              (std::set<std::vector<float>>{{0, -1}, {0.4F, -1}, {0, 1}, {0.4F, 1}}));
}

TEST(GenerateCandidateset, MoreThanTenFactorsStartFromAFraction) {
    for (const int n : {11, 16, 28}) {
        const Candidates made = Generate(TestFactors().Quantitatives(n), {});
        EXPECT_EQ(made.counts, (NumData{1024, 0, 1})) << n << " factors";
        EXPECT_EQ(RowSet(made.rows, 1, 1024).size(), 1024U) << n << " factors";
    }
    EXPECT_EQ(Generate(TestFactors().Quantitatives(32), {}).counts, (NumData{2048, 0, 1}));
}

}  // namespace
