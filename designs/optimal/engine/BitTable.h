#pragma once

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace DOpt {

/// Rows of bits of one width, counted from 0: which constraints are tight at a vertex, or which
/// vertices lie on a constraint.
class BitTable {
  public:
    using Word = std::uint64_t;
    static constexpr int cWordBits = 64;

    BitTable() = default;
    explicit BitTable(int bits, int rows = 0)
        : words_(WordsFor(bits)), cells_(words_ * static_cast<std::size_t>(rows), 0) {}

    [[nodiscard]] static std::size_t WordsFor(int bits) {
        return static_cast<std::size_t>((bits + cWordBits - 1) / cWordBits);
    }

    [[nodiscard]] std::size_t Words() const { return words_; }
    [[nodiscard]] std::span<const Word> Row(int row) const {
        return std::span(cells_).subspan(static_cast<std::size_t>(row) * words_, words_);
    }
    [[nodiscard]] std::span<Word> Row(int row) {
        return std::span(cells_).subspan(static_cast<std::size_t>(row) * words_, words_);
    }
    void Set(int row, int bit) {
        Row(row)[static_cast<std::size_t>(bit / cWordBits)] |= Word{1} << (bit % cWordBits);
    }
    [[nodiscard]] bool Has(int row, int bit) const {
        return (Row(row)[static_cast<std::size_t>(bit / cWordBits)] >> (bit % cWordBits) & 1U) != 0;
    }

    void AppendRow() { cells_.resize(cells_.size() + words_, 0); }
    void RemoveLastRow() { cells_.resize(cells_.size() - words_); }
    void MoveRow(int from, int to) {
        for (std::size_t word = 0; from != to && word < words_; ++word) {
            Row(to)[word] = Row(from)[word];
        }
    }
    void Truncate(int rows) { cells_.resize(static_cast<std::size_t>(rows) * words_); }

    /// Makes room for a number of bits a row; the new ones are 0.
    void Widen(int bits, int rows) {
        const std::size_t wider = WordsFor(bits);
        if (wider <= words_) {
            return;
        }
        std::vector<Word> cells(wider * static_cast<std::size_t>(rows), 0);
        for (int row = 0; row < rows; ++row) {
            for (std::size_t word = 0; word < words_; ++word) {
                cells[static_cast<std::size_t>(row) * wider + word] = Row(row)[word];
            }
        }
        words_ = wider;
        cells_ = std::move(cells);
    }

  private:
    std::size_t words_ = 0;
    std::vector<Word> cells_;
};

/// Calls `visit(bit)` for every bit of a row, in ascending order.
template <class Visit>
void ForEachBit(std::span<const BitTable::Word> row, const Visit& visit) {
    for (std::size_t word = 0; word < row.size(); ++word) {
        for (BitTable::Word rest = row[word]; rest != 0; rest &= rest - 1) {
            visit(static_cast<int>(word) * BitTable::cWordBits + std::countr_zero(rest));
        }
    }
}

/// Whether a row has `count` bits or more. Clears bit after bit: the counts asked for are small,
/// and the baseline instruction set does not count bits.
[[nodiscard]] inline bool HasAtLeast(std::span<const BitTable::Word> row, int count) {
    for (std::size_t word = 0; word < row.size() && count > 0; ++word) {
        for (BitTable::Word rest = row[word]; rest != 0 && count > 0; rest &= rest - 1) {
            --count;
        }
    }
    return count <= 0;
}

[[nodiscard]] inline int CountBits(std::span<const BitTable::Word> row) {
    int count = 0;
    for (const BitTable::Word word : row) {
        count += std::popcount(word);
    }
    return count;
}

}  // namespace DOpt
