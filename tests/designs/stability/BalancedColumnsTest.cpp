#include "designs/stability/BalancedColumns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "designs/stability/ColumnSwaps.h"
#include "designs/stability/PairCoincidences.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvRandom.h"
#include "tests/oracles/LiteralJ2.h"

namespace {

using Columns = std::vector<std::vector<int>>;

constexpr int cMaxSwaps = 1000;

/// Shuffles by a seed, if at all, and counts what it is asked.
class SeededSearch : public ColumnSearch {
  public:
    SeededSearch() = default;
    explicit SeededSearch(unsigned seed) : engine_(seed), isShuffled_(true) {}

    void Shuffle(std::span<int> column) override {
        ++shuffles;
        if (isShuffled_) {
            QvRandom::Shuffle(column, engine_);
        }
    }
    void Begin(int column) override { begun.push_back(column); }
    void End(int column) override { ended.push_back(column); }
    void AfterSwaps(int swaps) override {
        if (swaps == stopAfterSwaps) {
            throw CancelException();
        }
        mostSwaps = std::max(mostSwaps, swaps);
    }
    void Poll() override { ++polls; }

    int shuffles = 0;
    int mostSwaps = 0;
    int polls = 0;
    int stopAfterSwaps = -1;
    std::vector<int> begun;
    std::vector<int> ended;

