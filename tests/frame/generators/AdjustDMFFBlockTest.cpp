// Blocks of two-level full factorials: letters, sizes, and the effects that are given up for them.

#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

/// The printed block words of 2^factors runs, a word a block generator.
std::vector<std::string> BlockWords(int factors, int blocks) {
    switch (blocks) {
        case 2:
            return {factors == 3 ? "abc" : "abcd"};
        case 4:
            return factors == 4   ? std::vector<std::string>{"abc", "acd"}
                   : factors == 5 ? std::vector<std::string>{"abc", "ade"}
                                  : std::vector<std::string>{"abcd", "abef"};
        default:
            return factors == 5   ? std::vector<std::string>{"abc", "cde", "acd"}
                   : factors == 6 ? std::vector<std::string>{"bdf", "abef", "abcd"}
                                  : std::vector<std::string>{"abcd", "abef", "aceg"};
    }
}

/// Least number of factors that a block count of 2, 4 or 8 needs.
int LeastFactors(int blocks) {
    return blocks == 2 ? 3 : blocks == 4 ? 4 : 5;
}

unsigned MaskOf(const std::string& word) {
    unsigned mask = 0;
    for (const char letter : word) {
        mask |= 1u << (letter - 'a');
    }
    return mask;
}

/// The sign of an effect in a run of the standard order: minus for an odd number of low factors.
int SignOf(unsigned run, unsigned effect) {
    return std::popcount(effect & ~run) % 2 == 0 ? 1 : -1;
}

char LiteralLetter(unsigned run, const std::vector<std::string>& words) {
    int number = 1;
    int weight = 1;
    for (const std::string& word : words) {
        number += SignOf(run, MaskOf(word)) > 0 ? weight : 0;
        weight *= 2;
    }
    return static_cast<char>(number + 64);
}

NCDataMatrix<float> Factorial(const TestFactors& factors, int blocks) {
    const int runs = 1 << factors.GetDesignFactorCount();
    NCDataMatrix<float> matrix = NCDesign::MakeFFDesignTable(factors, runs, true, false);
    Generators::AdjustDMFFBlock(matrix, blocks);
    return matrix;
}

NCDataMatrix<float> Factorial(int factors, int blocks) {
    return Factorial(TestFactors().Quantitatives(factors), blocks);
}

std::string BlockLetters(const NCDataMatrix<float>& matrix) {
    std::string letters;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        letters += static_cast<char>(matrix(row, matrix.SizeColumns()));
    }
    return letters;
}

/// The effects, as masks of their factors, whose sign is the same all over each block.
std::set<unsigned> ConfoundedEffects(const NCDataMatrix<float>& matrix) {
    const int factors = matrix.SizeColumns() - 1;
    std::vector<unsigned> highs(static_cast<std::size_t>(matrix.SizeRows()));
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        for (int column = 1; column <= factors; ++column) {
            if (matrix(row, column) > 0) {
                highs[static_cast<std::size_t>(row) - 1] |= 1u << (column - 1);
            }
        }
    }
    const std::string letters = BlockLetters(matrix);
    std::set<unsigned> confounded;
    for (unsigned effect = 1; effect < (1u << factors); ++effect) {
        std::map<char, int> signs;
        bool constant = true;
        for (std::size_t run = 0; run < highs.size() && constant; ++run) {
            const int sign = SignOf(highs[run], effect);
            constant = signs.emplace(letters[run], sign).first->second == sign;
        }
        if (constant) {
            confounded.insert(effect);
        }
    }
    return confounded;
}

std::set<unsigned> Products(const std::vector<std::string>& words) {
    std::set<unsigned> products;
    for (unsigned choice = 1; choice < (1u << words.size()); ++choice) {
        unsigned product = 0;
        for (std::size_t i = 0; i < words.size(); ++i) {
            product ^= (choice >> i & 1u) != 0 ? MaskOf(words[i]) : 0u;
        }
        products.insert(product);
    }
    return products;
}

TEST(AdjustDMFFBlock, TwoBlocksOfEightRuns) {
    EXPECT_EQ(BlockLetters(Factorial(3, 2)), "ABBABAAB");
}

TEST(AdjustDMFFBlock, FourBlocksOfSixteenRuns) {
    EXPECT_EQ(BlockLetters(Factorial(4, 4)), "ADBCDACBCBDABCAD");
}

TEST(AdjustDMFFBlock, LettersAreThoseOfThePrintedWords) {
    for (const int blocks : {2, 4, 8}) {
        for (int factors = LeastFactors(blocks); factors <= 10; ++factors) {
            const std::string letters = BlockLetters(Factorial(factors, blocks));
            for (unsigned run = 0; run < letters.size(); ++run) {
                ASSERT_EQ(letters[run], LiteralLetter(run, BlockWords(factors, blocks)))
                    << factors << " factors, " << blocks << " blocks, run " << run + 1;
            }
        }
    }
}

TEST(AdjustDMFFBlock, BlocksAreOfOneSize) {
    for (const int blocks : {2, 4, 8}) {
        for (int factors = LeastFactors(blocks); factors <= 10; ++factors) {
            std::map<char, int> sizes;
            for (const char letter : BlockLetters(Factorial(factors, blocks))) {
                ++sizes[letter];
            }
            std::map<char, int> expected;
            for (int block = 0; block < blocks; ++block) {
                expected[static_cast<char>('A' + block)] = (1 << factors) / blocks;
            }
            EXPECT_EQ(sizes, expected) << factors << " factors, " << blocks << " blocks";
        }
    }
}

