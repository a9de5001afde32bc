#include "designs/stability/StabilityDesignCalculator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <string>

#include "foundation/util/UserMessage.h"
#include "foundation/utl/Exceptions.h"
#include "tests/oracles/SubsetOracle.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/SilentDisplay.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::SizeIs;

struct Answer {
    std::vector<NCDataMatrix<float>> subsets;
    std::vector<bool> unique;
    std::vector<bool> balance;
    std::vector<int> iterations;
    std::vector<std::vector<int>> distances;
    std::vector<bool> oa;
    std::vector<bool> noa;
};

Answer Calculate(int reduction,
                 const Factors& factors,
                 int secondsToWait = 0,
                 bool preferBalance = true,
                 NCProgress* progress = nullptr) {
    Answer answer;
    StabilityDesignCalculator calculator(reduction, factors, secondsToWait, preferBalance);
    answer.subsets = calculator.Calculate(progress,
                                          answer.unique,
                                          answer.balance,
                                          answer.iterations,
                                          answer.distances,
                                          answer.oa,
                                          answer.noa);
    return answer;
}

NCProgress MakeProgress() {
    return {"", 0, 1, false, false, true, ""};
}

SubsetOracle::Rows LevelsOf(const NCDataMatrix<float>& subset) {
    SubsetOracle::Rows rows;
    for (const auto& row : RowsOf(subset)) {
        rows.emplace_back(row.begin(), row.end());
    }
    return rows;
}

TestFactors ThreeLevels(int count) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.MultilevelOf(3);
    }
    return factors;
}

TEST(StabilityDesignCalculator, OneSubsetIsTheFullFactorialAfterOneIteration) {
    const Answer answer = Calculate(1, TestFactors().Quantitative().Qualitative(3), 45);
    ASSERT_THAT(answer.subsets, SizeIs(1));
    EXPECT_EQ(RowsOf(answer.subsets[0]),
              (std::vector<std::vector<float>>{{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}}));
    EXPECT_THAT(answer.iterations, ElementsAre(1));
    EXPECT_THAT(answer.unique, ElementsAre(true));
    EXPECT_THAT(answer.balance, ElementsAre(true));
    EXPECT_THAT(answer.oa, ElementsAre(true));
    EXPECT_THAT(answer.noa, ElementsAre(true));
}

TEST(StabilityDesignCalculator, NoMoreRunsThanSubsetsEndAfterOneIteration) {
    for (const bool preferBalance : {true, false}) {
        const Answer answer = Calculate(5, TestFactors().Quantitatives(2), 45, preferBalance);
        ASSERT_THAT(answer.subsets, SizeIs(5));
        EXPECT_THAT(answer.iterations, Each(1));
        EXPECT_THAT(answer.unique, Each(true));
        int runs = 0;
        int empty = 0;
        for (const auto& subset : answer.subsets) {
            runs += subset.SizeRows();
            empty += subset.SizeRows() == 0 ? 1 : 0;
        }
        EXPECT_EQ(runs, 4);
        EXPECT_GE(empty, 1);
    }
}

TEST(StabilityDesignCalculator, PerfectSubsetsEndTheSearch) {
    const Answer answer = Calculate(3, ThreeLevels(3), 45);
    EXPECT_THAT(answer.iterations, ElementsAre(1, 1, 1));
    EXPECT_THAT(answer.oa, Each(true));
    for (const auto& subset : answer.subsets) {
        EXPECT_EQ(subset.SizeRows(), 9);
        EXPECT_THAT(subset, HasOrthogonalColumns());
        EXPECT_THAT(subset, HasProportionalFrequencies());
    }
}

// Six factors at four levels in two: 2048 runs each, in which any five factors are balanced.
TEST(StabilityDesignCalculator, HalvesOfFourLevelsAreOrthogonal) {
    TestFactors factors;
    for (int i = 0; i < 6; ++i) {
        factors.MultilevelOf(4);
    }
    const Answer answer = Calculate(2, factors, 45);
    EXPECT_THAT(answer.oa, Each(true));
    EXPECT_THAT(answer.subsets[0], HasOrthogonalColumns());
}

TEST(StabilityDesignCalculator, FiguresAreThoseOfTheRows) {
    const ValidatingScope validating;
    for (const int reduction : {2, 3, 5}) {
        const Answer answer =
            Calculate(reduction, TestFactors().MultilevelOf(3).Qualitative(4).MultilevelOf(6));
        for (std::size_t i = 0; i < answer.subsets.size(); ++i) {
            const SubsetOracle::Rows rows = LevelsOf(answer.subsets[i]);
            EXPECT_EQ(answer.unique[i], SubsetOracle::IsUnique(rows)) << reduction;
            EXPECT_EQ(answer.balance[i], SubsetOracle::IsBalanced(rows)) << reduction;
            EXPECT_EQ(answer.oa[i], SubsetOracle::CheckPairs(rows).strict) << reduction;
            EXPECT_EQ(answer.noa[i], SubsetOracle::CheckPairs(rows).near) << reduction;
            EXPECT_EQ(answer.distances[i], SubsetOracle::CountDistances(rows)) << reduction;
        }
    }
}