  private:
    std::mt19937 engine_;
    bool isShuffled_ = false;
};

Columns Make(int runs, const std::vector<int>& levels, unsigned seed, int maxSwaps = cMaxSwaps) {
    SeededSearch search(seed);
    return MakeBalancedColumns(runs, levels, maxSwaps, search);
}

LiteralJ2::Design MakeLiterally(int runs,
                                const std::vector<int>& levels,
                                unsigned seed,
                                int maxSwaps = cMaxSwaps) {
    std::mt19937 engine(seed);
    return LiteralJ2::Generate(runs, levels, maxSwaps, [&](std::vector<int>& column) {
        QvRandom::Shuffle(std::span(column), engine);
    });
}

struct Case {
    int runs;
    std::vector<int> levels;
};

// Balanced throughout, balanced at first, and never; more levels than runs divide; the levels of a
// design in descending order, as the search meets them, and some that are not.
std::vector<Case> Cases() {
    return {{4, {2, 2, 2}},
            {9, {3, 3, 3, 3}},
            {12, {3, 2, 2, 2, 2, 2}},
            {18, {6, 3, 3, 3, 2}},
            {20, {5, 2, 2, 2, 2, 2, 2}},
            {24, {4, 3, 2, 2, 2, 2, 2, 2}},
            {17, {4, 3, 3, 2, 2}},
            {23, {7, 5, 3, 2}},
            {30, {2, 3, 5, 4, 2, 3}},
            {3, {5, 4, 3, 2}},
            {1, {3, 2, 2}},
            {31, {1, 2, 1, 3, 1}}};
}

std::vector<LiteralJ2::Swap> SwapsOf(const PairCoincidences& table,
                                     const std::vector<int>& column,
                                     int levels) {
    ColumnSwaps swaps(table.Runs(), 8);
    swaps.Start(table, column, levels);
    std::vector<LiteralJ2::Swap> made;
    while (const auto best = swaps.FindBest([] {})) {
        made.push_back({best->first, best->second, best->gain});
        swaps.Apply(*best);
    }
    return made;
}

bool AreEqual(const std::vector<LiteralJ2::Swap>& a, const std::vector<LiteralJ2::Swap>& b) {
    return std::ranges::equal(a, b, [](const auto& x, const auto& y) {
        return x.first == y.first && x.second == y.second && x.gain == y.gain;
    });
}

TEST(BalancedColumns, AreThoseOfThePlainFormForEverySeed) {
    for (const Case& look : Cases()) {
        for (unsigned seed = 1; seed <= 5; ++seed) {
            EXPECT_EQ(Make(look.runs, look.levels, seed),
                      MakeLiterally(look.runs, look.levels, seed).columns)
                << look.runs << " runs, seed " << seed;
        }
    }
}

TEST(BalancedColumns, AreThoseOfThePlainFormWhenTheSwapsRunOut) {
    // The last swap of a column that used all of them is not seen by the columns behind it.
    for (const int maxSwaps : {0, 1, 2, 3}) {
        for (const Case& look : Cases()) {
            EXPECT_EQ(Make(look.runs, look.levels, 7, maxSwaps),
                      MakeLiterally(look.runs, look.levels, 7, maxSwaps).columns)
                << look.runs << " runs, " << maxSwaps << " swaps";
        }
    }
}

TEST(ColumnSwaps, AreMadeInTheOrderOfThePlainForm) {
    std::mt19937 engine(1974);
    int made = 0;
    for (const Case& look : Cases()) {
        const auto design = MakeLiterally(look.runs, look.levels, 11);
        PairCoincidences table(look.runs);
        LiteralJ2::PairTable literal(look.runs);
        for (const auto& column : design.columns) {
            table.Add(column);
            literal.Add(LiteralJ2::PairTable::Of(column));
        }
        std::vector<int> column = design.columns.front();
        QvRandom::Shuffle(std::span(column), engine);
        const auto swaps = SwapsOf(table, column, look.levels.front());
        std::vector<LiteralJ2::Swap> expected;
        while (const auto best =
                   LiteralJ2::BestSwap(literal, LiteralJ2::PairTable::Of(column), column)) {
            expected.push_back(*best);
            std::swap(column[static_cast<std::size_t>(best->first)],
                      column[static_cast<std::size_t>(best->second)]);
        }
        EXPECT_TRUE(AreEqual(swaps, expected)) << look.runs << " runs";
        made += static_cast<int>(swaps.size());
    }
    EXPECT_GT(made, 20);
}

TEST(ColumnSwaps, AreTheSameInWideNumbers) {
    const std::vector<int> levels{4, 3, 2, 2};
    const auto design = MakeLiterally(60, levels, 3);
    PairCoincidences table(60);
    for (const auto& column : design.columns) {
        table.Add(column);
    }
    std::vector<int> column;
    for (int run = 0; run < 60; ++run) {
        column.push_back(run * 7 % 5);
    }
    ColumnSwaps narrow(60, 4);
    ColumnSwaps wide(60, 100'000);
    narrow.Start(table, column, 5);
    wide.Start(table, column, 5);
    int swaps = 0;
    while (const auto best = narrow.FindBest([] {})) {
        ASSERT_EQ(wide.FindBest([] {}), best);
        narrow.Apply(*best);
        wide.Apply(*best);
        ++swaps;
    }
    EXPECT_EQ(wide.FindBest([] {}), std::nullopt);
    EXPECT_GT(swaps, 3);
}

TEST(ColumnSwaps, J2IsThatOfAllColumnsAfterEverySwap) {
    const auto design = MakeLiterally(24, {4, 3, 2}, 5);
    PairCoincidences table(24);
    for (const auto& column : design.columns) {
        table.Add(column);
    }
    std::vector<int> column(design.columns[1]);
    ColumnSwaps swaps(24, 4);
    swaps.Start(table, column, 3);
    int made = 0;
    for (auto best = swaps.FindBest([] {}); best; best = swaps.FindBest([] {})) {
        swaps.Apply(*best);
        Columns all = design.columns;
        all.push_back(swaps.Column());
        ASSERT_EQ(static_cast<double>(swaps.J2()), LiteralJ2::J2OfColumns(all));
        ++made;
    }
    EXPECT_GT(made, 0);
}

TEST(PairCoincidences, SumOfSquaresIsJ2) {
    const auto design = MakeLiterally(23, {7, 5, 3, 2}, 9);
    PairCoincidences table(23);
    for (const auto& column : design.columns) {
        table.Add(column);
    }
    EXPECT_EQ(static_cast<double>(table.SumOfSquares()), LiteralJ2::J2OfColumns(design.columns));
}

TEST(BalancedColumns, HaveEveryLevelEquallyOftenUpToOne) {
    for (const Case& look : Cases()) {
        const Columns columns = Make(look.runs, look.levels, 2);
        for (std::size_t c = 0; c < columns.size(); ++c) {
            std::vector<long> counts;
            for (int level = 0; level < look.levels[c]; ++level) {
                counts.push_back(std::ranges::count(columns[c], level));
            }
            const auto [least, most] = std::ranges::minmax(counts);
            EXPECT_LE(most - least, look.runs % look.levels[c] == 0 ? 0 : 1)
                << look.runs << " runs, column " << c;
        }
    }
}

// The bound of Xu (2002, Technometrics 44, 356-368): reached by orthogonal arrays, and by them
// only.
TEST(LowestJ2, IsReachedByAFullFactorial) {
    Columns full(3);
    for (int a = 0; a < 4; ++a) {
        for (int b = 0; b < 3; ++b) {
            for (int c = 0; c < 2; ++c) {
                full[0].push_back(a);
                full[1].push_back(b);
                full[2].push_back(c);
            }
        }
    }
    const std::vector<int> levels{4, 3, 2};
    EXPECT_EQ(LiteralJ2::J2OfColumns(full), LowestJ2(24, levels));
    std::swap(full[2][0], full[2][3]);
    EXPECT_GT(LiteralJ2::J2OfColumns(full), LowestJ2(24, levels));
}

TEST(LowestJ2, IsReachedByTheNineRunArrayOfFourThreeLevelFactors) {
    const Columns l9{{0, 0, 0, 1, 1, 1, 2, 2, 2},
                     {0, 1, 2, 0, 1, 2, 0, 1, 2},
                     {0, 1, 2, 1, 2, 0, 2, 0, 1},
                     {0, 1, 2, 2, 0, 1, 1, 2, 0}};
    const std::vector<int> levels{3, 3, 3, 3};
    // Any two runs coincide in exactly one factor.
    EXPECT_EQ(LowestJ2(9, levels), 36);
    EXPECT_EQ(LiteralJ2::J2OfColumns(l9), 36);
}

TEST(BalancedColumns, NeverFallBelowTheLowestJ2) {
    for (const Case& look : Cases()) {
        const bool balanced =
            std::ranges::all_of(look.levels, [&](int levels) { return look.runs % levels == 0; });
        for (unsigned seed = 1; balanced && seed <= 10; ++seed) {
            EXPECT_GE(LiteralJ2::J2OfColumns(Make(look.runs, look.levels, seed)),
                      LowestJ2(look.runs, look.levels))
                << look.runs << " runs, seed " << seed;
        }
    }
}

TEST(BalancedColumns, FindTheNineRunArrayInMostSearches) {
    const std::vector<int> levels{3, 3, 3, 3};
    int found = 0;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        found += LiteralJ2::J2OfColumns(Make(9, levels, seed)) == 36 ? 1 : 0;
    }
    EXPECT_GE(found, 10);
}

TEST(BalancedColumns, FirstColumnIsSortedWithTheLongerBlocksInFront) {
    EXPECT_THAT(Make(7, {3}, 1), testing::ElementsAre(testing::ElementsAre(0, 0, 0, 1, 1, 2, 2)));
}

TEST(BalancedColumns, SecondColumnIsACycleWithoutSwaps) {
    SeededSearch search(1);
    const Columns columns = MakeBalancedColumns(7, std::vector{3, 2}, cMaxSwaps, search);
    EXPECT_THAT(columns[1], testing::ElementsAre(0, 1, 0, 1, 0, 1, 0));
    EXPECT_EQ(search.shuffles, 0);
    EXPECT_TRUE(search.begun.empty());
}

TEST(BalancedColumns, TellEveryFurtherColumn) {
    SeededSearch search(1);
    static_cast<void>(MakeBalancedColumns(12, std::vector{3, 2, 2, 2, 2}, cMaxSwaps, search));
    EXPECT_THAT(search.begun, testing::ElementsAre(2, 3, 4));
    EXPECT_EQ(search.ended, search.begun);
    EXPECT_EQ(search.shuffles, 3);
}

TEST(BalancedColumns, WithoutAShuffleAreTheSameEveryTime) {
    SeededSearch one;
    SeededSearch other;
    const std::vector<int> levels{5, 4, 3, 3, 2, 2};
    EXPECT_EQ(MakeBalancedColumns(40, levels, cMaxSwaps, one),
              MakeBalancedColumns(40, levels, cMaxSwaps, other));
}

TEST(BalancedColumns, NoColumnsAreNone) {
    EXPECT_TRUE(Make(5, {}, 1).empty());
}

TEST(BalancedColumns, StopAtASwap) {
    SeededSearch search(1);
    search.stopAfterSwaps = 2;
    EXPECT_THROW(
        static_cast<void>(MakeBalancedColumns(40, std::vector{5, 4, 2, 2}, cMaxSwaps, search)),
        CancelException);
}

TEST(BalancedColumns, LargeSearchesPollFromWithin) {
    SeededSearch search(1);
    static_cast<void>(MakeBalancedColumns(400, std::vector{5, 4, 2}, 1, search));
    EXPECT_GE(search.polls, 1);
}

// A run count that one factor divides no longer ends the use of the bound for all columns after it;
// the plain form tells where it was used.
TEST(BalancedColumns, ARunCountThatDoesNotDivideEndsTheBoundForGood) {
    const auto design = MakeLiterally(12, {3, 2, 5, 2, 2}, 4);
    EXPECT_FALSE(design.targets[2]);
    EXPECT_FALSE(design.targets[3]);
    EXPECT_EQ(Make(12, {3, 2, 5, 2, 2}, 4), design.columns);
    EXPECT_TRUE(MakeLiterally(12, {3, 2, 2, 2}, 4).targets[3]);
}

// The bound leaves out the column under construction, so it lies below what the column can reach.
TEST(BalancedColumns, TheBoundIsThatOfTheColumnsBefore) {
    EXPECT_EQ(MakeLiterally(12, {3, 2, 2, 2}, 4).targets[3], LowestJ2(12, std::vector{3, 2, 2}));
}

// A table of all pairs would take terabytes.
TEST(BalancedColumns, TwoColumnsNeedNoTableOfPairs) {
    SeededSearch search;
    const auto columns = MakeBalancedColumns(1'000'000, std::vector{3, 2}, 1000, search);
    ASSERT_EQ(columns.size(), 2U);
    EXPECT_EQ(columns[0].back(), 2);
    EXPECT_EQ(columns[1].back(), 1);
}

}  // namespace
