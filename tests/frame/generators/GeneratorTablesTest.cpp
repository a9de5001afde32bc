// The tables of generator words: each word against its printed form, and the aliasing that they
// promise, from the words and from the runs of built matrices.

#include "frame/generators/GeneratorTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "frame/NCDesign.h"
#include "tests/oracles/GeneratorAlgebra.h"
#include "tests/oracles/GeneratorSelectorsOracle.h"
#include "tests/oracles/GeneratorTablesOracle.h"
#include "tests/support/TestFactors.h"

namespace {

using oracles::PrintedTable;
using oracles::Words;

struct TablePair {
    const PrintedTable* printed;
    const GeneratorTable* table;
};

std::vector<TablePair> AllTables() {
    return {
        // clang-format off
        {&oracles::GenII5_7_C_64, &GeneratorTables::GenII5_7_C_64},
        {&oracles::GenII5_C_8_64, &GeneratorTables::GenII5_C_8_64},
        {&oracles::GenII5_A_8_128, &GeneratorTables::GenII5_A_8_128},
        {&oracles::GenII5_C_10_18_512, &GeneratorTables::GenII5_C_10_18_512},
        {&oracles::GenII5_C_12_14_256, &GeneratorTables::GenII5_C_12_14_256},
        {&oracles::GenII5_C_22_27_1024, &GeneratorTables::GenII5_C_22_27_1024},
        {&oracles::GenII4_N_28_29_1024, &GeneratorTables::GenII4_N_28_29_1024},
        {&oracles::GenII4_A_6_7_32, &GeneratorTables::GenII4_A_6_7_32},
        {&oracles::GenII4_C_9_11_64, &GeneratorTables::GenII4_C_9_11_64},
        {&oracles::GenII4_A_9_13_128, &GeneratorTables::GenII4_A_9_13_128},
        {&oracles::GenII4_N_14_29_128, &GeneratorTables::GenII4_N_14_29_128},
        {&oracles::GenII4_A_15_17_256, &GeneratorTables::GenII4_A_15_17_256},
        {&oracles::GenII4_N_18_29_256, &GeneratorTables::GenII4_N_18_29_256},
        {&oracles::GenII4_C_19_21_512, &GeneratorTables::GenII4_C_19_21_512},
        {&oracles::GenII3_N_5_16, &GeneratorTables::GenII3_N_5_16},
        {&oracles::GenII3_N_6_12_16, &GeneratorTables::GenII3_N_6_12_16},
        {&oracles::GenII3_N_8_9_32, &GeneratorTables::GenII3_N_8_9_32},
        {&oracles::GenII3_N_10_28_32, &GeneratorTables::GenII3_N_10_28_32},
        {&oracles::GenII3_N_12_29_64, &GeneratorTables::GenII3_N_12_29_64},
        {&oracles::GenIII5_C_7_64, &GeneratorTables::GenIII5_C_7_64},
        {&oracles::GenIII5_C_8_128, &GeneratorTables::GenIII5_C_8_128},
        {&oracles::GenIII5_C_10_14_256, &GeneratorTables::GenIII5_C_10_14_256},
        {&oracles::GenIII5_C_18_512, &GeneratorTables::GenIII5_C_18_512},
        {&oracles::GenIII5_C_11_25_1024, &GeneratorTables::GenIII5_C_11_25_1024},
        {&oracles::GenIII4_N_9_11_128, &GeneratorTables::GenIII4_N_9_11_128},
        {&oracles::GenIII4_A_15_256, &GeneratorTables::GenIII4_A_15_256},
        {&oracles::GenIII4_N_16_17_256, &GeneratorTables::GenIII4_N_16_17_256},
        {&oracles::GenIII4_N_18_25_256, &GeneratorTables::GenIII4_N_18_25_256},
        {&oracles::GenIII4_C_19_20_512, &GeneratorTables::GenIII4_C_19_20_512},
        {&oracles::GenIII4_N_21_512, &GeneratorTables::GenIII4_N_21_512},
        {&oracles::GenIII3_N_6_32, &GeneratorTables::GenIII3_N_6_32},
        {&oracles::GenIII3_N_7_10_32, &GeneratorTables::GenIII3_N_7_10_32},
        {&oracles::GenIII3_N_8_10_64, &GeneratorTables::GenIII3_N_8_10_64},
        {&oracles::GenIII3_N_11_24_32, &GeneratorTables::GenIII3_N_11_24_32},
        {&oracles::GenIII3_N_11_64, &GeneratorTables::GenIII3_N_11_64},
        {&oracles::GenIII3_N_12_25_64, &GeneratorTables::GenIII3_N_12_25_64},
        {&oracles::GenIII3_N_12_25_128, &GeneratorTables::GenIII3_N_12_25_128},
        {&oracles::GenI5_30_32_2048, &GeneratorTables::GenI5_30_32_2048},
        {&oracles::GenI5_22_29_1024, &GeneratorTables::GenI5_22_29_1024},
        {&oracles::GenI5_18_21_512, &GeneratorTables::GenI5_18_21_512},
        {&oracles::GenI5_12_17_256, &GeneratorTables::GenI5_12_17_256},
        {&oracles::GenI5_10_11_128, &GeneratorTables::GenI5_10_11_128},
        {&oracles::GenI5_9_128, &GeneratorTables::GenI5_9_128},
        {&oracles::GenI5_8_128, &GeneratorTables::GenI5_8_128},
        {&oracles::GenI5_8_64, &GeneratorTables::GenI5_8_64},
        {&oracles::GenI5_7_64, &GeneratorTables::GenI5_7_64},
        {&oracles::GenI5_6_32, &GeneratorTables::GenI5_6_32},
        {&oracles::GenI5_5_16, &GeneratorTables::GenI5_5_16},
        {&oracles::GenI4_4_8, &GeneratorTables::GenI4_4_8},
        {&oracles::GenI4_6_16, &GeneratorTables::GenI4_6_16},
        {&oracles::GenI4_7_16, &GeneratorTables::GenI4_7_16},
        {&oracles::GenI4_7_32, &GeneratorTables::GenI4_7_32},
        {&oracles::GenI4_8_16, &GeneratorTables::GenI4_8_16},
        {&oracles::GenI4_8_32, &GeneratorTables::GenI4_8_32},
        {&oracles::GenI4_9_32, &GeneratorTables::GenI4_9_32},
        {&oracles::GenI4_9_64, &GeneratorTables::GenI4_9_64},
        {&oracles::GenI4_10_32, &GeneratorTables::GenI4_10_32},
        {&oracles::GenI4_10_64, &GeneratorTables::GenI4_10_64},
        {&oracles::GenI4_11_32, &GeneratorTables::GenI4_11_32},
        {&oracles::GenI4_11_64, &GeneratorTables::GenI4_11_64},
        {&oracles::GenI4_12_16_32, &GeneratorTables::GenI4_12_16_32},
        {&oracles::GenI4_12_16_64, &GeneratorTables::GenI4_12_16_64},
        {&oracles::GenI4_12_16_128, &GeneratorTables::GenI4_12_16_128},
        {&oracles::GenI4_17_32_128, &GeneratorTables::GenI4_17_32_128},
        {&oracles::GenI4_17_32_256, &GeneratorTables::GenI4_17_32_256},
        {&oracles::GenI4_17_32_64, &GeneratorTables::GenI4_17_32_64},
        {&oracles::GenI3_5_7, &GeneratorTables::GenI3_5_7},
        {&oracles::GenI3_9_15, &GeneratorTables::GenI3_9_15},
        {&oracles::GenI3_17_31, &GeneratorTables::GenI3_17_31},
        {&oracles::GenI3_3, &GeneratorTables::GenI3_3},
        // clang-format on
    };
}

/// The words that the engine's table gives to design factors 1 to `factors`.
Words FactorWords(const GeneratorTable& table, int factors) {
    Words words;
    for (int index = 1; index <= factors; ++index) {
        words.push_back(table(index));
    }
    return words;
}

Words BlockWords(const GeneratorTable& table) {
    Words words;
    for (int index = -1; index >= -3 && table(index) != 0; --index) {
        words.push_back(table(index));
    }
    return words;
}

/// The table whose requests deliberately end in an error: its rows 8 to 14 hold no words.
bool HasHoles(const PrintedTable& printed) {
    return printed.name == "GenIII3_N_12_25_128";
}

/// The rows that hold a letter beyond the table's base factors.
std::vector<int> RowsBeyondBase(const GeneratorTable& table, int baseFactors) {
    std::vector<int> rows;
    for (int index = 1; index <= static_cast<int>(table.Size()); ++index) {
        const std::vector<int> letters = Generators::GetRows(table(index));
        if (!letters.empty() && letters.back() > baseFactors) {
            rows.push_back(index);
        }
    }
    return rows;
}

/// Factor counts of the table's range where the fraction has another resolution than the name says,
/// with that resolution; 7 is 7 and more.
using Exceptional = std::tuple<std::string, int, int, int>;

std::vector<Exceptional> OtherThanClaimed() {
    std::vector<Exceptional> runs;
    for (const TablePair& pair : AllTables()) {
        const PrintedTable& printed = *pair.printed;
        for (int factors = printed.firstFactor; factors <= printed.lastFactor; ++factors) {
            const int resolution = oracles::Resolution(FactorWords(*pair.table, factors));
            if (resolution == printed.ClaimedResolution() || HasHoles(printed)) {
                continue;
            }
            const bool goesOn = !runs.empty() && std::get<0>(runs.back()) == printed.name &&
                                std::get<2>(runs.back()) == factors - 1 &&
                                std::get<3>(runs.back()) == resolution;
            if (goesOn) {
                std::get<2>(runs.back()) = factors;
            } else {
                runs.emplace_back(printed.name, factors, factors, resolution);
            }
        }
    }
    return runs;
}

/// The runs of the fraction, made as the design builders make them.
NCDataMatrix<float> BuildFraction(const Words& words, int runs) {
    const int factors = static_cast<int>(words.size());
    const TestFactors testFactors = TestFactors().Quantitatives(factors);
    NCDataMatrix<float> matrix = NCDesign::MakeFFDesignTable(testFactors, runs, false, false);
    Generators generators(runs);
    for (int index = 1; index <= factors; ++index) {
        generators.SetGenerator(index, words[static_cast<std::size_t>(index) - 1]);
    }
    generators.AdjustDesignMatrix(factors, matrix);
    return matrix;
}

/// Whether the built fraction of the table's first `factors` words has the strength that goes with
/// a resolution.
bool IsBuiltWithResolution(const Words& words, int runs, int resolution) {
    return oracles::HasStrength(
        BuildFraction(words, runs), static_cast<int>(words.size()), resolution - 1);
}

TEST(GeneratorTables, EveryRowIsAsPrinted) {
    for (const TablePair& pair : AllTables()) {
        for (int index = -6; index <= 40; ++index) {
            EXPECT_EQ((*pair.table)(index), pair.printed->Row(index))
                << pair.printed->name << " row " << index;
        }
    }
}

TEST(GeneratorTables, ComputedTableIsAsDescribed) {
    for (int index = -6; index <= 70; ++index) {
        EXPECT_EQ(GeneratorTables::GenI3_32_63(index), oracles::Gen3Computed(index)) << index;
    }
}

TEST(GeneratorTables, ComputedTableHasItsLandmarks) {
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(6)), "f");
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(7)), "abc");
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(27)), "abcd");
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(42)), "ab");
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(57)), "abcde");
    EXPECT_EQ(Generators::GetGeneratorString(GeneratorTables::GenI3_32_63(63)), "abcdef");
}

