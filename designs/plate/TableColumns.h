#pragma once

#include <vector>

#include "foundation/stream/Export.h"

class Factors;

/// The columns of a pre-made table: how many levels each has and which factors may take it.
struct QORVA_EXPORT TableColumns {
    /// Bits of a type mask.
    static constexpr int cQuantitative = 1;
    static constexpr int cMultilevel = 2;
    static constexpr int cQualitative = 4;

    /// One entry a column in both.
    std::vector<int> levels;
    std::vector<int> typeMasks;

    [[nodiscard]] int Count() const { return static_cast<int>(levels.size()); }
    /// Each factor in turn takes the first free column that fits it, the columns by ascending mask,
    /// then level count. Returns every factor's column, counted from 1; empty unless factors and
    /// columns match one to one.
    [[nodiscard]] std::vector<int> Match(const Factors& factors) const;
    /// The same with the columns that take most types first; as Match where this finds no match.
    [[nodiscard]] std::vector<int> MatchWidestFirst(const Factors& factors) const;
};
