#include "designs/optimal/engine/DOptExchange.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/designs/optimal/engine/ExchangeSamples.h"

namespace {

using DOpt::DOptExchange;
using DOpt::ExchangeModel;
using DOpt::ExchangeResult;
using DOpt::ExchangeSettings;
using ExchangeSamples::BestEfficiency;
using ExchangeSamples::Expanded;
using ExchangeSamples::FindDesigns;
using ExchangeSamples::Found;
using ExchangeSamples::Grid;
using ExchangeSamples::Model;
using ExchangeSamples::Rows;
using ExchangeSamples::Settings;

constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
constexpr int cRepetitions = 5;
constexpr unsigned cSeeds = 20;

/// log10 |X'X| of the best design of n rows, replicates allowed, by trying all of them.
double BestOfAll(const Rows& rows, int n) {
    double best = -99;
    std::vector<std::size_t> chosen(static_cast<std::size_t>(n), 0);
    for (;;) {
        const std::size_t columns = rows[0].size();
        LiteralExchange::Matrix information(columns, std::vector<double>(columns, 0.0));
        for (const std::size_t c : chosen) {
            for (std::size_t i = 0; i < columns; ++i) {
                for (std::size_t j = 0; j < columns; ++j) {
                    information[i][j] += static_cast<double>(rows[c][i] * rows[c][j]);
                }
            }
        }
        const LiteralExchange::Inverse inverse = LiteralExchange::InvertPlainly(information);
        best = inverse.regular ? std::max(best, inverse.logDeterminant) : best;
        std::size_t at = chosen.size();
        while (at > 0 && chosen[at - 1] + 1 == rows.size()) {
            --at;
        }
        if (at == 0) {
            return best;
        }
        const std::size_t next = chosen[at - 1] + 1;
        std::fill(chosen.begin() + static_cast<long>(at) - 1, chosen.end(), next);
    }
}

void ExpectBestInEverySeed(const Rows& rows, int runs) {
    const double best = BestOfAll(rows, runs);
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        const Found found = FindDesigns(rows, Settings(runs, seed), cRepetitions);
        double reached = -99;
        for (const ExchangeResult& result : found.results) {
            reached = std::max(reached, static_cast<double>(result.figures.logDeterminant));
        }
        EXPECT_NEAR(reached, best, 1e-5) << "runs " << runs << ", seed " << seed;
    }
}

TEST(DOptExchange, LinearModelsOfThreeFactorsReachTheOptimum) {
    for (const int runs : {4, 5, 6}) {
        ExpectBestInEverySeed(Expanded(Grid(3, 2), Model::Linear), runs);
    }
}

TEST(DOptExchange, QuadraticModelsOfOneFactorReachTheOptimum) {
    for (const int runs : {3, 4, 5}) {
        ExpectBestInEverySeed(Expanded(Grid(1, 5), Model::Quadratic), runs);
    }
}

TEST(DOptExchange, QuadraticModelsOfTwoFactorsReachTheOptimum) {
    for (const int runs : {6, 7, 8}) {
        ExpectBestInEverySeed(Expanded(Grid(2, 3), Model::Quadratic), runs);
    }
}

TEST(DOptExchange, InteractionModelsOfTwoFactorsReachTheOptimum) {
    for (const int runs : {5, 6, 7}) {
        ExpectBestInEverySeed(Expanded(Grid(2, 3), Model::Interaction), runs);
    }
}

// No matrix of entries from -1 to 1 has a larger determinant than an orthogonal one (Hadamard,
// 1893).
TEST(DOptExchange, SaturatedTwoLevelDesignsReachTheHadamardBound) {
    int reached = 0;
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        const Found found = FindDesigns(Expanded(Grid(7, 2), Model::Linear), Settings(8, seed), 5);
        reached += BestEfficiency(found, 8) > 1.0 - 1e-6 ? 1 : 0;
    }
    EXPECT_GE(reached, 18);
}

// Three points on a line tell three of the four terms apart, and only one more is chosen: such a
// draw is given up.
TEST(DOptExchange, ADependentDrawDoesNotFailASaturatedDesign) {
    ExpectBestInEverySeed(Expanded(Grid(2, 3), Model::Interaction), 4);
}

