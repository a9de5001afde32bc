#include "tests/support/PlateRowSearch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <numeric>
#include <random>

namespace PlateRowSearch {

namespace {

using Row = std::vector<double>;
using Rows = std::vector<Row>;

// A move must gain more than rounding could.
constexpr double cLeastGain = 1e-9;
// Below this a pivot counts as zero: the cells of the scaled matrix are near 1.
constexpr double cLeastPivot = 1e-9;
constexpr double cNone = -std::numeric_limits<double>::infinity();

int Product(const std::vector<int>& levels) {
    return std::accumulate(levels.begin(), levels.end(), 1, std::multiplies<>());
}

// Orthogonal contrasts of one level, each with a mean square of 1 over the levels.
Row Contrasts(int level, int levels) {
    Row values;
    for (int k = 1; k < levels; ++k) {
        const double scale = std::sqrt(static_cast<double>(levels) / (k * (k + 1)));
        values.push_back(level < k ? scale : level == k ? -k * scale : 0.0);
    }
    return values;
}

Row Times(const Row& a, const Row& b) {
    Row products;
    for (const double x : a) {
        for (const double y : b) {
            products.push_back(x * y);
        }
    }
    return products;
}

Row ModelRow(const std::vector<int>& setting, const Problem& problem) {
    Row row{1.0};
    std::vector<Row> mains;
    for (std::size_t f = 0; f < setting.size(); ++f) {
        mains.push_back(Contrasts(setting[f], problem.levels[f]));
        row.insert(row.end(), mains.back().begin(), mains.back().end());
    }
    for (std::size_t f = 0; problem.interactions && f < mains.size(); ++f) {
        for (std::size_t g = f + 1; g < mains.size(); ++g) {
            const Row products = Times(mains[f], mains[g]);
            row.insert(row.end(), products.begin(), products.end());
        }
    }
    return row;
}

// The model rows of the full factorial, its factors standing in the given order.
Rows FactorialRows(const Problem& problem, const std::vector<std::size_t>& order) {
    Rows rows;
    for (int run = 0; run < Product(problem.levels); ++run) {
        std::vector<int> setting(problem.levels.size());
        int rest = run;
        for (const std::size_t factor : order) {
            setting[factor] = rest % problem.levels[factor];
            rest /= problem.levels[factor];
        }
        rows.push_back(ModelRow(setting, problem));
    }
    return rows;
}

// One entry for each order of the level counts; exchanging factors of equal counts changes nothing.
std::vector<Rows> RowsOfEveryOrder(const Problem& problem) {
    std::vector<std::size_t> order(problem.levels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<Rows> all{FactorialRows(problem, order)};
    std::vector<std::vector<int>> seen{problem.levels};
    while (problem.everyOrder && std::next_permutation(order.begin(), order.end())) {
        std::vector<int> levels;
        for (const std::size_t factor : order) {
            levels.push_back(problem.levels[factor]);
        }
        if (std::find(seen.begin(), seen.end(), levels) == seen.end()) {
            seen.push_back(levels);
            all.push_back(FactorialRows(problem, order));
        }
    }
    return all;
}

// ln det(X'X / runs) by Cholesky. A pivot of zero counts as the least one, so that among singular
// designs those that lack fewer terms are better and the climb finds its way out.
double LogDeterminant(const Rows& rows, const std::vector<int>& counts, bool& isSingular) {
    const std::size_t size = rows[0].size();
    Rows a(size, Row(size));
    double runs = 0;
    for (std::size_t run = 0; run < rows.size(); ++run) {
        runs += counts[run];
        for (std::size_t i = 0; counts[run] > 0 && i < size; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                a[i][j] += counts[run] * rows[run][i] * rows[run][j];
            }
        }
    }
    double log = 0;
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = a[i][j] / runs;
            for (std::size_t k = 0; k < j; ++k) {
                sum -= a[i][k] * a[j][k];
            }
            if (i != j) {
                a[i][j] = sum / a[j][j];
            } else {
                a[i][i] = std::sqrt(std::max(sum, cLeastPivot));
                log += 2 * std::log(a[i][i]);
                isSingular = isSingular || sum <= cLeastPivot;
            }
        }
    }
    return log;
}

