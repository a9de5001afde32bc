#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/CandidateCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using CandidateCases::MakeOptions;
using CandidateCases::Request;

struct Search {
    Request request;
    int repetitions = 2;
    int runRange = 0;
    int balanceOn = -1;
    bool onlyBalanced = false;
    ModelTerms::List model;
};

DesignOptions OptionsOf(const Factors& factors, const Search& search) {
    DesignOptions options = MakeOptions(factors, search.request);
    auto& family = dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
    family.SetRepetitions(search.repetitions);
    family.SetRunRange(search.runRange);
    family.SetBalanceOnFactor(search.balanceOn);
    family.SetOnlyAllowBalanced(search.onlyBalanced);
    family.SetModel(search.model);
    return options;
}

struct Outcome {
    bool success = false;
    DOpt::Status status = DOpt::Success;
    int modelTerms = 0;
    std::vector<DOptResults> results;
};

/// Generates candidates, enough of them for the largest run count, and searches.
Outcome FindWith(const Factors& factors, const Search& search, bool* cancel = nullptr) {
    const DesignOptions options = OptionsOf(factors, search);
    DesignOptions most = options;
    most.SetRuns(options.GetRuns() + static_cast<unsigned>(std::max(search.runRange, 0)));
    DOptGen generator;
    const NCDataMatrix<float> candidates =
        DOpt::GenerateCandidateset(&generator, factors, most, true, nullptr, nullptr, 0);
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    Outcome outcome;
    outcome.success = generator.GenerateDesigns(adapter, options, cancel);
    outcome.status = generator.GetStatus();
    outcome.modelTerms = generator.GetModelTerms();
    outcome.results = generator.GetResults();
    return outcome;
}

Search Quadratic(unsigned runs) {
    Search search;
    search.request.process = EModel::Quadratic;
    search.request.usePotentialTerms = false;
    search.request.runs = runs;
    return search;
}

std::map<std::size_t, int> CountByRuns(const Outcome& outcome) {
    std::map<std::size_t, int> counts;
    for (const DOptResults& result : outcome.results) {
        ++counts[result.rows.size()];
    }
    return counts;
}

TEST(DOptGenSearch, ARunRangeGivesEveryRunCountWithItsRepetitions) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Search search = Quadratic(12);
    search.runRange = 2;
    const Outcome outcome = FindWith(factors, search);
    ASSERT_TRUE(outcome.success);
    EXPECT_EQ(CountByRuns(outcome),
              (std::map<std::size_t, int>{{10, 2}, {11, 2}, {12, 2}, {13, 2}, {14, 2}}));
    EXPECT_TRUE(std::ranges::is_sorted(
        outcome.results, {}, [](const DOptResults& result) { return result.rows.size(); }));
}

TEST(DOptGenSearch, RunCountsBelowTheModelAreLeftOut) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Search search = Quadratic(6);
    search.runRange = 2;
    const Outcome outcome = FindWith(factors, search);
    EXPECT_EQ(outcome.modelTerms, 6);
    EXPECT_EQ(CountByRuns(outcome), (std::map<std::size_t, int>{{6, 2}, {7, 2}, {8, 2}}));
}

TEST(DOptGenSearch, AModelTooLargeForAllRunCountsGivesNoResult) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    Search search = Quadratic(10);
    search.runRange = 2;
    const Outcome outcome = FindWith(factors, search);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.status, DOpt::NoResult);
}

TEST(DOptGenSearch, ANegativeRunRangeGivesNoResult) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Search search = Quadratic(12);
    search.runRange = -1;
    EXPECT_EQ(FindWith(factors, search).status, DOpt::NoResult);
}

TEST(DOptGenSearch, NoRunsAndNoRepetitionsAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(FindWith(factors, Quadratic(0)).status, DOpt::IllegalArgument);
    Search search = Quadratic(12);
    search.repetitions = 0;
    EXPECT_EQ(FindWith(factors, search).status, DOpt::IllegalArgument);
}

TEST(DOptGenSearch, ValidatingGivesTheSameRowsTwice) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Outcome a = FindWith(factors, Quadratic(14));
    const Outcome b = FindWith(factors, Quadratic(14));
    ASSERT_EQ(a.results.size(), 2U);
    ASSERT_EQ(b.results.size(), 2U);
    EXPECT_EQ(a.results[0].rows, b.results[0].rows);
    EXPECT_EQ(a.results[1].rows, b.results[1].rows);
}

