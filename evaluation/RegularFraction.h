#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The algebra of a regular two-level fraction over the field of two elements. Its runs, as words
/// of one bit a column (a set bit is -1), are all words of a coset of a linear code, each equally
/// often; its defining words are the words of the dual code.
struct RegularFraction {
    /// Code of each column over the base columns: bit i is base column i. The product of columns
    /// has the exclusive or of their codes; equal codes mean aliased columns.
    std::vector<std::uint64_t> codes;
    /// Sign bit of each column: 1 when the column is minus the product of its base columns.
    std::vector<bool> negative;
    /// Column numbers of the base columns, ascending, counted from 0: the leftmost independent
    /// ones.
    std::vector<int> baseColumns;

    /// The fraction of these runs, or nothing when they form none.
    [[nodiscard]] static std::optional<RegularFraction> Find(std::span<const std::uint64_t> rows,
                                                             int columns);
};
