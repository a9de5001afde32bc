#pragma once

// The plate rows with a table of their own.
//
// A row names the level count and the type mask of each column (a digit a column, level counts
// ascending), its model and its runs, a text a run and a character a column: - and + are low and
// high, 0 stands between them, and A to F are the levels of columns with more than three.
//
// Source: computed by the search in tests/support/PlateRowSearch.h where there is no regular
// construction: orthogonal main-effect plans of a 4-level column and two-level columns, and full
// factorials with one or two fractions of resolution III behind them (defining words in the
// comments).
//
// Invariants, proven by PlateRowsTest: the alphabet is that of the level counts; the run count is a
// side of a plate; the row's model can be estimated, with the D-efficiency that docs/designs.md
// tells; the columns of an orthogonal main-effect plan are balanced against each other.

#include <array>
#include <span>
#include <string_view>

#include "frame/EModel.h"

namespace PreCreatedRows {

using Runs = std::span<const std::string_view>;

struct Row {
    const char* displayName;
    const char* shortString;
    std::string_view levels;
    std::string_view typeMasks;
    EModel::Type model;
    Runs runs;
};

// clang-format off
// Corners, one axis point of each factor, the centre twice.
inline constexpr std::array<std::string_view, 8> cTwoAxisPointsLess{
    "--", "+-", "-+", "++",
    "-0", "0-",
    "00", "00"};

// The 3 x 3 grid without its centre.
inline constexpr std::array<std::string_view, 8> cNoCentrePoint{
    "--", "0-", "+-",
    "-0",       "+0",
    "-+", "0+", "++"};

// Orthogonal main-effect plan: each level of the last column holds a pair of opposite runs.
inline constexpr std::array<std::string_view, 8> cOrthogonalOf8{
    "-+-A", "+-+A",
    "++-B", "--+B",
    "---C", "+++C",
    "+--D", "-++D"};

inline constexpr std::array<std::string_view, 8> cOptimalOf8{
    "+---", "-+--", "+-+-", "-++-",
    "---0", "+++0",
    "++-+", "--++"};

inline constexpr std::array<std::string_view, 16> cOptimalOf16{
    "----", "-+--", "++--", "--+-", "+-+-", "+++-",
    "+--0", "-+-0", "--+0", "-++0", "+++0",
    "---+", "+--+", "++-+", "+-++", "-+++"};

// Orthogonal main-effect plan: the half AC = -1 or +1 under every other level.
inline constexpr std::array<std::string_view, 16> cOrthogonalOf16{
    "---A", "-+-A", "+-+A", "+++A",
    "+--B", "++-B", "--+B", "-++B",
    "---C", "-+-C", "+-+C", "+++C",
    "+--D", "++-D", "--+D", "-++D"};

inline constexpr std::array<std::string_view, 12> cFull3x4{
    "-A", "0A", "+A",
    "-B", "0B", "+B",
    "-C", "0C", "+C",
    "-D", "0D", "+D"};

// The full 3 x 6 and one more run of each level of the second factor.
inline constexpr std::array<std::string_view, 24> cFull3x6And6{
    "-A", "0A", "+A",
    "-B", "0B", "+B",
    "-C", "0C", "+C",
    "-D", "0D", "+D",
    "-E", "0E", "+E",
    "-F", "0F", "+F",
    "+A", "0B", "-C", "+D", "0E", "-F"};

// The full 2^3, then the half C = AB.
inline constexpr std::array<std::string_view, 12> cCubeAndHalf{
    "---", "+--", "-+-", "++-", "--+", "+-+", "-++", "+++",
    "--+", "+--", "-+-", "+++"};

// The full 2^3 twice, then the halves C = AB and C = -AB.
inline constexpr std::array<std::string_view, 24> cTwoCubesAndTwoHalves{
    "---", "+--", "-+-", "++-", "--+", "+-+", "-++", "+++",
    "---", "+--", "-+-", "++-", "--+", "+-+", "-++", "+++",
    "--+", "+--", "-+-", "+++",
    "---", "+-+", "-++", "++-"};

// The full 2^5, then the quarters D = AB, E = AC and D = AB, E = -AC. Deliberate: the half of
// resolution V would leave all interactions clear, but the design is known for its fraction of III.
inline constexpr std::array<std::string_view, 48> cFiveFactorsAndTwoQuarters{
    "-----", "+----", "-+---", "++---", "--+--", "+-+--", "-++--", "+++--",
    "---+-", "+--+-", "-+-+-", "++-+-", "--++-", "+-++-", "-+++-", "++++-",
    "----+", "+---+", "-+--+", "++--+", "--+-+", "+-+-+", "-++-+", "+++-+",
    "---++", "+--++", "-+-++", "++-++", "--+++", "+-+++", "-++++", "+++++",
    "---++", "+----", "-+--+", "++-+-", "--++-", "+-+-+", "-++--", "+++++",
    "---+-", "+---+", "-+---", "++-++", "--+++", "+-+--", "-++-+", "++++-"};

inline constexpr std::array<std::string_view, 12> cTwelveOf4x5{
    "AA", "BA", "CA",
    "AB", "BB", "CB",
    "AC", "DC",
    "BD", "DD",
    "CE", "DE"};
// clang-format on

inline constexpr const char* cNoAxes = "FF3 missing 2 AxisP";
inline constexpr const char* cNoCentre = "FF3 No CenterP";
inline constexpr const char* cFrac = "Frac Fac (Mixed)";
inline constexpr const char* cOptimal = "D-opt (Pre made)";
inline constexpr const char* cFull = "Full Fac (Mixed)";
inline constexpr const char* cFullAndFrac = "Full Fac + Frac Fac Res III";
inline constexpr const char* cReduced = "Reduced Full Fac (Mixed)";

inline constexpr EModel::Type cLin = EModel::Linear;
inline constexpr EModel::Type cInt = EModel::Interaction;
inline constexpr EModel::Type cQuad = EModel::Quadratic;

// In the order of registration, which decides between rows of one priority.
// clang-format off
inline constexpr std::array<Row, 13> cRows{{
    {cNoAxes,      "FF323a",    "23",    "12",    cQuad, cTwoAxisPointsLess},
    {cNoCentre,    "FF323b",    "23",    "12",    cQuad, cNoCentrePoint},
    {cFrac,        "FFM2224a",  "2224",  "7776",  cLin,  cOrthogonalOf8},
    {cOptimal,     "DPM2223a",  "2223",  "7776",  cLin,  cOptimalOf8},
    {cOptimal,     "DPM2223b",  "2223",  "7776",  cInt,  cOptimalOf16},
    {cFrac,        "FFM2224b",  "2224",  "7776",  cLin,  cOrthogonalOf16},
    {cFull,        "FFM34a",    "34",    "66",    cInt,  cFull3x4},
    {cFull,        "FFM36a",    "36",    "66",    cInt,  cFull3x6And6},
    {cFullAndFrac, "FF+FFR3a",  "222",   "777",   cInt,  cCubeAndHalf},
    {cFullAndFrac, "FF+FFR3b",  "222",   "777",   cLin,  cCubeAndHalf},
    {cFullAndFrac, "FF+FFR3c",  "222",   "777",   cInt,  cTwoCubesAndTwoHalves},
    {cFullAndFrac, "FF+FFR3d",  "22222", "77777", cInt,  cFiveFactorsAndTwoQuarters},
    {cReduced,     "FFM12_145", "45",    "66",    cLin,  cTwelveOf4x5},
}};
// clang-format on

}  // namespace PreCreatedRows
