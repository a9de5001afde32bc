#pragma once

#include <memory>

#include "designs/rsm/CCF.h"
#include "foundation/stream/Export.h"

/// The orthogonal central composite design: star runs at the distance that makes the square terms
/// uncorrelated with one another (Box and Wilson, 1951).
class QORVA_EXPORT CCO : public CCF {
  public:
    using CCF::CCF;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Orthogonal central composite designs of 2 to 21 quantitative factors.
class QORVA_EXPORT CCOBuilder : public CCFBuilder {
  public:
    using CCFBuilder::CCFBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    /// The orthogonal distance for the options' centre points; -99 outside 2 to 21 factors.
    [[nodiscard]] float GetDefaultStarDistance(unsigned int factorCount,
                                               const DesignOptions& options) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::CCO; }
    [[nodiscard]] bool IsREDMUPRecommended(const Factors& factors,
                                           const DesignOptions& options) const override;
};
