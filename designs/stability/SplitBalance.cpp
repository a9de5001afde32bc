#include "designs/stability/SplitBalance.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

namespace {

constexpr std::int64_t cMaxCells = 100'000'000;

constexpr int cUniqueBit = 8;
constexpr int cPairsBit = 4;
constexpr int cLevelsBit = 2;
constexpr int cStrictBit = 1;

}  // namespace

SplitBalance::SplitBalance(const LevelGroups& groups)
    : groups_(groups), factors_(groups.FactorCount()), order_(groups.Reduction()) {
    if (std::int64_t{order_} * order_ * factors_ > cMaxCells) {
        throw std::bad_alloc();
    }
    const auto count = static_cast<std::size_t>(factors_);
    const std::size_t order = Order();
    next_.resize(count);
    prefixes_.resize(count);
    levelCounts_.resize(count);
    completions_.assign(count, Counts(order));
    largestLevel_.assign(count, Counts(order));
    extremes_.assign(count, {Counts(order), Counts(order)});
    for (std::size_t factor = 0; factor < count; ++factor) {
        const auto used = static_cast<std::size_t>(groups.Used(static_cast<int>(factor)));
        next_[factor].resize(factor + 1 < count ? used * order : 0);
        prefixes_[factor].resize(order * order);
        levelCounts_[factor].assign(used, Counts(order));
    }
    for (Counts* scratch : {&ways_, &before_, &cells_, &codes_}) {
        scratch->resize(order);
    }
    near_.resize(order);
    strict_.resize(order);
}

const std::vector<int>& SplitBalance::GetCodes(const SubsetSplit& split,
                                               const BreakCheck& checkBreak) {
    TabulateSquares(split);
    CountPaths();
    checkBreak();
    CountLevels();
    CheckPairs(checkBreak);
    SetCodes();
    return codes_;
}

void SplitBalance::TabulateSquares(const SubsetSplit& split) {
    for (int factor = 0; factor + 1 < factors_; ++factor) {
        int* next = next_[static_cast<std::size_t>(factor)].data();
        for (int group = 0; group < groups_.Used(factor); ++group) {
            for (int state = 0; state < order_; ++state) {
                *next++ = split.Next(factor, state, group);
            }
        }
    }
}

void SplitBalance::CountPaths() {
    const int last = factors_ - 1;
    for (int state = 0; state < order_; ++state) {
        completions_.back()[static_cast<std::size_t>(state)] =
            state < groups_.Used(last) ? groups_.Size(last, state) : 0;
    }
    for (int factor = last - 1; factor >= 0; --factor) {
        const auto at = static_cast<std::size_t>(factor);
        StepBack(factor, completions_[at + 1], completions_[at]);
    }
    std::fill(prefixes_[0].begin(), prefixes_[0].end(), 0);
    for (std::size_t subset = 0; subset < Order(); ++subset) {
        prefixes_[0][subset * Order() + subset] = 1;
    }
    for (int factor = 0; factor < last; ++factor) {
        const Counts& from = prefixes_[static_cast<std::size_t>(factor)];
        Counts& to = prefixes_[static_cast<std::size_t>(factor) + 1];
        std::fill(to.begin(), to.end(), 0);
        for (int group = 0; group < groups_.Used(factor); ++group) {
            const int* next = NextStates(factor, group);
            const int size = groups_.Size(factor, group);
            for (std::size_t row = 0; row < to.size(); row += Order()) {
                for (std::size_t state = 0; state < Order(); ++state) {
                    to[row + static_cast<std::size_t>(next[state])] += size * from[row + state];
                }
            }
        }
    }
}

void SplitBalance::CountLevels() {
    for (int factor = 0; factor < factors_; ++factor) {
        const auto at = static_cast<std::size_t>(factor);
        Counts& largest = largestLevel_[at];
        std::fill(largest.begin(), largest.end(), 0);
        for (int group = 0; group < groups_.Used(factor); ++group) {
            CompletionsFrom(factor, group, ways_);
            Counts& counts = levelCounts_[at][static_cast<std::size_t>(group)];
            const int largestOfGroup = group + 1 + (groups_.Size(factor, group) - 1) * order_;
            for (std::size_t subset = 0; subset < Order(); ++subset) {
                const int* prefix = prefixes_[at].data() + subset * Order();
                int count = 0;
                for (std::size_t state = 0; state < Order(); ++state) {
                    count += prefix[state] * ways_[state];
                }
                counts[subset] = count;
                if (count > 0) {
                    largest[subset] = std::max(largest[subset], largestOfGroup);
                }
            }
        }
    }
}