TEST(GeneratorTables, RunsAreThoseOfTheBaseFactors) {
    for (const TablePair& pair : AllTables()) {
        EXPECT_EQ(pair.printed->runs, 1 << pair.printed->baseFactors) << pair.printed->name;
    }
}

TEST(GeneratorTables, EveryFactorOfTheRangeHasAWord) {
    for (const TablePair& pair : AllTables()) {
        if (!HasHoles(*pair.printed)) {
            const Words words = FactorWords(*pair.table, pair.printed->lastFactor);
            EXPECT_EQ(std::count(words.begin(), words.end(), 0), 0) << pair.printed->name;
        }
    }
}

TEST(GeneratorTables, OneTableHasNoWordsInRowsEightToFourteen) {
    for (int index = 1; index <= 32; ++index) {
        const bool hole = index >= 8 && index <= 14;
        EXPECT_EQ(GeneratorTables::GenIII3_N_12_25_128(index) == 0, hole) << index;
    }
}

TEST(GeneratorTables, NoWordStandsTwiceInATable) {
    for (const TablePair& pair : AllTables()) {
        Words words = FactorWords(*pair.table, static_cast<int>(pair.table->Size()));
        std::erase(words, 0);
        EXPECT_FALSE(oracles::HasTwice(words)) << pair.printed->name;
    }
}

