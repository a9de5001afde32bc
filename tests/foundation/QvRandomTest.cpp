#include "foundation/utl/QvRandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace {

/// Literal form of the draw: long division of all 2^32 values into equal intervals, the incomplete
/// one drawn again. A product x * bound falls into the interval of its upper half; its lower half
/// says how far the interval's begin lies behind, so the first (2^32 mod bound) lower halves are
/// the surplus.
std::uint32_t LiteralDraw(std::mt19937& engine, std::uint64_t bound) {
    constexpr std::uint64_t cAll = std::uint64_t{1} << 32U;
    for (;;) {
        const std::uint64_t product = std::uint64_t{engine()} * bound;
        if (product % cAll >= cAll % bound) {
            return static_cast<std::uint32_t>(product / cAll);
        }
    }
}

}  // namespace

TEST(QvRandom, TwisterIsThePublishedOne) {
    // The C++ standard, [rand.predef]: the 10000th draw of the default twister.
    std::mt19937 engine(5489);
    engine.discard(9999);
    EXPECT_EQ(engine(), 4123659995U);
}

TEST(QvRandom, DrawEqualsItsLiteralForm) {
    for (const std::uint32_t bound : {1U,
                                      2U,
                                      3U,
                                      6U,
                                      7U,
                                      1000U,
                                      0x7FFFFFFFU,
                                      0x80000000U,
                                      0x80000001U,
                                      0xC0000000U,
                                      0xFFFFFFFEU,
                                      0xFFFFFFFFU}) {
        std::mt19937 engine(bound);
        std::mt19937 literal(bound);
        for (int i = 0; i < 2000; ++i) {
            ASSERT_EQ(QvRandom::DrawBelow(engine, bound), LiteralDraw(literal, bound))
                << "bound and seed " << bound << ", draw " << i;
        }
    }
}

TEST(QvRandom, DrawStaysBelowTheBound) {
    for (const std::uint32_t bound : {1U, 2U, 5U, 0x80000001U, 0xFFFFFFFFU}) {
        std::mt19937 engine(17);
        for (int i = 0; i < 10000; ++i) {
            ASSERT_LT(QvRandom::DrawBelow(engine, bound), bound) << "seed 17, draw " << i;
        }
    }
}

TEST(QvRandom, DrawIsUniform) {
    constexpr std::uint32_t cBound = 10;
    constexpr int cDraws = 100000;
    std::mt19937 engine(20);
    std::array<int, cBound> counts{};
    for (int i = 0; i < cDraws; ++i) {
        ++counts[QvRandom::DrawBelow(engine, cBound)];
    }
    const double expected = cDraws / static_cast<double>(cBound);
    double chiSquare = 0;
    for (const int count : counts) {
        chiSquare += (count - expected) * (count - expected) / expected;
    }
    EXPECT_LT(chiSquare, 27.88) << "the 0.999 quantile of chi-square at 9 degrees, seed 20";
}

TEST(QvRandom, RejectionRemovesTheBiasOfAWideBound) {
    // At 3/4 of the range, taking the upper half of the product without rejection hits every third
    // value twice as often.
    constexpr std::uint32_t cBound = 0xC0000000U;
    constexpr int cDraws = 30000;
    std::mt19937 engine(21);
    std::array<int, 3> counts{};
    for (int i = 0; i < cDraws; ++i) {
        ++counts[QvRandom::DrawBelow(engine, cBound) % 3];
    }
    for (const int count : counts) {
        // Four standard deviations of a binomial count at 1/3.
        EXPECT_NEAR(count, cDraws / 3, 330) << "seed 21";
    }
}

TEST(QvRandom, ShuffleGivesAPermutation) {
    std::vector<int> values(1000);
    std::iota(values.begin(), values.end(), 0);
    std::vector<int> sorted = values;
    std::mt19937 engine(22);
    QvRandom::Shuffle(std::span(values), engine);
    EXPECT_NE(values, sorted) << "seed 22";
    std::sort(values.begin(), values.end());
    EXPECT_EQ(values, sorted);
}

TEST(QvRandom, ShuffleEqualsItsLiteralForm) {
    std::vector<int> values(50);
    std::iota(values.begin(), values.end(), 0);
    std::vector<int> left = values;
    std::mt19937 engine(23);
    QvRandom::Shuffle(std::span(values), engine);

    // From the front on, each place takes one of the elements left, whose place the first one left
    // moves to.
    std::mt19937 literal(23);
    std::vector<int> expected;
    while (left.size() > 1) {
        const std::uint32_t drawn = LiteralDraw(literal, left.size());
        expected.push_back(left[drawn]);
        left[drawn] = left.front();
        left.erase(left.begin());
    }
    expected.push_back(left.front());
    EXPECT_EQ(values, expected) << "seed 23";
}

TEST(QvRandom, ShuffleReachesEveryOrderEquallyOften) {
    constexpr int cShuffles = 24000;
    std::mt19937 engine(24);
    std::vector<int> counts(256, 0);
    for (int i = 0; i < cShuffles; ++i) {
        std::vector<int> values{0, 1, 2, 3};
        QvRandom::Shuffle(std::span(values), engine);
        ++counts[static_cast<std::size_t>(values[0] * 64 + values[1] * 16 + values[2] * 4 +
                                          values[3])];
    }
    double chiSquare = 0;
    int orders = 0;
    for (const int count : counts) {
        orders += count > 0 ? 1 : 0;
        chiSquare += count > 0 ? (count - 1000.0) * (count - 1000.0) / 1000.0 : 0;
    }
    EXPECT_EQ(orders, 24);
    EXPECT_LT(chiSquare, 49.73) << "the 0.999 quantile of chi-square at 23 degrees, seed 24";
}

TEST(QvRandom, ShuffleOfNothingOrOneDrawsNothing) {
    std::mt19937 engine(25);
    std::mt19937 untouched(25);
    std::vector<int> values;
    QvRandom::Shuffle(std::span(values), engine);
    values.push_back(1);
    QvRandom::Shuffle(std::span(values), engine);
    EXPECT_EQ(engine, untouched);
}
