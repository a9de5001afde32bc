// Which table serves a combination of resolution, factors, runs and block generators.

#include <array>
#include <span>

#include "frame/generators/GeneratorTables.h"
#include "frame/generators/Generators.h"

namespace {

using namespace GeneratorTables;

constexpr int cResolutionRow = 0;
constexpr int cClassRow = -4;
// The letters of the tables' names as numbers.
constexpr GeneratorWord cClassA = 9;
constexpr GeneratorWord cClassC = 10;
constexpr GeneratorWord cClassN = 11;
constexpr unsigned cMaxFactors = 32;

// A table and what it serves. With `natural` a run count of 0 means the table's own one.
struct Choice {
    unsigned firstFactor;
    unsigned lastFactor;
    int runs;
    bool natural;
    const GeneratorTable& table;
};

// clang-format off
constexpr auto cChoices3 = std::to_array<Choice>({
    { 3,  3,  4, false, GenI3_3},
    { 5,  7,  8, false, GenI3_5_7},
    { 9, 15, 16, false, GenI3_9_15},
    {17, 31, 32, false, GenI3_17_31},
});

constexpr auto cChoices4 = std::to_array<Choice>({
    { 4,  4,   8, false, GenI4_4_8},
    { 6,  6,  16, false, GenI4_6_16},
    { 7,  7,  32, false, GenI4_7_32},
    { 7,  7,  16, false, GenI4_7_16},
    { 8,  8,  32, false, GenI4_8_32},
    { 8,  8,  16, false, GenI4_8_16},
    { 9,  9,  64, false, GenI4_9_64},
    { 9,  9,  32, false, GenI4_9_32},
    {10, 10,  64, false, GenI4_10_64},
    {10, 10,  32, false, GenI4_10_32},
    {11, 11,  64, false, GenI4_11_64},
    {11, 11,  32, false, GenI4_11_32},
    {12, 16, 128, false, GenI4_12_16_128},
    {12, 16,  64, false, GenI4_12_16_64},
    {12, 16,  32, false, GenI4_12_16_32},
    {17, 32, 256, false, GenI4_17_32_256},
    {17, 32, 128, false, GenI4_17_32_128},
    {17, 32,  64, false, GenI4_17_32_64},
});

constexpr auto cChoices5 = std::to_array<Choice>({
    { 5,  5,   16, true,  GenI5_5_16},
    { 6,  6,   32, true,  GenI5_6_32},
    { 7,  7,   64, true,  GenI5_7_64},
    { 8,  8,  128, false, GenI5_8_128},
    { 8,  8,   64, true,  GenI5_8_64},
    { 9,  9,  128, true,  GenI5_9_128},
    {10, 11,  128, true,  GenI5_10_11_128},
    {12, 17,  256, true,  GenI5_12_17_256},
    {18, 21,  512, true,  GenI5_18_21_512},
    {22, 29, 1024, true,  GenI5_22_29_1024},
    {30, 32, 2048, true,  GenI5_30_32_2048},
});

constexpr auto cChoicesII5 = std::to_array<Choice>({
    { 7,  7,   64, true,  GenII5_7_C_64},
    { 8,  8,   64, true,  GenII5_C_8_64},
    { 8,  8,  128, false, GenII5_A_8_128},
    {12, 14,  256, true,  GenII5_C_12_14_256},
    {10, 18,  512, true,  GenII5_C_10_18_512},
    {22, 27, 1024, true,  GenII5_C_22_27_1024},
    {28, 29, 1024, true,  GenII4_N_28_29_1024},
});

constexpr auto cChoicesII4 = std::to_array<Choice>({
    { 6,  7,  32, false, GenII4_A_6_7_32},
    { 9, 11,  64, false, GenII4_C_9_11_64},
    { 9, 13, 128, false, GenII4_A_9_13_128},
    {14, 29, 128, false, GenII4_N_14_29_128},
    {15, 17, 256, false, GenII4_A_15_17_256},
    {18, 29, 256, false, GenII4_N_18_29_256},
    {19, 21, 512, false, GenII4_C_19_21_512},
});

constexpr auto cChoicesII3 = std::to_array<Choice>({
    { 5,  5, 16, false, GenII3_N_5_16},
    { 6, 12, 16, false, GenII3_N_6_12_16},
    { 8,  9, 32, false, GenII3_N_8_9_32},
    {10, 28, 32, false, GenII3_N_10_28_32},
    {12, 29, 64, false, GenII3_N_12_29_64},
});

constexpr auto cChoicesIII5 = std::to_array<Choice>({
    { 7,  7,   64, true,  GenIII5_C_7_64},
    { 8,  8,  128, true,  GenIII5_C_8_128},
    {10, 14,  256, true,  GenIII5_C_10_14_256},
    {18, 18,  512, true,  GenIII5_C_18_512},
    {11, 25, 1024, true,  GenIII5_C_11_25_1024},
});

constexpr auto cChoicesIII4 = std::to_array<Choice>({
    { 9, 11, 128, false, GenIII4_N_9_11_128},
    {15, 15, 256, false, GenIII4_A_15_256},
    {16, 17, 256, false, GenIII4_N_16_17_256},
    {18, 25, 256, false, GenIII4_N_18_25_256},
    {19, 20, 512, false, GenIII4_C_19_20_512},
    {21, 21, 512, false, GenIII4_N_21_512},
});

constexpr auto cChoicesIII3 = std::to_array<Choice>({
    { 6,  6,  32, false, GenIII3_N_6_32},
    { 7, 10,  32, false, GenIII3_N_7_10_32},
    { 8, 10,  64, false, GenIII3_N_8_10_64},
    {11, 24,  32, false, GenIII3_N_11_24_32},
    {11, 11,  64, false, GenIII3_N_11_64},
    {12, 25,  64, false, GenIII3_N_12_25_64},
    {12, 25, 128, false, GenIII3_N_12_25_128},
});

// The block generators of the full factorials; the base factors need no rows.
constexpr GeneratorTable cFullI8{   0, 4, cClassC, "abc",            ""};
constexpr GeneratorTable cFullI{    0, 5, cClassA, "abcd",           ""};
constexpr GeneratorTable cFullII16{ 0, 3, cClassN, "abc acd",        ""};
constexpr GeneratorTable cFullII32{ 0, 5, cClassC, "abc ade",        ""};
constexpr GeneratorTable cFullII{   0, 5, cClassA, "abcd abef",      ""};
constexpr GeneratorTable cFullIII32{0, 3, cClassN, "abc cde acd",    ""};
constexpr GeneratorTable cFullIII64{0, 5, cClassC, "bdf abef abcd",  ""};
constexpr GeneratorTable cFullIII{  0, 5, cClassA, "abcd abef aceg", ""};
// clang-format on

// The row of the first table that serves the request; 0 without one.
GeneratorWord Look(std::span<const Choice> choices, int index, unsigned factors, int runs) {
    for (const Choice& choice : choices) {
        const bool runsFit = runs == choice.runs || (choice.natural && runs == 0);
        if (factors >= choice.firstFactor && factors <= choice.lastFactor && runsFit) {
            return choice.table(index);
        }
    }
    return Generators::NONE;
}

// The same for tables with block rows: a row beyond the factors is not looked up.
GeneratorWord LookWithBlocks(std::span<const Choice> choices,
                             int index,
                             unsigned factors,
                             int runs) {
    return index > static_cast<int>(factors) ? Generators::NONE
                                             : Look(choices, index, factors, runs);
}

// In tables without block rows, rows beyond the spare one and block rows do not exist.
bool IsWordRow(int index, unsigned factors) {
    return index >= 1 && index <= static_cast<int>(factors) + 1;
}

GeneratorWord SingleOr(const GeneratorTable& table, int firstTableRow, int index, int letters) {
    return index < firstTableRow && index <= letters
               ? static_cast<GeneratorWord>(Generators::A >> (index - 1))
               : table(index);
}

GeneratorWord Look3(int index, unsigned factors, unsigned runs) {
    if (index > static_cast<int>(factors) + 1) {
        return Generators::NONE;
    }
    if (index == cResolutionRow || index == cClassRow) {
        return index == cResolutionRow ? GeneratorWord{3} : cClassN;
    }
    if (!IsWordRow(index, factors)) {
        return Generators::NONE;
    }
    if (factors == 1 || factors == 2) {
        return SingleOr(GenI3_3, 3, index, 2);
    }
    if (factors >= 32 && factors <= 63 && runs == 64) {
        return GenI3_32_63(index);
    }
    return Look(cChoices3, index, factors, static_cast<int>(runs));
}

GeneratorWord Look4(int index, unsigned factors, int runs) {
    if (index > static_cast<int>(factors) + 1) {
        return Generators::NONE;
    }
    if (index == cResolutionRow || index == cClassRow) {
        return index == cResolutionRow ? GeneratorWord{4} : cClassA;
    }
    if (factors == 0 || factors > cMaxFactors || !IsWordRow(index, factors)) {
        return Generators::NONE;
    }
    return factors <= 3 ? SingleOr(GenI4_4_8, 4, index, 3) : Look(cChoices4, index, factors, runs);
}

GeneratorWord Class5(unsigned factors) {
    switch (factors) {
        case 17:
            return cClassN;
        case 4:
        case 5:
        case 6:
        case 7:
        case 8:
        case 9:
        case 11:
        case 21:
        case 29:
        case 32:
            return cClassC;  // the largest number of factors in so many runs
        default:
            return cClassA;
    }
}

GeneratorWord Look5(int index, unsigned factors, int runs) {
    if (index > static_cast<int>(factors) + 1 || factors == 0 || factors > cMaxFactors) {
        return Generators::NONE;
    }
    if (index == cResolutionRow) {
        // Deliberate: the 17-factor fraction is offered as resolution IV, which keeps central
        // composite designs of 17 factors from being blocked.
        return factors == 17 ? 4 : 5;
    }
    if (index == cClassRow) {
        return Class5(factors);
    }
    if (!IsWordRow(index, factors)) {
        return Generators::NONE;
    }
    return factors <= 4 ? SingleOr(GenI5_5_16, 5, index, 4) : Look(cChoices5, index, factors, runs);
}

}  // namespace

