#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// A design in one factor: a quantitative factor at evenly spaced settings from -1 to 1, a level
/// factor at each of its levels.
class QORVA_EXPORT Levels : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    Levels(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Single-factor designs, for screening and robustness verification with a linear model and for
/// optimization and system characterization with a quadratic one; 2 or more runs of a quantitative
/// factor, 5 by default, or one run a level.
class QORVA_EXPORT LevelsBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::Levels; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
};
