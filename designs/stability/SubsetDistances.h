#pragma once

#include <vector>

#include "designs/stability/BreakCheck.h"
#include "designs/stability/SubsetSplit.h"

/// How far apart the runs of a subset lie: a histogram of the squared distances of all pairs of its
/// rows in level numbers, from 0 to 9. Entry d counts the pairs at squared distance d; larger ones
/// are left out. A count beyond an int is cut there.
namespace SubsetDistances {

constexpr int cEntries = 10;

/// From the rows, pair by pair: quadratic in the rows.
/// @throws CancelException
[[nodiscard]] std::vector<int> CountInRows(LevelRows rows, const BreakCheck& checkBreak);

/// Of all subsets of a split at once, over pairs of paths through its states: the time does not
/// depend on the rows.
/// @throws CancelException
[[nodiscard]] std::vector<std::vector<int>> CountInSplit(const SubsetSplit& split,
                                                         const BreakCheck& checkBreak);

/// Whether CountInSplit is the faster of the two.
[[nodiscard]] bool IsSplitFaster(const LevelGroups& groups);

}  // namespace SubsetDistances
