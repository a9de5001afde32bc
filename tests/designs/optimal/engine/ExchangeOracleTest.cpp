// The fast exchange chooses the rows of its plain form, bit for bit where that can be asked.
#include <gtest/gtest.h>

#include "tests/designs/optimal/engine/ExchangeSamples.h"

namespace {

using ExchangeSamples::Expanded;
using ExchangeSamples::Grid;
using ExchangeSamples::Model;
using ExchangeSamples::Rows;

struct Outcome {
    int status = 0;
    LiteralExchange::State state;
};

Outcome SearchPlainly(const LiteralExchange::Problem& problem, unsigned seed) {
    std::srand(seed);
    LiteralExchange::Search search(problem);
    Outcome outcome;
    outcome.state = search.Repetition();
    outcome.status = search.status;
    return outcome;
}

/// One repetition of the engine, with rows from 1, inverse by rows and variances as there.
Outcome SearchFast(const LiteralExchange::Problem& problem, unsigned seed) {
    DOpt::ExchangeModel model(ExchangeSamples::ToMatrix(problem.x), problem.potential);
    DOpt::ExchangeSettings settings = ExchangeSamples::Settings(problem.n, seed);
    settings.randomPoints = problem.s;
    settings.width = problem.k;
    settings.inclusions = problem.inclusions;
    DOpt::DOptExchange exchange(model, settings);
    Outcome outcome;
    outcome.status = exchange.StartDesign();
    if (outcome.status == DOpt::Success) {
        outcome.status = exchange.ExchangeRounds();
    }
    const DOpt::DOptDesignState& state = exchange.GetState();
    for (const int row : state.rows) {
        outcome.state.rows.push_back(row + 1);
    }
    outcome.state.l = state.logDeterminant;
    outcome.state.d.assign(state.variances.begin(),
                           state.variances.begin() + static_cast<long>(problem.x.size()));
    return outcome;
}

/// Same rows; with the engine's inverse in both also the same figures to the last bit.
void ExpectSame(LiteralExchange::Problem problem, unsigned seed) {
    const Outcome fast = SearchFast(problem, seed);
    problem.invert = ExchangeSamples::InvertAsEngine;
    const Outcome plain = SearchPlainly(problem, seed);
    ASSERT_EQ(fast.status, plain.status) << "seed " << seed;
    EXPECT_EQ(fast.state.rows, plain.state.rows) << "seed " << seed;
    EXPECT_EQ(fast.state.l, plain.state.l) << "seed " << seed;
    EXPECT_EQ(fast.state.d, plain.state.d) << "seed " << seed;
}

LiteralExchange::Problem MakeProblem(Rows rows, int runs) {
    LiteralExchange::Problem problem;
    problem.x = std::move(rows);
    problem.n = runs;
    problem.s = std::min(3, runs);
    return problem;
}

// With so many columns replicates are rare: which of two points is taken twice is no rounding
// matter.
TEST(ExchangeOracle, RandomCandidatesGiveTheRowsOfThePlainFormWithItsOwnInverse) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const int columns = 5 + static_cast<int>(seed % 6);
        const int runs = columns + static_cast<int>(seed % 7);
        const LiteralExchange::Problem problem = MakeProblem(
            ExchangeSamples::Random(runs + 10 + static_cast<int>(seed), columns, seed), runs);
        const Outcome plain = SearchPlainly(problem, seed);
        const Outcome fast = SearchFast(problem, seed);
        ASSERT_EQ(plain.status, fast.status) << "seed " << seed;
        EXPECT_EQ(plain.state.rows, fast.state.rows) << "seed " << seed;
    }
}

TEST(ExchangeOracle, RandomCandidatesGiveTheSameBits) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const int columns = 2 + static_cast<int>(seed % 11);
        const int runs = columns + static_cast<int>(seed % 5);
        ExpectSame(MakeProblem(ExchangeSamples::Random(runs + 40, columns, seed), runs), seed);
    }
}

TEST(ExchangeOracle, GridsWithManyEqualVariancesGiveTheSameBits) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        ExpectSame(MakeProblem(Expanded(Grid(3, 3), Model::Quadratic), 14), seed);
        ExpectSame(MakeProblem(Expanded(Grid(4, 3), Model::Quadratic), 18), seed);
        ExpectSame(MakeProblem(Expanded(Grid(5, 2), Model::Interaction), 20), seed);
        ExpectSame(MakeProblem(Expanded(Grid(6, 2), Model::Linear), 9), seed);
    }
}

TEST(ExchangeOracle, OtherWidthsGiveTheSameBits) {
    for (const int width : {1, 2, 4, 7, 30}) {
        LiteralExchange::Problem problem = MakeProblem(Expanded(Grid(3, 3), Model::Quadratic), 13);
        problem.k = width;
        ExpectSame(problem, static_cast<unsigned>(width));
    }
}

TEST(ExchangeOracle, PotentialTermsGiveTheSameBits) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        LiteralExchange::Problem problem = MakeProblem(ExchangeSamples::Random(50, 14, seed), 9);
        problem.potential = 8;
        ExpectSame(problem, seed);
    }
}

TEST(ExchangeOracle, InclusionsGiveTheSameBitsWhetherDrawnOrNot) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        LiteralExchange::Problem problem = MakeProblem(ExchangeSamples::Random(40, 6, seed), 8);
        problem.inclusions = seed % 2 == 0 ? std::vector<int>{1, 2, 3} : std::vector<int>{38, 40};
        ExpectSame(problem, seed);
    }
}

TEST(ExchangeOracle, StartsWithoutRandomPointsGiveTheSameBits) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        LiteralExchange::Problem problem = MakeProblem(ExchangeSamples::Random(40, 7, seed), 9);
        problem.s = 0;
        ExpectSame(problem, seed);
    }
}

}  // namespace
