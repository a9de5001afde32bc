#include "designs/stability/ColumnSwaps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

/// The working numbers of one column.
class ColumnSwaps::Table {
  public:
    Table() = default;
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    virtual ~Table() = default;

    /// Returns the sum of T over the pairs of runs with equal levels.
    virtual long long Start(const PairCoincidences& coincidences,
                            const std::vector<int>& column,
                            int levels) = 0;
    virtual std::optional<RowSwap> FindBest(const Poll& poll) = 0;
    virtual void Exchange(int first, int second) = 0;
};

namespace {

/// Pairs looked at between two polls.
constexpr std::size_t cPairsPerPoll = std::size_t{1} << 16U;

/// Runs stand sorted by level: those of one level form a block, so that the inner loop of a search
/// runs along memory without a look at any level. A swap of two runs changes their places, and the
/// blocks stay.
template <class Count>
class SortedTable : public ColumnSwaps::Table {
  public:
    explicit SortedTable(int runs)
        : runs_(static_cast<std::size_t>(runs)),
          twice_(runs_ * runs_),
          best_(runs_),
          runAt_(runs_),
          placeOf_(runs_),
          levelAt_(runs_) {}

    long long Start(const PairCoincidences& coincidences,
                    const std::vector<int>& column,
                    int levels) override {
        levels_ = static_cast<std::size_t>(levels);
        SortByLevel(column);
        for (std::size_t p = 0; p < runs_; ++p) {
            const auto counts = coincidences.Row(static_cast<int>(runAt_[p]));
            Count* const row = twice_.data() + p * runs_;
            for (std::size_t q = 0; q < runs_; ++q) {
                row[q] = static_cast<Count>(2 * counts[runAt_[q]]);
            }
        }
        return SumByLevels();
    }

    std::optional<RowSwap> FindBest(const ColumnSwaps::Poll& poll) override {
        PrepareBonus();
        Count highest = 0;
        std::size_t pairs = 0;
        for (std::size_t p = 0; p < runs_; ++p) {
            best_[p] = BestWith(p);
            highest = std::max(highest, best_[p]);
            pairs += runs_;
            if (pairs >= cPairsPerPoll) {
                poll();
                pairs = 0;
            }
        }
        if (highest == 0) {
            return std::nullopt;
        }
        return FirstOf(highest);
    }

    void Exchange(int first, int second) override {
        const std::size_t a = placeOf_[static_cast<std::size_t>(first)];
        const std::size_t b = placeOf_[static_cast<std::size_t>(second)];
        Count* const sumsA = sums_.data() + levelAt_[a] * runs_;
        Count* const sumsB = sums_.data() + levelAt_[b] * runs_;
        Count* const rowA = twice_.data() + a * runs_;
        Count* const rowB = twice_.data() + b * runs_;
        for (std::size_t p = 0; p < runs_; ++p) {
            const auto change = static_cast<Count>((rowB[p] - rowA[p]) / 2);
            sumsA[p] = static_cast<Count>(sumsA[p] + change);
            sumsB[p] = static_cast<Count>(sumsB[p] - change);
        }
        std::swap_ranges(rowA, rowA + runs_, rowB);
        for (std::size_t p = 0; p < runs_; ++p) {
            std::swap(twice_[p * runs_ + a], twice_[p * runs_ + b]);
        }
        for (std::size_t level = 0; level < levels_; ++level) {
            std::swap(sums_[level * runs_ + a], sums_[level * runs_ + b]);
        }
        std::swap(runAt_[a], runAt_[b]);
        std::swap(placeOf_[runAt_[a]], placeOf_[runAt_[b]]);
    }

  private:
    void SortByLevel(const std::vector<int>& column) {
        start_.assign(levels_ + 1, 0);
        for (const int level : column) {
            ++start_[static_cast<std::size_t>(level) + 1];
        }
        for (std::size_t level = 0; level < levels_; ++level) {
            start_[level + 1] += start_[level];
        }
        next_.assign(start_.begin(), start_.end());
        for (std::size_t run = 0; run < runs_; ++run) {
            const auto level = static_cast<std::size_t>(column[run]);
            const std::size_t place = next_[level]++;
            runAt_[place] = run;
            placeOf_[run] = place;
            levelAt_[place] = level;
        }
    }

    long long SumByLevels() {
        sums_.assign(levels_ * runs_, 0);
        bonus_.resize(levels_ * runs_);
        long long within = 0;
        for (std::size_t p = 0; p < runs_; ++p) {
            const Count* const row = twice_.data() + p * runs_;
            for (std::size_t level = 0; level < levels_; ++level) {
                int sum = 0;
                for (std::size_t q = start_[level]; q < start_[level + 1]; ++q) {
                    sum += row[q];
                }
                sums_[level * runs_ + p] = static_cast<Count>(sum / 2);
            }
            within += sums_[levelAt_[p] * runs_ + p];
        }
        return within / 2;  // each pair stands twice
    }