TEST(DOptGenSearch, FiguresAreSetInEveryRecord) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Outcome outcome = FindWith(factors, Quadratic(16));
    ASSERT_TRUE(outcome.success);
    for (const DOptResults& result : outcome.results) {
        EXPECT_GT(result.CondNo, 1);
        EXPECT_GT(result.GEff, 0);
        EXPECT_LE(result.GEff, 100.001);
        EXPECT_GT(result.LogDet, 0);
        EXPECT_NEAR(result.NormLogDet, result.LogDet / 10 - std::log10(16.0), 1e-5);
        EXPECT_GT(result.IOptimality, 0);
    }
}

// Vertices and one centroid: all squares are the same column there.
TEST(DOptGenSearch, PotentialTermsNeverMakeADesignFail) {
    for (int count = 2; count <= 7; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        for (const EModel::Type model : {EModel::Linear, EModel::Interaction}) {
            Search search;
            search.request.process = model;
            search.request.runs = static_cast<unsigned>(
                4 + count + (model == EModel::Linear ? 0 : count * count / 2));
            const Outcome outcome = FindWith(factors, search);
            EXPECT_TRUE(outcome.success) << count << " factors: " << outcome.status;
            EXPECT_EQ(outcome.results.size(), 2U);
        }
    }
}

TEST(DOptGenSearch, InclusionsAreRowsOfEveryDesign) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DesignOptions options = OptionsOf(factors, Quadratic(9));
    DOptGen generator;
    const NCDataMatrix<float> candidates =
        DOpt::GenerateCandidateset(&generator, factors, options, true, nullptr, nullptr, 0);
    NCDataMatrix<float> rows{{0.25F, 0.75F}, {-0.5F, 0}};
    rows.ConcatRows(candidates);
    ASSERT_EQ(generator.SetCandidates(rows), DOpt::Success);
    generator.inclusions = std::make_unique<OneBasedVec<int>>();
    generator.inclusions->Append(1);
    generator.inclusions->Append(2);
    ASSERT_TRUE(generator.GenerateDesigns(DOptFactorAdapter(factors, 1), options, nullptr));
    for (const DOptResults& result : generator.GetResults()) {
        ASSERT_EQ(result.rows.size(), 9U);
        EXPECT_EQ(result.rows[0], 1);
        EXPECT_EQ(result.rows[1], 2);
    }
}

TEST(DOptGenSearch, AsManyInclusionsAsRunsLeaveNothingToSearch) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DesignOptions options = OptionsOf(factors, Quadratic(7));
    DOptGen generator;
    const NCDataMatrix<float> candidates =
        DOpt::GenerateCandidateset(&generator, factors, options, true, nullptr, nullptr, 0);
    generator.inclusions = std::make_unique<OneBasedVec<int>>(7, 1);
    EXPECT_FALSE(generator.GenerateDesigns(DOptFactorAdapter(factors, 1), options, nullptr));
    EXPECT_EQ(generator.GetStatus(), DOpt::NoResult);
}

TEST(DOptGenSearch, OnlyBalancedKeepsToMultiplesOfTheLevels) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    Search search = Quadratic(16);
    search.request.process = EModel::Linear;
    search.runRange = 4;
    search.balanceOn = 2;
    search.onlyBalanced = true;
    search.repetitions = 5;
    const Outcome outcome = FindWith(factors, search);
    ASSERT_TRUE(outcome.success);
    for (const DOptResults& result : outcome.results) {
        EXPECT_TRUE(result.balanced);
        EXPECT_EQ(result.rows.size() % 3, 0U);
    }
}

TEST(DOptGenSearch, WithoutABalancedRunCountThereIsNoResult) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    Search search = Quadratic(16);
    search.request.process = EModel::Linear;
    search.balanceOn = 2;
    search.onlyBalanced = true;
    EXPECT_EQ(FindWith(factors, search).status, DOpt::NoResult);
}

TEST(DOptGenSearch, BalanceIsToldWhereItIsNotAskedFor) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(2);
    Search search = Quadratic(13);
    search.request.process = EModel::Linear;
    search.balanceOn = 2;
    const Outcome outcome = FindWith(factors, search);
    ASSERT_FALSE(outcome.results.empty());
    for (const DOptResults& result : outcome.results) {
        EXPECT_FALSE(result.balanced);
    }
}