TEST(DOptExchange, NoTwoLevelDesignExceedsTheHadamardBound) {
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        const int runs = 10 + static_cast<int>(seed % 9);
        const Found found =
            FindDesigns(Expanded(Grid(5, 2), Model::Linear), Settings(runs, seed), 3);
        EXPECT_LE(BestEfficiency(found, 6), 1.0 + 1e-6) << "seed " << seed;
        EXPECT_GE(BestEfficiency(found, 6), 0.9) << "seed " << seed;
    }
}

// |X'X| for 10 runs and 9 factors, n = 2 mod 4: 18 * 8^4 squared (Ehlich, 1964).
TEST(DOptExchange, TenRunsOfNineFactorsReachTheEhlichBound) {
    const double bound = 2 * std::log10(18.0 * std::pow(8.0, 4));
    int reached = 0;
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        const Found found =
            FindDesigns(Expanded(Grid(9, 2), Model::Linear), Settings(10, seed), 30);
        double best = 0;
        for (const ExchangeResult& result : found.results) {
            best = std::max(best, static_cast<double>(result.figures.logDeterminant));
        }
        EXPECT_LE(best, bound + 1e-4) << "seed " << seed;
        reached += best > bound - 1e-4 ? 1 : 0;
    }
    EXPECT_GE(reached, 18);
}

// The largest determinants of matrices of -1 and 1 (Williamson, 1946; Ehlich and Zeller, 1962):
// saturated designs of n - 1 factors.
TEST(DOptExchange, SaturatedLinearDesignsReachTheLargestDeterminants) {
    const double determinants[] = {4, 16, 48, 160, 576, 4096, 14336};
    for (int runs = 3; runs <= 9; ++runs) {
        const double largest = 2 * std::log10(determinants[runs - 3]);
        const Rows rows = Expanded(Grid(runs - 1, 2), Model::Linear);
        int reached = 0;
        for (unsigned seed = 1; seed <= cSeeds; ++seed) {
            double best = -99;
            for (const auto& result : FindDesigns(rows, Settings(runs, seed), 20).results) {
                best = std::max(best, static_cast<double>(result.figures.logDeterminant));
            }
            EXPECT_LE(best, largest + 1e-5) << runs << " runs, seed " << seed;
            reached += best > largest - 1e-5 ? 1 : 0;
        }
        EXPECT_GE(reached, 18) << runs << " runs";
    }
}

/// Median over the seeds of the best of five repetitions.
double MedianEfficiency(const Rows& rows, int runs) {
    std::vector<double> reached;
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        reached.push_back(BestEfficiency(FindDesigns(rows, Settings(runs, seed), cRepetitions),
                                         static_cast<int>(rows[0].size())));
    }
    std::ranges::nth_element(reached, reached.begin() + cSeeds / 2);
    return reached[cSeeds / 2];
}

// The figures to compare with are those of the longest searches made so far, |X'X|^(1/p) / n.
TEST(DOptExchange, QuadraticModelsOfThreeToFiveFactorsComeNearTheBestKnown) {
    EXPECT_GE(MedianEfficiency(Expanded(Grid(3, 3), Model::Quadratic), 14), 0.46 * 0.999);
    EXPECT_GE(MedianEfficiency(Expanded(Grid(5, 3), Model::Quadratic), 26), 0.48247 * 0.99);
}

TEST(DOptExchange, AQuadraticModelOfSevenFactorsComesNearTheBestKnown) {
    const Rows rows = Expanded(Grid(7, 3), Model::Quadratic);
    EXPECT_GE(BestEfficiency(FindDesigns(rows, Settings(41, 1), cRepetitions), 36), 0.48917 * 0.96);
}

TEST(DOptExchange, MoreRunsThanCandidatesAreRefused) {
    EXPECT_EQ(FindDesigns(Expanded(Grid(2, 2), Model::Linear), Settings(5, 1), 1).status,
              DOpt::IllegalArgument);
}

TEST(DOptExchange, LessThanOneRepetitionGivesNoResult) {
    EXPECT_EQ(FindDesigns(Expanded(Grid(2, 2), Model::Linear), Settings(4, 1), 0).status,
              DOpt::NoResult);
}

