#include "designs/stability/SubsetSplit.h"

#include <numeric>
#include <utility>

#include "foundation/utl/QvRandom.h"

namespace {

// More cells than this in all runs together are taken for exhausted memory at once: the system
// would rather stop the program than refuse so much.
constexpr std::int64_t cMaxCells = 100'000'000;

std::int64_t CountCombinations(const std::vector<int>& levels) {
    const std::int64_t most = cMaxCells / static_cast<std::int64_t>(levels.size() + 1);
    std::int64_t total = 1;
    for (const int count : levels) {
        if (count == 0) {
            return 0;
        }
        total = total > most / count ? most + 1 : total * count;
    }
    return total > most ? -1 : total;
}

void ShuffleNumbers(std::vector<int>& numbers, std::mt19937& engine) {
    std::iota(numbers.begin(), numbers.end(), 0);
    QvRandom::Shuffle(std::span(numbers), engine);
}

// Writes the rows of one subset: walks through the combinations of groups and, within each, through
// the combinations of levels.
class SubsetWriter {
  public:
    SubsetWriter(const SubsetSplit& split, std::vector<int>& cells, const BreakCheck& checkBreak)
        : split_(split),
          groups_(split.Groups()),
          chosen_(static_cast<std::size_t>(groups_.FactorCount())),
          levels_(chosen_.size()),
          cells_(cells),
          checkBreak_(checkBreak) {}

    void Walk(int factor, int state) {
        if (factor + 1 == groups_.FactorCount()) {
            if (state < groups_.Used(factor)) {
                chosen_.back() = state;
                checkBreak_();
                WriteLevels();
            }
            return;
        }
        for (int group = 0; group < groups_.Used(factor); ++group) {
            chosen_[static_cast<std::size_t>(factor)] = group;
            Walk(factor + 1, split_.Next(factor, state, group));
        }
    }

  private:
    void WriteLevels() {
        for (std::size_t factor = 0; factor < chosen_.size(); ++factor) {
            levels_[factor] = chosen_[factor] + 1;
        }
        do {
            cells_.insert(cells_.end(), levels_.begin(), levels_.end());
        } while (Advance());
    }

    // To the next combination of levels; false after the last one.
    bool Advance() {
        for (std::size_t factor = 0; factor < levels_.size(); ++factor) {
            levels_[factor] += groups_.Reduction();
            if (levels_[factor] <= groups_.Levels(static_cast<int>(factor))) {
                return true;
            }
            levels_[factor] = chosen_[factor] + 1;
        }
        return false;
    }

    const SubsetSplit& split_;
    const LevelGroups& groups_;
    std::vector<int> chosen_;
    std::vector<int> levels_;
    std::vector<int>& cells_;
    const BreakCheck& checkBreak_;
};

}  // namespace

LevelGroups::LevelGroups(std::vector<int> levels, int reduction)
    : levels_(std::move(levels)), reduction_(reduction), total_(CountCombinations(levels_)) {}

SubsetSplit::SubsetSplit(const LevelGroups& groups)
    : groups_(&groups), squares_(static_cast<std::size_t>(groups.FactorCount() - 1)) {
    const auto order = static_cast<std::size_t>(groups.Reduction());
    for (Square& square : squares_) {
        square.rows.resize(order);
        square.columns.resize(order);
    }
}

void SubsetSplit::Draw(std::mt19937& engine, bool fixedSeeds, const BreakCheck& checkBreak) {
    // The square of the last but one factor is drawn first.
    for (std::size_t factor = squares_.size(); factor-- > 0;) {
        checkBreak();
        if (fixedSeeds) {
            engine.seed(1);
        }
        ShuffleNumbers(squares_[factor].columns, engine);
        ShuffleNumbers(squares_[factor].rows, engine);
    }
}

void SubsetSplit::WriteSubset(int subset,
                              std::vector<int>& cells,
                              const BreakCheck& checkBreak) const {
    cells.clear();
    SubsetWriter(*this, cells, checkBreak).Walk(0, subset);
}
