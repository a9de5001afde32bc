#include "designs/mixture/SimplexDesign.h"

#include "designs/mixture/SimplexPoints.h"
#include "frame/DesignOptions.h"

void SimplexDesign::SetPointsAndFinish(SimplexPoints points, const DesignOptions& options) {
    RequireFinishedSize(points.GetMatrix().SizeRows(), options);
    points.AddCentroids(static_cast<int>(options.GetCenterPoints()));
    SetDesignMatrix(points.GetMatrix());
    AddReplicatedRuns(GetFactors(), options);
    // No AddCenterPoints: the centroids are the centre points.
    AddReplicates(options.GetReplicates());
}
