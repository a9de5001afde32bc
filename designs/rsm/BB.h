#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// The Box-Behnken design (Box and Behnken, 1960): two to five factors at a time run through their
/// sign combinations while the others stay at 0.
class QORVA_EXPORT BB : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    BB(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Box-Behnken designs of 3 to 7 and 9 to 12 quantitative factors at three levels, for the
/// quadratic model. Orthogonal blocks: 3 for 4 factors; 2 for 5, 6, 7, 10 and 12; 5 or 10 for 9.
class QORVA_EXPORT BBBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 1; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::BB; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
};
