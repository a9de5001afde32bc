#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "designs/stability/BreakCheck.h"

/// Rows of level numbers from 1, one after the other in one block. Borrowed.
struct LevelRows {
    std::span<const int> cells;
    std::size_t columns = 0;

    [[nodiscard]] std::size_t Count() const { return columns == 0 ? 0 : cells.size() / columns; }
    [[nodiscard]] std::span<const int> operator[](std::size_t row) const {
        return cells.subspan(row * columns, columns);
    }
};

/// The levels of each factor, dealt out in turn to `reduction` groups: group g, from 0, of a factor
/// with L levels holds the levels g + 1, g + 1 + reduction, and so on up to L. A factor with fewer
/// levels than groups has empty groups at the end.
class LevelGroups {
  public:
    LevelGroups(std::vector<int> levels, int reduction);

    [[nodiscard]] int Reduction() const { return reduction_; }
    [[nodiscard]] int FactorCount() const { return static_cast<int>(levels_.size()); }
    [[nodiscard]] int Levels(int factor) const { return levels_[Index(factor)]; }
    /// Groups that are not empty; they are the first ones.
    [[nodiscard]] int Used(int factor) const {
        return Levels(factor) < reduction_ ? Levels(factor) : reduction_;
    }
    /// Number of levels in a group that is not empty.
    [[nodiscard]] int Size(int factor, int group) const {
        return (Levels(factor) - group - 1) / reduction_ + 1;
    }
    /// All combinations of levels, or -1 for more than fit the memory as rows.
    [[nodiscard]] std::int64_t Total() const { return total_; }

  private:
    [[nodiscard]] static std::size_t Index(int factor) { return static_cast<std::size_t>(factor); }

    std::vector<int> levels_;
    int reduction_;
    std::int64_t total_;
};

/// A random division of all combinations of groups, and with them of all combinations of levels,
/// into as many subsets as there are groups (generalized subset designs; Surowiec et al. 2017,
/// Analytical Chemistry 89, 6491-6497).
///
/// Every factor but the last has a Latin square S of the group numbers, with rows and columns in
/// random order. A row of subset i begins in state i; at each factor it takes any group g and goes
/// on in state S(state, g); at the last factor the state itself is the group. So every combination
/// of groups stands in exactly one subset, and within a subset any choice of groups for all factors
/// but one fixes the group of that one.
///
/// This is what gluing together blocks of smaller matrices gives, without the matrices: a split is
/// drawn in a time that does not depend on the number of runs.
class SubsetSplit {
  public:
    /// @param groups borrowed; must have a factor
    explicit SubsetSplit(const LevelGroups& groups);

    /// New random squares.
    /// @param fixedSeeds draws every square with a twister that starts from seed 1, so that the
    ///        split is the same every time
    void Draw(std::mt19937& engine, bool fixedSeeds, const BreakCheck& checkBreak);

    [[nodiscard]] const LevelGroups& Groups() const { return *groups_; }
    /// The state after a factor, not the last one; states, groups and factors count from 0.
    [[nodiscard]] int Next(int factor, int state, int group) const {
        const Square& square = squares_[static_cast<std::size_t>(factor)];
        const int sum = square.rows[static_cast<std::size_t>(state)] +
                        square.columns[static_cast<std::size_t>(group)];
        return sum < groups_->Reduction() ? sum : sum - groups_->Reduction();
    }
    /// Replaces `cells` by the rows of a subset, counted from 0. Combinations of groups follow in
    /// ascending order, the last factor fastest; the levels within one, first factor fastest.
    void WriteSubset(int subset, std::vector<int>& cells, const BreakCheck& checkBreak) const;

  private:
    struct Square {
        std::vector<int> rows;  // a permutation of 0 to n - 1: S(r, c) = rows[r] + columns[c] mod n
        std::vector<int> columns;
    };

    const LevelGroups* groups_;
    std::vector<Square> squares_;
};
