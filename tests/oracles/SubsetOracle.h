#pragma once

#include <algorithm>
#include <cstddef>
#include <random>
#include <set>
#include <vector>

#include "foundation/utl/QvRandom.h"

/// The division of a full factorial in its plain form: matrices of group numbers, glued together
/// from smaller ones by Latin squares, expanded to rows of levels, judged row by row. Shares
/// nothing with the engine but the shuffle.
namespace SubsetOracle {

using Rows = std::vector<std::vector<int>>;

struct PairBalance {
    bool strict = false;
    bool near = false;
};

/// S(r, c) = (r + c) mod n + 1 with its rows and columns in random order.
inline Rows RandomLatinSquare(int n, std::mt19937& engine) {
    std::vector<int> columns;
    std::vector<int> rows;
    for (int i = 0; i < n; ++i) {
        columns.push_back(i);
        rows.push_back(i);
    }
    QvRandom::Shuffle(std::span(columns), engine);
    QvRandom::Shuffle(std::span(rows), engine);
    Rows square;
    for (const int row : rows) {
        square.emplace_back();
        for (const int column : columns) {
            square.back().push_back((row + column) % n + 1);
        }
    }
    return square;
}

/// n matrices of n^(k - 1) rows of k group numbers from 1.
inline std::vector<Rows> MakeBaseMatrices(int k, int n, std::mt19937& engine, bool fixedSeeds) {
    std::vector<Rows> matrices;
    for (int i = 1; i <= n; ++i) {
        matrices.push_back({{i}});
    }
    for (int step = 1; step < k; ++step) {
        if (fixedSeeds) {
            engine = std::mt19937(1);
        }
        const Rows square = RandomLatinSquare(n, engine);
        std::vector<Rows> larger;
        for (std::size_t i = 0; i < square.size(); ++i) {
            larger.emplace_back();
            for (std::size_t j = 0; j < square.size(); ++j) {
                for (std::vector<int> row : matrices[static_cast<std::size_t>(square[i][j] - 1)]) {
                    row.insert(row.begin(), static_cast<int>(j) + 1);
                    larger.back().push_back(row);
                }
            }
        }
        matrices = larger;
    }
    return matrices;
}

/// G(g, f): the levels of factor f in group g, both from 0.
inline std::vector<int> LevelsInGroup(int levels, int group, int n) {
    std::vector<int> list;
    for (int level = group + 1; level <= levels; level += n) {
        list.push_back(level);
    }
    return list;
}

/// The rows of levels of one base matrix.
inline Rows Expand(const Rows& base, const std::vector<int>& levels, int n) {
    Rows subset;
    for (const std::vector<int>& groups : base) {
        std::vector<std::vector<int>> lists;
        std::size_t product = 1;
        for (std::size_t c = 0; c < groups.size(); ++c) {
            lists.push_back(LevelsInGroup(levels[c], groups[c] - 1, n));
            product *= lists.back().size();
        }
        for (std::size_t row = 0; row < product; ++row) {
            std::vector<int> cells;
            std::size_t stride = 1;
            for (const std::vector<int>& list : lists) {
                cells.push_back(list[row / stride % list.size()]);
                stride *= list.size();
            }
            subset.push_back(cells);
        }
    }
    return subset;
}

inline std::vector<Rows> Divide(const std::vector<int>& levels,
                                int n,
                                std::mt19937& engine,
                                bool fixedSeeds) {
    std::vector<Rows> subsets;
    for (const Rows& base :
         MakeBaseMatrices(static_cast<int>(levels.size()), n, engine, fixedSeeds)) {
        subsets.push_back(Expand(base, levels, n));
    }
    return subsets;
}

inline int Largest(const Rows& rows, std::size_t column) {
    int largest = 0;
    for (const auto& row : rows) {
        largest = std::max(largest, row[column]);
    }
    return largest;
}

inline bool IsUnique(const Rows& rows) {
    for (std::size_t a = 0; a < rows.size(); ++a) {
        for (std::size_t b = a + 1; b < rows.size(); ++b) {
            if (rows[a] == rows[b]) {
                return false;
            }
        }
    }
    return true;
}

inline PairBalance CheckPairs(const Rows& rows) {
    PairBalance balance;
    bool anyOne = false;
    const std::size_t columns = rows.empty() ? 0 : rows.front().size();
    for (std::size_t a = 0; a < columns; ++a) {
        for (std::size_t b = a + 1; b < columns; ++b) {
            std::vector<int> table;
            for (int x = 1; x <= Largest(rows, a); ++x) {
                for (int y = 1; y <= Largest(rows, b); ++y) {
                    table.push_back(static_cast<int>(
                        std::count_if(rows.begin(), rows.end(), [&](const auto& row) {
                            return row[a] == x && row[b] == y;
                        })));
                }
            }
            const auto [least, most] = std::minmax_element(table.begin(), table.end());
            if (*most - *least > 1) {
                return {};
            }
            anyOne = anyOne || *most - *least == 1;
            balance = {!anyOne, true};
        }
    }
    return balance;
}

/// 2 when every level occurs, equally often up to 1; 1 more when that is as even as it can be.
inline int LevelBits(const Rows& rows, const std::vector<int>& levels, int n) {
    long long total = 1;
    for (const int count : levels) {
        total *= count;
    }
    bool strict = true;
    for (std::size_t column = 0; column < levels.size(); ++column) {
        std::vector<int> present;
        for (const auto& row : rows) {
            present.push_back(row[column]);
        }
        const std::set<int> distinct(present.begin(), present.end());
        if (static_cast<int>(distinct.size()) < levels[column]) {
            return 0;
        }
        std::vector<long> counts;
        for (const int level : distinct) {
            counts.push_back(std::count(present.begin(), present.end(), level));
        }
        const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
        if (*most - *least > 1) {
            return 0;
        }
        if (*most != *least && (static_cast<long long>(rows.size()) < total / n ||
                                static_cast<int>(rows.size()) % levels[column] == 0)) {
            strict = false;
        }
    }
    return 2 + (strict ? 1 : 0);
}

inline int QualityCode(const Rows& rows, const std::vector<int>& levels, int n) {
    return (IsUnique(rows) ? 8 : 0) + (CheckPairs(rows).near ? 4 : 0) + LevelBits(rows, levels, n);
}

inline bool IsBalanced(const Rows& rows) {
    for (std::size_t column = 0; !rows.empty() && column < rows.front().size(); ++column) {
        std::set<long> counts;
        for (int level = 1; level <= Largest(rows, column); ++level) {
            counts.insert(std::count_if(
                rows.begin(), rows.end(), [&](const auto& row) { return row[column] == level; }));
        }
        if (counts.size() > 1) {
            return false;
        }
    }
    return true;
}

inline std::vector<int> CountDistances(const Rows& rows) {
    std::vector<int> histogram(10, 0);
    for (std::size_t a = 0; a < rows.size(); ++a) {
        for (std::size_t b = a + 1; b < rows.size(); ++b) {
            int sum = 0;
            for (std::size_t c = 0; c < rows[a].size(); ++c) {
                sum += (rows[a][c] - rows[b][c]) * (rows[a][c] - rows[b][c]);
            }
            if (sum < 10) {
                ++histogram[static_cast<std::size_t>(sum)];
            }
        }
    }
    return histogram;
}

}  // namespace SubsetOracle
