#pragma once

#include "foundation/stream/Export.h"
#include "frame/NCDesign.h"

class SimplexPoints;

/// What the designs on a simplex share: a list of points in pseudo-component proportions, ended by
/// the overall centroid as centre point.
class QORVA_EXPORT SimplexDesign : public NCDesign {
  public:
    using NCDesign::NCDesign;
    [[nodiscard]] bool IsMixtureOnlyDesign() const override { return true; }

  protected:
    /// Appends the options' centroids to the points, stores them as the design matrix, and adds
    /// replicated runs and replicates.
    /// @throws Exception when the design would have more than cMaxFinishedRuns runs
    void SetPointsAndFinish(SimplexPoints points, const DesignOptions& options);
};