    // What a run gains by leaving its level for another.
    void PrepareBonus() {
        for (std::size_t level = 0; level < levels_; ++level) {
            const Count* const sums = sums_.data() + level * runs_;
            Count* const bonus = bonus_.data() + level * runs_;
            for (std::size_t own = 0; own < levels_; ++own) {
                const Count* const ownSums = sums_.data() + own * runs_;
                for (std::size_t p = start_[own]; p < start_[own + 1]; ++p) {
                    bonus[p] = static_cast<Count>(ownSums[p] - sums[p]);
                }
            }
        }
    }

    // The highest gain of the run at a place with any run of a later block; 0 when there is none.
    Count BestWith(std::size_t p) const {
        const std::size_t level = levelAt_[p];
        const Count* const row = twice_.data() + p * runs_;
        const Count* const bonus = bonus_.data() + level * runs_;
        Count best = 0;
        for (std::size_t other = level + 1; other < levels_; ++other) {
            if (start_[other] == start_[other + 1]) {
                continue;
            }
            Count highest = std::numeric_limits<Count>::min();
            for (std::size_t q = start_[other]; q < start_[other + 1]; ++q) {
                highest = std::max(highest, static_cast<Count>(bonus[q] + row[q]));
            }
            best = std::max(best, static_cast<Count>(highest + bonus_[other * runs_ + p]));
        }
        return best;
    }

    RowSwap FirstOf(Count gain) const {
        std::pair<std::size_t, std::size_t> first{runs_, runs_};
        for (std::size_t p = 0; p < runs_; ++p) {
            if (best_[p] == gain) {
                first = std::min(first, FirstWith(p, gain));
            }
        }
        return {static_cast<int>(first.first), static_cast<int>(first.second), gain};
    }

    std::pair<std::size_t, std::size_t> FirstWith(std::size_t p, Count gain) const {
        const std::size_t level = levelAt_[p];
        const Count* const row = twice_.data() + p * runs_;
        const Count* const bonus = bonus_.data() + level * runs_;
        std::pair<std::size_t, std::size_t> first{runs_, runs_};
        for (std::size_t q = start_[level + 1]; q < runs_; ++q) {
            if (bonus[q] + bonus_[levelAt_[q] * runs_ + p] + row[q] == gain) {
                const auto [low, high] = std::minmax(runAt_[p], runAt_[q]);
                first = std::min(first, {low, high});
            }
        }
        return first;
    }

    std::size_t runs_;
    std::size_t levels_ = 0;
    std::vector<Count> twice_;  // 2 T by place [runs x runs]
    std::vector<Count> sums_;   // R [levels x runs]
    std::vector<Count> bonus_;  // [levels x runs]
    std::vector<Count> best_;
    std::vector<std::size_t> runAt_;
    std::vector<std::size_t> placeOf_;
    std::vector<std::size_t> levelAt_;
    std::vector<std::size_t> start_;  // of the block of each level, and the end
    std::vector<std::size_t> next_;
};

// No gain, nor a part of one, is further from 0 than this.
long long LargestGain(int runs, int columns) {
    return 2LL * (static_cast<long long>(runs) + 1) * columns;
}

}  // namespace

ColumnSwaps::ColumnSwaps(int runs, int columns) {
    // The narrower the numbers, the more of them are compared at once.
    if (LargestGain(runs, columns) <= std::numeric_limits<std::int16_t>::max()) {
        table_ = std::make_unique<SortedTable<std::int16_t>>(runs);
    } else {
        table_ = std::make_unique<SortedTable<std::int32_t>>(runs);
    }
}

ColumnSwaps::~ColumnSwaps() = default;

void ColumnSwaps::Start(const PairCoincidences& table, const std::vector<int>& column, int levels) {
    column_ = column;
    const long long within = table_->Start(table, column, levels);
    std::vector<long long> sizes(static_cast<std::size_t>(levels));
    for (const int level : column) {
        ++sizes[static_cast<std::size_t>(level)];
    }
    long long coinciding = 0;
    for (const long long size : sizes) {
        coinciding += size * (size - 1) / 2;
    }
    j2_ = table.SumOfSquares() + 2 * within + coinciding;
}

std::optional<RowSwap> ColumnSwaps::FindBest(const Poll& poll) {
    return table_->FindBest(poll);
}

void ColumnSwaps::Apply(const RowSwap& swap) {
    table_->Exchange(swap.first, swap.second);
    std::swap(column_[static_cast<std::size_t>(swap.first)],
              column_[static_cast<std::size_t>(swap.second)]);
    j2_ -= 2 * swap.gain;
}
