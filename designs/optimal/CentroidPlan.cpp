#include "designs/optimal/CentroidPlan.h"

#include <algorithm>
#include <array>

namespace DOpt {

namespace {

// [0] edge centres, [1] edge thirds, then dimensions of larger faces; 0 or less is no entry.
using Entries = std::array<int, 5>;

constexpr int cMaxLinearProcess = 48;
constexpr int cMaxLinearProcessWithEdges = 3;
constexpr int cMaxProcessWithEdges = 8;
constexpr int cMaxLinearMixtureWithEdges = 3;
constexpr int cQuadraticMixtureWithoutEdges = 19;  // in dimensions of the region
constexpr int cCubicMixtureWithoutEdges = 9;

Entries ProcessEntries(int n, EModel::Type model, bool thirds) {
    if (model == EModel::None || n < 1) {
        return {};
    }
    if (n == 1) {
        return {1};
    }
    if (model == EModel::Linear || model == EModel::Interaction) {
        if (n <= cMaxLinearProcessWithEdges) {
            return {1};
        }
        return n <= cMaxLinearProcess ? Entries{0, 0, 0, 0, n - 1} : Entries{};
    }
    if (n <= cMaxProcessWithEdges) {
        return {thirds ? 0 : 1, thirds ? 1 : 0, 0, 0, n - 1};
    }
    return {0, 0, n - 3, n - 2, n - 1};
}

Entries MixtureEntries(int n, EModel::Type model, bool thirds) {
    const int d = n - 2;
    switch (model) {
        case EModel::Linear:
            return n > cMaxLinearMixtureWithEdges ? Entries{0, 0, 0, 0, d} : Entries{1};
        case EModel::Quadratic:
            if (d >= cQuadraticMixtureWithoutEdges) {
                return {0, 0, n - 4, n - 3, d};
            }
            return {thirds ? 0 : 1, thirds ? 1 : 0, 0, 0, d};
        case EModel::SpecialCubic:
            return {0, 1, 0, n - 3, d};
        case EModel::Cubic:
            if (n >= cCubicMixtureWithoutEdges) {
                return {0, n - 5, n - 4, n - 3, d};
            }
            return {1, 1, 2, n - 3, d};
        default:
            return {};
    }
}

CentroidPlan MakePlan(const Entries& entries, int regionDimension) {
    CentroidPlan plan;
    plan.edgeCentres = entries[0] > 0;
    plan.edgeThirds = entries[1] > 0;
    std::vector<int> listed;
    const int edges = entries[0] > 0 ? entries[0] : entries[1];
    for (const int entry : {edges, entries[2], entries[3], entries[4]}) {
        if (entry > 0) {
            listed.push_back(entry);
        }
    }
    // A region that is a single point has no centroid besides it.
    if (listed.empty() || regionDimension < 1) {
        return plan;
    }
    listed.back() = regionDimension;
    for (const int dimension : listed) {
        if (std::ranges::find(plan.dimensions, dimension) == plan.dimensions.end()) {
            plan.dimensions.push_back(dimension);
        }
    }
    return plan;
}

}  // namespace

CentroidPlan MakeProcessPlan(int variables, EModel::Type model, bool usePotentialTerms) {
    return MakePlan(ProcessEntries(variables, model, usePotentialTerms), variables);
}

CentroidPlan MakeMixturePlan(int variables, EModel::Type model, bool usePotentialTerms) {
    return MakePlan(MixtureEntries(variables, model, usePotentialTerms), variables - 1);
}

}  // namespace DOpt