TEST(DOptGenSearch, AFactorWithoutLevelsCannotBeBalancedAndIsNotAskedTo) {
    const TestFactors factors = TestFactors().Quantitatives(2).MultilevelOf(3);
    for (const int factor : {0, 2, 17}) {
        Search search = Quadratic(14);
        search.request.process = EModel::Linear;
        search.balanceOn = factor;
        search.onlyBalanced = true;
        EXPECT_TRUE(FindWith(factors, search).success) << factor;
    }
}

TEST(DOptGenSearch, ASetCancelFlagEndsBeforeAnything) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    bool cancel = true;
    const Outcome outcome = FindWith(factors, Quadratic(12), &cancel);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.status, DOpt::Cancelled);
    EXPECT_TRUE(outcome.results.empty());
}

TEST(DOptGenSearch, ACancelFlagBetweenRunCountsThrows) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const DesignOptions options = OptionsOf(factors, Quadratic(12));
    DOptGen generator;
    const NCDataMatrix<float> candidates =
        DOpt::GenerateCandidateset(&generator, factors, options, true, nullptr, nullptr, 0);
    ASSERT_TRUE(generator.GenerateDesigns(DOptFactorAdapter(factors, 1), options, nullptr));
    bool cancel = true;
    EXPECT_THROW(static_cast<void>(generator.MakeDOpt(nullptr, false, &cancel)), CancelException);
}

TEST(DOptGenSearch, WithoutCandidatesThereIsNoSource) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DOptGen generator;
    generator.SetVariables(2);
    EXPECT_FALSE(generator.GenerateDesigns(
        DOptFactorAdapter(factors, 1), OptionsOf(factors, Quadratic(12)), nullptr));
    EXPECT_EQ(generator.GetStatus(), DOpt::MissingSource);
    EXPECT_EQ(generator.MakeDOpt(nullptr, false, nullptr), DOpt::MissingSource);
}

TEST(DOptGenSearch, CandidatesThatAreNoNumbersAreSingular) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DOptGen generator;
    generator.SetVariables(2);
    generator.SetCandidates(NCDataMatrix<float>(20, 2, std::numeric_limits<float>::quiet_NaN()));
    EXPECT_FALSE(generator.GenerateDesigns(
        DOptFactorAdapter(factors, 1), OptionsOf(factors, Quadratic(12)), nullptr));
    EXPECT_EQ(generator.GetStatus(), DOpt::Singular);
}

TEST(DOptGenSearch, MoreRunsThanCandidatesAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DOptGen generator;
    generator.SetVariables(2);
    generator.SetCandidates({{-1, -1}, {1, -1}, {-1, 1}, {1, 1}});
    Search search = Quadratic(8);
    search.request.process = EModel::Linear;
    EXPECT_FALSE(generator.GenerateDesigns(
        DOptFactorAdapter(factors, 1), OptionsOf(factors, search), nullptr));
    EXPECT_EQ(generator.GetStatus(), DOpt::IllegalArgument);
}

TEST(DOptGenSearch, AnExplicitModelIsTheOneSearched) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    Search search = Quadratic(12);
    search.model = {{}, {0}, {1}, {2}, {0, 2}};
    const Outcome outcome = FindWith(factors, search);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.modelTerms, 5);
}

TEST(DOptGenSearch, MixturesAreSearchedWithoutTheirSlackVariable) {
    const TestFactors factors = TestFactors().Formulation().Formulation().Formulation();
    Search search = Quadratic(10);
    search.request.process = EModel::None;
    search.request.mixture = EModel::Quadratic;
    const Outcome outcome = FindWith(factors, search);
    EXPECT_TRUE(outcome.success) << outcome.status;
    EXPECT_EQ(outcome.modelTerms, 6);
}

TEST(DOptGenSearch, BlocksAreVariablesOfTheModel) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    Search search = Quadratic(12);
    search.request.process = EModel::Linear;
    search.request.blocks = 3;
    const Outcome outcome = FindWith(factors, search);
    EXPECT_TRUE(outcome.success) << outcome.status;
    EXPECT_EQ(outcome.modelTerms, 1 + 3 + 2);
}

}  // namespace
