#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

/// D-optimal designs: computer-generated designs of at least 2 factors of any kind, at most 32
/// expanded ones, with constraints, mixtures, blocks and any number of runs above that of the
/// model's terms.
class QORVA_EXPORT D_OptimalBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;

    /// The model is that of the objective: linear for screening and robustness verification,
    /// quadratic for response surfaces. None stays none.
    /// @throws Exception when no design is found
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    /// Enough runs for the model and the objective's degrees of freedom, with room for centre
    /// points under the run limit.
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultProcessModel(const Factors& factors,
                                                      EObjective::Type objective,
                                                      unsigned int maxRuns) const override;
    [[nodiscard]] EModel::Type GetDefaultMixtureModel(const Factors& factors,
                                                      EObjective::Type objective,
                                                      unsigned int maxRuns) const override;
    [[nodiscard]] bool IsPMInteractionDefault(const Factors& factors,
                                              const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    /// Every multiple of the blocks from the fewest runs for the model up to the run limit.
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::DOpt; }
    [[nodiscard]] bool IsREDMUPRecommended(const Factors& factors,
                                           const DesignOptions& options) const override;
    using DesignBuilder::IsValid;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] bool IsValid(const Factors& factors,
                               const DesignOptions& options,
                               bool computerGeneratedOnly,
                               bool redmupOnly) const override;
    /// @throws InvalidOperationException always: process and mixture factors have models of their
    ///         own.
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    /// D_OptimalOptions.
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;

    /// Columns of the options' model, the slack factor of a mixture left out, and one run more.
    [[nodiscard]] unsigned int MinimumRuns(const Factors& factors,
                                           const DesignOptions& options) const;
};