TEST(GeneratorTables, WordsHaveNoSignAndNoForeignBits) {
    for (const TablePair& pair : AllTables()) {
        for (int index = -3; index <= 40; ++index) {
            if (index != 0) {
                EXPECT_EQ((*pair.table)(index)&0x001F, 0) << pair.printed->name << " " << index;
            }
        }
    }
}

TEST(GeneratorTables, OnlyTwoTablesHoldALetterBeyondTheirBaseFactors) {
    for (const TablePair& pair : AllTables()) {
        std::vector<int> expected;
        if (pair.printed->name == "GenII5_C_22_27_1024") {
            expected = {27};  // bcdfk
        } else if (pair.printed->name == "GenII4_N_28_29_1024") {
            expected = {27, 28};  // bcdfk and abdek
        }
        EXPECT_EQ(RowsBeyondBase(*pair.table, pair.printed->baseFactors), expected)
            << pair.printed->name;
    }
}

TEST(GeneratorTables, ResolutionIsThatOfTheNameButHere) {
    const std::vector<Exceptional> expected{
        // Worse: abcdfg, the only word of even length in its table, is abcef times an interaction.
        {"GenII4_N_14_29_128", 29, 29, 3},
        // Better than the name says.
        {"GenII5_7_C_64", 7, 7, 7},
        {"GenII5_A_8_128", 8, 8, 7},
        {"GenII3_N_5_16", 5, 5, 5},
        {"GenII3_N_6_12_16", 6, 6, 4},
        {"GenII3_N_8_9_32", 8, 9, 4},
        {"GenII3_N_10_28_32", 10, 13, 4},
        {"GenII3_N_12_29_64", 12, 29, 4},
        {"GenIII5_C_7_64", 7, 7, 7},
        {"GenIII3_N_6_32", 6, 6, 6},
        {"GenIII3_N_7_10_32", 7, 9, 4},
        {"GenIII3_N_8_10_64", 8, 8, 5},
        {"GenIII3_N_8_10_64", 9, 10, 4},
        {"GenIII3_N_11_24_32", 11, 11, 4},
        {"GenIII3_N_11_64", 11, 11, 4},
        {"GenIII3_N_12_25_64", 12, 18, 4},
        {"GenI5_9_128", 9, 9, 6},
        {"GenI5_8_128", 8, 8, 7},
        {"GenI5_7_64", 7, 7, 7},
        // As if the letter k were a base factor, which these 1024 runs do not have.
        {"GenII4_N_28_29_1024", 28, 29, 5},
    };
    std::vector<Exceptional> sorted = expected;
    std::vector<Exceptional> found = OtherThanClaimed();
    std::sort(sorted.begin(), sorted.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, sorted);
}

