#include "designs/stability/SubsetQuality.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace {

int LargestLevel(LevelRows rows, std::size_t column) {
    int largest = 0;
    for (std::size_t row = 0; row < rows.Count(); ++row) {
        largest = std::max(largest, rows[row][column]);
    }
    return largest;
}

// One number a row, different for different rows: the levels as digits. The combinations of all
// levels were counted before any row was made, so they fit.
std::vector<std::uint64_t> RowKeys(LevelRows rows) {
    std::vector<std::uint64_t> keys(rows.Count(), 0);
    for (std::size_t column = 0; column < rows.columns; ++column) {
        const auto base = static_cast<std::uint64_t>(LargestLevel(rows, column));
        for (std::size_t row = 0; row < keys.size(); ++row) {
            keys[row] = keys[row] * base + static_cast<std::uint64_t>(rows[row][column] - 1);
        }
    }
    return keys;
}

// Largest less smallest cell of the cross table of two columns.
int CrossTableRange(LevelRows rows,
                    std::size_t first,
                    std::size_t second,
                    const std::vector<int>& largest,
                    std::vector<int>& table) {
    const auto width = static_cast<std::size_t>(largest[second]);
    table.assign(static_cast<std::size_t>(largest[first]) * width, 0);
    for (std::size_t row = 0; row < rows.Count(); ++row) {
        const auto cells = rows[row];
        ++table[static_cast<std::size_t>(cells[first] - 1) * width +
                static_cast<std::size_t>(cells[second] - 1)];
    }
    const auto [least, most] = std::minmax_element(table.begin(), table.end());
    return *most - *least;
}

}  // namespace

namespace SubsetQuality {

bool IsUnique(LevelRows rows) {
    std::vector<std::uint64_t> keys = RowKeys(rows);
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) == keys.end();
}

bool IsBalanced(LevelRows rows) {
    std::vector<int> counts;
    for (std::size_t column = 0; column < rows.columns; ++column) {
        counts.assign(static_cast<std::size_t>(LargestLevel(rows, column)), 0);
        for (std::size_t row = 0; row < rows.Count(); ++row) {
            ++counts[static_cast<std::size_t>(rows[row][column] - 1)];
        }
        if (std::adjacent_find(counts.begin(), counts.end(), std::not_equal_to<>()) !=
            counts.end()) {
            return false;
        }
    }
    return true;
}

PairBalance CheckPairBalance(LevelRows rows, const BreakCheck& checkBreak) {
    if (rows.Count() == 0 || rows.columns < 2) {
        return {};
    }
    std::vector<int> largest;
    for (std::size_t column = 0; column < rows.columns; ++column) {
        largest.push_back(LargestLevel(rows, column));
    }
    PairBalance balance{true, true};
    std::vector<int> table;
    for (std::size_t first = 0; first < rows.columns; ++first) {
        for (std::size_t second = first + 1; second < rows.columns; ++second) {
            checkBreak();
            const int range = CrossTableRange(rows, first, second, largest, table);
            if (range > 1) {
                return {};
            }
            balance.strict = balance.strict && range == 0;
        }
    }
    return balance;
}

}  // namespace SubsetQuality
