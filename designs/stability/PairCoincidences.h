#pragma once

#include <span>
#include <vector>

/// For each pair of runs, on how many of the columns added so far the two runs coincide. Runs count
/// from 0.
class PairCoincidences {
  public:
    explicit PairCoincidences(int runs);

    [[nodiscard]] int Runs() const { return runs_; }
    /// Columns added so far: no count is larger.
    [[nodiscard]] int Columns() const { return columns_; }
    /// @param column one level a run
    void Add(std::span<const int> column);
    /// The counts of one run with all runs; 0 with itself.
    [[nodiscard]] std::span<const int> Row(int run) const;
    /// The sum over all pairs of the squared count, which is J2 of the columns (Xu 2002, "An
    /// algorithm for constructing orthogonal and nearly-orthogonal arrays with mixed levels and
    /// small runs", Technometrics 44).
    [[nodiscard]] long long SumOfSquares() const;

  private:
    int runs_;
    int columns_ = 0;
    std::vector<int> counts_;  // [runs x runs], row by row
};
