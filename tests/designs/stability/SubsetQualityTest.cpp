#include "designs/stability/SubsetQuality.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "designs/stability/SubsetDistances.h"
#include "tests/support/SubsetCases.h"

namespace {

using SubsetOracle::Rows;

struct Table {
    std::vector<int> cells;
    std::size_t columns = 0;

    LevelRows Rows() const { return {cells, columns}; }
};

Table TableOf(const Rows& rows) {
    Table table;
    for (const auto& row : rows) {
        table.columns = row.size();
        table.cells.insert(table.cells.end(), row.begin(), row.end());
    }
    return table;
}

const Rows cLatin{{1, 1, 1}, {1, 2, 2}, {2, 1, 2}, {2, 2, 1}};

TEST(SubsetQuality, LatinSquareIsAnOrthogonalArray) {
    const auto pairs = SubsetQuality::CheckPairBalance(TableOf(cLatin).Rows(), BreakCheck());
    EXPECT_TRUE(pairs.strict);
    EXPECT_TRUE(pairs.near);
}

TEST(SubsetQuality, ArrayWithAFlippedCellIsNotOrthogonal) {
    Rows flipped = cLatin;
    flipped[2][1] = 2;
    EXPECT_FALSE(SubsetQuality::CheckPairBalance(TableOf(flipped).Rows(), BreakCheck()).strict);
}

TEST(SubsetQuality, ArrayWithoutOneRunIsNearlyOrthogonal) {
    Rows shorter = cLatin;
    shorter.pop_back();
    const auto pairs = SubsetQuality::CheckPairBalance(TableOf(shorter).Rows(), BreakCheck());
    EXPECT_FALSE(pairs.strict);
    EXPECT_TRUE(pairs.near);
}

TEST(SubsetQuality, OneColumnIsNoOrthogonalArray) {
    const auto pairs = SubsetQuality::CheckPairBalance(TableOf({{1}, {2}}).Rows(), BreakCheck());
    EXPECT_FALSE(pairs.strict);
    EXPECT_FALSE(pairs.near);
}

TEST(SubsetQuality, NoRowsAreUniqueAndBalancedButNoArray) {
    const Table none{{}, 3};
    EXPECT_TRUE(SubsetQuality::IsUnique(none.Rows()));
    EXPECT_TRUE(SubsetQuality::IsBalanced(none.Rows()));
    EXPECT_FALSE(SubsetQuality::CheckPairBalance(none.Rows(), BreakCheck()).near);
}

TEST(SubsetQuality, RepeatedRowIsFound) {
    EXPECT_TRUE(SubsetQuality::IsUnique(TableOf(cLatin).Rows()));
    Rows repeated = cLatin;
    repeated.push_back(cLatin[1]);
    EXPECT_FALSE(SubsetQuality::IsUnique(TableOf(repeated).Rows()));
}

TEST(SubsetQuality, MissingLevelBelowTheLargestIsUnbalanced) {
    EXPECT_FALSE(SubsetQuality::IsBalanced(TableOf({{1, 1}, {3, 1}}).Rows()));
    EXPECT_TRUE(SubsetQuality::IsBalanced(TableOf({{1, 1}, {2, 1}}).Rows()));
}

TEST(SubsetQuality, AgreesWithThePlainFormOnRandomRows) {
    std::mt19937 random(4711);
    for (int round = 0; round < 500; ++round) {
        Rows rows(1 + random() % 12, std::vector<int>(1 + random() % 4));
        for (auto& row : rows) {
            for (int& level : row) {
                level = static_cast<int>(1 + random() % 3);
            }
        }
        const Table table = TableOf(rows);
        const auto pairs = SubsetQuality::CheckPairBalance(table.Rows(), BreakCheck());
        const auto plain = SubsetOracle::CheckPairs(rows);
        const std::string text = ::testing::PrintToString(rows);
        EXPECT_EQ(SubsetQuality::IsUnique(table.Rows()), SubsetOracle::IsUnique(rows)) << text;
        EXPECT_EQ(SubsetQuality::IsBalanced(table.Rows()), SubsetOracle::IsBalanced(rows)) << text;
        EXPECT_EQ(pairs.strict, plain.strict) << text;
        EXPECT_EQ(pairs.near, plain.near) << text;
    }
}

TEST(SubsetDistances, CountsPairsByTheirSquaredDistance) {
    const Table table = TableOf({{1, 1}, {1, 2}, {3, 2}, {4, 4}});
    // 1, 5, and 18 beyond the histogram; 4 and 13; 5.
    EXPECT_THAT(SubsetDistances::CountInRows(table.Rows(), BreakCheck()),
                ::testing::ElementsAre(0, 1, 0, 0, 1, 2, 0, 0, 0, 0));
}

class SubsetDistancesOf : public ::testing::TestWithParam<SubsetCase> {};

INSTANTIATE_TEST_SUITE_P(Cases, SubsetDistancesOf, ::testing::ValuesIn(MakeSubsetCases()));

TEST_P(SubsetDistancesOf, AreThoseOfThePlainForm) {
    const LevelGroups groups(GetParam().levels, GetParam().reduction);
    SubsetSplit split(groups);
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::mt19937 engine(seed);
        split.Draw(engine, false, BreakCheck());
        std::vector<std::vector<int>> plain;
        std::vector<std::vector<int>> inRows;
        for (const Rows& rows : SubsetsOf(split)) {
            plain.push_back(SubsetOracle::CountDistances(rows));
            inRows.push_back(SubsetDistances::CountInRows(TableOf(rows).Rows(), BreakCheck()));
        }
        EXPECT_EQ(SubsetDistances::CountInSplit(split, BreakCheck()), plain) << "seed " << seed;
        EXPECT_EQ(inRows, plain) << "seed " << seed;
    }
}

}  // namespace
