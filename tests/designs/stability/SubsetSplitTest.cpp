#include "designs/stability/SubsetSplit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <set>

#include "tests/support/SubsetCases.h"

namespace {

using SubsetOracle::Rows;

class SubsetSplitOf : public ::testing::TestWithParam<SubsetCase> {
  protected:
    std::vector<Rows> Draw(unsigned seed, bool fixedSeeds) const {
        const LevelGroups groups(GetParam().levels, GetParam().reduction);
        SubsetSplit split(groups);
        std::mt19937 engine(seed);
        split.Draw(engine, fixedSeeds, BreakCheck());
        return SubsetsOf(split);
    }
    std::vector<Rows> Plain(unsigned seed, bool fixedSeeds) const {
        std::mt19937 engine(seed);
        return SubsetOracle::Divide(GetParam().levels, GetParam().reduction, engine, fixedSeeds);
    }
};

INSTANTIATE_TEST_SUITE_P(Cases, SubsetSplitOf, ::testing::ValuesIn(MakeSubsetCases()));

TEST_P(SubsetSplitOf, HasTheRowsOfThePlainForm) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        EXPECT_EQ(Draw(seed, false), Plain(seed, false)) << "seed " << seed;
    }
}

TEST_P(SubsetSplitOf, HasTheRowsOfThePlainFormWithFixedSeeds) {
    EXPECT_EQ(Draw(5, true), Plain(9, true));
}

TEST_P(SubsetSplitOf, HoldsEveryCombinationOnce) {
    const auto& levels = GetParam().levels;
    const int total = std::accumulate(levels.begin(), levels.end(), 1, std::multiplies<>());
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::map<std::vector<int>, int> counts;
        for (const Rows& subset : Draw(seed, false)) {
            for (const auto& row : subset) {
                ++counts[row];
                for (std::size_t factor = 0; factor < levels.size(); ++factor) {
                    EXPECT_GE(row[factor], 1);
                    EXPECT_LE(row[factor], levels[factor]);
                }
            }
        }
        EXPECT_EQ(static_cast<int>(counts.size()), total) << "seed " << seed;
        EXPECT_THAT(counts, ::testing::Each(::testing::Pair(::testing::_, 1)));
    }
}

std::vector<std::size_t> SizesOf(const std::vector<int>& levels, int reduction, unsigned seed) {
    const LevelGroups groups(levels, reduction);
    SubsetSplit split(groups);
    std::mt19937 engine(seed);
    split.Draw(engine, false, BreakCheck());
    std::vector<std::size_t> sizes;
    for (const Rows& subset : SubsetsOf(split)) {
        sizes.push_back(subset.size());
    }
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

// Surowiec et al. (2017), Anal. Chem. 89, 6491: factors at three, four and six levels, reduced
// by 4. A factor whose levels are a multiple of the reduction makes all subsets equally large.
TEST(SubsetSplit, ThreeFourAndSixLevelsInFourHaveEighteenRunsEach) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        EXPECT_THAT(SizesOf({3, 4, 6}, 4, seed), ::testing::Each(18U)) << "seed " << seed;
    }
}

TEST(SubsetSplit, ThreeLevelsInTwoDifferInSizeByOne) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        EXPECT_THAT(SizesOf({3, 3, 3, 3}, 2, seed), ::testing::ElementsAre(40U, 41U)) << seed;
    }
}

TEST(SubsetSplit, MoreSubsetsThanCombinationsLeaveOneEmpty) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        EXPECT_EQ(SizesOf({2, 2}, 5, seed).front(), 0U) << "seed " << seed;
    }
}

TEST(SubsetSplit, OneSubsetIsTheFullFactorialInStandardOrder) {
    const LevelGroups groups({2, 3}, 1);
    SubsetSplit split(groups);
    std::mt19937 engine(3);
    split.Draw(engine, false, BreakCheck());
    EXPECT_EQ(SubsetsOf(split).front(), (Rows{{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}}));
}

TEST(SubsetSplit, AllSquaresAreDrawnEquallyOften) {
    // With two factors in two subsets there are two divisions.
    const LevelGroups groups({2, 2}, 2);
    SubsetSplit split(groups);
    std::mt19937 engine(11);
    std::map<std::vector<Rows>, int> counts;
    constexpr int cDraws = 4000;
    for (int i = 0; i < cDraws; ++i) {
        split.Draw(engine, false, BreakCheck());
        ++counts[SubsetsOf(split)];
    }
    EXPECT_EQ(counts.size(), 2U);
    for (const auto& [subsets, count] : counts) {
        // Five standard deviations of a fair coin.
        EXPECT_NEAR(count, cDraws / 2, 160);
    }
}

TEST(LevelGroups, DealLevelsOutInTurn) {
    const LevelGroups groups({7, 2}, 3);
    EXPECT_EQ(groups.Used(0), 3);
    EXPECT_EQ(groups.Size(0, 0), 3);
    EXPECT_EQ(groups.Size(0, 1), 2);
    EXPECT_EQ(groups.Size(0, 2), 2);
    EXPECT_EQ(groups.Used(1), 2);
    EXPECT_EQ(groups.Total(), 14);
}

TEST(LevelGroups, TellThatTheRowsDoNotFitTheMemory) {
    EXPECT_EQ(LevelGroups(std::vector<int>(40, 2), 2).Total(), -1);
    EXPECT_EQ(LevelGroups({2000000000, 2000000000, 2}, 2).Total(), -1);
    EXPECT_GT(LevelGroups({10, 10, 10, 10}, 2).Total(), 0);
}

}  // namespace
