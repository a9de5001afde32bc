#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

/// Aliasing of two-level fractions, once from the generator words as vectors over the field of two
/// elements, once from the runs of a matrix. Nothing here is shared with the engine.
namespace oracles {

using Words = std::vector<unsigned short>;

/// All sums of `size` different columns, 1 to 3 of them.
inline Words SumsOf(const Words& columns, int size) {
    Words sums;
    const std::size_t count = columns.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (size == 1) {
            sums.push_back(columns[i]);
        }
        for (std::size_t j = i + 1; j < count && size >= 2; ++j) {
            if (size == 2) {
                sums.push_back(columns[i] ^ columns[j]);
            }
            for (std::size_t k = j + 1; k < count && size == 3; ++k) {
                sums.push_back(columns[i] ^ columns[j] ^ columns[k]);
            }
        }
    }
    return sums;
}

inline bool Meet(const Words& first, const Words& second) {
    std::vector<bool> seen(65536);
    for (const unsigned short word : first) {
        seen[word] = true;
    }
    for (const unsigned short word : second) {
        if (seen[word]) {
            return true;
        }
    }
    return false;
}

inline bool HasTwice(const Words& words) {
    std::vector<bool> seen(65536);
    for (const unsigned short word : words) {
        if (seen[word]) {
            return true;
        }
        seen[word] = true;
    }
    return false;
}

/// The resolution of a fraction: the length of the shortest product of different columns that is
/// constant, by sums that meet in the middle; 7 stands for 7 and more. Where no shorter product is
/// constant, two sums can meet only when they have no column in common.
inline int Resolution(const Words& columns) {
    const Words pairs = SumsOf(columns, 2);
    const Words triples = SumsOf(columns, 3);
    if (Meet(columns, {0})) {
        return 1;
    }
    if (HasTwice(columns)) {
        return 2;
    }
    if (Meet(columns, pairs)) {
        return 3;
    }
    if (HasTwice(pairs)) {
        return 4;
    }
    if (Meet(pairs, triples)) {
        return 5;
    }
    return HasTwice(triples) ? 6 : 7;
}

/// The same from the definition: the shortest word of the defining contrast subgroup, which is
/// listed whole. The first `baseFactors` columns are the letters; words behind them number at most
/// 20.
inline int ShortestDefiningWord(const Words& columns, int baseFactors) {
    const std::size_t base = static_cast<std::size_t>(baseFactors);
    const std::size_t further = columns.size() - base;
    int shortest = 99;
    for (std::uint32_t choice = 1; choice < (1u << further); ++choice) {
        unsigned short sum = 0;
        for (std::size_t i = 0; i < further; ++i) {
            if ((choice >> i & 1u) != 0) {
                sum ^= columns[base + i];
            }
        }
        const int length = std::popcount(choice) + std::popcount(sum);
        shortest = length < shortest ? length : shortest;
    }
    return shortest;
}

/// All contrasts between the blocks: the products of one or more block generators.
inline Words BlockEffects(const Words& generators) {
    Words effects;
    for (unsigned choice = 1; choice < (1u << generators.size()); ++choice) {
        unsigned short sum = 0;
        for (std::size_t i = 0; i < generators.size(); ++i) {
            if ((choice >> i & 1u) != 0) {
                sum ^= generators[i];
            }
        }
        effects.push_back(sum);
    }
    return effects;
}

/// A column of signs, a bit a run: 1 for +1.
using SignColumn = std::vector<std::uint64_t>;

/// The leading `columns` columns of a matrix; empty when a cell is neither -1 nor 1.
inline std::vector<SignColumn> SignsOf(const NCDataMatrix<float>& matrix, int columns) {
    const std::size_t size = (static_cast<std::size_t>(matrix.SizeRows()) + 63) / 64;
    std::vector<SignColumn> signs(static_cast<std::size_t>(columns), SignColumn(size));
    for (int column = 1; column <= columns; ++column) {
        SignColumn& bits = signs[static_cast<std::size_t>(column) - 1];
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            const float cell = matrix(row, column);
            if (cell != 1.0F && cell != -1.0F) {
                return {};
            }
            const std::size_t run = static_cast<std::size_t>(row) - 1;
            bits[run / 64] |= static_cast<std::uint64_t>(cell > 0) << (run % 64);
        }
    }
    return signs;
}

/// Whether every product of 1 to `strength` of the columns behind `next` with `product` has as many
/// pluses as minuses, hence the runs hold all level combinations of any `strength` columns equally
/// often (Rao 1947).
inline bool AreProductsBalanced(const std::vector<SignColumn>& columns,
                                int runs,
                                int strength,
                                std::size_t next,
                                const SignColumn& product) {
    for (std::size_t i = next; i < columns.size() && strength > 0; ++i) {
        SignColumn longer = product;
        int ones = 0;
        for (std::size_t k = 0; k < longer.size(); ++k) {
            longer[k] ^= columns[i][k];
            ones += std::popcount(longer[k]);
        }
        if (ones * 2 != runs || !AreProductsBalanced(columns, runs, strength - 1, i + 1, longer)) {
            return false;
        }
    }
    return true;
}

/// Whether the leading columns are an orthogonal array of that strength, seen from the runs alone.
/// A fraction of resolution R has strength R - 1.
inline bool HasStrength(const NCDataMatrix<float>& matrix, int columns, int strength) {
    const std::vector<SignColumn> signs = SignsOf(matrix, columns);
    return signs.size() == static_cast<std::size_t>(columns) && matrix.SizeRows() % 2 == 0 &&
           AreProductsBalanced(
               signs, matrix.SizeRows(), strength, 0, SignColumn(signs.front().size()));
}

}  // namespace oracles
