#pragma once

#include <memory>
#include <vector>

#include "designs/factorial/PB.h"

/// Super-saturated designs: the half of a Plackett-Burman design in which a branching column, which
/// is then left out, is -1. Lin (1993), "A new class of supersaturated designs", Technometrics 35.
class QORVA_EXPORT PBSuperSaturated : public PB {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    PBSuperSaturated(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

    /// The other half of the same design, coded -1 and 1 [options.runs x factors]: both together
    /// are an orthogonal design. The own matrix stays as it is.
    [[nodiscard]] virtual NCDataMatrix<float> MakeComplementaryHalf(
        const Factors& factors, const DesignOptions& options) const;
};

/// Resolution II designs with fewer runs than factors, 4 to 18 by default: screening and robustness
/// verification with a linear model where very few factors are active.
class QORVA_EXPORT PBSuperSaturatedBuilder : public PBBuilder {
  public:
    using PBBuilder::GetDefaultRuns;
    using PBBuilder::IsValid;
    using PBBuilder::PBBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::PB_SS; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;

  protected:
    [[nodiscard]] unsigned int GetRunsForFactors(int factors) const override;
};
