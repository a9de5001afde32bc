#pragma once

#include <vector>

#include "frame/EModel.h"

namespace DOpt {

/// Which faces of a region give candidates besides its vertices.
struct CentroidPlan {
    bool edgeCentres = false;
    bool edgeThirds = false;
    /// Dimensions of the faces, none twice; the last is the region's own, which gives the overall
    /// centroid. Empty: no centroids at all.
    std::vector<int> dimensions;

    [[nodiscard]] bool IsEmpty() const { return dimensions.empty(); }
};

/// The plan for `variables` process variables. Linear models need no more than the vertices and
/// the middle; quadratic ones take edges where these are few, else large faces.
/// @param usePotentialTerms edges are divided in three instead of two
[[nodiscard]] CentroidPlan MakeProcessPlan(int variables,
                                           EModel::Type model,
                                           bool usePotentialTerms);

/// The plan for `variables` mixture variables, whose region has one dimension less.
[[nodiscard]] CentroidPlan MakeMixturePlan(int variables,
                                           EModel::Type model,
                                           bool usePotentialTerms);

}  // namespace DOpt
