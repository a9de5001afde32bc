#pragma once

// The plate rows that adapt a classical design: which runs of it are removed or repeated.
//
// A row names the level count and the type mask of each column (a digit a column, level counts
// ascending), its model, the classical design, the runs of a plate's side that it fills (8, 12, 16,
// 24, 32 or 48, least centre points of the classical design included), and the listed runs. These
// count from 1 in the classical design's own table, which stands in the caller's order of factors:
// the first factor varies fastest, so a list means other runs under another order. A row is chosen
// to do well under each order. A quantitative factor stands at two levels in the screening designs;
// hence columns of more levels are for level factors there (mask 6).
//
// Source: computed by the search in tests/support/PlateRowSearch.h, which looks for the list with
// the largest D-efficiency in the worst order of the factors. Where whole copies of the design fill
// the side they are the list. The lists of the composite designs were found among all choices of
// star points.
//
// Invariants, proven by PlateRowsTest: a name's level counts are those of its row; base runs and
// list make up the side; lists ascend; under every order of the factors the row's model can be
// estimated, with the D-efficiency that docs/designs.md tells.

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "frame/EDesign.h"
#include "frame/EModel.h"

namespace ReducedRows {

enum class Listed { Removed, Repeated };

struct Row {
    const char* displayName;
    const char* shortString;
    std::string_view levels;
    std::string_view typeMasks;
    EModel::Type model;
    EDesign::Type base;
    unsigned int runs;
    Listed listed;
    std::array<int, 40> list;  // 0 behind the last