TEST(DOptExchange, AModelThatTheCandidatesCannotTellApartIsSingular) {
    Rows rows = Expanded(Grid(3, 2), Model::Linear);
    for (auto& row : rows) {
        row.push_back(row[1]);
    }
    const Found found = FindDesigns(rows, Settings(6, 1), 2);
    EXPECT_EQ(found.status, DOpt::Singular);
    EXPECT_TRUE(found.results.empty());
}

TEST(DOptExchange, FewerRunsThanColumnsAreSingular) {
    const Found found = FindDesigns(Expanded(Grid(2, 3), Model::Quadratic), Settings(5, 1), 1);
    EXPECT_EQ(found.status, DOpt::Singular);
}

TEST(DOptExchange, AnUnitDeterminantCountsAsNone) {
    // One column and one run: |X'X| = 1, whose logarithm is 0.
    EXPECT_EQ(FindDesigns({{1}, {1}}, Settings(1, 1), 1).status, DOpt::NoDeterminant);
}

TEST(DOptExchange, CandidatesWithoutANumberAreNeverChosen) {
    for (const float hole : {cNaN, std::numeric_limits<float>::infinity(), -99.0F}) {
        Rows rows = Expanded(Grid(3, 3), Model::Quadratic);
        rows[0][2] = hole;
        rows[5][9] = hole;
        rows[26][1] = hole;
        for (unsigned seed = 1; seed <= cSeeds; ++seed) {
            const Found found = FindDesigns(rows, Settings(12, seed), 3);
            ASSERT_EQ(found.status, DOpt::Success);
            for (const ExchangeResult& result : found.results) {
                for (const int row : result.rows) {
                    EXPECT_TRUE(row != 1 && row != 6 && row != 27) << "seed " << seed;
                }
            }
        }
    }
}

TEST(DOptExchange, CandidatesWithoutANumberLeaveTheFiguresAlone) {
    const Rows whole = Expanded(Grid(2, 3), Model::Quadratic);
    Rows holed = whole;
    holed.push_back(std::vector<float>(6, cNaN));
    const Found a = FindDesigns(whole, Settings(9, 3), 1);
    const Found b = FindDesigns(holed, Settings(9, 3), 1);
    ASSERT_EQ(b.results.size(), 1U);
    EXPECT_EQ(a.results[0].rows, b.results[0].rows);
    EXPECT_EQ(a.results[0].figures.gEfficiency, b.results[0].figures.gEfficiency);
    EXPECT_EQ(a.results[0].figures.iValue, b.results[0].figures.iValue);
}

TEST(DOptExchange, CandidatesWithoutAnyNumberAreSingular) {
    EXPECT_EQ(FindDesigns(Rows(6, std::vector<float>(3, cNaN)), Settings(4, 1), 1).status,
              DOpt::Singular);
}

TEST(DOptExchange, InclusionsStandInEveryDesign) {
    const Rows rows = Expanded(Grid(3, 3), Model::Quadratic);
    ExchangeSettings settings = Settings(9, 1);
    settings.inclusions = {14, 14, 2};
    const Found found = FindDesigns(rows, settings, 5);
    ASSERT_EQ(found.results.size(), 5U);
    for (const ExchangeResult& result : found.results) {
        EXPECT_EQ(result.rows.size(), 12U);
        EXPECT_TRUE(std::ranges::is_sorted(result.rows));
        EXPECT_GE(std::ranges::count(result.rows, 14), 2);
        EXPECT_GE(std::ranges::count(result.rows, 2), 1);
    }
}

TEST(DOptExchange, InclusionsThatAreNoCandidatesAreRefused) {
    Rows rows = Expanded(Grid(2, 3), Model::Linear);
    rows[3][1] = cNaN;
    for (const int inclusion : {0, 10, -1, 4}) {
        ExchangeSettings settings = Settings(4, 1);
        settings.inclusions = {inclusion};
        EXPECT_EQ(FindDesigns(rows, settings, 1).status, DOpt::IllegalInclusions) << inclusion;
    }
}

