#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// The reduced central composite design of four factors with star runs on the faces: a
/// three-quarter replicate of the factorial (John, 1961), star runs and centre points.
class QORVA_EXPORT RCCF : public NCDesign {
  public:
    using NCDesign::NCDesign;

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    /// Builds the whole design. It has no blocks, whatever the options say.
    void GenerateReduced(const Factors& factors, const DesignOptions& options, float starDistance);
};

/// Reduced designs of exactly four quantitative factors in 20 runs and at least one centre point,
/// for the quadratic model of an optimization or a system characterization.
class QORVA_EXPORT RCCFBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// The star distance is 1, whatever the options say.
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] float GetDefaultStarDistance(unsigned int factorCount,
                                               const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 1; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::RCCF; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
};