    [[nodiscard]] constexpr std::span<const int> RowList() const {
        const auto* const end = std::find(list.data(), list.data() + list.size(), 0);
        return {list.data(), end};
    }
};

inline constexpr const char* cFrac = "Frac Fac (Mixed)";
inline constexpr const char* cNoCentre = "CCF No CenterP";
inline constexpr const char* cNoStar = "CCF missing 1 StarP";
inline constexpr const char* cNoStars = "CCF missing 3 StarP";
inline constexpr const char* cFull = "Full Fac (Mixed) Spec";
inline constexpr const char* cDuplicate = "Full Fac (2 levels) Duplicate";
inline constexpr const char* cTriplicate = "Full Fac (2 levels) Triplicate";
inline constexpr const char* cMixedDuplicate = "Full Fac (Mixed) Duplicate";

inline constexpr EModel::Type cLin = EModel::Linear;
inline constexpr EModel::Type cInt = EModel::Interaction;
inline constexpr EModel::Type cQuad = EModel::Quadratic;
inline constexpr EDesign::Type cFF2 = EDesign::FF2;
inline constexpr EDesign::Type cFFM = EDesign::FFM;
inline constexpr EDesign::Type cCCF = EDesign::CCF;
inline constexpr Listed cLess = Listed::Removed;
inline constexpr Listed cPlus = Listed::Repeated;

// In the order of registration, which decides between rows of one priority.
// clang-format off
inline constexpr std::array<Row, 42> cRows{{
    {cFrac,     "FFM23a",  "23",   "76",   cInt,  cFFM,  8, cPlus, {1, 6}},
    {cFrac,     "FFM33a",  "33",   "66",   cLin,  cFFM,  8, cLess, {6}},
    {cFrac,     "FFM34b",  "34",   "66",   cLin,  cFFM,  8, cLess, {3, 5, 8, 10}},
    {cFrac,     "FFM34c",  "34",   "66",   cInt,  cFFM, 16, cPlus, {3, 5, 8, 10}},
    {cFrac,     "FFM34d",  "34",   "66",   cInt,  cFFM, 24, cPlus, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
    {cFrac,     "FFM34e",  "34",   "66",   cInt,  cFFM, 32, cPlus, {1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 7, 7, 8, 9, 9, 10, 10, 11, 12, 12}},
    {cFrac,     "FFM44a",  "44",   "66",   cLin,  cFFM,  8, cLess, {3, 4, 6, 7, 9, 12, 13, 14}},
    {cFrac,     "FFM44b",  "44",   "66",   cLin,  cFFM, 12, cLess, {4, 6, 11, 13}},
    {cFrac,     "FFM44c",  "44",   "66",   cInt,  cFFM, 24, cPlus, {2, 3, 5, 8, 9, 10, 15, 16}},
    {cFrac,     "FFM223a", "223",  "776",  cLin,  cFFM,  8, cLess, {1, 6, 10, 11}},
    {cFrac,     "FFM223b", "223",  "776",  cInt,  cFFM, 16, cPlus, {3, 5, 8, 10}},
    {cFrac,     "FFM224a", "224",  "776",  cLin,  cFFM,  8, cLess, {1, 4, 6, 7, 10, 11, 13, 16}},
    {cFrac,     "FFM224b", "224",  "776",  cLin,  cFFM, 12, cLess, {2, 7, 12, 13}},
    {cNoStar,   "CCF23a",  "23",   "12",   cQuad, cCCF,  8, cLess, {6}},
    {cNoStar,   "CCF22a",  "22",   "11",   cQuad, cCCF,  8, cLess, {6}},
    // Spelt as it is known.
    {cNoCentre, "CFF23b",  "23",   "12",   cQuad, cCCF,  8, cLess, {9}},
    {cNoCentre, "CCF22b",  "22",   "11",   cQuad, cCCF,  8, cLess, {9}},
    {cFrac,     "FFM36b",  "36",   "66",   cLin,  cFFM, 12, cLess, {1, 6, 8, 11, 15, 16}},
    {cFrac,     "FFM36c",  "36",   "66",   cLin,  cFFM, 16, cLess, {6, 11}},
    {cFrac,     "FFM224c", "224",  "776",  cInt,  cFFM, 24, cPlus, {2, 3, 5, 8, 10, 11, 13, 16}},
    {cFrac,     "FFM224d", "224",  "776",  cInt,  cFFM, 32, cPlus, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
    {cFrac,     "FFM224g", "224",  "776",  cInt,  cFFM, 48, cPlus, {1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15, 16, 16}},
    {cFrac,     "FFM224j", "224",  "776",  cLin,  cFFM, 24, cPlus, {1, 4, 6, 7, 10, 11, 13, 16}},
    {cFrac,     "FFM226a", "226",  "776",  cLin,  cFFM, 12, cLess, {1, 4, 5, 8, 9, 12, 14, 15, 18, 19, 22, 23}},
    {cFrac,     "FFM226g", "226",  "776",  cLin,  cFFM, 16, cLess, {2, 5, 9, 12, 16, 18, 19, 23}},
    {cFrac,     "FFM233a", "233",  "766",  cLin,  cFFM, 12, cLess, {3, 4, 8, 11, 13, 18}},
    {cFrac,     "FFM234a", "234",  "766",  cLin,  cFFM, 12, cLess, {2, 3, 5, 7, 8, 12, 13, 17, 18, 20, 22, 23}},
    {cFrac,     "FFM234d", "234",  "766",  cLin,  cFFM, 16, cLess, {1, 6, 8, 10, 15, 17, 19, 24}},
    {cFrac,     "FFM234e", "234",  "766",  cInt,  cFFM, 32, cPlus, {2, 4, 7, 12, 13, 18, 21, 23}},
    {cFrac,     "FFM333",  "333",  "666",  cInt,  cFFM, 24, cLess, {4, 12, 26}},
    {cFrac,     "FFM2223", "2223", "7776", cLin,  cFFM, 12, cLess, {2, 3, 6, 7, 10, 11, 13, 16, 17, 20, 21, 24}},
    {cNoStars,  "FF3333a", "333",  "111",  cQuad, cCCF, 12, cLess, {9, 11, 13}},
    {cFull,     "eFFM24a", "24",   "76",   cLin,  cFFM, 12, cPlus, {2, 3, 5, 8}},
    {cFull,     "eFFM24b", "24",   "76",   cInt,  cFFM, 12, cPlus, {2, 3, 5, 8}},
    {cFull,     "eFFM24c", "24",   "76",   cInt,  cFFM, 16, cPlus, {1, 2, 3, 4, 5, 6, 7, 8}},
    {cFull,     "eFFM24d", "24",   "76",   cInt,  cFFM, 24, cPlus, {1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8}},
    {cFull,     "eFFM24e", "24",   "76",   cInt,  cFFM, 32, cPlus, {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8}},
    {cFull,     "eFFM24f", "24",   "76",   cInt,  cFFM, 48, cPlus, {1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 4, 4, 4, 4, 4, 5, 5, 5, 5, 5, 6, 6, 6, 6, 6, 7, 7, 7, 7, 7, 8, 8, 8, 8, 8}},
    // The number at the end of these four names is a serial number.
    {cDuplicate,      "2*FF2_1", "22",  "77",  cInt, cFF2,  8, cPlus, {1, 2, 3, 4}},
    {cDuplicate,      "2*FF2_2", "222", "777", cInt, cFF2, 16, cPlus, {1, 2, 3, 4, 5, 6, 7, 8}},
    {cTriplicate,     "3*FF2_3", "22",  "77",  cInt, cFF2, 12, cPlus, {1, 1, 2, 2, 3, 3, 4, 4}},
    {cMixedDuplicate, "2*FFM_4", "23",  "76",  cInt, cFFM, 12, cPlus, {1, 2, 3, 4, 5, 6}},
}};
// clang-format on

}  // namespace ReducedRows