TEST(DOptExchange, AStartOfLargestVariancesAloneIsTheSameForEverySeed) {
    const Rows rows = Expanded(Grid(3, 3), Model::Quadratic);
    std::vector<int> first;
    for (unsigned seed = 1; seed <= 5; ++seed) {
        ExchangeSettings settings = Settings(12, seed);
        settings.randomPoints = 0;
        const Found found = FindDesigns(rows, settings, 1);
        ASSERT_EQ(found.results.size(), 1U);
        first = seed == 1 ? found.results[0].rows : first;
        EXPECT_EQ(found.results[0].rows, first) << "seed " << seed;
    }
}

TEST(DOptExchange, TheSameSeedGivesTheSameRows) {
    const Rows rows = Expanded(Grid(4, 3), Model::Quadratic);
    const Found a = FindDesigns(rows, Settings(18, 1974), 3);
    const Found b = FindDesigns(rows, Settings(18, 1974), 3);
    ASSERT_EQ(a.results.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(a.results[i].rows, b.results[i].rows);
    }
}

// Three rows take their turn in a round, so that more rounds than fifty are due here.
TEST(DOptExchange, DesignsOfManyRunsSettle) {
    const Found found = FindDesigns(ExchangeSamples::Random(400, 10, 3), Settings(200, 1), 1);
    EXPECT_EQ(found.status, DOpt::Success);
    EXPECT_EQ(found.results.size(), 1U);
}

TEST(DOptExchange, ASearchThatMayExamineNoPointDoesNotSettle) {
    ExchangeSettings settings = Settings(8, 1);
    settings.width = 0;
    EXPECT_EQ(FindDesigns(ExchangeSamples::Random(40, 4, 3), settings, 1).status,
              DOpt::NotConverged);
}

TEST(DOptExchange, OnlyTheFirstCandidatesAreDrawn) {
    ExchangeModel model(ExchangeSamples::ToMatrix(ExchangeSamples::Random(60, 4, 1)), 0);
    for (unsigned seed = 1; seed <= 50; ++seed) {
        ExchangeSettings settings = Settings(4, seed);
        settings.randomPoints = 4;
        DOptExchange exchange(model, settings);
        ASSERT_EQ(exchange.StartDesign(), DOpt::Success);
        EXPECT_EQ(exchange.GetState().rows, (std::vector<int>{0, 1, 2, 3})) << "seed " << seed;
    }
}

TEST(DOptExchange, AStartDesignMayHoldReplicates) {
    ExchangeModel model({{1, -1}, {1, -0.1F}, {1, 0.1F}, {1, 1}}, 0);
    ExchangeSettings settings = Settings(4, 1);
    settings.randomPoints = 0;
    DOptExchange exchange(model, settings);
    ASSERT_EQ(exchange.StartDesign(), DOpt::Success);
    EXPECT_EQ(exchange.GetState().rows, (std::vector<int>{0, 0, 3, 3}));
}

TEST(DOptExchange, ResultsOfABadConditionAreLeftOut) {
    Rows rows = Expanded(Grid(2, 3), Model::Linear);
    for (auto& row : rows) {
        row[2] *= 0x1p-20F;  // products stay exact
    }
    const Found found = FindDesigns(rows, Settings(6, 1), 3);
    EXPECT_EQ(found.status, DOpt::Success);
    EXPECT_TRUE(found.results.empty());
}

TEST(DOptExchange, ProgressIsToldInPercentOfTheRepetitions) {
    std::vector<float> percent;
    ExchangeSettings settings = Settings(6, 1);
    settings.progress = [&percent](DOpt::EClassName event, float value) {
        if (event == DOpt::RepetitionDone) {
            percent.push_back(value);
        }
        return DOpt::Success;
    };
    FindDesigns(Expanded(Grid(2, 3), Model::Linear), settings, 3);
    EXPECT_EQ(percent, (std::vector<float>{33, 66, 100}));
}

TEST(DOptExchange, AStopAtAnyPollEndsTheSearch) {
    const Rows rows = ExchangeSamples::Random(30, 9, 4);
    int polls = 0;
    int stopAt = 0;
    ExchangeSettings settings = Settings(8, 2);
    settings.progress = [&](DOpt::EClassName, float) {
        return ++polls == stopAt ? DOpt::Stopped : DOpt::Success;
    };
    ASSERT_EQ(FindDesigns(rows, settings, 2, 3).status, DOpt::Success);
    const int all = polls;
    ASSERT_GT(all, 30);
    for (stopAt = 1; stopAt <= all; ++stopAt) {
        polls = 0;
        EXPECT_EQ(FindDesigns(rows, settings, 2, 3).status, DOpt::Stopped) << "poll " << stopAt;
        EXPECT_EQ(polls, stopAt);
    }
}

