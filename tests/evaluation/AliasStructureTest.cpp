#include "evaluation/AliasStructure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"

namespace {

using NCDOE::AliasStructure;
using NCDOE::ComputeAliasStructure;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Effect = AliasStructure::Effect;

// "D=AB" style: the full factorial of `base` factors and the columns of the words behind it.
NCDataMatrix<float> Fraction(int base, const std::vector<std::string>& words) {
    const NCDataMatrix<float> full = NCDesign::MakePureFF2DesignTable(base, 0);
    NCDataMatrix<float> matrix = full;
    for (const std::string& word : words) {
        NCDataVector<float> column(full.SizeRows(), word.front() == '-' ? -1.0F : 1.0F);
        for (const char letter : word) {
            for (int row = 1; letter != '-' && row <= full.SizeRows(); ++row) {
                column(row, column(row) * full(row, letter - 'A' + 1));
            }
        }
        matrix.InsertColumn(matrix.SizeColumns() + 1, column);
    }
    return matrix;
}

// Plackett and Burman's design of 12 runs: the cyclic shifts of their first row, and a row of
// minus.
NCDataMatrix<float> PlackettBurman12(int factors) {
    const std::string first = "++-+++---+-";
    NCDataMatrix<float> matrix(12, factors, -1.0F);
    for (int row = 0; row < 11; ++row) {
        for (int column = 0; column < factors; ++column) {
            const char sign = first[static_cast<std::size_t>((column - row + 11) % 11)];
            matrix(row + 1, column + 1, sign == '+' ? 1.0F : -1.0F);
        }
    }
    return matrix;
}

// An effect's column by plain multiplication.
std::vector<double> PlainColumn(const NCDataMatrix<float>& matrix, const Effect& effect) {
    std::vector<double> column(static_cast<std::size_t>(matrix.SizeRows()), 1.0);
    for (const int factor : effect) {
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            column[static_cast<std::size_t>(row - 1)] *= matrix(row, factor + 1);
        }
    }
    return column;
}

double PlainMeanProduct(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum / static_cast<double>(a.size());
}

// The word length pattern by summing over every product of columns.
std::vector<double> PlainWordLengths(const NCDataMatrix<float>& matrix) {
    const int factors = matrix.SizeColumns();
    std::vector<double> pattern(static_cast<std::size_t>(factors), 0.0);
    const std::vector<double> mean(static_cast<std::size_t>(matrix.SizeRows()), 1.0);
    for (unsigned mask = 1; mask < 1U << factors; ++mask) {
        Effect effect;
        for (int factor = 0; factor < factors; ++factor) {
            if ((mask >> factor & 1U) != 0) {
                effect.push_back(factor);
            }
        }
        const double product = PlainMeanProduct(PlainColumn(matrix, effect), mean);
        pattern[effect.size() - 1] += product * product;
    }
    return pattern;
}

TEST(AliasStructure, FullFactorialHasNoWordsAndInfiniteResolution) {
    const AliasStructure structure = ComputeAliasStructure(Fraction(4, {}), 4);
    EXPECT_TRUE(structure.isRegular);
    EXPECT_EQ(structure.resolution, std::numeric_limits<double>::infinity());
    EXPECT_THAT(structure.generators, IsEmpty());
    EXPECT_THAT(structure.definingWords, IsEmpty());
    EXPECT_THAT(structure.aliasSets, IsEmpty());
    EXPECT_THAT(structure.partialAliases, IsEmpty());
    EXPECT_THAT(structure.wordLengthPattern, ElementsAre(0, 0, 0, 0));
}

TEST(AliasStructure, HalfFractionOfThreeFactorsAliasesEachMainEffectWithAnInteraction) {
    const AliasStructure structure = ComputeAliasStructure(Fraction(2, {"AB"}), 3);
    EXPECT_EQ(structure.resolution, 3);
    ASSERT_THAT(structure.definingWords, SizeIs(1));
    EXPECT_EQ(structure.definingWords[0], (AliasStructure::Word{{0, 1, 2}, 1}));
    ASSERT_THAT(structure.aliasSets, SizeIs(3));
    EXPECT_THAT(structure.aliasSets[0].effects, ElementsAre(Effect{0}, (Effect{1, 2})));
    EXPECT_THAT(structure.aliasSets[1].effects, ElementsAre(Effect{1}, (Effect{0, 2})));
    EXPECT_THAT(structure.aliasSets[2].effects, ElementsAre(Effect{2}, (Effect{0, 1})));
}

