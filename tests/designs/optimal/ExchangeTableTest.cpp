#include "designs/optimal/engine/ExchangeTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "designs/optimal/engine/InverseInformation.h"
#include "tests/oracles/IOptimalOracle.h"
#include "tests/support/QuadraticGrid.h"

namespace {

PaddedMatrix ToPadded(const NCDataMatrix<float>& matrix) {
    PaddedMatrix result(static_cast<std::size_t>(matrix.SizeRows()),
                        static_cast<std::size_t>(matrix.SizeColumns()));
    for (int i = 0; i < matrix.SizeRows(); ++i) {
        for (int j = 0; j < matrix.SizeColumns(); ++j) {
            result(static_cast<std::size_t>(i), static_cast<std::size_t>(j)) =
                static_cast<double>(matrix(i + 1, j + 1));
        }
    }
    return result;
}

struct Problem {
    explicit Problem(const NCDataMatrix<float>& rows)
        : candidates(ToPadded(rows)), oracle(rows), pool(candidates.Rows()) {
        std::iota(pool.begin(), pool.end(), 0);
        std::vector<const double*> all;
        for (std::size_t i = 0; i < candidates.Rows(); ++i) {
            all.push_back(candidates.Row(i));
        }
        moments = InverseInformation::CrossProduct(all, candidates.Columns());
    }

    ExchangeTable::Step StepOf(const std::vector<int>& design) const {
        std::vector<const double*> rows;
        for (const int row : design) {
            rows.push_back(candidates.Row(static_cast<std::size_t>(row)));
        }
        using namespace InverseInformation;
        ExchangeTable::Step step;
        step.inverse = Find(CrossProduct(rows, candidates.Columns())).value();
        step.spread = Product(Product(step.inverse, moments), step.inverse);
        step.trace = TraceOfProduct(moments, step.inverse);
        return step;
    }

