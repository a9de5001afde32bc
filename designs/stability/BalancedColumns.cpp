#include "designs/stability/BalancedColumns.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "designs/stability/ColumnSwaps.h"
#include "designs/stability/PairCoincidences.h"

namespace {

using Column = std::vector<int>;

// Each level in one block; the first blocks are a run longer where the runs do not divide.
Column SortedColumn(int runs, int levels) {
    Column column;
    column.reserve(static_cast<std::size_t>(runs));
    for (int level = 0; level < levels; ++level) {
        const int size = runs / levels + (level < runs % levels ? 1 : 0);
        column.insert(column.end(), static_cast<std::size_t>(size), level);
    }
    return column;
}

Column CyclicColumn(int runs, int levels) {
    Column column;
    column.reserve(static_cast<std::size_t>(runs));
    for (int run = 0; run < runs; ++run) {
        column.push_back(run % levels);
    }
    return column;
}

/// The growing design.
class ColumnMaker {
  public:
    ColumnMaker(int runs, std::span<const int> levels, int maxSwaps, ColumnSearch& search)
        : runs_(runs), levels_(levels), maxSwaps_(maxSwaps), search_(search) {
        // Two columns need no table of all pairs of runs.
        if (levels.size() > 2) {
            table_.emplace(runs);
            swaps_.emplace(runs, static_cast<int>(levels.size()));
        }
    }

    std::vector<Column> Make() {
        columns_.reserve(levels_.size());
        if (!levels_.empty()) {
            AddTold(SortedColumn(runs_, levels_[0]));
        }
        if (levels_.size() > 1) {
            AddTold(CyclicColumn(runs_, levels_[1]));
        }
        for (std::size_t c = 2; c < levels_.size(); ++c) {
            search_.Begin(static_cast<int>(c));
            AddSearched(levels_[c]);
            search_.End(static_cast<int>(c));
        }
        return std::move(columns_);
    }

  private:
    void AddTold(Column column) {
        balanced_ = balanced_ && runs_ % levels_[columns_.size()] == 0;
        if (table_) {
            table_->Add(column);
        }
        columns_.push_back(std::move(column));
    }

    void AddSearched(int levels) {
        Column column = CyclicColumn(runs_, levels);
        search_.Shuffle(column);
        balanced_ = balanced_ && runs_ % levels == 0;
        std::optional<double> target;
        if (balanced_) {
            // Deliberate: the bound of the columns so far, without the new one. A column whose
            // swaps do not reach it goes on for as long as a swap gains.
            target = LowestJ2(runs_, levels_.first(columns_.size()));
        }
        swaps_->Start(*table_, column, levels);
        const std::optional<RowSwap> uncounted = Improve(target);
        columns_.push_back(swaps_->Column());
        column = columns_.back();
        if (uncounted) {
            // Deliberate: the last swap of a full count is in the design but not in the table.
            std::swap(column[static_cast<std::size_t>(uncounted->first)],
                      column[static_cast<std::size_t>(uncounted->second)]);
        }
        table_->Add(column);
    }

    // The last swap, if the count of swaps ended the search.
    std::optional<RowSwap> Improve(const std::optional<double>& target) {
        std::optional<RowSwap> best;
        for (int swap = 0; swap < maxSwaps_; ++swap) {
            search_.AfterSwaps(swap);
            if (target && static_cast<double>(swaps_->J2()) == *target) {
                return std::nullopt;
            }
            best = swaps_->FindBest([this] { search_.Poll(); });
            if (!best) {
                return std::nullopt;
            }
            swaps_->Apply(*best);
        }
        return best;
    }

    int runs_;
    std::span<const int> levels_;
    int maxSwaps_;
    ColumnSearch& search_;
    std::optional<PairCoincidences> table_;  // of three columns or more
    std::optional<ColumnSwaps> swaps_;
    std::vector<Column> columns_;
    bool balanced_ = true;
};

}  // namespace

ColumnSearch::~ColumnSearch() = default;

double LowestJ2(int runs, std::span<const int> levels) {
    double sum = 0;
    double squares = 0;
    double weights = 0;
    for (const int count : levels) {
        const double size = static_cast<double>(runs) / count;
        sum += size;
        squares += (count - 1) * size * size;
        weights += 1;
    }
    return ((sum * sum + squares) - weights * weights * runs) * 0.5;
}

std::vector<std::vector<int>> MakeBalancedColumns(int runs,
                                                  std::span<const int> levels,
                                                  int maxSwaps,
                                                  ColumnSearch& search) {
    return ColumnMaker(runs, levels, maxSwaps, search).Make();
}