TEST(AliasStructure, NegativeGeneratorTurnsTheSigns) {
    const AliasStructure structure = ComputeAliasStructure(Fraction(2, {"-AB"}), 3);
    EXPECT_EQ(structure.generators.at(0), (AliasStructure::Word{{0, 1, 2}, -1}));
    for (const AliasStructure::AliasSet& set : structure.aliasSets) {
        EXPECT_THAT(set.signs, ElementsAre(1, -1));
    }
}

// Box, Hunter and Hunter (2005), Statistics for Experimenters, the 2^(7-4) design: 7 words of three
// letters, 7 of four and one of seven.
TEST(AliasStructure, SaturatedFractionOfSevenFactorsHasTheKnownWordLengths) {
    const AliasStructure structure =
        ComputeAliasStructure(Fraction(3, {"AB", "AC", "BC", "ABC"}), 7);
    EXPECT_THAT(structure.wordLengthPattern, ElementsAre(0, 0, 7, 7, 0, 0, 1));
    EXPECT_THAT(structure.definingWords, SizeIs(15));
    EXPECT_THAT(structure.generators, SizeIs(4));
    ASSERT_THAT(structure.aliasSets, SizeIs(7));
    for (const AliasStructure::AliasSet& set : structure.aliasSets) {
        EXPECT_THAT(set.effects, SizeIs(4));  // a main effect and three interactions
    }
}

// The 2^(6-2) design with E = ABC, F = BCD has resolution IV and three words of four letters.
TEST(AliasStructure, ResolutionFourFractionKeepsMainEffectsClear) {
    const AliasStructure structure = ComputeAliasStructure(Fraction(4, {"ABC", "BCD"}), 6);
    EXPECT_EQ(structure.resolution, 4);
    EXPECT_THAT(structure.wordLengthPattern, ElementsAre(0, 0, 0, 3, 0, 0));
    for (const AliasStructure::AliasSet& set : structure.aliasSets) {
        EXPECT_THAT(set.effects.front(), SizeIs(2)) << "a main effect is aliased";
    }
}

TEST(AliasStructure, GeneratorsNameLeftmostBaseFactors) {
    const AliasStructure structure = ComputeAliasStructure(Fraction(4, {"ABCD"}), 5);
    EXPECT_THAT(structure.generators, ElementsAre(AliasStructure::Word{{0, 1, 2, 3, 4}, 1}));
}

// Deng and Tang (1999): the 12-run design of Plackett and Burman has J = 4 for every three columns,
// hence a generalised resolution of 3 + (1 - 4/12), and 165/9 and 330/9 generalised words.
TEST(AliasStructure, PlackettBurmanOfTwelveRunsHasTheKnownGeneralisedResolution) {
    const AliasStructure structure = ComputeAliasStructure(PlackettBurman12(11), 11);
    EXPECT_FALSE(structure.isRegular);
    EXPECT_DOUBLE_EQ(structure.resolution, 3.0 + 2.0 / 3.0);
    EXPECT_EQ(structure.wordLengthPattern[0], 0);
    EXPECT_EQ(structure.wordLengthPattern[1], 0);
    EXPECT_DOUBLE_EQ(structure.wordLengthPattern[2], 165.0 / 9);
    EXPECT_DOUBLE_EQ(structure.wordLengthPattern[3], 330.0 / 9);
}

TEST(AliasStructure, PlackettBurmanAliasesEveryInteractionByAThird) {
    const AliasStructure structure = ComputeAliasStructure(PlackettBurman12(11), 11);
    EXPECT_THAT(structure.aliasSets, IsEmpty());
    // 11 main effects, each with the 45 interactions of the other ten factors.
    ASSERT_THAT(structure.partialAliases, SizeIs(11 * 45));
    for (const AliasStructure::PartialAlias& alias : structure.partialAliases) {
        EXPECT_NEAR(std::abs(alias.coefficient), 1.0 / 3, 1e-15);
    }
}

