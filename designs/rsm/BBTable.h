#pragma once

// The base patterns of the Box-Behnken designs.
//
// A base row names the factors that vary together, by a letter each; the others stay at 0. It
// stands for as many runs as its letters' sign vectors have entries: entry j of the group is entry
// j of every letter's vector. So A and B form the full 2^2, C to E the full 2^3, F to I the full
// 2^4, and J = FGHI makes five factors a half fraction of resolution V.
//
// Source: Box and Behnken, "Some new three level designs for the study of quantitative variables",
// Technometrics 2 (1960) 455-475. The order of the rows decides the blocks: for 4, 5 and 9 factors
// equal stretches of rows vary every factor equally often.
//
// Invariants, proven by BBTest: every base row holds each letter of its kind once; every factor
// stands in equally many base rows; no two runs of a design are the same, but for 9 factors; all
// moments up to the fourth order with an odd power vanish.

#include <array>
#include <span>
#include <string_view>

namespace BBTable {

struct Plan {
    unsigned int factors;
    unsigned int runs;
    std::span<const std::string_view> baseRows;
};

// clang-format off
inline constexpr std::array<std::string_view, 3> cRows3{
    "AB0",
    "A0B",
    "0AB"};

inline constexpr std::array<std::string_view, 6> cRows4{
    "AB00",
    "00AB",
    "A00B",
    "0AB0",
    "A0B0",
    "0A0B"};

inline constexpr std::array<std::string_view, 10> cRows5{
    "AB000",
    "00AB0",
    "0A00B",
    "A0B00",
    "000AB",
    "0AB00",
    "A00B0",
    "00A0B",
    "A000B",
    "0A0B0"};

inline constexpr std::array<std::string_view, 6> cRows6{
    "CD0E00",
    "0CD0E0",
    "00CD0E",
    "C00DE0",
    "0C00DE",
    "C0D00E"};

inline constexpr std::array<std::string_view, 7> cRows7{
    "000CDE0",
    "C0000DE",
    "0C00D0E",
    "CD0E000",
    "00CD00E",
    "C0D0E00",
    "0CD00E0"};

// Deliberate: the last three rows repeat the first three, so that every factor varies five times
// and five blocks are possible.
inline constexpr std::array<std::string_view, 15> cRows9{
    "C00D00E00",
    "0C00D00E0",
    "00C00D00E",
    "CDE000000",
    "000CDE000",
    "000000CDE",
    "C000D000E",
    "00CD000E0",
    "0C000DE00",
    "C0000D0E0",
    "0C0D0000E",
    "00C0D0E00",
    "C00D00E00",
    "0C00D00E0",
    "00C00D00E"};

inline constexpr std::array<std::string_view, 10> cRows10{
    "0F000GH00I",
    "FG00H0000I",
    "0FG000HI00",
    "0F0G0H00I0",
    "F000000GHI",
    "00FGH0000I",
    "F00G00HI00",
    "00F0G0H0I0",
    "F0G00H00I0",
    "000FGH0I00"};

inline constexpr std::array<std::string_view, 11> cRows11{
    "00F000GHI0J",
    "F00G000HIJ0",
    "0F00G000HIJ",
    "F0G00H000IJ",
    "FG0H00I000J",
    "FGH0I00J000",
    "0FGH0I00J00",
    "00FGH0I00J0",
    "000FGH0I00J",
    "F000GHI0J00",
    "0F000GHI0J0"};

inline constexpr std::array<std::string_view, 12> cRows12{
    "FG00H0I00000",
    "0FG00H0I0000",
    "00FG00H0I000",
    "000FG00H0I00",
    "0000FG00H0I0",
    "00000FG00H0I",
    "F00000GH00I0",
    "0F00000GH00I",
    "F0G00000HI00",
    "0F0G00000HI0",
    "00F0G00000HI",
    "F00G0H00000I"};

inline constexpr std::array<Plan, 9> cPlans{{
    { 3,  12, cRows3},
    { 4,  24, cRows4},
    { 5,  40, cRows5},
    { 6,  48, cRows6},
    { 7,  56, cRows7},
    { 9, 120, cRows9},
    {10, 160, cRows10},
    {11, 176, cRows11},
    {12, 192, cRows12},
}};

inline constexpr char cFirstLetter = 'A';
// The sign vectors of the letters A to J.
inline constexpr std::array<std::string_view, 10> cSigns{
    /* A */ "-+-+",
    /* B */ "--++",
    /* C */ "-+-+-+-+",
    /* D */ "--++--++",
    /* E */ "----++++",
    /* F */ "-+-+-+-+-+-+-+-+",
    /* G */ "--++--++--++--++",
    /* H */ "----++++----++++",
    /* I */ "--------++++++++",
    /* J */ "+--+-++--++-+--+"};
// clang-format on

}  // namespace BBTable
