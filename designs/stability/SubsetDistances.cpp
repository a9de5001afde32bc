#include "designs/stability/SubsetDistances.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace {

using SubsetDistances::cEntries;

// Two levels further apart than this are beyond every entry.
constexpr int cReach = 3;

// Numbers of pairs of rows by squared distance.
using Pairs = std::array<std::int64_t, cEntries>;

// Pairs of levels of one factor, one of each of two groups, at one distance.
struct LevelPairs {
    int group;
    int other;
    int distance;  // squared
    std::int64_t count;
};

int ToInt(std::int64_t count) {
    return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

std::vector<LevelPairs> PairLevels(const LevelGroups& groups, int factor) {
    std::vector<LevelPairs> pairs;
    const auto add = [&pairs](int group, int other, int distance) {
        const auto found = std::find_if(pairs.rbegin(), pairs.rend(), [&](const LevelPairs& pair) {
            return pair.group == group && pair.other == other && pair.distance == distance;
        });
        if (found != pairs.rend()) {
            ++found->count;
        } else {
            pairs.push_back({group, other, distance, 1});
        }
    };
    const int order = groups.Reduction();
    for (int group = 0; group < groups.Used(factor); ++group) {
        for (int level = group; level < groups.Levels(factor); level += order) {
            const int end = std::min(groups.Levels(factor) - 1, level + cReach);
            for (int near = std::max(0, level - cReach); near <= end; ++near) {
                add(group, near % order, (near - level) * (near - level));
            }
        }
    }
    return pairs;
}

void AddShifted(Pairs& sum, const Pairs& pairs, const LevelPairs& step) {
    for (int distance = step.distance; distance < cEntries; ++distance) {
        sum[static_cast<std::size_t>(distance)] +=
            step.count * pairs[static_cast<std::size_t>(distance - step.distance)];
    }
}

}  // namespace

namespace SubsetDistances {

std::vector<int> CountInRows(LevelRows rows, const BreakCheck& checkBreak) {
    Pairs pairs{};
    for (std::size_t first = 0; first < rows.Count(); ++first) {
        checkBreak();
        const auto a = rows[first];
        for (std::size_t second = first + 1; second < rows.Count(); ++second) {
            const auto b = rows[second];
            std::int64_t distance = 0;
            for (std::size_t column = 0; column < a.size() && distance < cEntries; ++column) {
                const std::int64_t difference = a[column] - b[column];
                distance += difference * difference;
            }
            if (distance < cEntries) {
                ++pairs[static_cast<std::size_t>(distance)];
            }
        }
    }
    std::vector<int> histogram(cEntries);
    std::transform(pairs.begin(), pairs.end(), histogram.begin(), ToInt);
    return histogram;
}

std::vector<std::vector<int>> CountInSplit(const SubsetSplit& split, const BreakCheck& checkBreak) {
    const LevelGroups& groups = split.Groups();
    const int order = groups.Reduction();
    const auto at = [order](int a, int b) {
        return static_cast<std::size_t>(a) * static_cast<std::size_t>(order) +
               static_cast<std::size_t>(b);
    };
    // Pairs of completions by the two states in which they begin, factor by factor from the last.
    std::vector<Pairs> after(at(order, 0));
    int factor = groups.FactorCount() - 1;
    for (const LevelPairs& pair : PairLevels(groups, factor)) {
        after[at(pair.group, pair.other)][static_cast<std::size_t>(pair.distance)] += pair.count;
    }
    std::vector<Pairs> before;
    while (--factor >= 0) {
        const std::vector<LevelPairs> steps = PairLevels(groups, factor);
        before.assign(after.size(), Pairs{});
        for (int first = 0; first < order; ++first) {
            checkBreak();
            for (int second = 0; second < order; ++second) {
                for (const LevelPairs& step : steps) {
                    AddShifted(before[at(first, second)],
                               after[at(split.Next(factor, first, step.group),
                                        split.Next(factor, second, step.other))],
                               step);
                }
            }
        }
        after.swap(before);
    }
    std::vector<std::vector<int>> histograms;
    for (int subset = 0; subset < order; ++subset) {
        const Pairs& pairs = after[at(subset, subset)];
        std::vector<int> histogram(cEntries, 0);
        // Every pair was met twice. At distance 0 a row of a division meets only itself.
        for (std::size_t distance = 1; distance < pairs.size(); ++distance) {
            histogram[distance] = ToInt(pairs[distance] / 2);
        }
        histograms.push_back(std::move(histogram));
    }
    return histograms;
}

bool IsSplitFaster(const LevelGroups& groups) {
    constexpr double cStepsOfOnePair = 2;  // columns looked at before a distance is too large
    constexpr double cStepsOfOneEntry = 8;
    const double order = groups.Reduction();
    double entries = 0;
    for (int factor = 0; factor < groups.FactorCount(); ++factor) {
        entries += std::min(2.0 * cReach + 1, 1.0 * groups.Levels(factor)) * groups.Used(factor);
    }
    const auto rows = static_cast<double>(groups.Total());
    return order * order * entries * cStepsOfOneEntry < rows * rows / order / 2 * cStepsOfOnePair;
}

}  // namespace SubsetDistances
