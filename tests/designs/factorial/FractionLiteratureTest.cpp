// The fractions against the published tables.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/FractionRequests.h"

namespace {

struct Pattern {
    FractionRequest request;
    std::vector<double> lengths;  // from words of three letters on
};

// Minimum aberration designs: Chen, Sun and Wu (1993), "A catalogue of two-level and three-level
// fractional factorial designs with small runs".
const std::vector<Pattern>& Catalogue() {
    static const std::vector<Pattern> patterns{
        // clang-format off
        {{EDesign::FFR_III,  5,  8}, {2, 1, 0}},
        {{EDesign::FFR_III,  6,  8}, {4, 3, 0, 0}},
        {{EDesign::FFR_III,  7,  8}, {7, 7, 0, 0, 1}},
        {{EDesign::FFR_III,  9, 16}, {4, 14, 8, 0, 4, 1, 0}},
        {{EDesign::FFR_III, 10, 16}, {8, 18, 16, 8, 8, 5, 0, 0}},
        {{EDesign::FFR_IV,   4,  8}, {0, 1}},
        {{EDesign::FFR_IV,   6, 16}, {0, 3, 0, 0}},
        {{EDesign::FFR_IV,   7, 16}, {0, 7, 0, 0, 0}},
        {{EDesign::FFR_IV,   8, 16}, {0, 14, 0, 0, 0, 1}},
        {{EDesign::FFR_IV,   7, 32}, {0, 1, 2, 0, 0}},
        {{EDesign::FFR_IV,   8, 32}, {0, 3, 4, 0, 0, 0}},
        {{EDesign::FFR_IV,   9, 32}, {0, 6, 8, 0, 0, 1, 0}},
        {{EDesign::FFR_IV,  10, 32}, {0, 10, 16, 0, 0, 5, 0, 0}},
        {{EDesign::FFR_IV,   9, 64}, {0, 1, 4, 2, 0, 0, 0}},
        {{EDesign::FFR_IV,  10, 64}, {0, 2, 8, 4, 0, 1, 0, 0}},
        {{EDesign::FFR_IV,  11, 64}, {0, 4, 14, 8, 0, 3, 2, 0, 0}},
        {{EDesign::FFR_V,    5, 16}, {0, 0, 1}},
        {{EDesign::FFR_V,    7, 64}, {0, 0, 0, 0, 1}},
        {{EDesign::FFR_V,    8, 64}, {0, 0, 2, 1, 0, 0}},
        // clang-format on
    };
    return patterns;
}

struct PublishedGenerators {
    FractionRequest request;
    std::vector<std::string> words;  // of the factors behind the base factors
};

// Box, Hunter and Hunter (1978), "Statistics for Experimenters", Table 12.15, with 1, 2, 3 ...
// written as a, b, c ... and all signs positive.
const std::vector<PublishedGenerators>& StatisticsForExperimenters() {
    static const std::vector<PublishedGenerators> rows{
        // clang-format off
        {{EDesign::FFR_III,  3,   4}, {"ab"}},
        {{EDesign::FFR_IV,   4,   8}, {"abc"}},
        {{EDesign::FFR_III,  5,   8}, {"ab", "ac"}},
        {{EDesign::FFR_III,  6,   8}, {"ab", "ac", "bc"}},
        {{EDesign::FFR_III,  7,   8}, {"ab", "ac", "bc", "abc"}},
        {{EDesign::FFR_V,    5,  16}, {"abcd"}},
        {{EDesign::FFR_IV,   6,  16}, {"abc", "bcd"}},
        {{EDesign::FFR_IV,   7,  16}, {"abc", "bcd", "acd"}},
        {{EDesign::FFR_IV,   8,  16}, {"bcd", "acd", "abc", "abd"}},
        {{EDesign::FFR_III,  9,  16}, {"abc", "bcd", "acd", "abd", "abcd"}},
        {{EDesign::FFR_III, 10,  16}, {"abc", "bcd", "acd", "abd", "abcd", "ab"}},
        {{EDesign::FFR_III, 11,  16}, {"abc", "bcd", "acd", "abd", "abcd", "ab", "ac"}},
        {{EDesign::FFR_IV,   7,  32}, {"abcd", "abde"}},
        {{EDesign::FFR_IV,   8,  32}, {"abc", "abd", "bcde"}},
        {{EDesign::FFR_IV,   9,  32}, {"bcde", "acde", "abde", "abce"}},
        {{EDesign::FFR_IV,  10,  32}, {"abcd", "abce", "abde", "acde", "bcde"}},
        {{EDesign::FFR_IV,  11,  32}, {"abc", "bcd", "cde", "acd", "ade", "bde"}},
        {{EDesign::FFR_V,    7,  64}, {"abcdef"}},
        {{EDesign::FFR_V,    8,  64}, {"abcd", "abef"}},
        {{EDesign::FFR_IV,   9,  64}, {"abcd", "acef", "cdef"}},
        {{EDesign::FFR_IV,  10,  64}, {"bcdf", "acdf", "abde", "abce"}},
        {{EDesign::FFR_IV,  11,  64}, {"cde", "abcd", "abf", "bdef", "adef"}},
        {{EDesign::FFR_V,    9, 128}, {"acdfg", "bcefg"}},
        {{EDesign::FFR_V,   10, 128}, {"abcg", "bcde", "acdf"}},
        {{EDesign::FFR_V,   11, 128}, {"abcg", "bcde", "acdf", "abcdefg"}},
        // clang-format on
    };
    return rows;
}

NCDataMatrix<float> BuiltMatrix(const FractionRequest& request) {
    const auto builder = AllDesigns::GetDesignBuilder(request.type, "");
    TestFactors factors;
    factors.Quantitatives(request.factors);
    DesignOptions options(*builder, factors);
    options.SetRuns(static_cast<unsigned>(request.runs));
    options.SetCenterPoints(0);
    return *builder->Build(factors, options)->GetDesignMatrix();
}

// The products of base columns, by the definition.
float Product(const NCDataMatrix<float>& matrix, int row, const std::string& word) {
    float product = 1;
    for (const char letter : word) {
        product *= matrix(row, letter - 'a' + 1);
    }
    return product;
}

}  // namespace

