#include "designs/optimal/D_Optimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "designs/optimal/GenerateCandidateset.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/ValidatingScope.h"

namespace {

using D_OptimalCases::Builder;
using D_OptimalCases::ExceptionText;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::IsRowOf;
using D_OptimalCases::Request;
using D_OptimalCases::Search;
using D_OptimalCases::Table;

TEST(DOptimal, RunsAreCandidates) {
    const TestFactors factors =
        TestFactors().Quantitative(10, 20).Qualitative(3).Quantitative(0, 5);
    const DesignOptions options = Request(factors, EObjective::Screening, 12);
    const auto design = Search(factors, options);
    const Table candidates =
        DOpt::GenerateCandidateset(nullptr, factors, options, true, nullptr, nullptr, 0);
    const Table matrix = *design->GetDesignMatrix();
    ASSERT_EQ(matrix.SizeRows(), 12);
    ASSERT_EQ(matrix.SizeColumns(), 4);
    for (int row = 1; row <= 12; ++row) {
        EXPECT_TRUE(IsRowOf(candidates, matrix.GetRow(row))) << row;
    }
    EXPECT_FALSE(design->IsDesignMatrixCoded());
}

// The bound of a linear model over a cube is |X'X| <= n^p, and a Hadamard matrix reaches it.
TEST(DOptimal, LinearModelNearlyReachesTheBoundOfHadamard) {
    const TestFactors factors = TestFactors().Quantitatives(7);
    const DesignOptions options = Request(factors, EObjective::Screening, 12);
    const double bound = 8 * std::log10(12.0);
    int good = 0;
    for (int i = 0; i < 20; ++i) {
        const auto design = Search(factors, options);
        const int best = design->GetBestDesignBy(EDesign::LogDeterminant);
        const double logDet = design->GetResults()[static_cast<std::size_t>(best)].LogDet;
        EXPECT_LE(logDet, bound + 1e-5);
        // 85 percent of the bound, as a share of the p-th root.
        good += logDet >= bound + 8 * std::log10(0.85) ? 1 : 0;
    }
    EXPECT_GE(good, 18);
}

TEST(DOptimal, FiguresAreThoseOfTheDesign) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    options.SetCenterPoints(3);
    const auto design = Search(factors, options);
    const auto& result = design->GetResults()[static_cast<std::size_t>(design->GetSelectedIndex())];
    const auto model = oracles::ModelMatrix(*design->GetDesignMatrix(), 3, oracles::QuadraticTerms);
    ASSERT_EQ(model.size(), 18U);
    const double logDet = static_cast<double>(
        oracles::LogDeterminant(oracles::Product(oracles::Transposed(model), model)));
    EXPECT_NEAR(result.LogDet, logDet, 1e-4);
    EXPECT_NEAR(result.NormLogDet, logDet / 10 - std::log10(18.0), 1e-4);
}

TEST(DOptimal, RunRangeSearchesEachRunCountAsOftenAsAsked) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    FamilyOf(options).SetRunRange(2);
    FamilyOf(options).SetRepetitions(3);
    const auto design = Search(factors, options);
    std::map<std::size_t, int> counts;
    for (const auto& result : design->GetResults()) {
        ++counts[result.rows.size()];
    }
    EXPECT_EQ(counts, (std::map<std::size_t, int>{{10, 3}, {11, 3}, {12, 3}, {13, 3}, {14, 3}}));
    EXPECT_TRUE(std::ranges::is_sorted(
        design->GetResults(), {}, [](const auto& result) { return result.rows.size(); }));
}

TEST(DOptimal, ValidatingSearchesRepeat) {
    const ValidatingScope validating;
    EXPECT_TRUE(D_Optimal::GetValidating());
    const TestFactors factors = TestFactors().Quantitatives(3).Qualitative(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 22);
    options.SetReplicatedRuns(2);
    const auto first = Search(factors, options);
    const auto second = Search(factors, options);
    EXPECT_EQ(*first->GetDesignMatrix(), *second->GetDesignMatrix());
    ASSERT_EQ(first->GetResults().size(), second->GetResults().size());
    for (std::size_t i = 0; i < first->GetResults().size(); ++i) {
        EXPECT_EQ(first->GetResults()[i].rows, second->GetResults()[i].rows) << i;
    }
}

TEST(DOptimal, ObjectiveForcesTheModel) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Request(factors, EObjective::Screening, 14);
    ASSERT_EQ(options.GetModel(), EModel::Interaction);
    FamilyOf(options).SetUsePotentialTerms(false);
    const auto design = Search(factors, options);
    const auto& result = design->GetResults().front();
    // Five terms of a linear model, not eleven.
    EXPECT_NEAR(result.NormLogDet, result.LogDet / 5 - std::log10(14.0), 1e-5);
    EXPECT_EQ(options.GetModel(), EModel::Interaction);
}

TEST(DOptimal, CountsTellTheCandidatesByKind) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DOpt::NumData counts;
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    (void)DOpt::GenerateCandidateset(nullptr, factors, options, true, &counts, nullptr, 0);
    EXPECT_EQ(Search(factors, options)->GetNumData(), counts);
    EXPECT_EQ(counts.ExtVert, 8);
}

TEST(DOptimal, RequestWithoutFamilyOptionsIsSearchedWithTheDefaults) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    options.SetDesignSpecificOptions(nullptr);
    // Five repetitions of five run counts.
    EXPECT_EQ(Search(factors, options)->GetResults().size(), 25U);
}

TEST(DOptimal, TooFewRunsForTheModelAreToldSo) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 9);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "No proper design could be generated. The current candidate set is not rich enough "
              "or the model is too complex.");
}

TEST(DOptimal, NoRepetitionsAreToldByTheirNumber) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 9);
    FamilyOf(options).SetRepetitions(0);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "No design for the problem. Internal D-Optimal error number 6007.");
}

TEST(DOptimal, ImpossibleRegionIsToldSo) {
    TestFactors factors;
    factors.Formulation(0.5F, 1).Formulation(0.5F, 1).Formulation(0.5F, 1);
    DesignOptions options(Builder(), factors);
    EXPECT_THAT(ExceptionText([&] { (void)Builder().Build(factors, options); }),
                ::testing::HasSubstr("The constraints are inconsistent."));
}

TEST(DOptimal, CancelledSearchIsNoFailure) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Request(factors, EObjective::Screening, 9);
    bool cancel = true;
    EXPECT_THROW((void)Builder().Build(factors, options, &cancel), CancelException);
}

TEST(DOptimal, DesignBeyondEverySizeIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 9);
    options.SetCenterPoints(2'000'000'000);
    EXPECT_NE(ExceptionText([&] { (void)Builder().Build(factors, options); }), "no exception");
}

}  // namespace
