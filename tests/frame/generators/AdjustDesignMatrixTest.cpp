#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "foundation/util/NCInternalError.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/oracles/GeneratorAlgebra.h"
#include "tests/support/TestFactors.h"

namespace {

Generators With(int runs, const std::vector<std::string>& words) {
    Generators generators(runs);
    for (std::size_t i = 0; i < words.size(); ++i) {
        generators.SetGenerator(static_cast<int>(i) + 1,
                                generators.GetGeneratorWord(words[i].c_str()));
    }
    return generators;
}

/// The full factorial in the leading columns, as the design builders make it.
NCDataMatrix<float> Table(const TestFactors& factors, int runs, bool blockColumn) {
    return NCDesign::MakeFFDesignTable(factors, runs, blockColumn, false);
}

NCDataMatrix<float> Fraction(int runs, int factors, const std::vector<std::string>& words) {
    const bool blocked = static_cast<int>(words.size()) > factors;
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(factors), runs, blocked);
    With(runs, words).AdjustDesignMatrix(factors, matrix);
    return matrix;
}

std::string LettersOf(const NCDataMatrix<float>& matrix, int column) {
    std::string letters;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        letters += static_cast<char>(matrix(row, column));
    }
    return letters;
}

/// The level of a base factor in a run of the standard order, first factor fastest.
int StandardLevel(int run, int letter) {
    return (run >> letter & 1) != 0 ? 1 : -1;
}

/// The product of a word's letters in a run, from the text alone.
int Product(int run, const std::string& word) {
    int product = 1;
    for (const char letter : word) {
        product *= letter == '-' ? -1 : StandardLevel(run, letter - 'a');
    }
    return product;
}

/// The block letter in a run: each positive product adds 1, 2, 4 to 'A'; signs do not count.
char Letter(int run, const std::vector<std::string>& blockWords) {
    int number = 0;
    for (std::size_t i = 0; i < blockWords.size(); ++i) {
        std::string letters = blockWords[i];
        std::erase(letters, '-');
        number += Product(run, letters) > 0 ? 1 << i : 0;
    }
    return static_cast<char>('A' + number);
}

TEST(AdjustDesignMatrix, SingleLettersCopyTheirBaseColumns) {
    EXPECT_EQ(Fraction(4, 2, {"b", "a"}),
              (NCDataMatrix<float>{{-1, -1}, {-1, 1}, {1, -1}, {1, 1}}));
}

TEST(AdjustDesignMatrix, ProductOfBaseColumns) {
    EXPECT_EQ(Fraction(4, 3, {"a", "b", "ab"}),
              (NCDataMatrix<float>{{-1, -1, 1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, 1}}));
}

TEST(AdjustDesignMatrix, NegativeWordsTurnTheSigns) {
    EXPECT_EQ(Fraction(4, 3, {"-a", "b", "-ab"}),
              (NCDataMatrix<float>{{1, -1, -1}, {-1, -1, 1}, {1, 1, 1}, {-1, 1, -1}}));
}

TEST(AdjustDesignMatrix, BaseColumnsAreThoseBeforeTheChange) {
    // Column 1 is overwritten first, and column 2 still needs what stood there.
    EXPECT_EQ(Fraction(4, 3, {"ab", "a", "b"}),
              (NCDataMatrix<float>{{1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}, {1, 1, 1}}));
}

TEST(AdjustDesignMatrix, LevelCodesBecomeSigns) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(2).Qualitative(2);
    NCDataMatrix<float> matrix = Table(factors, 4, false);
    ASSERT_EQ(matrix(1, 1), 65.0F);
    ASSERT_EQ(matrix(4, 2), 66.0F);
    With(4, {"a", "b", "ab"}).AdjustDesignMatrix(3, matrix);
    EXPECT_EQ(matrix, Fraction(4, 3, {"a", "b", "ab"}));
}

TEST(AdjustDesignMatrix, OtherValuesStayInTheBaseColumns) {
    NCDataMatrix<float> matrix{{0.5F, 65, 0}, {64, 66, 0}};
    With(4, {"a", "b", "ab"}).AdjustDesignMatrix(3, matrix);
    EXPECT_EQ(matrix, (NCDataMatrix<float>{{0.5F, -1, -0.5F}, {64, 1, 64}}));
}

TEST(AdjustDesignMatrix, ColumnWithoutAWordIsConstant) {
    EXPECT_EQ(Fraction(4, 3, {"a", "b"}),
              (NCDataMatrix<float>{{-1, -1, 1}, {1, -1, 1}, {-1, 1, 1}, {1, 1, 1}}));
}

TEST(AdjustDesignMatrix, TwoBlocksByTheSignOfTheirContrast) {
    EXPECT_EQ(LettersOf(Fraction(8, 3, {"a", "b", "c", "abc"}), 4), "ABBABAAB");
}

TEST(AdjustDesignMatrix, RunWithAllContrastsNegativeStandsInTheFirstBlock) {
    // Run 1 has all factors low: ab and ac are positive, hence the last block.
    EXPECT_EQ(LettersOf(Fraction(8, 3, {"a", "b", "c", "ab", "ac"}), 4), "DACBBCAD");
}

TEST(AdjustDesignMatrix, BlockLettersFollowFromOneToThreeContrasts) {
    const std::vector<std::vector<std::string>> blockLists{
        {"abcd"}, {"abe", "cde"}, {"bcd", "ace", "abde"}};
    for (const std::vector<std::string>& blockWords : blockLists) {
        std::vector<std::string> words{"a", "b", "c", "d", "e", "abcde"};
        words.insert(words.end(), blockWords.begin(), blockWords.end());
        const std::string letters = LettersOf(Fraction(32, 6, words), 7);
        for (int run = 0; run < 32; ++run) {
            EXPECT_EQ(letters[static_cast<std::size_t>(run)], Letter(run, blockWords))
                << blockWords.size() << " block generators, run " << run + 1;
        }
    }
}

