#pragma once

#include "designs/stability/BreakCheck.h"
#include "designs/stability/SubsetSplit.h"

/// Figures of one subset, from its rows.
namespace SubsetQuality {

struct PairBalance {
    bool strict = false;
    bool near = false;
};

/// No two rows are equal.
[[nodiscard]] bool IsUnique(LevelRows rows);
/// The levels of every column, from 1 to the largest that occurs, occur equally often.
[[nodiscard]] bool IsBalanced(LevelRows rows);
/// Whether in the cross table of every pair of columns, up to the largest levels that occur, all
/// cells are equal (strict) or differ by at most 1 (near). Both are false without a pair of columns
/// and without rows.
/// @throws CancelException
[[nodiscard]] PairBalance CheckPairBalance(LevelRows rows, const BreakCheck& checkBreak);

}  // namespace SubsetQuality