GeneratorWord Generators::GetGenSingle(int index) {
    return index >= 1 && index <= static_cast<int>(cMaxBaseFactors)
               ? static_cast<GeneratorWord>(A >> (index - 1))
               : NONE;
}

GeneratorWord Generators::GetGen3(int index, unsigned factors, unsigned runs, unsigned blockGens) {
    switch (blockGens) {
        case 0:
            return Look3(index, factors, runs);
        case 1:
            break;
        case 2:
            return GetGenII3(index, factors, static_cast<int>(runs), 2);
        case 3:
            return GetGenIII3(index, factors, static_cast<int>(runs), 3);
        default:
            return NONE;
    }
    // The spare row behind the last factor serves as the block generator.
    const unsigned next = factors + 1;
    const bool ownSpare = Look3(static_cast<int>(next), factors, runs) != NONE;
    const bool nextServes = ownSpare || Look3(static_cast<int>(next), next, runs) != NONE;
    if (nextServes) {
        // Deliberate: here, unlike in the other selectors, the class row too becomes the spare row.
        index = index < 0 ? static_cast<int>(next) : index;
        factors = ownSpare ? factors : next;
    }
    return Look3(index, factors, runs);
}

GeneratorWord Generators::GetGen4(int index, unsigned factors, int runs, int blockGens) {
    switch (blockGens) {
        case 0:
            return Look4(index, factors, runs);
        case 1:
            break;
        case 2:
            return GetGenII4(index, factors, runs, blockGens);
        case 3:
            return GetGenIII4(index, factors, runs, blockGens);
        default:
            return NONE;
    }
    const unsigned next = factors + 1;
    if (Look4(static_cast<int>(next), factors, runs) == NONE) {
        const auto unsignedRuns = static_cast<unsigned>(runs);
        if (Look4(static_cast<int>(next), next, runs) == NONE &&
            GetGen3(-1, factors, unsignedRuns, 1) != NONE) {
            return GetGen3(index, factors, unsignedRuns, 1);
        }
        factors = next;
    }
    return Look4(index < 0 && index != cClassRow ? static_cast<int>(next) : index, factors, runs);
}