TEST(FractionLiterature, WordLengthPatternsAreThoseOfMinimumAberration) {
    for (const Pattern& pattern : Catalogue()) {
        const std::vector<double> all =
            pattern.request.Build().WordLengths(pattern.request.factors);
        EXPECT_THAT(std::vector<double>(all.begin() + 3, all.end()),
                    testing::ElementsAreArray(pattern.lengths))
            << pattern.request;
    }
}

TEST(FractionLiterature, SaturatedFractionsHaveAllProductsOfTheirBaseFactors) {
    // With all 2^p - 1 columns every pair of factors is an alias of a third: C(k, 2) / 3 words.
    EXPECT_EQ((FractionRequest{EDesign::FFR_III, 15, 16}.Build().WordLengths(3)[3]), 35);
    EXPECT_EQ((FractionRequest{EDesign::FFR_III, 31, 32}.Build().WordLengths(3)[3]), 155);
}

TEST(FractionLiterature, ColumnsAreTheProductsOfStatisticsForExperimenters) {
    for (const PublishedGenerators& published : StatisticsForExperimenters()) {
        const NCDataMatrix<float> matrix = BuiltMatrix(published.request);
        const int base = published.request.factors - static_cast<int>(published.words.size());
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            for (int i = 1; i <= static_cast<int>(published.words.size()); ++i) {
                const std::string& word = published.words[static_cast<std::size_t>(i - 1)];
                ASSERT_EQ(matrix(row, base + i), Product(matrix, row, word))
                    << published.request << ", row " << row << ", word " << word;
            }
        }
    }
}

// The half fraction of six factors is of resolution V; the published one, f = abcde, is of VI.
TEST(FractionLiterature, TheHalfFractionOfSixFactorsHasOneWordOfFiveLetters) {
    const FractionRequest half{EDesign::FFR_V, 6, 32};
    EXPECT_THAT(half.Build().WordLengths(6), testing::ElementsAre(1, 0, 0, 0, 0, 1, 0));
}
