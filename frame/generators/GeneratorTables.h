#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "frame/generators/Generators.h"

/// One table of generator words. Row i is the single letter i for the base factors; the words of
/// the further factors follow, and in some tables the word of a block generator as a spare last
/// row.
class GeneratorTable {
  private:
    // The readers stand first: the tables below are made at compile time. A letter outside a to k
    // does not compile.
    static constexpr GeneratorWord Letter(char letter) {
        if (letter < 'a' || letter > 'k') {
            throw std::logic_error("no generator letter");
        }
        return static_cast<GeneratorWord>(Generators::A >> (letter - 'a'));
    }

    template <std::size_t N>
    static constexpr std::size_t ReadWords(std::string_view text,
                                           std::array<GeneratorWord, N>& rows,
                                           std::size_t at) {
        while (!text.empty()) {
            const std::size_t end = text.find(' ');
            GeneratorWord word = 0;
            for (const char letter : text.substr(0, end)) {
                word = letter == '0' ? word : static_cast<GeneratorWord>(word | Letter(letter));
            }
            rows.at(at++) = word;
            text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        }
        return at;
    }

  public:
    /// @param baseFactors number of base factors
    /// @param resolution, classCode rows 0 and -4; 0 in tables whose selector answers these itself
    /// @param blockWords words of the block generators, first to third
    /// @param words words of the rows behind the base factors; "0" is a row without a word
    constexpr GeneratorTable(std::size_t baseFactors,
                             GeneratorWord resolution,
                             GeneratorWord classCode,
                             std::string_view blockWords,
                             std::string_view words)
        : resolution_(resolution), classCode_(classCode) {
        for (std::size_t i = 0; i < baseFactors; ++i) {
            rows_[size_++] = Letter(static_cast<char>(Generators::cMinChar + i));
        }
        size_ = ReadWords(words, rows_, size_);
        ReadWords(blockWords, blockRows_, 0);
    }

    /// The row of that number, as the selectors number rows; 0 where the table has none.
    [[nodiscard]] constexpr GeneratorWord operator()(int index) const {
        if (index >= 1) {
            return static_cast<std::size_t>(index) <= size_
                       ? rows_[static_cast<std::size_t>(index) - 1]
                       : Generators::NONE;
        }
        switch (index) {
            case 0:
                return resolution_;
            case -4:
                return classCode_;
            default:
                return index > -4 ? blockRows_[static_cast<std::size_t>(-index - 1)]
                                  : Generators::NONE;
        }
    }

    [[nodiscard]] constexpr std::size_t Size() const { return size_; }

  private:
    GeneratorWord resolution_;
    GeneratorWord classCode_;
    std::size_t size_ = 0;
    std::array<GeneratorWord, 32> rows_{};
    std::array<GeneratorWord, 3> blockRows_{};
};

