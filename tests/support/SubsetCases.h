#pragma once

#include <random>
#include <string>
#include <vector>

#include "designs/stability/SubsetSplit.h"
#include "tests/oracles/SubsetOracle.h"

/// Factors and reductions on which a division is compared with its plain form.
struct SubsetCase {
    std::vector<int> levels;
    int reduction;

    friend void PrintTo(const SubsetCase& one, std::ostream* out) {
        *out << ::testing::PrintToString(one.levels) << " in " << one.reduction;
    }
};

/// Equal and mixed level counts, fewer and more levels than subsets, factors that split evenly and
/// those that do not, one factor, subsets without rows.
inline std::vector<SubsetCase> MakeSubsetCases() {
    return {{{2}, 2},
            {{5}, 2},
            {{2}, 5},
            {{2, 2}, 5},
            {{2, 2}, 2},
            {{2, 3}, 2},
            {{3, 3, 3}, 3},
            {{3, 4, 6}, 4},
            {{3, 4, 6}, 2},
            {{3, 3, 3, 3}, 2},
            {{2, 2, 2}, 7},
            {{3, 3, 3, 3}, 9},
            {{1, 4, 2}, 3},
            {{7, 5, 2}, 3},
            {{2, 5, 3, 4}, 3},
            {{4, 4}, 8},
            {{3, 2, 2, 2}, 1},
            {{2, 2, 2, 2}, 4},
            {{6, 2, 9}, 5}};
}

inline SubsetOracle::Rows ToOracleRows(LevelRows rows) {
    SubsetOracle::Rows result;
    for (std::size_t row = 0; row < rows.Count(); ++row) {
        result.emplace_back(rows[row].begin(), rows[row].end());
    }
    return result;
}

/// The rows of all subsets.
inline std::vector<SubsetOracle::Rows> SubsetsOf(const SubsetSplit& split) {
    std::vector<SubsetOracle::Rows> subsets;
    std::vector<int> cells;
    for (int subset = 0; subset < split.Groups().Reduction(); ++subset) {
        split.WriteSubset(subset, cells, BreakCheck());
        subsets.push_back(
            ToOracleRows({cells, static_cast<std::size_t>(split.Groups().FactorCount())}));
    }
    return subsets;
}