double WorstLog(const std::vector<Rows>& orders, const std::vector<int>& counts, double enough) {
    double worst = std::numeric_limits<double>::infinity();
    bool isSingular = false;
    for (const Rows& rows : orders) {
        worst = std::min(worst, LogDeterminant(rows, counts, isSingular));
        if (worst <= enough) {
            break;  // no use for the other orders
        }
    }
    return worst;
}

double Efficiency(const std::vector<Rows>& orders, const std::vector<int>& counts) {
    double worst = std::numeric_limits<double>::infinity();
    bool isSingular = false;
    for (const Rows& rows : orders) {
        worst = std::min(worst, LogDeterminant(rows, counts, isSingular));
    }
    return isSingular ? 0 : std::exp(worst / static_cast<double>(orders[0][0].size()));
}

class Climb {
  public:
    Climb(const Problem& problem, const std::vector<Rows>& orders)
        : orders_(orders),
          least_(!problem.freeCounts && problem.runs >= Product(problem.levels) ? 1 : 0),
          most_(problem.freeCounts || least_ == 1 ? problem.runs : 1) {}

    [[nodiscard]] std::vector<int> RandomStart(int runs, std::mt19937& generator) const {
        std::vector<int> counts(orders_[0].size(), least_);
        int placed = least_ * static_cast<int>(counts.size());
        while (placed < runs) {
            int& count = counts[generator() % counts.size()];
            if (count < most_) {
                ++count;
                ++placed;
            }
        }
        return counts;
    }

    // The best move of one run; false when none gains.
    [[nodiscard]] bool Step(std::vector<int>& counts, double& log) const {
        std::vector<int> best;
        for (std::size_t from = 0; from < counts.size(); ++from) {
            for (std::size_t to = 0; to < counts.size(); ++to) {
                if (from == to || counts[from] <= least_ || counts[to] >= most_) {
                    continue;
                }
                std::vector<int> moved = counts;
                --moved[from];
                ++moved[to];
                const double gained = WorstLog(orders_, moved, log + cLeastGain);
                if (gained > log + cLeastGain) {
                    log = gained;
                    best = moved;
                }
            }
        }
        if (best.empty()) {
            return false;
        }
        counts = best;
        return true;
    }

  private:
    const std::vector<Rows>& orders_;
    int least_;
    int most_;
};

}  // namespace

std::vector<int> Found::List() const {
    const int runs = std::accumulate(counts.begin(), counts.end(), 0);
    const bool leftOut = runs < static_cast<int>(counts.size());
    std::vector<int> list;
    for (std::size_t run = 0; run < counts.size(); ++run) {
        const int times = leftOut ? 1 - counts[run] : counts[run] - 1;
        list.insert(
            list.end(), static_cast<std::size_t>(std::max(times, 0)), static_cast<int>(run) + 1);
    }
    return list;
}

double WorstEfficiency(const Problem& problem, const std::vector<int>& counts) {
    return Efficiency(RowsOfEveryOrder(problem), counts);
}

std::vector<int> CountsOf(const Problem& problem, const std::vector<int>& list) {
    const int all = Product(problem.levels);
    std::vector<int> counts(static_cast<std::size_t>(all), 1);
    for (const int run : list) {
        counts[static_cast<std::size_t>(run - 1)] += problem.runs < all ? -1 : 1;
    }
    return counts;
}

Found Search(const Problem& problem, int starts, unsigned int seed) {
    const std::vector<Rows> orders = RowsOfEveryOrder(problem);
    const Climb climb(problem, orders);
    std::mt19937 generator(seed);
    Found best;
    for (int start = 0; start < starts; ++start) {
        std::vector<int> counts = climb.RandomStart(problem.runs, generator);
        double log = WorstLog(orders, counts, cNone);
        while (climb.Step(counts, log)) {
        }
        const double efficiency = Efficiency(orders, counts);
        if (efficiency > best.efficiency + cLeastGain) {
            best = {counts, efficiency};
        }
    }
    return best;
}

}  // namespace PlateRowSearch