GeneratorWord Generators::GetGen5(int index, unsigned factors, int runs, int blockGens) {
    switch (blockGens) {
        case 0:
            return Look5(index, factors, runs);
        case 1:
            break;
        case 2:
            return GetGenII5(index, factors, runs, blockGens);
        case 3:
            return GetGenIII5(index, factors, runs, blockGens);
        default:
            return NONE;
    }
    const unsigned next = factors + 1;
    if (factors < 4 || Look5(static_cast<int>(next), factors, runs) == NONE) {
        const bool nextServes = factors >= 4 && Look5(static_cast<int>(next), next, runs) != NONE;
        if (!nextServes && GetGen4(-1, factors, runs, 1) != NONE) {
            return GetGen4(index, factors, runs, 1);
        }
        factors = next;
    }
    return Look5(index < 0 && index != cClassRow ? static_cast<int>(next) : index, factors, runs);
}

GeneratorWord Generators::GetGenII3(int index, unsigned factors, int runs, int /*blockGens*/) {
    return LookWithBlocks(cChoicesII3, index, factors, runs);
}

GeneratorWord Generators::GetGenII4(int index, unsigned factors, int runs, int blockGens) {
    const GeneratorWord word = LookWithBlocks(cChoicesII4, index, factors, runs);
    return word != NONE ? word : GetGenII3(index, factors, runs, blockGens);
}

