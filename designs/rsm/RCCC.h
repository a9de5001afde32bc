#pragma once

#include <memory>

#include "designs/rsm/RCCF.h"
#include "foundation/stream/Export.h"

/// The reduced central composite design of four factors with star runs beyond the faces.
class QORVA_EXPORT RCCC : public RCCF {
  public:
    using RCCF::RCCF;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// As RCCFBuilder, at the options' star distance.
class QORVA_EXPORT RCCCBuilder : public RCCFBuilder {
  public:
    using RCCFBuilder::RCCFBuilder;

    /// The star distance is that of the options, or 1 where they leave it unset.
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    /// The fourth root of the twelve factorial runs, to three decimals; -99 unless there are four
    /// factors.
    [[nodiscard]] float GetDefaultStarDistance(unsigned int factorCount,
                                               const DesignOptions& options) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::RCCC; }
};