TEST(GeneratorTables, ComputedTableHasResolutionThreeThroughout) {
    Words words;
    for (int factors = 1; factors <= 63; ++factors) {
        words.push_back(GeneratorTables::GenI3_32_63(factors));
        if (factors >= 32) {
            EXPECT_EQ(oracles::Resolution(words), 3) << factors;
        }
    }
}

TEST(GeneratorTables, SumsOfColumnsAgreeWithTheDefiningContrasts) {
    for (const TablePair& pair : AllTables()) {
        const PrintedTable& printed = *pair.printed;
        const int factors = std::min(printed.lastFactor, printed.baseFactors + 14);
        const bool foreignLetters = !RowsBeyondBase(*pair.table, printed.baseFactors).empty();
        if (!HasHoles(printed) && !foreignLetters) {
            const Words words = FactorWords(*pair.table, factors);
            const int shortest = oracles::ShortestDefiningWord(words, printed.baseFactors);
            EXPECT_EQ(oracles::Resolution(words), std::min(shortest, 7)) << printed.name;
        }
    }
}

TEST(GeneratorTables, BuiltFractionsHaveTheResolutionOfTheName) {
    for (const TablePair& pair : AllTables()) {
        const PrintedTable& printed = *pair.printed;
        int factors = printed.lastFactor;
        if (printed.name == "GenII5_C_22_27_1024") {
            factors = 26;  // the word of factor 27 needs an eleventh base factor
        } else if (printed.name == "GenII4_N_14_29_128") {
            factors = 28;
        } else if (HasHoles(printed) || printed.name == "GenII4_N_28_29_1024") {
            continue;
        }
        EXPECT_TRUE(IsBuiltWithResolution(
            FactorWords(*pair.table, factors), printed.runs, printed.ClaimedResolution()))
            << printed.name;
    }
}

TEST(GeneratorTables, BuiltFractionOf29FactorsIn128RunsHasResolutionThreeOnly) {
    const Words words = FactorWords(GeneratorTables::GenII4_N_14_29_128, 29);
    EXPECT_TRUE(IsBuiltWithResolution(words, 128, 3));
    EXPECT_FALSE(IsBuiltWithResolution(words, 128, 4));
}

TEST(GeneratorTables, BuiltFractionOf17FactorsIn256RunsHasResolutionFive) {
    const Words words = FactorWords(GeneratorTables::GenI5_12_17_256, 17);
    EXPECT_TRUE(IsBuiltWithResolution(words, 256, 5));
}

TEST(GeneratorTables, BuiltComputedFractionOf51FactorsHasResolutionThree) {
    Words words;
    for (int index = 1; index <= 51; ++index) {
        words.push_back(GeneratorTables::GenI3_32_63(index));
    }
    EXPECT_TRUE(IsBuiltWithResolution(words, 64, 3));
}

