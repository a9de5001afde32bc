#pragma once

#include <span>
#include <vector>

/// What the search for balanced columns asks of its caller, who may end it by an exception.
class ColumnSearch {
  public:
    virtual ~ColumnSearch();

    /// Puts the levels of a new column into the order to begin with.
    virtual void Shuffle(std::span<int> column) = 0;
    /// The search of a column, counted from 0, begins or has ended.
    virtual void Begin(int column) = 0;
    virtual void End(int column) = 0;
    /// So many swaps were made in the column.
    virtual void AfterSwaps(int swaps) = 0;
    /// A look at a long search from within.
    virtual void Poll() = 0;
};

/// The J2 value of an orthogonal array of such columns, which no balanced design falls below (Xu
/// 2002, Technometrics 44, lemma 1, with equal weights).
/// @param runs a multiple of every count of levels
[[nodiscard]] double LowestJ2(int runs, std::span<const int> levels);

/// Columns of levels, from 0, that are each as balanced as the run count allows and coincide in few
/// places, found by swaps of two runs within a column, one column after the other.
///
/// More than two columns take three tables of the squared run count at most: 1.2 GB for 10,000
/// runs.
/// @param levels of each column, 1 or more
/// @param maxSwaps in one column
/// @return one vector of `runs` levels for each column
[[nodiscard]] std::vector<std::vector<int>> MakeBalancedColumns(int runs,
                                                                std::span<const int> levels,
                                                                int maxSwaps,
                                                                ColumnSearch& search);