TEST(AdjustDesignMatrix, BlocksOfIndependentContrastsAreOfOneSize) {
    const std::string letters =
        LettersOf(Fraction(32, 5, {"a", "b", "c", "d", "e", "abc", "cde", "acd"}), 6);
    for (char letter = 'A'; letter <= 'H'; ++letter) {
        EXPECT_EQ(std::count(letters.begin(), letters.end(), letter), 4) << letter;
    }
}

TEST(AdjustDesignMatrix, SignOfABlockWordIsIgnored) {
    EXPECT_EQ(Fraction(8, 3, {"a", "b", "c", "-abc"}), Fraction(8, 3, {"a", "b", "c", "abc"}));
}

TEST(AdjustDesignMatrix, BlockWordWithoutLettersCountsAsPositive) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(2), 4, true);
    Generators generators = With(4, {"a", "b"});
    generators.SetGenerator(3, Generators::NEGATIVE);
    generators.AdjustDesignMatrix(2, matrix);
    EXPECT_EQ(LettersOf(matrix, 3), "BBBB");
}

TEST(AdjustDesignMatrix, BlockColumnWithoutBlockWordsIsOneBlock) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(2), 4, true);
    With(4, {"a", "b"}).AdjustDesignMatrix(2, matrix);
    EXPECT_EQ(LettersOf(matrix, 3), "AAAA");
}

TEST(AdjustDesignMatrix, BlockWordsEndAtTheFirstHole) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(3), 8, true);
    With(8, {"a", "b", "c", "ab", "", "abc"}).AdjustDesignMatrix(3, matrix);
    EXPECT_EQ(LettersOf(matrix, 4), LettersOf(Fraction(8, 3, {"a", "b", "c", "ab"}), 4));
}

TEST(AdjustDesignMatrix, BlockWordsWithoutABlockColumnAreNotUsed) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(3), 8, false);
    With(8, {"a", "b", "c", "abc"}).AdjustDesignMatrix(3, matrix);
    EXPECT_EQ(matrix, Fraction(8, 3, {"a", "b", "c"}));
}

TEST(AdjustDesignMatrix, WordOfAMissingBaseColumnIsRefusedAndTheMatrixStays) {
    const NCDataMatrix<float> before =
        Table(TestFactors().Qualitative(2).Qualitative(2).Qualitative(2), 4, false);
    NCDataMatrix<float> matrix = before;
    EXPECT_THROW(With(4, {"a", "b", "abc"}).AdjustDesignMatrix(3, matrix), NCInternalError);
    EXPECT_EQ(matrix, before);
}

TEST(AdjustDesignMatrix, BlockWordOfAMissingBaseColumnIsRefused) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(2), 4, true);
    EXPECT_THROW(With(4, {"a", "b", "abk"}).AdjustDesignMatrix(2, matrix), NCInternalError);
}

TEST(AdjustDesignMatrix, MoreBaseFactorsThanColumnsAreRefused) {
    NCDataMatrix<float> matrix = Table(TestFactors().Quantitatives(2), 4, false);
    EXPECT_THROW(With(8, {"a", "b", "c"}).AdjustDesignMatrix(2, matrix), NCInternalError);
}

TEST(AdjustDesignMatrix, EmptyTableStaysEmpty) {
    NCDataMatrix<float> matrix;
    With(4, {}).AdjustDesignMatrix(0, matrix);
    EXPECT_TRUE(matrix.IsEmpty());
}

TEST(AdjustDesignMatrix, RandomWordsGiveTheProductsOfTheirLetters) {
    constexpr unsigned cSeed = 20240607;
    std::mt19937 draw(cSeed);
    for (int trial = 0; trial < 200; ++trial) {
        const int base = 2 + static_cast<int>(draw() % 6);
        const int further = static_cast<int>(draw() % 6);
        std::vector<std::string> words;
        for (int i = 0; i < base; ++i) {
            words.emplace_back(1, static_cast<char>('a' + i));
        }
        for (int i = 0; i < further; ++i) {
            std::string word = draw() % 2 == 0 ? "-" : "";
            const auto letters = static_cast<unsigned>(1 + draw() % ((1u << base) - 1));
            // Two letters at least, since a single one would count as a further base factor.
            const unsigned several = (letters & (letters - 1)) != 0 ? letters : 3u;
            for (int letter = 0; letter < base; ++letter) {
                if ((several >> letter & 1u) != 0) {
                    word += static_cast<char>('a' + letter);
                }
            }
            words.push_back(word);
        }
        const int factors = base + further;
        const NCDataMatrix<float> matrix = Fraction(1 << base, factors, words);
        for (int run = 0; run < 1 << base; ++run) {
            for (int column = 1; column <= factors; ++column) {
                const std::string& word = words[static_cast<std::size_t>(column) - 1];
                ASSERT_EQ(matrix(run + 1, column), static_cast<float>(Product(run, word)))
                    << "seed " << cSeed << ", trial " << trial << ", run " << run + 1 << ", "
                    << word;
            }
        }
    }
}

TEST(AdjustDesignMatrix, TurningAllSignsFoldsTheFractionOver) {
    const NCDataMatrix<float> fraction = Fraction(8, 4, {"a", "b", "c", "ab"});
    NCDataMatrix<float> mirrored = Fraction(8, 4, {"-a", "-b", "-c", "-ab"});
    mirrored.ConcatRows(fraction);
    EXPECT_FALSE(oracles::HasStrength(fraction, 4, 3));
    EXPECT_TRUE(oracles::HasStrength(mirrored, 4, 3));
}

}  // namespace
