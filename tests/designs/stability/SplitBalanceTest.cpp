#include "designs/stability/SplitBalance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

#include "tests/support/SubsetCases.h"

namespace {

using SubsetOracle::Rows;

std::vector<int> PlainCodes(const SubsetSplit& split, const std::vector<int>& levels) {
    std::vector<int> codes;
    for (const Rows& subset : SubsetsOf(split)) {
        codes.push_back(SubsetOracle::QualityCode(subset, levels, split.Groups().Reduction()));
    }
    return codes;
}

class SplitBalanceOf : public ::testing::TestWithParam<SubsetCase> {};

INSTANTIATE_TEST_SUITE_P(Cases, SplitBalanceOf, ::testing::ValuesIn(MakeSubsetCases()));

TEST_P(SplitBalanceOf, HasTheCodesOfThePlainForm) {
    const LevelGroups groups(GetParam().levels, GetParam().reduction);
    SubsetSplit split(groups);
    SplitBalance balance(groups);
    for (unsigned seed = 1; seed <= 30; ++seed) {
        std::mt19937 engine(seed);
        split.Draw(engine, false, BreakCheck());
        EXPECT_EQ(balance.GetCodes(split, BreakCheck()), PlainCodes(split, GetParam().levels))
            << "seed " << seed;
    }
}

TEST(SplitBalance, HasTheCodesOfThePlainFormForRandomFactors) {
    std::mt19937 random(2017);
    for (int i = 0; i < 300; ++i) {
        SubsetCase one{{}, static_cast<int>(1 + random() % 7)};
        const int factors = static_cast<int>(1 + random() % 4);
        for (int factor = 0; factor < factors; ++factor) {
            one.levels.push_back(static_cast<int>(1 + random() % 5));
        }
        const LevelGroups groups(one.levels, one.reduction);
        SubsetSplit split(groups);
        split.Draw(random, false, BreakCheck());
        SplitBalance balance(groups);
        EXPECT_EQ(balance.GetCodes(split, BreakCheck()), PlainCodes(split, one.levels))
            << ::testing::PrintToString(one) << " in round " << i;
    }
}

// Nine runs of three factors at three levels: a Latin square, whatever is drawn.
TEST(SplitBalance, ThirdsOfThreeFactorsAtThreeLevelsArePerfect) {
    const LevelGroups groups({3, 3, 3}, 3);
    SubsetSplit split(groups);
    SplitBalance balance(groups);
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 engine(seed);
        split.Draw(engine, false, BreakCheck());
        EXPECT_THAT(balance.GetCodes(split, BreakCheck()), ::testing::Each(15)) << "seed " << seed;
    }
}

TEST(SplitBalance, RefusesMoreStatesThanFitTheMemory) {
    const LevelGroups groups({20000, 2}, 10000);
    EXPECT_THROW(SplitBalance balance(groups), std::bad_alloc);
}

}  // namespace
