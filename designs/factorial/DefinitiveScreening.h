#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// A three-level fold-over design in which every run pair has one factor at its middle, so that
/// main effects are clear of all second-order effects. Jones and Nachtsheim (2011), "A class of
/// three-level designs for definitive screening in the presence of second-order effects", Journal
/// of Quality Technology 43.
class QORVA_EXPORT DefinitiveScreeningDesign : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors. Of a matrix with more
    /// columns than factors the last columns are left out. Without a matrix for the options' runs
    /// the design stays empty.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    DefinitiveScreeningDesign(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Definitive screening of 3 to 30 factors at three levels, none of them qualitative, with a
/// quadratic model, under screening and robustness verification; two runs a factor, or up to 6 runs
/// more, and at least 1 centre point.
class QORVA_EXPORT DefinitiveScreeningBuilder : public DesignBuilder {
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
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::DefinitiveScreening; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    /// Quadratic under every objective.
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
};
