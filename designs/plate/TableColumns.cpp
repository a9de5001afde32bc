#include "designs/plate/TableColumns.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <tuple>

#include "frame/Factors.h"

namespace {

// Columns of one mask after the other, those that most types can take first.
constexpr std::array cWidestFirst{7, 6, 3, 1, 2, 4};

std::size_t At(int column) {
    return static_cast<std::size_t>(column - 1);
}

// Column numbers from 1 in the order of a key.
template <class Key>
std::vector<int> ColumnsBy(const TableColumns& columns, Key key) {
    std::vector<int> order(columns.levels.size());
    std::iota(order.begin(), order.end(), 1);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
    return order;
}

bool Fits(const TableColumns& columns, int column, const Factors& factors, int factor) {
    const int mask = columns.typeMasks[At(column)];
    const auto hasItsLevels = [&] {
        return factors.GetLevelCount(factor) ==
               static_cast<unsigned int>(columns.levels[At(column)]);
    };
    switch (factors.GetFactorType(factor)) {
        case CEType::Quantitative:
            // A column for Multilevel factors alone holds settings in order, which suit a
            // quantitative factor, too.
            return (mask & TableColumns::cQuantitative) != 0 || mask == TableColumns::cMultilevel;
        case CEType::Multilevel:
            return (mask & TableColumns::cMultilevel) != 0 && hasItsLevels();
        case CEType::Qualitative:
            return (mask & TableColumns::cQualitative) != 0 && hasItsLevels();
        default:
            return false;
    }
}

std::vector<int> MatchInOrder(const TableColumns& columns,
                              const Factors& factors,
                              std::vector<int> free) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    if (count != columns.Count()) {
        return {};
    }
    std::vector<int> taken;
    taken.reserve(free.size());
    for (int factor = 0; factor < count; ++factor) {
        const auto found = std::find_if(free.begin(), free.end(), [&](int column) {
            return Fits(columns, column, factors, factor);
        });
        if (found == free.end()) {
            return {};
        }
        taken.push_back(*found);
        free.erase(found);
    }
    return taken;
}

}  // namespace

std::vector<int> TableColumns::Match(const Factors& factors) const {
    return MatchInOrder(*this, factors, ColumnsBy(*this, [&](int column) {
        return std::make_tuple(typeMasks[At(column)], levels[At(column)]);
    }));
}

std::vector<int> TableColumns::MatchWidestFirst(const Factors& factors) const {
    const std::vector<int> widest = MatchInOrder(*this, factors, ColumnsBy(*this, [&](int column) {
        return std::find(cWidestFirst.begin(), cWidestFirst.end(), typeMasks[At(column)]) -
               cWidestFirst.begin();
    }));
    return widest.empty() ? Match(factors) : widest;
}