TEST(GeneratorTables, AChangedWordIsSeen) {
    Words words = FactorWords(GeneratorTables::GenI5_12_17_256, 17);
    ASSERT_EQ(oracles::Resolution(words), 5);
    ASSERT_EQ(words[14], oracles::WordOf("abdegh"));
    words[14] = oracles::WordOf("abde");
    EXPECT_LT(oracles::Resolution(words), 5);
    EXPECT_LT(oracles::ShortestDefiningWord(words, 8), 5);
    EXPECT_FALSE(IsBuiltWithResolution(words, 256, 5));
}

TEST(GeneratorTables, NoBlockContrastIsAnAliasOfAMainEffect) {
    for (const TablePair& pair : AllTables()) {
        const Words effects = oracles::BlockEffects(BlockWords(*pair.table));
        const Words words = FactorWords(*pair.table, pair.printed->lastFactor);
        EXPECT_FALSE(oracles::Meet(effects, {0})) << pair.printed->name;
        Words mains = words;
        std::erase(mains, 0);
        EXPECT_FALSE(oracles::Meet(effects, mains)) << pair.printed->name;
    }
}

TEST(GeneratorTables, BlockWordsAreAsManyAsTheNameSays) {
    for (const TablePair& pair : AllTables()) {
        const std::string& name = pair.printed->name;
        const std::size_t expected = name.starts_with("GenIII")  ? 3
                                     : name.starts_with("GenII") ? 2
                                     : name == "GenI5_8_64"      ? 3
                                                                 : 0;
        EXPECT_EQ(BlockWords(*pair.table).size(), expected) << name;
    }
}

TEST(GeneratorTables, BlocksOfClassesAAndCAreClearOfTwoFactorInteractions) {
    int seen = 0;
    for (const TablePair& pair : AllTables()) {
        const GeneratorWord classCode = (*pair.table)(-4);
        if (classCode == 9 || classCode == 10) {
            const Words effects = oracles::BlockEffects(BlockWords(*pair.table));
            const Words words = FactorWords(*pair.table, pair.printed->lastFactor);
            EXPECT_FALSE(oracles::Meet(effects, oracles::SumsOf(words, 2))) << pair.printed->name;
            ++seen;
        }
    }
    EXPECT_EQ(seen, 18);
}

TEST(GeneratorTables, BlocksOfClassNMeetTwoFactorInteractionsWithOneException) {
    for (const TablePair& pair : AllTables()) {
        if ((*pair.table)(-4) == 11 && !HasHoles(*pair.printed)) {
            const Words effects = oracles::BlockEffects(BlockWords(*pair.table));
            const Words words = FactorWords(*pair.table, pair.printed->lastFactor);
            const bool clear = pair.printed->name == "GenII4_N_28_29_1024";
            EXPECT_EQ(oracles::Meet(effects, oracles::SumsOf(words, 2)), !clear)
                << pair.printed->name;
        }
    }
}

TEST(GeneratorTables, ResolutionAndClassRowsAreThoseOfTheName) {
    for (const TablePair& pair : AllTables()) {
        const std::string& name = pair.printed->name;
        if (name.starts_with("GenII")) {
            const GeneratorWord classCode = (*pair.table)(-4);
            EXPECT_EQ((*pair.table)(0), pair.printed->ClaimedResolution()) << name;
            const char letter = classCode == 9 ? 'A' : classCode == 10 ? 'C' : 'N';
            EXPECT_NE(name.find(std::string("_") + letter + "_"), std::string::npos) << name;
        } else {
            EXPECT_EQ((*pair.table)(0), 0) << name;
            EXPECT_EQ((*pair.table)(-4), 0) << name;
        }
    }
}

TEST(GeneratorTables, LongerTablesExtendShorterOnesRowForRow) {
    using namespace GeneratorTables;
    const std::vector<std::tuple<const GeneratorTable*, const GeneratorTable*, int>> extensions{
        {&GenI4_6_16, &GenI4_7_16, 6},
        {&GenI4_11_32, &GenI4_12_16_32, 11},
        {&GenI4_12_16_64, &GenI4_17_32_64, 16},
        {&GenI4_12_16_128, &GenI4_17_32_128, 16},
        {&GenII5_C_22_27_1024, &GenII4_N_28_29_1024, 27}};
    for (const auto& [shorter, longer, rows] : extensions) {
        EXPECT_EQ(FactorWords(*shorter, rows), FactorWords(*longer, rows)) << rows;
    }
}

}  // namespace
