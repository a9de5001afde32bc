#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "designs/stability/PairCoincidences.h"

/// Two runs of different levels whose levels are exchanged in one column. Runs count from 0.
struct RowSwap {
    int first = 0;  // the lower run
    int second = 0;
    long long gain = 0;  // J2 falls by twice this

    friend bool operator==(const RowSwap&, const RowSwap&) = default;
};

/// Finds the swaps of two runs within one column that lower J2 most, given the coincidences T of
/// the other columns.
///
/// With x the levels of the column and R[i][l] the sum of T[i, r] over the runs r of level l, a
/// swap of the runs a and b gains
///     R[a][xa] - R[a][xb] + R[b][xb] - R[b][xa] + 2 T[a, b],
/// so one search looks at each pair once, and a swap changes R in one pass over the runs. All
/// numbers are whole and exact.
class ColumnSwaps {
  public:
    /// Called now and then within a long search; it ends the search by an exception.
    using Poll = std::function<void()>;

    /// @param columns that any table given to Start will have at most
    ColumnSwaps(int runs, int columns);
    ColumnSwaps(const ColumnSwaps&) = delete;
    ColumnSwaps& operator=(const ColumnSwaps&) = delete;
    ~ColumnSwaps();

    /// Begins a new column.
    /// @param table of the other columns
    /// @param column one level a run, from 0 to `levels` - 1
    void Start(const PairCoincidences& table, const std::vector<int>& column, int levels);
    /// The pair with the highest gain above 0; of several the first by its lower run, then by the
    /// other. Empty when no swap gains.
    [[nodiscard]] std::optional<RowSwap> FindBest(const Poll& poll);
    /// Makes a swap that FindBest told for the column as it stands.
    void Apply(const RowSwap& swap);
    /// Of all columns, this one among them.
    [[nodiscard]] long long J2() const { return j2_; }
    [[nodiscard]] const std::vector<int>& Column() const { return column_; }

    class Table;

  private:
    std::unique_ptr<Table> table_;
    std::vector<int> column_;
    long long j2_ = 0;
};
