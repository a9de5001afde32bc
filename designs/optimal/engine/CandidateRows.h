#pragma once

#include <vector>

#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/PointTable.h"
#include "foundation/mat/NCDataMatrix.h"

namespace DOpt {

/// The points of one block of variables.
struct BlockRows {
    PointTable points;
    bool endsInCentroid = false;  // the last row is the overall centroid
    std::vector<int> columns;     // candidate column of each variable, counted from 0
};

/// The columns of one level factor.
struct LevelColumns {
    int firstColumn = 0;     // counted from 0
    PointTable settings{1};  // [levels x columns], in the order of use
};

struct CandidateRequest {
    const BlockRows* process = nullptr;  // borrowed, null for none
    const BlockRows* mixture = nullptr;
    std::vector<LevelColumns> levels;
    int columns = 0;
    long long combinations = 1;       // of the levels
    unsigned long long maxCells = 0;  // 0 for no limit
};

/// Combines the blocks and the level factors. Every process row but its overall centroid stands
/// beside every mixture row but its overall centroid, process rows in the outer loop; the two
/// centroids, where both have one, make the last row. Each combination of levels has one copy of
/// these rows; the first level factor changes fastest.
/// Success, OverLimit, TooManyVertices for more rows than can be counted, OutOfMemory or Stopped.
[[nodiscard]] Status CombineCandidates(const CandidateRequest& request,
                                       const StopTest& stop,
                                       NCDataMatrix<float>& result);

}  // namespace DOpt