/// The tables, made by hand. A name tells how many block generators the table provides (I none or
/// one, II two, III three), its resolution, its class, the factors it serves and the runs. A table
/// for a range of factors serves each of them with its first rows.
///
/// Proven by tests: no word twice in a table; every row a range needs is there; the fraction of
/// every served number of factors has the resolution of the name, and no block generator is an
/// alias of a main effect. Exceptions, kept as they are and each stated in the tests: two tables
/// hold a letter k beyond their base factors, one row makes 29 factors in 128 runs resolution III,
/// and one table has rows without words.
namespace GeneratorTables {

// clang-format off
inline constexpr GeneratorTable GenII5_7_C_64{6, 5, 10, "abcd abef",
        "abcdef"};
inline constexpr GeneratorTable GenII5_C_8_64{6, 5, 10, "abcd abef",
        "acef abdf"};
inline constexpr GeneratorTable GenII5_A_8_128{7, 5, 9, "abcd abef",
        "abcdefg"};
inline constexpr GeneratorTable GenII5_C_10_18_512{9, 5, 10, "abcd abef",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi"};
inline constexpr GeneratorTable GenII5_C_12_14_256{8, 5, 10, "abcd abef",
        "bdfg bceh abdfh abdegh acdfgh abcefgh"};
inline constexpr GeneratorTable GenII5_C_22_27_1024{10, 5, 10, "abcd abef",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij abcdegij "
        "bcfghij bcdfk"};
inline constexpr GeneratorTable GenII4_N_28_29_1024{10, 4, 11, "abcd abef",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij abcdegij "
        "bcfghij bcdfk abdek aceg"};
inline constexpr GeneratorTable GenII4_A_6_7_32{5, 4, 9, "abc ade",
        "abe ace"};
inline constexpr GeneratorTable GenII4_C_9_11_64{6, 4, 10, "abcd abef",
        "bcdf acdf abde abce abcdef"};
inline constexpr GeneratorTable GenII4_A_9_13_128{7, 4, 9, "abcd abef",
        "bcdf acdf abde abce abcdef abcfg"};
inline constexpr GeneratorTable GenII4_N_14_29_128{7, 4, 11, "abcd abef",
        "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg abefg acdef acdeg acdfg acefg adefg "
        "bcdef bcdeg bcdfg bcefg bdefg cdefg abcdfg"};
inline constexpr GeneratorTable GenII4_A_15_17_256{8, 4, 9, "abcd abef",
        "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh"};
inline constexpr GeneratorTable GenII4_N_18_29_256{8, 4, 11, "abcd abef",
        "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg abdefh abdegh "
        "abdfgh abefgh acdefg acdefh acdegh acdfgh acefgh adefgh"};
inline constexpr GeneratorTable GenII4_C_19_21_512{9, 4, 10, "abcd abef",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi abgh"};
inline constexpr GeneratorTable GenII3_N_5_16{4, 3, 11, "abc acd",
        "abcd"};
inline constexpr GeneratorTable GenII3_N_6_12_16{4, 3, 11, "abc acd",
        "abd bcd abcd ab ac ad bc cd"};
inline constexpr GeneratorTable GenII3_N_8_9_32{5, 3, 11, "abc ade",
        "abcd abde acde abce"};
inline constexpr GeneratorTable GenII3_N_10_28_32{5, 3, 11, "abc ade",
        "bcd cde acd bde ace bce abd abe abcd abde acde abce ab ac ad ae bc bd be cd ce de abcde"};
inline constexpr GeneratorTable GenII3_N_12_29_64{6, 3, 11, "abcd abef",
        "abcdf abcde abcef abdef acdef bcdef abc abd abe abf acd ace acf ade adf aef bcd bce bcf bde "
        "bdf bef cde"};
inline constexpr GeneratorTable GenIII5_C_7_64{6, 5, 10, "bdf abef abcd",
        "abcdef"};
inline constexpr GeneratorTable GenIII5_C_8_128{7, 5, 10, "abcd abef aceg",
        "defg"};
inline constexpr GeneratorTable GenIII5_C_10_14_256{8, 5, 10, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh"};
inline constexpr GeneratorTable GenIII5_C_18_512{9, 5, 10, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi"};
inline constexpr GeneratorTable GenIII5_C_11_25_1024{10, 5, 10, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj abfij abcdegij"};
inline constexpr GeneratorTable GenIII4_N_9_11_128{7, 4, 11, "abcd abef aceg",
        "defg cdfg bcde abcdefg"};
inline constexpr GeneratorTable GenIII4_A_15_256{8, 4, 9, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh afgh"};
inline constexpr GeneratorTable GenIII4_N_16_17_256{8, 4, 11, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh afgh abgh cdegh"};
inline constexpr GeneratorTable GenIII4_N_18_25_256{8, 4, 11, "abcd abef aceg",
        "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg abdefh abdegh "
        "abdfgh abefgh acdefg acdefh"};
inline constexpr GeneratorTable GenIII4_C_19_20_512{9, 4, 10, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi"};
inline constexpr GeneratorTable GenIII4_N_21_512{9, 4, 11, "abcd abef aceg",
        "bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi afghi achi abgh"};
inline constexpr GeneratorTable GenIII3_N_6_32{5, 3, 11, "abc cde acd",
        "abcde"};
inline constexpr GeneratorTable GenIII3_N_7_10_32{5, 3, 11, "abc cde acd",
        "abcd abce bcde acde abcde"};
inline constexpr GeneratorTable GenIII3_N_8_10_64{6, 3, 11, "bdf abef abcd",
        "acef bdef abde abcdef"};
inline constexpr GeneratorTable GenIII3_N_11_24_32{5, 3, 11, "abc cde acd",
        "abd bcd abe ace ade bde bcde abcd abce acde abcde ab cd bc be ac ad ce de"};
inline constexpr GeneratorTable GenIII3_N_11_64{6, 3, 11, "bdf abef abcd",
        "cde abce abf bdef adef"};
inline constexpr GeneratorTable GenIII3_N_12_25_64{6, 3, 11, "bdf abef abcd",
        "abcde abcdf abcef abdef acdef bcdef abc abd abe abf acd ace abde abcdef adf aef bcd abce bcf"};
inline constexpr GeneratorTable GenIII3_N_12_25_128{7, 3, 11, "abcd abef aceg",
        "0 0 0 0 0 0 0 abdeg abdfg abefg acdef acdeg acdfg acefg adefg bcdef bcdefg bcdfg bcefg bdefg "
        "cdefg abc cde efg adg"};
inline constexpr GeneratorTable GenI5_30_32_2048{11, 0, 0, "",
        "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj "
        "abfij abcdegij bcfghij abdek bcdfk"};
inline constexpr GeneratorTable GenI5_22_29_1024{10, 0, 0, "",
        "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi adej acdfj begj abhj "
        "abfij abcdegij bcfghij dfhj"};
inline constexpr GeneratorTable GenI5_18_21_512{9, 0, 0, "",
        "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh abcei adfi abcghi dfhi"};
inline constexpr GeneratorTable GenI5_12_17_256{8, 0, 0, "",
        "abcd abef aceg bdfg bceh abdfh abdegh acdfgh abcefgh dfgh"};
inline constexpr GeneratorTable GenI5_10_11_128{7, 0, 0, "",
        "abcg bcde acdf abcdefg defg"};
inline constexpr GeneratorTable GenI5_9_128{7, 0, 0, "",
        "acdfg bcefg"};
inline constexpr GeneratorTable GenI5_8_128{7, 0, 0, "",
        "abcdefg"};
inline constexpr GeneratorTable GenI5_8_64{6, 0, 0, "abf acd bde",
        "abcd abef acef"};
inline constexpr GeneratorTable GenI5_7_64{6, 0, 0, "",
        "abcdef"};
inline constexpr GeneratorTable GenI5_6_32{5, 0, 0, "",
        "abce abcd"};
inline constexpr GeneratorTable GenI5_5_16{4, 0, 0, "",
        "abcd"};
inline constexpr GeneratorTable GenI4_4_8{3, 0, 0, "",
        "abc"};
inline constexpr GeneratorTable GenI4_6_16{4, 0, 0, "",
        "abc bcd"};
inline constexpr GeneratorTable GenI4_7_16{4, 0, 0, "",
        "abc bcd acd"};
inline constexpr GeneratorTable GenI4_7_32{5, 0, 0, "",
        "abcd abde"};
inline constexpr GeneratorTable GenI4_8_16{4, 0, 0, "",
        "bcd acd abc abd"};
inline constexpr GeneratorTable GenI4_8_32{5, 0, 0, "",
        "abc abd bcde"};
inline constexpr GeneratorTable GenI4_9_32{5, 0, 0, "",
        "bcde acde abde abce"};
inline constexpr GeneratorTable GenI4_9_64{6, 0, 0, "",
        "abcd acef cdef"};
inline constexpr GeneratorTable GenI4_10_32{5, 0, 0, "",
        "abcd abce abde acde bcde"};
inline constexpr GeneratorTable GenI4_10_64{6, 0, 0, "",
        "bcdf acdf abde abce"};
inline constexpr GeneratorTable GenI4_11_32{5, 0, 0, "",
        "abc bcd cde acd ade bde"};
inline constexpr GeneratorTable GenI4_11_64{6, 0, 0, "",
        "cde abcd abf bdef adef"};
inline constexpr GeneratorTable GenI4_12_16_32{5, 0, 0, "",
        "abc bcd cde acd ade bde abd abe ace bce abcde"};
inline constexpr GeneratorTable GenI4_12_16_64{6, 0, 0, "",
        "abcde abcdf abcef abdef acdef bcdef abc abd abe abf"};
inline constexpr GeneratorTable GenI4_12_16_128{7, 0, 0, "",
        "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg"};
inline constexpr GeneratorTable GenI4_17_32_128{7, 0, 0, "",
        "abcde abcdf abcdg abcef abceg abcfg abdef abdeg abdfg abefg acdef acdeg acdfg acefg adefg "
        "bcdef bcdeg bcdfg bcefg bdefg cdefg abc cde efg adg"};
inline constexpr GeneratorTable GenI4_17_32_256{8, 0, 0, "",
        "abcdef abcdeg abcdeh abcdfg abcdfh abcdgh abcefg abcefh abcegh abcfgh abdefg abdefh abdegh "
        "abdfgh abefgh acdefg acdefh acdegh acdfgh acefgh adefgh bcdefg bcdefh bcdegh"};
inline constexpr GeneratorTable GenI4_17_32_64{6, 0, 0, "",
        "abcde abcdf abcef abdef acdef bcdef abc abd abe abf acd ace acf ade adf aef bcd bce bcf bde "
        "bdf bef cde cdf cef def"};
inline constexpr GeneratorTable GenI3_5_7{3, 0, 0, "",
        "ab ac bc abc"};
inline constexpr GeneratorTable GenI3_9_15{4, 0, 0, "",
        "abc bcd acd abd abcd ab ac ad bc bd cd"};
inline constexpr GeneratorTable GenI3_17_31{5, 0, 0, "",
        "abc bcd cde acd ade bde abd abe ace bce abcde abcd abce abde acde bcde ab ac ad ae bc bd be "
        "cd ce de"};
inline constexpr GeneratorTable GenI3_3{2, 0, 0, "",
        "ab"};
// clang-format on

/// Resolution III, 32 to 63 factors in 64 runs: row i of 1 to 63. The single letters a to f come
/// first, then all products of three, four, two, five and six of them, each in lexicographic order.
[[nodiscard]] GeneratorWord GenI3_32_63(int index);

}  // namespace GeneratorTables