TEST(DOptExchange, TheCancelFlagEndsTheSearchAtTheNextDecomposition) {
    bool cancel = false;
    int polls = 0;
    ExchangeSettings settings = Settings(8, 2);
    settings.cancel = &cancel;
    settings.progress = [&](DOpt::EClassName, float) {
        cancel = ++polls > 20;
        return DOpt::Success;
    };
    const Found found = FindDesigns(ExchangeSamples::Random(30, 7, 4), settings, 50);
    EXPECT_EQ(found.status, DOpt::Cancelled);
    EXPECT_LT(found.results.size(), 3U);
}

TEST(DOptExchange, PotentialTermsBeyondTheRunsLeaveThePrimaryModelSound) {
    // 5 primary and 10 potential columns, 8 runs.
    Rows rows = Expanded(Grid(4, 3), Model::Quadratic);
    for (unsigned seed = 1; seed <= cSeeds; ++seed) {
        const Found found = FindDesigns(rows, Settings(8, seed), 2, 10);
        ASSERT_EQ(found.status, DOpt::Success) << "seed " << seed;
        ASSERT_EQ(found.results.size(), 2U);
        const double without = BestEfficiency(
            FindDesigns(Expanded(Grid(4, 3), Model::Linear), Settings(8, seed), 2), 5);
        EXPECT_GE(BestEfficiency(found, 5), 0.8 * without) << "seed " << seed;
    }
}

TEST(DOptExchange, BalanceAsksForEveryLevelEquallyOften) {
    // A factor of three levels in coding columns 2 and 3.
    const ExchangeModel model({{1, 1, 0}, {1, 0, 1}, {1, -1, -1}}, 0);
    EXPECT_TRUE(DOpt::IsBalanced(model, {1, 2, 3}, {{2, 3}}));
    EXPECT_TRUE(DOpt::IsBalanced(model, {1, 1, 2, 2, 3, 3}, {{2, 3}}));
    EXPECT_FALSE(DOpt::IsBalanced(model, {1, 1, 2, 3}, {{2, 3}}));
    EXPECT_FALSE(DOpt::IsBalanced(model, {1, 2}, {{2, 3}}));
}

TEST(DOptExchange, BalanceCutsCellsToWholeNumbers) {
    const ExchangeModel model({{1, 0.9F}, {1, 1.9F}, {1, -0.9F}, {1, 1}}, 0);
    EXPECT_TRUE(DOpt::IsBalanced(model, {1, 2}, {{2, 2}}));
    EXPECT_TRUE(DOpt::IsBalanced(model, {1, 3, 2, 4}, {{2, 2}}));
    EXPECT_FALSE(DOpt::IsBalanced(model, {1, 3}, {{2, 2}}));
}

TEST(DOptExchange, BalanceAsksForAllFactors) {
    const ExchangeModel model({{1, 1, 1}, {1, -1, 1}, {1, 1, -1}, {1, -1, -1}}, 0);
    EXPECT_TRUE(DOpt::IsBalanced(model, {1, 4}, {{2, 2}, {3, 2}}));
    EXPECT_FALSE(DOpt::IsBalanced(model, {1, 2}, {{2, 2}, {3, 2}}));
}

TEST(DOptExchange, OnlyBalancedLeavesOthersOut) {
    ExchangeModel model(ExchangeSamples::ToMatrix(Expanded(Grid(4, 2), Model::Linear)), 0);
    DOptExchange exchange(model, Settings(7, 1));
    std::vector<ExchangeResult> results;
    // Seven runs cannot hold two levels equally often.
    ASSERT_EQ(exchange.RepetitionLoop(results, 3, {{2, 2}}, true), DOpt::Success);
    EXPECT_TRUE(results.empty());
    ASSERT_EQ(exchange.RepetitionLoop(results, 3, {{2, 2}}, false), DOpt::Success);
    ASSERT_EQ(results.size(), 3U);
    EXPECT_FALSE(results[0].balanced);
}

}  // namespace
