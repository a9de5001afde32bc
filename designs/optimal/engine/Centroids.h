#pragma once

#include <functional>
#include <vector>

#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/PointTable.h"

namespace DOpt {

/// A slack within this of zero puts a vertex on a constraint when faces are gathered; wider than
/// the tolerance of the cuts, whose rounding it has to cover.
inline constexpr float cCentroidTolerance = 1e-4F;
/// Edge points kept at most; the longest edges stay.
inline constexpr int cMaxEdgePoints = 500;

/// A bounded region in the variables of its vertices.
struct Region {
    PointTable vertices;     // [vertices x variables]
    PointTable constraints;  // [constraints x (variables + 1)]
    bool hasMixture = false;
};

/// What a point between vertices is averaged in; a point that falls outside the region this way is
/// averaged in the scale of the vertices.
struct WorkingScale {
    PointTable vertices;  // [vertices x variables], in the working scale
    /// Value of a variable, counted from 0, back from the working scale. Empty where the two scales
    /// are the same.
    std::function<float(int variable, float value)> back;
};

struct CentroidRequest {
    std::vector<int> dimensions;  // of the faces, in order; see CentroidPlan
    bool edgeCentres = true;
    bool edgeThirds = false;
    float tightTolerance = cCentroidTolerance;
    float duplicateTolerance = 1e-5F;
    int maxPoints = 0x7fffffff;  // more end with TooManyCentroids
};

/// One point of the centroid step.
struct CtdData {
    int dimension = 0;  // of its face
    int vertices = 0;   // on its face
    float edgeLength = 0;
};

/// The points of the centroid step in the order of their finding.
class CtdList {
  public:
    explicit CtdList(int variables) : points(variables) {}

    [[nodiscard]] int CountOfDimension(int dimension) const;

    PointTable points;
    std::vector<CtdData> records;  // one a point
};

/// Centres and thirds of edges, centroids of the faces of the dimensions asked for, and, where a
/// dimension is that of the region or more, the mean of all vertices, which never counts as a
/// duplicate. A face is any combination of constraints that meet in more vertices than its
/// dimension.
/// Success, TooManyCentroids, IllegalArgument for a region without vertices, or Stopped.
[[nodiscard]] Status ComputeCentroids(const Region& region,
                                      const WorkingScale& scale,
                                      const CentroidRequest& request,
                                      const StopTest& stop,
                                      CtdList& result);

}  // namespace DOpt