TEST(StabilityDesignCalculator, ValidatingRepeatsOneIteration) {
    const ValidatingScope validating;
    const Answer first = Calculate(2, ThreeLevels(4), 45);
    const Answer second = Calculate(2, ThreeLevels(4), 0);
    EXPECT_THAT(first.iterations, ElementsAre(1, 1));
    EXPECT_EQ(first.subsets, second.subsets);
    std::mt19937 engine;
    const auto plain = SubsetOracle::Divide({3, 3, 3, 3}, 2, engine, true);
    EXPECT_EQ(LevelsOf(first.subsets[0]), plain[0]);
    EXPECT_EQ(LevelsOf(first.subsets[1]), plain[1]);
}

TEST(StabilityDesignCalculator, SubsetsHoldEveryCombinationOnce) {
    const Answer answer =
        Calculate(4, TestFactors().MultilevelOf(4).Qualitative(3).MultilevelOf(4), 1);
    std::multiset<std::vector<float>> all;
    for (const auto& subset : answer.subsets) {
        for (const auto& row : RowsOf(subset)) {
            all.insert(row);
        }
    }
    EXPECT_EQ(all.size(), 48U);
    EXPECT_EQ(std::set<std::vector<float>>(all.begin(), all.end()).size(), 48U);
}

TEST(StabilityDesignCalculator, WithoutFactorsThereAreNoSubsets) {
    EXPECT_THAT(Calculate(2, TestFactors()).subsets, SizeIs(0));
}

TEST(StabilityDesignCalculator, ReductionsBelowOneGiveNoSubsets) {
    EXPECT_THAT(Calculate(0, ThreeLevels(2)).subsets, SizeIs(0));
    EXPECT_THAT(Calculate(-3, ThreeLevels(2)).subsets, SizeIs(0));
}

// Of two factors at two levels in two subsets each is singular; some division is kept all the same.
TEST(StabilityDesignCalculator, SingularSubsetsAreStillADivision) {
    const ValidatingScope validating;
    const Answer answer = Calculate(2, TestFactors().Quantitatives(2), 0, false);
    ASSERT_THAT(answer.subsets, SizeIs(2));
    EXPECT_EQ(answer.subsets[0].SizeRows(), 2);
}

TEST(StabilityDesignCalculator, TimeLimitEndsTheSearch) {
    const auto begin = std::chrono::steady_clock::now();
    const Answer answer = Calculate(5, ThreeLevels(4), 1);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_GT(answer.iterations[0], 5);
    EXPECT_LT(seconds, 5);
}

TEST(StabilityDesignCalculator, BreakEndsTheSearch) {
    for (const bool preferBalance : {true, false}) {
        const SilentDisplay display(200);
        NCProgress progress = MakeProgress();
        EXPECT_THROW(Calculate(5, ThreeLevels(4), 45, preferBalance, &progress), CancelException);
    }
}

TEST(StabilityDesignCalculator, ProgressReachesItsEnd) {
    const ValidatingScope validating;
    const SilentDisplay display;
    NCProgress progress = MakeProgress();
    static_cast<void>(Calculate(2, ThreeLevels(3), 0, true, &progress));
    EXPECT_DOUBLE_EQ(display.LargestShare(), 1);
}

class ExhaustedMemory : public ::testing::Test {
  protected:
    ExhaustedMemory() {
        UserMessage::SetErrorReporter([this](const std::string& text) { told_.push_back(text); });
    }
    ~ExhaustedMemory() override { UserMessage::SetErrorReporter({}); }

    std::vector<std::string> told_;
};

TEST_F(ExhaustedMemory, IsToldToTheUserAndStopsTheSearch) {
    const SilentDisplay display;
    NCProgress progress = MakeProgress();
    EXPECT_THROW(Calculate(2, TestFactors().Quantitatives(40), 0, true, &progress),
                 CancelException);
    EXPECT_THAT(told_,
                ElementsAre("Subset designs with reduction 2 cannot be created with the current "
                            "factor setup. Out of memory, computations stopped."));
    EXPECT_TRUE(display.WasHidden());
}

TEST_F(ExhaustedMemory, IsMetByReductionsBeyondAllBounds) {
    EXPECT_THROW(Calculate(2000000000, ThreeLevels(2)), CancelException);
    EXPECT_THAT(told_, SizeIs(1));
}

TEST(ExhaustedMemoryWithoutAReporter, OnlyStopsTheSearch) {
    EXPECT_THROW(Calculate(2, TestFactors().Quantitatives(40)), CancelException);
}

}  // namespace