GeneratorWord Generators::GetGenII5(int index, unsigned factors, int runs, int blockGens) {
    const GeneratorWord word = LookWithBlocks(cChoicesII5, index, factors, runs);
    return word != NONE ? word : GetGenII4(index, factors, runs, blockGens);
}

GeneratorWord Generators::GetGenIII3(int index, unsigned factors, int runs, int /*blockGens*/) {
    return LookWithBlocks(cChoicesIII3, index, factors, runs);
}

GeneratorWord Generators::GetGenIII4(int index, unsigned factors, int runs, int blockGens) {
    const GeneratorWord word = LookWithBlocks(cChoicesIII4, index, factors, runs);
    return word != NONE ? word : GetGenIII3(index, factors, runs, blockGens);
}

GeneratorWord Generators::GetGenIII5(int index, unsigned factors, int runs, int blockGens) {
    const GeneratorWord word = LookWithBlocks(cChoicesIII5, index, factors, runs);
    return word != NONE ? word : GetGenIII4(index, factors, runs, blockGens);
}

GeneratorWord Generators::GetGenIFullFactorial(int index, int runs) {
    if (index > 0) {
        return GetGenSingle(index);
    }
    if (runs == 8) {
        return cFullI8(index);
    }
    return runs >= 16 ? cFullI(index) : NONE;
}

GeneratorWord Generators::GetGenIIFullFactorial(int index, int runs) {
    if (index > 0) {
        return GetGenSingle(index);
    }
    switch (runs) {
        case 16:
            return cFullII16(index);
        case 32:
            return cFullII32(index);
        default:
            return runs >= 64 ? cFullII(index) : NONE;
    }
}

GeneratorWord Generators::GetGenIIIFullFactorial(int index, int runs) {
    if (index > 0) {
        return GetGenSingle(index);
    }
    switch (runs) {
        case 32:
            return cFullIII32(index);
        case 64:
            return cFullIII64(index);
        default:
            return runs >= 128 ? cFullIII(index) : NONE;
    }
}

GeneratorWord Generators::GetGenFullFactorial(int index, int runs, int blockGens) {
    switch (blockGens) {
        case 0:
            if (index == cClassRow) {
                return cClassA;
            }
            return index == cResolutionRow ? GeneratorWord{5} : NONE;
        case 1:
            return GetGenIFullFactorial(index, runs);
        case 2:
            return GetGenIIFullFactorial(index, runs);
        case 3:
            return GetGenIIIFullFactorial(index, runs);
        default:
            return NONE;
    }
}