void SplitBalance::CheckPairs(const BreakCheck& checkBreak) {
    const bool hasPairs = factors_ > 1;
    for (std::size_t subset = 0; subset < Order(); ++subset) {
        const bool counts = hasPairs && completions_[0][subset] > 0;
        near_[subset] = counts;
        strict_[subset] = counts;
    }
    const auto isNear = [](char near) { return near != 0; };
    for (int later = 1; later < factors_; ++later) {
        checkBreak();
        if (std::none_of(near_.begin(), near_.end(), isNear)) {
            return;
        }
        for (int factor = 0; factor < later; ++factor) {
            Extremes& extremes = extremes_[static_cast<std::size_t>(factor)];
            std::fill(
                extremes.least.begin(), extremes.least.end(), std::numeric_limits<int>::max());
            std::fill(extremes.most.begin(), extremes.most.end(), 0);
        }
        for (int group = 0; group < groups_.Used(later); ++group) {
            CompletionsFrom(later, group, ways_);
            for (int factor = later - 1; factor >= 0; --factor) {
                AddCells(factor, ways_, later, group);
                if (factor > 0) {
                    StepBack(factor, ways_, before_);
                    ways_.swap(before_);
                }
            }
        }
        JudgePairs(later);
    }
}

void SplitBalance::CompletionsFrom(int factor, int group, Counts& ways) const {
    if (factor + 1 == factors_) {
        std::fill(ways.begin(), ways.end(), 0);
        ways[static_cast<std::size_t>(group)] = 1;
        return;
    }
    const Counts& after = completions_[static_cast<std::size_t>(factor) + 1];
    const int* next = NextStates(factor, group);
    for (std::size_t state = 0; state < Order(); ++state) {
        ways[state] = after[static_cast<std::size_t>(next[state])];
    }
}

void SplitBalance::StepBack(int factor, const Counts& after, Counts& before) const {
    std::fill(before.begin(), before.end(), 0);
    for (int group = 0; group < groups_.Used(factor); ++group) {
        const int* next = NextStates(factor, group);
        const int size = groups_.Size(factor, group);
        for (std::size_t state = 0; state < Order(); ++state) {
            before[state] += size * after[static_cast<std::size_t>(next[state])];
        }
    }
}

void SplitBalance::AddCells(int factor, const Counts& ways, int laterFactor, int laterGroup) {
    const auto at = static_cast<std::size_t>(factor);
    Extremes& extremes = extremes_[at];
    for (int group = 0; group < groups_.Used(factor); ++group) {
        const int* next = NextStates(factor, group);
        for (std::size_t state = 0; state < Order(); ++state) {
            cells_[state] = ways[static_cast<std::size_t>(next[state])];
        }
        for (std::size_t subset = 0; subset < Order(); ++subset) {
            // A cross table ends at the largest levels that occur.
            if (near_[subset] == 0 || !IsInTable(subset, factor, group) ||
                !IsInTable(subset, laterFactor, laterGroup)) {
                continue;
            }
            int cell = cells_[subset];
            if (factor > 0) {
                const int* prefix = prefixes_[at].data() + subset * Order();
                cell = 0;
                for (std::size_t state = 0; state < Order(); ++state) {
                    cell += prefix[state] * cells_[state];
                }
            }
            extremes.least[subset] = std::min(extremes.least[subset], cell);
            extremes.most[subset] = std::max(extremes.most[subset], cell);
        }
    }
}

void SplitBalance::JudgePairs(int laterFactor) {
    for (int factor = 0; factor < laterFactor; ++factor) {
        const Extremes& extremes = extremes_[static_cast<std::size_t>(factor)];
        for (std::size_t subset = 0; subset < Order(); ++subset) {
            if (near_[subset] != 0) {
                const int difference = extremes.most[subset] - extremes.least[subset];
                near_[subset] = difference <= 1;
                strict_[subset] = strict_[subset] != 0 && difference == 0;
            }
        }
    }
}

void SplitBalance::SetCodes() {
    for (std::size_t subset = 0; subset < Order(); ++subset) {
        codes_[subset] = cUniqueBit + (near_[subset] != 0 ? cPairsBit : 0) + LevelCode(subset);
    }
}

int SplitBalance::LevelCode(std::size_t subset) const {
    const std::int64_t rows = completions_[0][subset];
    bool strict = true;
    for (int factor = 0; factor < factors_; ++factor) {
        int least = std::numeric_limits<int>::max();
        int most = 0;
        for (const Counts& counts : levelCounts_[static_cast<std::size_t>(factor)]) {
            least = std::min(least, counts[subset]);
            most = std::max(most, counts[subset]);
        }
        // A level that is missing, or one that occurs too often.
        if (least == 0 || most == 0 || most - least > 1) {
            return 0;
        }
        if (strict && most != least) {
            strict = rows >= groups_.Total() / order_ && rows % groups_.Levels(factor) != 0;
        }
    }
    return cLevelsBit + (strict ? cStrictBit : 0);
}
