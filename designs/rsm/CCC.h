#pragma once

#include <memory>

#include "designs/rsm/CCF.h"
#include "foundation/stream/Export.h"

/// The circumscribed central composite design: star runs beyond the faces, so far out that the
/// design is rotatable, or that its blocks are orthogonal to the model (Box and Hunter, 1957).
class QORVA_EXPORT CCC : public CCF {
  public:
    using CCF::CCF;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Circumscribed designs of 2 to 21 quantitative factors. Blocks: star runs always form the last
/// one; the factorial runs form one block, or 2, 4 or 8 where there are block generators that keep
/// resolution V.
class QORVA_EXPORT CCCBuilder : public CCFBuilder {
  public:
    using CCFBuilder::CCFBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    /// Without blocks the rotatable distance, the fourth root of the factorial runs, to three
    /// decimals. With blocks the distance at which blocks are orthogonal to the quadratic model:
    /// exactly so where the centre points divide evenly among the blocks, or all factorial blocks
    /// have one more than the star block. -99 outside 2 to 21 factors.
    [[nodiscard]] float GetDefaultStarDistance(unsigned int factorCount,
                                               const DesignOptions& options) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::CCC; }
    [[nodiscard]] bool IsREDMUPRecommended(const Factors& factors,
                                           const DesignOptions& options) const override;
};