TEST(AliasStructure, WordLengthsEqualTheSumOverAllProductsOnRandomDesigns) {
    std::mt19937 engine(7);
    for (int trial = 0; trial < 20; ++trial) {
        const int runs = 4 + static_cast<int>(engine() % 70);
        const int factors = 1 + static_cast<int>(engine() % 8);
        NCDataMatrix<float> matrix(runs, factors);
        for (float& cell : matrix.Cells()) {
            cell = (engine() & 1U) != 0 ? 1.0F : -1.0F;
        }
        SCOPED_TRACE("trial " + std::to_string(trial));
        const AliasStructure structure = ComputeAliasStructure(matrix, factors);
        const std::vector<double> expected = PlainWordLengths(matrix);
        ASSERT_EQ(structure.wordLengthPattern.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(structure.wordLengthPattern[i], expected[i], 1e-10);
        }
    }
}

TEST(AliasStructure, CoefficientsAndSetsEqualPlainInnerProductsOnRandomDesigns) {
    std::mt19937 engine(11);
    for (int trial = 0; trial < 20; ++trial) {
        const int runs = 3 + static_cast<int>(engine() % 90);
        const int factors = 2 + static_cast<int>(engine() % 5);
        NCDataMatrix<float> matrix(runs, factors);
        for (float& cell : matrix.Cells()) {
            cell = (engine() & 1U) != 0 ? 1.0F : -1.0F;
        }
        SCOPED_TRACE("trial " + std::to_string(trial));
        const AliasStructure structure = ComputeAliasStructure(matrix, factors);
        std::size_t partial = 0;
        std::vector<Effect> effects;
        for (int a = 0; a < factors; ++a) {
            effects.push_back({a});
        }
        for (int a = 0; a < factors; ++a) {
            for (int b = a + 1; b < factors; ++b) {
                effects.push_back({a, b});
            }
        }
        for (int a = 0; a < factors; ++a) {
            for (const Effect& effect : effects) {
                const double expected =
                    PlainMeanProduct(PlainColumn(matrix, {a}), PlainColumn(matrix, effect));
                if (expected == 0 || std::abs(expected) == 1) {
                    continue;
                }
                ASSERT_LT(partial, structure.partialAliases.size());
                EXPECT_EQ(structure.partialAliases[partial].effect, Effect{a});
                EXPECT_EQ(structure.partialAliases[partial].of, effect);
                EXPECT_NEAR(structure.partialAliases[partial].coefficient, expected, 1e-14);
                ++partial;
            }
        }
        EXPECT_EQ(partial, structure.partialAliases.size());
        for (const AliasStructure::AliasSet& set : structure.aliasSets) {
            for (std::size_t i = 0; i < set.effects.size(); ++i) {
                EXPECT_EQ(PlainMeanProduct(PlainColumn(matrix, set.effects[0]),
                                           PlainColumn(matrix, set.effects[i])),
                          set.signs[i]);
            }
        }
    }
}

TEST(AliasStructure, TwoBlocksOfTheCubeTakeTheThreeFactorInteractionOnly) {
    NCDataMatrix<float> matrix = Fraction(3, {});
    matrix.InsertColumns(4, 1);
    Generators::AdjustDMFFBlock(matrix, 2);
    EXPECT_THAT(ComputeAliasStructure(matrix, 3).blockConfounding, IsEmpty());
}

TEST(AliasStructure, InteractionChosenAsBlockContrastIsLostToTheBlocks) {
    NCDataMatrix<float> matrix = Fraction(3, {"AB"});
    for (int row = 1; row <= 8; ++row) {
        matrix(row, 4, matrix(row, 4) < 0 ? 65.0F : 66.0F);  // the fourth column is the block
    }
    const AliasStructure structure = ComputeAliasStructure(matrix, 3);
    ASSERT_THAT(structure.blockConfounding, SizeIs(1));
    EXPECT_EQ(structure.blockConfounding[0].effect, (Effect{0, 1}));
    EXPECT_DOUBLE_EQ(structure.blockConfounding[0].share, 1.0);
}

