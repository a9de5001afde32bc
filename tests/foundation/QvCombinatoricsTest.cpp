#include "foundation/utl/QvCombinatorics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <set>

#include "foundation/utl/Exceptions.h"

namespace {

using Composition = std::vector<long>;
using QvCombinatorics::NIntoK;

/// All that the walk yields up to its wrap, without the repeated first one.
std::vector<Composition> Walk(long n, long k) {
    NIntoK walk(n, k);
    std::vector<Composition> all;
    while (!walk.Next()) {
        all.push_back(walk.GetParts());
        if (all.size() > 100000) {
            ADD_FAILURE() << "no wrap for " << n << " into " << k;
            break;
        }
    }
    return all;
}

/// Every vector of digits 0 to n whose sum is n.
std::set<Composition> AllBySearch(long n, long k) {
    std::set<Composition> all;
    Composition parts(static_cast<std::size_t>(k), 0);
    for (;;) {
        if (std::accumulate(parts.begin(), parts.end(), 0L) == n) {
            all.insert(parts);
        }
        std::size_t i = 0;
        while (i < parts.size() && parts[i] == n) {
            parts[i++] = 0;
        }
        if (i == parts.size()) {
            return all;
        }
        ++parts[i];
    }
}

}  // namespace

TEST(NIntoK, ThreeIntoTwoInDescendingOrder) {
    EXPECT_EQ(Walk(3, 2), (std::vector<Composition>{{3, 0}, {2, 1}, {1, 2}, {0, 3}}));
}

TEST(NIntoK, TwoIntoThreeInDescendingOrder) {
    EXPECT_EQ(Walk(2, 3),
              (std::vector<Composition>{
                  {2, 0, 0}, {1, 1, 0}, {1, 0, 1}, {0, 2, 0}, {0, 1, 1}, {0, 0, 2}}));
}

TEST(NIntoK, WalksExactlyAllCompositions) {
    for (long n = 0; n <= 6; ++n) {
        for (long k = 1; k <= 5; ++k) {
            const std::vector<Composition> walked = Walk(n, k);
            EXPECT_TRUE(std::is_sorted(walked.begin(), walked.end(), std::greater<>()))
                << n << " into " << k;
            EXPECT_EQ(std::set<Composition>(walked.begin(), walked.end()), AllBySearch(n, k))
                << n << " into " << k;
            EXPECT_EQ(static_cast<long>(walked.size()), NIntoK(n, k).SizeCombinations())
                << n << " into " << k;
        }
    }
}

TEST(NIntoK, WrapYieldsTheFirstAgainAndGoesOn) {
    NIntoK walk(1, 2);
    EXPECT_FALSE(walk.Next());
    EXPECT_FALSE(walk.Next());
    EXPECT_TRUE(walk.Next());
    EXPECT_EQ(walk.GetParts(), (Composition{1, 0}));
    EXPECT_FALSE(walk.Next());
    EXPECT_EQ(walk.GetParts(), (Composition{0, 1}));
}

TEST(NIntoK, PartsAreZeroBeforeTheFirstStep) {
    EXPECT_EQ(NIntoK(4, 3).GetParts(), (Composition{0, 0, 0}));
}

TEST(NIntoK, NothingIntoPartsIsOneComposition) {
    NIntoK walk(0, 3);
    EXPECT_FALSE(walk.Next());
    EXPECT_TRUE(walk.Next());
    EXPECT_EQ(walk.SizeCombinations(), 1);
}

TEST(NIntoK, LargeCountIsExact) {
    // C(62, 30), the largest that a product before the division would overflow on the way to.
    EXPECT_EQ(NIntoK(32, 31).SizeCombinations(), 450883717216034179L);
}

TEST(NIntoK, CountThatDoesNotFitIsRefused) {
    EXPECT_THROW(NIntoK(100, 100), InvalidOperationException);
    EXPECT_THROW(NIntoK(std::numeric_limits<long>::max(), 2), InvalidOperationException);
}

TEST(NIntoK, LargestCountFits) {
    constexpr long cMax = std::numeric_limits<long>::max();
    EXPECT_EQ(NIntoK(cMax - 1, 2).SizeCombinations(), cMax);
}

TEST(NIntoK, BadArgumentsAreRefused) {
    EXPECT_THROW(NIntoK(-1, 2), InvalidOperationException);
    EXPECT_THROW(NIntoK(2, 0), InvalidOperationException);
}
