#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "frame/DesignOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

using Numbers = std::vector<std::vector<int>>;

Generators With(int runs, const std::vector<std::string>& words) {
    Generators generators(runs);
    for (std::size_t i = 0; i < words.size(); ++i) {
        generators.SetGenerator(static_cast<int>(i) + 1,
                                generators.GetGeneratorWord(words[i].c_str()));
    }
    return generators;
}

/// What the options hold afterwards; no words in 2048 runs where they hold nothing.
Generators Made(const Numbers& numbers) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(numbers)) << testing::PrintToString(numbers);
    return options.GetGenerators() != nullptr ? *options.GetGenerators() : Generators(2048);
}

/// Refused, with the generators of before kept.
bool IsRefused(const Numbers& numbers) {
    const Generators before = With(8, {"a", "b", "c", "-abc"});
    DesignOptions options;
    options.SetGenerators(&before);
    const bool made = options.SetGenerators(numbers);
    return !made && options.GetGenerators() != nullptr && *options.GetGenerators() == before;
}

TEST(SetGeneratorsFromNumbers, ProductsOfBaseFactors) {
    EXPECT_EQ(Made({{1}, {2}, {3}, {1, 2, 3}}), With(8, {"a", "b", "c", "abc"}));
}

TEST(SetGeneratorsFromNumbers, LettersFollowTheAscendingNumbers) {
    EXPECT_EQ(Made({{30}, {4}, {7}, {30, 4}}), With(8, {"c", "a", "b", "ac"}));
}

TEST(SetGeneratorsFromNumbers, OddCountOfNegativeNumbersTurnsTheSign) {
    EXPECT_EQ(Made({{1}, {-2}, {1, -2}, {-1, -2}, {-1, 2}}),
              With(4, {"a", "-b", "-ab", "ab", "-ab"}));
}

TEST(SetGeneratorsFromNumbers, LettersFollowTheAbsoluteNumbers) {
    EXPECT_EQ(Made({{-9}, {1}, {9, 1}}), With(4, {"-b", "a", "ab"}));
}

TEST(SetGeneratorsFromNumbers, BaseFactorsMayComeBehindTheProducts) {
    EXPECT_EQ(Made({{2, 1}, {1}, {2}}), With(4, {"ab", "a", "b"}));
}

TEST(SetGeneratorsFromNumbers, NumberRepeatedInAProductCountsOnce) {
    EXPECT_EQ(Made({{1}, {2}, {1, 1, 2}}), With(4, {"a", "b", "ab"}));
}

TEST(SetGeneratorsFromNumbers, ZeroIsANumberLikeOthers) {
    EXPECT_EQ(Made({{1}, {0}, {0, 1}}), With(4, {"b", "a", "ab"}));
}

TEST(SetGeneratorsFromNumbers, ExtremeNumbersAreNumbersLikeOthers) {
    EXPECT_EQ(Made({{INT_MIN}, {INT_MAX}, {INT_MAX, INT_MIN}}), With(4, {"-b", "a", "-ab"}));
}

TEST(SetGeneratorsFromNumbers, RunsAreThoseOfTheBaseFactors) {
    Numbers numbers;
    for (int base = 1; base <= 11; ++base) {
        numbers.push_back({base});
        const char expected = static_cast<char>('a' + base - 1);
        EXPECT_EQ(Made(numbers).GetMaxChar(), expected) << base;
    }
}

TEST(SetGeneratorsFromNumbers, EmptyListInstallsGeneratorsWithoutWords) {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(Numbers()));
    ASSERT_NE(options.GetGenerators(), nullptr);
    EXPECT_EQ(*options.GetGenerators(), Generators(1));
    EXPECT_EQ(options.GetGenerators()->GetMaxChar(), 'a');
}

TEST(SetGeneratorsFromNumbers, ReplacesTheGeneratorsOfBefore) {
    const Generators before = With(8, {"a", "b", "c", "-abc"});
    DesignOptions options;
    options.SetGenerators(&before);
    ASSERT_TRUE(options.SetGenerators(Numbers{{1}, {2}}));
    EXPECT_EQ(*options.GetGenerators(), With(4, {"a", "b"}));
}

TEST(SetGeneratorsFromNumbers, CopiesOfTheOptionsKeepTheirs) {
    DesignOptions options;
    ASSERT_TRUE(options.SetGenerators(Numbers{{1}}));
    const DesignOptions copy = options;
    ASSERT_TRUE(options.SetGenerators(Numbers{{1}, {2}}));
    EXPECT_EQ(*copy.GetGenerators(), With(2, {"a"}));
}

TEST(SetGeneratorsFromNumbers, EmptyWordIsRefused) {
    EXPECT_TRUE(IsRefused({{}}));
    EXPECT_TRUE(IsRefused({{1}, {2}, {}}));
}

TEST(SetGeneratorsFromNumbers, BaseFactorGivenTwiceIsRefused) {
    EXPECT_TRUE(IsRefused({{1}, {2}, {1}}));
    EXPECT_TRUE(IsRefused({{1}, {2}, {-1}}));
}

TEST(SetGeneratorsFromNumbers, NumberWithoutABaseFactorIsRefused) {
    EXPECT_TRUE(IsRefused({{1}, {2}, {1, 3}}));
    EXPECT_TRUE(IsRefused({{1}, {1, 2}}));
    EXPECT_TRUE(IsRefused({{1, 2}}));
}

TEST(SetGeneratorsFromNumbers, TwelveBaseFactorsAreRefused) {
    Numbers numbers;
    for (int base = 1; base <= 12; ++base) {
        numbers.push_back({base});
    }
    EXPECT_TRUE(IsRefused(numbers));
}

TEST(SetGeneratorsFromNumbers, MoreWordsThanThereIsRoomForAreRefused) {
    Numbers numbers(55, {1, 2});
    numbers[0] = {1};
    numbers[1] = {2};
    EXPECT_EQ(Made(numbers).ToJson().get_length(), 55U);
    numbers.push_back({1, 2});
    EXPECT_TRUE(IsRefused(numbers));
}

TEST(SetGeneratorsFromNumbers, ResultIsValidForItsDesign) {
    std::string message;
    EXPECT_TRUE(Made({{1}, {2}, {3}, {-1, 2, 3}})
                    .IsValid(TestFactors().Quantitatives(4), DesignOptions(), false, message))
        << message;
}

}  // namespace
