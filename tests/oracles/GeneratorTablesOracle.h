#pragma once

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

/// The generator tables as they are printed, in a notation of their own, for a comparison with the
/// engine's. Nothing here is shared with the engine.
namespace oracles {

/// A word as a bit mask: a is the highest of 16 bits, b the next and so on; "0" and "" are 0.
inline unsigned short WordOf(const std::string& letters) {
    unsigned short word = 0;
    for (const char letter : letters) {
        if (letter != '0') {
            word = static_cast<unsigned short>(word | (0x8000u >> (letter - 'a')));
        }
    }
    return word;
}

inline std::vector<unsigned short> WordsOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<unsigned short> words;
    for (std::string letters; stream >> letters;) {
        words.push_back(WordOf(letters));
    }
    return words;
}

/// One table with the factor counts and the run count that it serves.
struct PrintedTable {
    std::string name;
    int firstFactor;
    int lastFactor;
    int runs;
    int baseFactors;
    unsigned short resolutionRow;  // 0 where the table does not hold it
    unsigned short classRow;       // likewise
    std::vector<unsigned short> blockWords;
    std::vector<unsigned short> furtherWords;

    /// The digit behind the Roman number of the name.
    [[nodiscard]] int ClaimedResolution() const { return name[name.find_first_of("345")] - '0'; }
    /// Rows 1, 2 and so on.
    [[nodiscard]] std::vector<unsigned short> Words() const {
        std::vector<unsigned short> words;
        for (int letter = 0; letter < baseFactors; ++letter) {
            words.push_back(static_cast<unsigned short>(0x8000u >> letter));
        }
        words.insert(words.end(), furtherWords.begin(), furtherWords.end());
        return words;
    }
    /// Words of the design factors 1 to `factors`.
    [[nodiscard]] std::vector<unsigned short> Words(int factors) const {
        std::vector<unsigned short> words = Words();
        words.resize(static_cast<std::size_t>(factors));
        return words;
    }
    /// Any row number: 0 is the resolution, -4 the class, -1 to -3 the block generators.
    [[nodiscard]] unsigned short Row(int index) const {
        if (index == 0) {
            return resolutionRow;
        }
        if (index == -4) {
            return classRow;
        }
        const auto& list = index < 0 ? blockWords : furtherWords;
        if (index >= 1 && index <= baseFactors) {
            return static_cast<unsigned short>(0x8000u >> (index - 1));
        }
        const int at = index < 0 ? -index - 1 : index - baseFactors - 1;
        return at < static_cast<int>(list.size()) ? list[static_cast<std::size_t>(at)]
                                                  : static_cast<unsigned short>(0);
    }
};

// clang-format off
inline const PrintedTable GenII5_7_C_64{"GenII5_7_C_64", 7, 7, 64, 6, 5, 10, WordsOf("abcd abef"), WordsOf(
    "abcdef")};
inline const PrintedTable GenII5_C_8_64{"GenII5_C_8_64", 8, 8, 64, 6, 5, 10, WordsOf("abcd abef"), WordsOf(
    "acef abdf")};
inline const PrintedTable GenII5_A_8_128{"GenII5_A_8_128", 8, 8, 128, 7, 5, 9, WordsOf("abcd abef"), WordsOf(
    "abcdefg")};