TEST(AliasStructure, UnevenBlocksTakeAPartOfAnEffect) {
    NCDataMatrix<float> matrix = Fraction(2, {});
    matrix.InsertColumns(3, 1);
    const std::vector<float> blocks{65, 66, 66, 66};
    for (int row = 1; row <= 4; ++row) {
        matrix(row, 3, blocks[static_cast<std::size_t>(row - 1)]);
    }
    // A is -1 1 -1 1: -1 in the first block, a sum of 1 over three runs in the second.
    const AliasStructure structure = ComputeAliasStructure(matrix, 2);
    ASSERT_FALSE(structure.blockConfounding.empty());
    EXPECT_EQ(structure.blockConfounding[0].effect, Effect{0});
    EXPECT_NEAR(structure.blockConfounding[0].share, (1.0 + 1.0 / 3) / 4, 1e-15);
}

TEST(AliasStructure, LetterCodesAndCentrePointsAreUnderstood) {
    NCDataMatrix<float> matrix = Fraction(2, {"AB"});
    for (int row = 1; row <= 4; ++row) {
        matrix(row, 2, matrix(row, 2) < 0 ? 65.0F : 66.0F);
    }
    matrix.ConcatRows(NCDataMatrix<float>{{0, 65, 0}, {0, 65, 0}});
    const AliasStructure structure = ComputeAliasStructure(matrix, 3);
    EXPECT_EQ(structure.runs, 4);
    EXPECT_EQ(structure.resolution, 3);
}

TEST(AliasStructure, ReplicatedFractionIsStillRegular) {
    NCDataMatrix<float> matrix = Fraction(3, {"ABC"});
    matrix.ConcatRows(matrix);
    const AliasStructure structure = ComputeAliasStructure(matrix, 4);
    EXPECT_TRUE(structure.isRegular);
    EXPECT_EQ(structure.resolution, 4);
}

TEST(AliasStructure, OneRunTurnedMakesAFractionIrregular) {
    NCDataMatrix<float> matrix = Fraction(3, {"ABC"});
    matrix(1, 1, -matrix(1, 1));
    EXPECT_FALSE(ComputeAliasStructure(matrix, 4).isRegular);
}

TEST(AliasStructure, ThreeLevelColumnIsRefusedWithItsValue) {
    NCDataMatrix<float> matrix = Fraction(2, {"AB"});
    matrix(3, 2, 67.0F);
    try {
        static_cast<void>(ComputeAliasStructure(matrix, 3));
        FAIL() << "no exception";
    } catch (const Exception& error) {
        EXPECT_STREQ(error.what(),
                     "Aliases are told for two-level designs only: run 3 of factor 2 is at 67. The "
                     "levels are -1 and 1, or the codes 65 and 66.");
    }
}

TEST(AliasStructure, DesignOfCentrePointsOnlyIsRefused) {
    EXPECT_THROW(static_cast<void>(ComputeAliasStructure(NCDataMatrix<float>(3, 2, 0.0F), 2)),
                 Exception);
}

TEST(AliasStructure, MoreThanOneColumnBehindTheFactorsIsRefused) {
    EXPECT_THROW(static_cast<void>(ComputeAliasStructure(Fraction(4, {}), 2)), Exception);
}

// With too many words to list, the shortest ones are found: the 32 factors in 64 runs of resolution
// IV have as many words of four letters as their word length pattern tells.
TEST(AliasStructure, ShortestWordsAreAsManyAsThePatternTells) {
    Generators generators(64);
    for (int i = 1; i <= 32; ++i) {
        generators.SetGenerator(i, Generators::GetGen4(i, 32, 64, 0));
    }
    NCDataMatrix<float> matrix = NCDesign::MakePureFF2DesignTable(32, 64);
    generators.AdjustDesignMatrix(32, matrix);
    const AliasStructure structure = ComputeAliasStructure(matrix, 32);
    EXPECT_EQ(structure.resolution, 4);
    EXPECT_EQ(static_cast<double>(structure.definingWords.size()), structure.wordLengthPattern[3]);
    for (const AliasStructure::Word& word : structure.definingWords) {
        ASSERT_THAT(word.factors, SizeIs(4));
    }
}

}  // namespace