TEST(AdjustDMFFBlock, OnlyTheBlockWordsAndTheirProductsAreConfounded) {
    for (const int blocks : {2, 4, 8}) {
        for (int factors = LeastFactors(blocks); factors <= 10; ++factors) {
            EXPECT_EQ(ConfoundedEffects(Factorial(factors, blocks)),
                      Products(BlockWords(factors, blocks)))
                << factors << " factors, " << blocks << " blocks";
        }
    }
}

TEST(AdjustDMFFBlock, NoMainEffectIsConfounded) {
    for (const int blocks : {2, 4, 8}) {
        for (int factors = LeastFactors(blocks); factors <= 10; ++factors) {
            for (const unsigned effect : ConfoundedEffects(Factorial(factors, blocks))) {
                EXPECT_GE(std::popcount(effect), 2) << factors << " factors, " << blocks;
            }
        }
    }
}

TEST(AdjustDMFFBlock, TwoFactorInteractionsAreClearButInTheSmallestBlocks) {
    for (const int blocks : {2, 4, 8}) {
        for (int factors = LeastFactors(blocks); factors <= 10; ++factors) {
            bool meets = false;
            for (const unsigned effect : ConfoundedEffects(Factorial(factors, blocks))) {
                meets = meets || std::popcount(effect) == 2;
            }
            // 4 runs a block cannot keep all pairs apart.
            EXPECT_EQ(meets, (1 << factors) / blocks == 4 && blocks > 2)
                << factors << " factors, " << blocks << " blocks";
        }
    }
}

TEST(AdjustDMFFBlock, FactorColumnsStay) {
    for (const int blocks : {2, 4, 8}) {
        NCDataMatrix<float> adjusted = Factorial(6, blocks);
        NCDataMatrix<float> plain =
            NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(6), 64, true, false);
        adjusted.RemoveColumns(7, 1);
        plain.RemoveColumns(7, 1);
        EXPECT_EQ(adjusted, plain) << blocks;
    }
}

TEST(AdjustDMFFBlock, LevelCodesBecomeSigns) {
    const TestFactors levels =
        TestFactors().Qualitative(2).MultilevelOf(2).Quantitative().Qualitative(2).Quantitative();
    EXPECT_EQ(Factorial(levels, 4), Factorial(5, 4));
}

TEST(AdjustDMFFBlock, OneBlockOrLessChangesNothing) {
    const TestFactors factors = TestFactors().Qualitative(2).Qualitative(2).Qualitative(2);
    const NCDataMatrix<float> before = NCDesign::MakeFFDesignTable(factors, 8, true, false);
    for (const int blocks : {-8, -1, 0, 1}) {
        EXPECT_EQ(Factorial(factors, blocks), before) << blocks;
    }
}

TEST(AdjustDMFFBlock, BlockCountsBetweenCountAsThePowerOfTwoBelow) {
    EXPECT_EQ(Factorial(5, 3), Factorial(5, 2));
    EXPECT_EQ(Factorial(5, 5), Factorial(5, 4));
    EXPECT_EQ(Factorial(5, 7), Factorial(5, 4));
    EXPECT_EQ(Factorial(5, 15), Factorial(5, 8));
}

TEST(AdjustDMFFBlock, WithoutABlockGeneratorAllRunsCountAsPositive) {
    // Four runs have no block generator.
    EXPECT_EQ(BlockLetters(Factorial(2, 2)), "BBBB");
    EXPECT_EQ(BlockLetters(Factorial(3, 4)), "DDDDDDDD");
    EXPECT_EQ(BlockLetters(Factorial(4, 8)), std::string(16, 'H'));
}

TEST(AdjustDMFFBlock, MoreThanEightBlocksLeaveTheColumn) {
    const NCDataMatrix<float> before =
        NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(6), 64, true, false);
    for (const int blocks : {16, 17, 1024, 2147483647}) {
        EXPECT_EQ(Factorial(6, blocks), before) << blocks;
    }
}

TEST(AdjustDMFFBlock, TableWithoutTheBaseColumnsKeepsItsColumn) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const NCDataMatrix<float> before = NCDesign::MakeFFDesignTable(factors, 9, true, true);
    NCDataMatrix<float> matrix = before;
    matrix.ConcatRows(before);  // 18 runs of two factors, where the word has four letters
    const NCDataMatrix<float> doubled = matrix;
    Generators::AdjustDMFFBlock(matrix, 2);
    EXPECT_EQ(matrix, doubled);
}

TEST(AdjustDMFFBlock, EmptyTableStaysEmpty) {
    NCDataMatrix<float> matrix;
    Generators::AdjustDMFFBlock(matrix, 2);
    EXPECT_TRUE(matrix.IsEmpty());
}

TEST(AdjustDMFFBlock, ConfoundingIsSeenWhenOneRunMoves) {
    NCDataMatrix<float> matrix = Factorial(5, 2);
    ASSERT_EQ(ConfoundedEffects(matrix).size(), 1U);
    matrix(7, 6, matrix(7, 6) == 65.0F ? 66.0F : 65.0F);
    EXPECT_TRUE(ConfoundedEffects(matrix).empty());
}

}  // namespace
