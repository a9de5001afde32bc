#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// The search for balanced columns in its plain form: tables of pairs, a sum over all other runs
/// for every pair of runs that might swap, and J2 summed anew before every swap. Shares nothing
/// with the engine. Runs, columns and levels count from 0.
namespace LiteralJ2 {

using Column = std::vector<int>;

struct Pair {
    int i = 0;
    int j = 0;
    int value = 0;
};

struct Swap {
    int first = 0;
    int second = 0;
    long long gain = 0;
};

/// One entry for each pair i < j, ascending in i and then in j.
class PairTable {
  public:
    explicit PairTable(int runs) : runs_(runs) {
        for (int i = 0; i < runs; ++i) {
            for (int j = i + 1; j < runs; ++j) {
                pairs_.push_back({i, j, 0});
            }
        }
    }

    static PairTable Of(const Column& column) {
        PairTable table(static_cast<int>(column.size()));
        table.Rebuild(column);
        return table;
    }

    void Rebuild(const Column& column) {
        for (Pair& pair : pairs_) {
            const bool same = column[static_cast<std::size_t>(pair.i)] ==
                              column[static_cast<std::size_t>(pair.j)];
            pair.value = same ? 1 : 0;
        }
    }

    void Add(const PairTable& other) {
        for (std::size_t k = 0; k < pairs_.size(); ++k) {
            pairs_[k].value += other.pairs_[k].value;
        }
    }

    [[nodiscard]] int At(int a, int b) const {
        const int i = a < b ? a : b;
        const int j = a < b ? b : a;
        return pairs_[static_cast<std::size_t>(i * runs_ - i * (i + 1) / 2 + j - i - 1)].value;
    }

    [[nodiscard]] const std::vector<Pair>& Pairs() const { return pairs_; }

  private:
    int runs_;
    std::vector<Pair> pairs_;
};

/// J2 of the columns of both tables together.
inline double J2(const PairTable& table, const PairTable& own) {
    double sum = 0;
    for (std::size_t k = 0; k < table.Pairs().size(); ++k) {
        const double value = table.Pairs()[k].value + own.Pairs()[k].value;
        sum += value * value;
    }
    return sum;
}

/// J2 of a finished design, by comparing all pairs of runs in all columns.
inline double J2OfColumns(const std::vector<Column>& columns) {
    double sum = 0;
    const std::size_t runs = columns.empty() ? 0 : columns.front().size();
    for (std::size_t i = 0; i < runs; ++i) {
        for (std::size_t j = i + 1; j < runs; ++j) {
            int same = 0;
            for (const Column& column : columns) {
                same += column[i] == column[j] ? 1 : 0;
            }
            sum += same * same;
        }
    }
    return sum;
}

inline long long Gain(const PairTable& table, const PairTable& own, int runs, int a, int b) {
    long long gain = 0;
    for (int r = 0; r < runs; ++r) {
        if (r != a && r != b) {
            gain += static_cast<long long>(table.At(r, a) - table.At(r, b)) *
                    (own.At(r, a) - own.At(r, b));
        }
    }
    return gain;
}

inline std::optional<Swap> BestSwap(const PairTable& table,
                                    const PairTable& own,
                                    const Column& column) {
    std::optional<Swap> best;
    const int runs = static_cast<int>(column.size());
    for (int a = 0; a < runs; ++a) {
        for (int b = a + 1; b < runs; ++b) {
            if (column[static_cast<std::size_t>(a)] == column[static_cast<std::size_t>(b)]) {
                continue;
            }
            const long long gain = Gain(table, own, runs, a, b);
            if (gain > (best ? best->gain : 0)) {
                best = Swap{a, b, gain};
            }
        }
    }
    return best;
}

/// What the whole search did.
struct Design {
    std::vector<Column> columns;
    std::vector<std::vector<Swap>> swaps;  // of each column
    std::vector<std::optional<double>> targets;
};

inline double Target(int runs, const std::vector<int>& levels, std::size_t columns) {
    double s = 0;
    double ss = 0;
    double w = 0;
    for (std::size_t i = 0; i < columns; ++i) {
        const double x = static_cast<double>(runs) / levels[i];
        s += x;
        ss += (levels[i] - 1) * x * x;
        w += 1;
    }
    return ((s * s + ss) - w * w * runs) * 0.5;
}

/// @param shuffle puts a new column into its first order
inline Design Generate(int runs,
                       const std::vector<int>& levels,
                       int maxSwaps,
                       const std::function<void(Column&)>& shuffle) {
    Design design;
    PairTable table(runs);
    bool unbalanced = false;
    for (std::size_t c = 0; c < levels.size(); ++c) {
        Column column;
        design.swaps.emplace_back();
        design.targets.emplace_back();
        unbalanced = unbalanced || runs % levels[c] != 0;
        if (c == 0) {
            for (int level = 0; level < levels[0]; ++level) {
                const int size = runs / levels[0] + (level < runs % levels[0] ? 1 : 0);
                column.insert(column.end(), static_cast<std::size_t>(size), level);
            }
            table.Add(PairTable::Of(column));
            design.columns.push_back(column);
            continue;
        }
        for (int run = 0; run < runs; ++run) {
            column.push_back(run % levels[c]);
        }
        if (c == 1) {
            table.Add(PairTable::Of(column));
            design.columns.push_back(column);
            continue;
        }
        shuffle(column);
        if (!unbalanced) {
            design.targets.back() = Target(runs, levels, c);
        }
        PairTable own(runs);
        for (int swap = 0; swap < maxSwaps; ++swap) {
            own.Rebuild(column);
            if (design.targets.back() && J2(table, own) == *design.targets.back()) {
                break;
            }
            const std::optional<Swap> best = BestSwap(table, own, column);
            if (!best) {
                break;
            }
            std::swap(column[static_cast<std::size_t>(best->first)],
                      column[static_cast<std::size_t>(best->second)]);
            design.swaps.back().push_back(*best);
        }
        table.Add(own);
        design.columns.push_back(column);
    }
    return design;
}

}  // namespace LiteralJ2