    PaddedMatrix candidates;
    PaddedMatrix moments;
    oracles::IOptimalOracle oracle;
    std::vector<int> pool;
};

std::vector<int> RandomDesign(std::size_t runs, std::size_t candidates, std::mt19937& engine) {
    std::vector<int> design(runs);
    for (int& row : design) {
        row = static_cast<int>(engine() % candidates);
    }
    return design;
}

TEST(ExchangeTable, FindsTheChangeOfThePlainForm) {
    std::mt19937 engine(5);
    const Problem problem(QuadraticGrid(2, 5));
    for (int trial = 0; trial < 20; ++trial) {
        const auto design = RandomDesign(14, problem.candidates.Rows(), engine);
        const auto step = problem.StepOf(design);
        ExchangeTable table(problem.candidates, design.size());
        const auto best = table.FindBest(problem.pool, design, step);
        const auto plain = problem.oracle.Best({problem.pool, design, 0});
        EXPECT_NEAR(best.change, plain.change, 1e-9 * step.trace) << "trial " << trial;
    }
}

// Exchanges that are no improvement at all wander through many designs.
TEST(ExchangeTable, KeptNumbersStayTrueThroughManyExchanges) {
    std::mt19937 engine(7);
    const Problem problem(QuadraticGrid(3, 3));
    auto design = RandomDesign(30, problem.candidates.Rows(), engine);
    ExchangeTable kept(problem.candidates, design.size());
    for (int move = 0; move < 100; ++move) {
        const auto step = problem.StepOf(design);
        const auto best = kept.FindBest(problem.pool, design, step);
        ExchangeTable fresh(problem.candidates, design.size());
        const auto expected = fresh.FindBest(problem.pool, design, step);
        ASSERT_EQ(best.change, expected.change) << "move " << move;
        ASSERT_EQ(best.pool, expected.pool) << "move " << move;
        ASSERT_EQ(best.run, expected.run) << "move " << move;
        const int row = static_cast<int>(engine() % problem.candidates.Rows());
        const int run = static_cast<int>(engine() % design.size());
        kept.Replace(row, run, step);
        design[static_cast<std::size_t>(run)] = row;
    }
}

TEST(ExchangeTable, KeptNumbersServeForAllStepsOfASearch) {
    std::mt19937 engine(3);
    const Problem problem(QuadraticGrid(3, 4));
    auto design = RandomDesign(25, problem.candidates.Rows(), engine);
    ExchangeTable table(problem.candidates, design.size());
    int steps = 0;
    for (; steps < 15; ++steps) {
        const auto step = problem.StepOf(design);
        const auto best = table.FindBest(problem.pool, design, step);
        if (best.pool < 0) {
            break;
        }
        table.Replace(best.pool, best.run, step);
        design[static_cast<std::size_t>(best.run)] = best.pool;
    }
    EXPECT_GE(steps, 10);
    EXPECT_EQ(table.FreshScreens(), 1);
}

TEST(ExchangeTable, WithoutRoomForAllPairsTheChoiceIsTheSame) {
    std::mt19937 engine(9);
    const Problem problem(QuadraticGrid(3, 4));
    auto design = RandomDesign(25, problem.candidates.Rows(), engine);
    ExchangeTable roomy(problem.candidates, design.size());
    ExchangeTable narrow(problem.candidates, design.size(), 300);
    for (int move = 0; move < 10; ++move) {
        const auto step = problem.StepOf(design);
        const auto first = roomy.FindBest(problem.pool, design, step);
        const auto second = narrow.FindBest(problem.pool, design, step);
        ASSERT_EQ(first.pool, second.pool) << "move " << move;
        ASSERT_EQ(first.run, second.run) << "move " << move;
        if (first.pool < 0) {
            break;
        }
        roomy.Replace(problem.pool[static_cast<std::size_t>(first.pool)], first.run, step);
        narrow.Replace(problem.pool[static_cast<std::size_t>(first.pool)], first.run, step);
        design[static_cast<std::size_t>(first.run)] =
            problem.pool[static_cast<std::size_t>(first.pool)];
    }
}

TEST(ExchangeTable, OfEqualPairsTheFirstInThePoolAndTheFirstRunWin) {
    // A slope alone: candidates 2 and 4 are equal, and so are the runs.
    const Problem problem({{1}, {1}, {3}, {2}, {3}});
    const std::vector<int> design = {0, 1, 0};
    const auto step = problem.StepOf(design);
    ExchangeTable table(problem.candidates, design.size());
    const auto best = table.FindBest(problem.pool, design, step);
    EXPECT_EQ(best.pool, 2);
    EXPECT_EQ(best.run, 0);
    ExchangeTable other(problem.candidates, design.size());
    EXPECT_EQ(other.FindBest({4, 1, 0, 3, 2}, design, step).pool, 0);
}

TEST(ExchangeTable, AnEmptyPoolOrNoGainGivesNoExchange) {
    const Problem problem({{1}, {1}, {-1}});
    const std::vector<int> design = {0, 1, 2};
    const auto step = problem.StepOf(design);
    ExchangeTable table(problem.candidates, design.size());
    EXPECT_EQ(table.FindBest({}, design, step).pool, -1);
    EXPECT_EQ(table.FindBest({0, 1, 2}, design, step).pool, -1);
}

TEST(InverseInformation, IsThatOfTheSingularValues) {
    std::mt19937 engine(3);
    for (int trial = 0; trial < 30; ++trial) {
        const Problem problem(QuadraticGrid(2, 5));
        std::vector<const double*> rows;
        for (const int row : RandomDesign(9, problem.candidates.Rows(), engine)) {
            rows.push_back(problem.candidates.Row(static_cast<std::size_t>(row)));
        }
        const auto information = InverseInformation::CrossProduct(rows, 6);
        const auto fast = InverseInformation::Find(information);
        const auto plain = InverseInformation::BySingularValues(information);
        ASSERT_EQ(fast.has_value(), plain.has_value()) << "trial " << trial;
        for (std::size_t i = 0; fast && i < 6; ++i) {
            for (std::size_t j = 0; j < 6; ++j) {
                EXPECT_NEAR((*fast)(i, j), (*plain)(i, j), 1e-9) << "trial " << trial;
            }
        }
    }
}

TEST(InverseInformation, TheLimitOfConditionIsExactOnBothRoads) {
    PaddedMatrix information(2, 2);
    information(0, 0) = 100000;
    information(1, 1) = 1;
    EXPECT_TRUE(InverseInformation::Find(information));
    information(0, 0) = 100000.001;
    EXPECT_FALSE(InverseInformation::Find(information));
}

TEST(InverseInformation, AStartIsJudgedByItsRowsAndRefusedAtTheLimit) {
    const double wide[] = {100000, 0}, less[] = {99999, 0}, one[] = {0, 1};
    EXPECT_FALSE(InverseInformation::AreStartRows({wide, one}, 2));
    EXPECT_TRUE(InverseInformation::AreStartRows({less, one}, 2));
    const double tiny[] = {1e-17};
    const double small[] = {1.1e-17};
    EXPECT_FALSE(InverseInformation::AreStartRows({tiny}, 1));
    EXPECT_TRUE(InverseInformation::AreStartRows({small}, 1));
}

}  // namespace