inline const PrintedTable GenII5_C_10_18_512{"GenII5_C_10_18_512", 10, 18, 512, 9, 5, 10, WordsOf("abcd abef"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi")};
inline const PrintedTable GenII5_C_12_14_256{"GenII5_C_12_14_256", 12, 14, 256, 8, 5, 10, WordsOf("abcd abef"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh")};
inline const PrintedTable GenII5_C_22_27_1024{"GenII5_C_22_27_1024", 22, 27, 1024, 10, 5, 10, WordsOf("abcd abef"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij "
    "abcdegij bcfghij bcdfk")};
inline const PrintedTable GenII4_N_28_29_1024{"GenII4_N_28_29_1024", 28, 29, 1024, 10, 4, 11, WordsOf("abcd abef"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij "
    "abcdegij bcfghij bcdfk abdek aceg")};
inline const PrintedTable GenII4_A_6_7_32{"GenII4_A_6_7_32", 6, 7, 32, 5, 4, 9, WordsOf("abc ade"), WordsOf(
    "abe ace")};
inline const PrintedTable GenII4_C_9_11_64{"GenII4_C_9_11_64", 9, 11, 64, 6, 4, 10, WordsOf("abcd abef"), WordsOf(
    "bcdf acdf abde abce abcdef")};
inline const PrintedTable GenII4_A_9_13_128{"GenII4_A_9_13_128", 9, 13, 128, 7, 4, 9, WordsOf("abcd abef"), WordsOf(
    "bcdf acdf abde abce abcdef abcfg")};
inline const PrintedTable GenII4_N_14_29_128{"GenII4_N_14_29_128", 14, 29, 128, 7, 4, 11, WordsOf("abcd abef"), WordsOf(
    "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg abefg acdef acdeg acdfg "
    "acefg adefg bcdef bcdeg bcdfg bcefg bdefg cdefg abcdfg")};
inline const PrintedTable GenII4_A_15_17_256{"GenII4_A_15_17_256", 15, 17, 256, 8, 4, 9, WordsOf("abcd abef"), WordsOf(
    "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh")};
inline const PrintedTable GenII4_N_18_29_256{"GenII4_N_18_29_256", 18, 29, 256, 8, 4, 11, WordsOf("abcd abef"), WordsOf(
    "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg "
    "abdefh abdegh abdfgh abefgh acdefg acdefh acdegh acdfgh acefgh adefgh")};
inline const PrintedTable GenII4_C_19_21_512{"GenII4_C_19_21_512", 19, 21, 512, 9, 4, 10, WordsOf("abcd abef"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi abgh")};
inline const PrintedTable GenII3_N_5_16{"GenII3_N_5_16", 5, 5, 16, 4, 3, 11, WordsOf("abc acd"), WordsOf(
    "abcd")};
inline const PrintedTable GenII3_N_6_12_16{"GenII3_N_6_12_16", 6, 12, 16, 4, 3, 11, WordsOf("abc acd"), WordsOf(
    "abd bcd abcd ab ac ad bc cd")};
inline const PrintedTable GenII3_N_8_9_32{"GenII3_N_8_9_32", 8, 9, 32, 5, 3, 11, WordsOf("abc ade"), WordsOf(
    "abcd abde acde abce")};
inline const PrintedTable GenII3_N_10_28_32{"GenII3_N_10_28_32", 10, 28, 32, 5, 3, 11, WordsOf("abc ade"), WordsOf(
    "bcd cde acd bde ace bce abd abe abcd abde acde abce ab ac ad ae bc bd be cd ce de "
    "abcde")};
inline const PrintedTable GenII3_N_12_29_64{"GenII3_N_12_29_64", 12, 29, 64, 6, 3, 11, WordsOf("abcd abef"), WordsOf(
    "abcdf abcde abcef abdef acdef bcdef abc abd abe abf acd ace acf ade adf aef bcd "
    "bce bcf bde bdf bef cde")};
inline const PrintedTable GenIII5_C_7_64{"GenIII5_C_7_64", 7, 7, 64, 6, 5, 10, WordsOf("bdf abef abcd"), WordsOf(
    "abcdef")};
inline const PrintedTable GenIII5_C_8_128{"GenIII5_C_8_128", 8, 8, 128, 7, 5, 10, WordsOf("abcd abef aceg"), WordsOf(
    "defg")};
inline const PrintedTable GenIII5_C_10_14_256{"GenIII5_C_10_14_256", 10, 14, 256, 8, 5, 10, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh")};
inline const PrintedTable GenIII5_C_18_512{"GenIII5_C_18_512", 18, 18, 512, 9, 5, 10, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi")};
inline const PrintedTable GenIII5_C_11_25_1024{"GenIII5_C_11_25_1024", 11, 25, 1024, 10, 5, 10, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij "
    "abcdegij")};
inline const PrintedTable GenIII4_N_9_11_128{"GenIII4_N_9_11_128", 9, 11, 128, 7, 4, 11, WordsOf("abcd abef aceg"), WordsOf(
    "defg cdfg bcde abcdefg")};
inline const PrintedTable GenIII4_A_15_256{"GenIII4_A_15_256", 15, 15, 256, 8, 4, 9, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh afgh")};
inline const PrintedTable GenIII4_N_16_17_256{"GenIII4_N_16_17_256", 16, 17, 256, 8, 4, 11, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh afgh abgh cdegh")};
inline const PrintedTable GenIII4_N_18_25_256{"GenIII4_N_18_25_256", 18, 25, 256, 8, 4, 11, WordsOf("abcd abef aceg"), WordsOf(
    "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg "
    "abdefh abdegh abdfgh abefgh acdefg acdefh")};
inline const PrintedTable GenIII4_C_19_20_512{"GenIII4_C_19_20_512", 19, 20, 512, 9, 4, 10, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi")};
inline const PrintedTable GenIII4_N_21_512{"GenIII4_N_21_512", 21, 21, 512, 9, 4, 11, WordsOf("abcd abef aceg"), WordsOf(
    "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi abgh")};
inline const PrintedTable GenIII3_N_6_32{"GenIII3_N_6_32", 6, 6, 32, 5, 3, 11, WordsOf("abc cde acd"), WordsOf(
    "abcde")};
inline const PrintedTable GenIII3_N_7_10_32{"GenIII3_N_7_10_32", 7, 10, 32, 5, 3, 11, WordsOf("abc cde acd"), WordsOf(
    "abcd abce bcde acde abcde")};
inline const PrintedTable GenIII3_N_8_10_64{"GenIII3_N_8_10_64", 8, 10, 64, 6, 3, 11, WordsOf("bdf abef abcd"), WordsOf(
    "acef bdef abde abcdef")};
inline const PrintedTable GenIII3_N_11_24_32{"GenIII3_N_11_24_32", 11, 24, 32, 5, 3, 11, WordsOf("abc cde acd"), WordsOf(
    "abd bcd abe ace ade bde bcde abcd abce acde abcde ab cd bc be ac ad ce de")};
inline const PrintedTable GenIII3_N_11_64{"GenIII3_N_11_64", 11, 11, 64, 6, 3, 11, WordsOf("bdf abef abcd"), WordsOf(
    "cde abce abf bdef adef")};
inline const PrintedTable GenIII3_N_12_25_64{"GenIII3_N_12_25_64", 12, 25, 64, 6, 3, 11, WordsOf("bdf abef abcd"), WordsOf(
    "abcde abcdf abcef abdef acdef bcdef abc abd abe abf acd ace abde abcdef adf aef "
    "bcd abce bcf")};
inline const PrintedTable GenIII3_N_12_25_128{"GenIII3_N_12_25_128", 12, 25, 128, 7, 3, 11, WordsOf("abcd abef aceg"), WordsOf(
    "0 0 0 0 0 0 0 abdeg abdfg abefg acdef acdeg acdfg acefg adefg bcdef bcdefg bcdfg "
    "bcefg bdefg cdefg abc cde efg adg")};
inline const PrintedTable GenI5_30_32_2048{"GenI5_30_32_2048", 30, 32, 2048, 11, 0, 0, WordsOf(""), WordsOf(
    "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj "
    "begj abhj abfij abcdegij bcfghij abdek bcdfk")};
inline const PrintedTable GenI5_22_29_1024{"GenI5_22_29_1024", 22, 29, 1024, 10, 0, 0, WordsOf(""), WordsOf(
    "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj "
    "begj abhj abfij abcdegij bcfghij dfhj")};
inline const PrintedTable GenI5_18_21_512{"GenI5_18_21_512", 18, 21, 512, 9, 0, 0, WordsOf(""), WordsOf(
    "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi dfhi")};
inline const PrintedTable GenI5_12_17_256{"GenI5_12_17_256", 12, 17, 256, 8, 0, 0, WordsOf(""), WordsOf(
    "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh dfgh")};
inline const PrintedTable GenI5_10_11_128{"GenI5_10_11_128", 10, 11, 128, 7, 0, 0, WordsOf(""), WordsOf(
    "abcg bcde acdf abcdefg defg")};
inline const PrintedTable GenI5_9_128{"GenI5_9_128", 9, 9, 128, 7, 0, 0, WordsOf(""), WordsOf(
    "acdfg bcefg")};
inline const PrintedTable GenI5_8_128{"GenI5_8_128", 8, 8, 128, 7, 0, 0, WordsOf(""), WordsOf(
    "abcdefg")};
inline const PrintedTable GenI5_8_64{"GenI5_8_64", 8, 8, 64, 6, 0, 0, WordsOf("abf acd bde"), WordsOf(
    "abcd abef acef")};
inline const PrintedTable GenI5_7_64{"GenI5_7_64", 7, 7, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "abcdef")};
inline const PrintedTable GenI5_6_32{"GenI5_6_32", 6, 6, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abce abcd")};
inline const PrintedTable GenI5_5_16{"GenI5_5_16", 5, 5, 16, 4, 0, 0, WordsOf(""), WordsOf(
    "abcd")};
inline const PrintedTable GenI4_4_8{"GenI4_4_8", 4, 4, 8, 3, 0, 0, WordsOf(""), WordsOf(
    "abc")};
inline const PrintedTable GenI4_6_16{"GenI4_6_16", 6, 6, 16, 4, 0, 0, WordsOf(""), WordsOf(
    "abc bcd")};
inline const PrintedTable GenI4_7_16{"GenI4_7_16", 7, 7, 16, 4, 0, 0, WordsOf(""), WordsOf(
    "abc bcd acd")};
inline const PrintedTable GenI4_7_32{"GenI4_7_32", 7, 7, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abcd abde")};
inline const PrintedTable GenI4_8_16{"GenI4_8_16", 8, 8, 16, 4, 0, 0, WordsOf(""), WordsOf(
    "bcd acd abc abd")};
inline const PrintedTable GenI4_8_32{"GenI4_8_32", 8, 8, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abc abd bcde")};
inline const PrintedTable GenI4_9_32{"GenI4_9_32", 9, 9, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "bcde acde abde abce")};
inline const PrintedTable GenI4_9_64{"GenI4_9_64", 9, 9, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "abcd acef cdef")};
inline const PrintedTable GenI4_10_32{"GenI4_10_32", 10, 10, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abcd abce abde acde bcde")};
inline const PrintedTable GenI4_10_64{"GenI4_10_64", 10, 10, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "bcdf acdf abde abce")};
inline const PrintedTable GenI4_11_32{"GenI4_11_32", 11, 11, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abc bcd cde acd ade bde")};
inline const PrintedTable GenI4_11_64{"GenI4_11_64", 11, 11, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "cde abcd abf bdef adef")};
inline const PrintedTable GenI4_12_16_32{"GenI4_12_16_32", 12, 16, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abc bcd cde acd ade bde abd abe ace bce abcde")};
inline const PrintedTable GenI4_12_16_64{"GenI4_12_16_64", 12, 16, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "abcde abcdf abcef abdef acdef bcdef abc abd abe abf")};
inline const PrintedTable GenI4_12_16_128{"GenI4_12_16_128", 12, 16, 128, 7, 0, 0, WordsOf(""), WordsOf(
    "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg")};
inline const PrintedTable GenI4_17_32_128{"GenI4_17_32_128", 17, 32, 128, 7, 0, 0, WordsOf(""), WordsOf(
    "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg abefg acdef acdeg acdfg "
    "acefg adefg bcdef bcdeg bcdfg bcefg bdefg cdefg abc cde efg adg")};
inline const PrintedTable GenI4_17_32_256{"GenI4_17_32_256", 17, 32, 256, 8, 0, 0, WordsOf(""), WordsOf(
    "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg "
    "abdefh abdegh abdfgh abefgh acdefg acdefh acdegh acdfgh acefgh adefgh bcdefg "
    "bcdefh bcdegh")};
inline const PrintedTable GenI4_17_32_64{"GenI4_17_32_64", 17, 32, 64, 6, 0, 0, WordsOf(""), WordsOf(
    "abcde abcdf abcef abdef acdef bcdef abc abd abe abf acd ace acf ade adf aef bcd "
    "bce bcf bde bdf bef cde cdf cef def")};
inline const PrintedTable GenI3_5_7{"GenI3_5_7", 5, 7, 8, 3, 0, 0, WordsOf(""), WordsOf(
    "ab ac bc abc")};
inline const PrintedTable GenI3_9_15{"GenI3_9_15", 9, 15, 16, 4, 0, 0, WordsOf(""), WordsOf(
    "abc bcd acd abd abcd ab ac ad bc bd cd")};
inline const PrintedTable GenI3_17_31{"GenI3_17_31", 17, 31, 32, 5, 0, 0, WordsOf(""), WordsOf(
    "abc bcd cde acd ade bde abd abe ace bce abcde abcd abce abde acde bcde ab ac ad ae "
    "bc bd be cd ce de")};
inline const PrintedTable GenI3_3{"GenI3_3", 3, 3, 4, 2, 0, 0, WordsOf(""), WordsOf(
    "ab")};
// clang-format on

/// All of them but the one of 32 to 63 factors, which is given by a rule.
inline std::vector<const PrintedTable*> PrintedTables() {
    return {
        &GenII5_7_C_64,       &GenII5_C_8_64,
        &GenII5_A_8_128,      &GenII5_C_10_18_512,
        &GenII5_C_12_14_256,  &GenII5_C_22_27_1024,
        &GenII4_N_28_29_1024, &GenII4_A_6_7_32,
        &GenII4_C_9_11_64,    &GenII4_A_9_13_128,
        &GenII4_N_14_29_128,  &GenII4_A_15_17_256,
        &GenII4_N_18_29_256,  &GenII4_C_19_21_512,
        &GenII3_N_5_16,       &GenII3_N_6_12_16,
        &GenII3_N_8_9_32,     &GenII3_N_10_28_32,
        &GenII3_N_12_29_64,   &GenIII5_C_7_64,
        &GenIII5_C_8_128,     &GenIII5_C_10_14_256,
        &GenIII5_C_18_512,    &GenIII5_C_11_25_1024,
        &GenIII4_N_9_11_128,  &GenIII4_A_15_256,
        &GenIII4_N_16_17_256, &GenIII4_N_18_25_256,
        &GenIII4_C_19_20_512, &GenIII4_N_21_512,
        &GenIII3_N_6_32,      &GenIII3_N_7_10_32,
        &GenIII3_N_8_10_64,   &GenIII3_N_11_24_32,
        &GenIII3_N_11_64,     &GenIII3_N_12_25_64,
        &GenIII3_N_12_25_128, &GenI5_30_32_2048,
        &GenI5_22_29_1024,    &GenI5_18_21_512,
        &GenI5_12_17_256,     &GenI5_10_11_128,
        &GenI5_9_128,         &GenI5_8_128,
        &GenI5_8_64,          &GenI5_7_64,
        &GenI5_6_32,          &GenI5_5_16,
        &GenI4_4_8,           &GenI4_6_16,
        &GenI4_7_16,          &GenI4_7_32,
        &GenI4_8_16,          &GenI4_8_32,
        &GenI4_9_32,          &GenI4_9_64,
        &GenI4_10_32,         &GenI4_10_64,
        &GenI4_11_32,         &GenI4_11_64,
        &GenI4_12_16_32,      &GenI4_12_16_64,
        &GenI4_12_16_128,     &GenI4_17_32_128,
        &GenI4_17_32_256,     &GenI4_17_32_64,
        &GenI3_5_7,           &GenI3_9_15,
        &GenI3_17_31,         &GenI3_3,
    };
}

}  // namespace oracles
