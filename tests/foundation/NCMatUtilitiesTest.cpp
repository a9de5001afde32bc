#include "foundation/mat/NCMatUtilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "foundation/utl/Exceptions.h"

namespace {

using Subsets = std::vector<std::vector<unsigned long long>>;
constexpr unsigned long long cHuge = std::numeric_limits<unsigned long long>::max();

/// All subsets by trying every bit pattern, then sorted.
Subsets SubsetsByBits(unsigned n, unsigned k) {
    Subsets subsets;
    for (unsigned bits = 0; bits < (1u << n); ++bits) {
        std::vector<unsigned long long> subset;
        for (unsigned element = 0; element < n; ++element) {
            if ((bits >> element & 1u) != 0) {
                subset.push_back(element);
            }
        }
        if (subset.size() == k) {
            subsets.push_back(subset);
        }
    }
    std::sort(subsets.begin(), subsets.end());
    return subsets;
}

TEST(Combnk, PairsOfFourStandInLexicographicOrder) {
    EXPECT_EQ(NCMatUtilities::combnk(4, 2),
              (Subsets{{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}}));
}

TEST(Combnk, EqualsAllBitPatternsInOrder) {
    for (unsigned n = 0; n <= 10; ++n) {
        for (unsigned k = 0; k <= n; ++k) {
            EXPECT_EQ(NCMatUtilities::combnk(n, k), SubsetsByBits(n, k)) << n << " over " << k;
        }
    }
}

TEST(Combnk, NoElementsAreOneEmptySubset) {
    EXPECT_EQ(NCMatUtilities::combnk(5, 0), Subsets{{}});
    EXPECT_EQ(NCMatUtilities::combnk(0, 0), Subsets{{}});
    EXPECT_EQ(NCMatUtilities::combnk(cHuge, 0), Subsets{{}});
}

TEST(Combnk, MoreElementsThanThereAreGiveNothing) {
    EXPECT_EQ(NCMatUtilities::combnk(3, 4), Subsets());
    EXPECT_EQ(NCMatUtilities::combnk(0, cHuge), Subsets());
}

TEST(Combnk, AbsurdCountsAreRefused) {
    EXPECT_THROW(static_cast<void>(NCMatUtilities::combnk(60, 30)), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(NCMatUtilities::combnk(cHuge, 1)), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(NCMatUtilities::combnk(cHuge, cHuge / 2)),
                 InvalidOperationException);
    EXPECT_THROW(static_cast<void>(NCMatUtilities::combnk(cHuge, cHuge - 1)),
                 InvalidOperationException);
    EXPECT_THROW(static_cast<void>(NCMatUtilities::combnk(cHuge, cHuge)),
                 InvalidOperationException);
}

TEST(Combnk, LongSubsetsOfFewStayAllowed) {
    const auto subsets = NCMatUtilities::combnk(1000, 999);
    ASSERT_EQ(subsets.size(), 1000u);
    EXPECT_EQ(subsets.back().front(), 1u);
    EXPECT_TRUE(std::is_sorted(subsets.begin(), subsets.end()));
}

}  // namespace
