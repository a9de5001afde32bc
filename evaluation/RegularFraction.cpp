#include "evaluation/RegularFraction.h"

#include <algorithm>
#include <bit>

namespace {

// A basis of the words in reduced row echelon form, pivots in ascending column order.
std::vector<std::uint64_t> ReducedBasis(std::span<const std::uint64_t> words) {
    std::vector<std::uint64_t> basis;
    for (std::uint64_t word : words) {
        for (const std::uint64_t row : basis) {
            if ((word >> std::countr_zero(row) & 1U) != 0) {
                word ^= row;
            }
        }
        if (word == 0) {
            continue;
        }
        for (std::uint64_t& row : basis) {
            if ((row >> std::countr_zero(word) & 1U) != 0) {
                row ^= word;
            }
        }
        basis.push_back(word);
    }
    std::sort(basis.begin(), basis.end(), [](std::uint64_t a, std::uint64_t b) {
        return std::countr_zero(a) < std::countr_zero(b);
    });
    return basis;
}

// Every distinct word stands equally often, and there are 2^dimension distinct ones.
bool FillsSpace(std::vector<std::uint64_t> words, std::size_t dimension) {
    if (dimension >= 63 || words.size() % (std::size_t{1} << dimension) != 0) {
        return false;
    }
    const std::size_t times = words.size() >> dimension;
    std::sort(words.begin(), words.end());
    std::size_t distinct = 0;
    for (auto begin = words.begin(); begin != words.end(); ++distinct) {
        const auto end = std::upper_bound(begin, words.end(), *begin);
        if (static_cast<std::size_t>(end - begin) != times) {
            return false;
        }
        begin = end;
    }
    return distinct == std::size_t{1} << dimension;
}

}  // namespace

std::optional<RegularFraction> RegularFraction::Find(std::span<const std::uint64_t> rows,
                                                     int columns) {
    std::vector<std::uint64_t> words(rows.begin(), rows.end());
    for (std::uint64_t& word : words) {
        word ^= rows.front();
    }
    const std::vector<std::uint64_t> basis = ReducedBasis(words);
    if (!FillsSpace(std::move(words), basis.size())) {
        return std::nullopt;
    }
    RegularFraction fraction;
    for (const std::uint64_t row : basis) {
        fraction.baseColumns.push_back(std::countr_zero(row));
    }
    for (int column = 0; column < columns; ++column) {
        std::uint64_t code = 0;
        std::uint64_t signs = rows.front() >> column & 1U;
        for (std::size_t i = 0; i < basis.size(); ++i) {
            if ((basis[i] >> column & 1U) != 0) {
                code |= std::uint64_t{1} << i;
                signs ^= rows.front() >> fraction.baseColumns[i] & 1U;
            }
        }
        fraction.codes.push_back(code);
        fraction.negative.push_back(signs != 0);
    }
    return fraction;
}
