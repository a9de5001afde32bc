#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// Runs on microtiter plates: every well is the combination of one run of the horizontal design and
/// one of the vertical design. Runs walk down the first column of a plate, then down the next one,
/// and from plate to plate; plate factors are constant on a plate and form a full factorial over
/// the plates. Factors in neither group stay without a value (-99) on a single plate, and so does
/// the plate column, which holds the plate's letter code, 65 for the first, behind the factors.
///
/// Where a group of formulation factors has a mixture design, its columns hold pseudo-component
/// proportions as that design does: read them by Factors::FromCoded with `pseudo` through the
/// group's REDMUPFactors, since the region's orientation is that of the blend alone. All other
/// columns are coded.
class QORVA_EXPORT REDMUP : public NCDesign {
  public:
    /// Builds the whole design.
    /// @throws Exception when the options hold no REDMUPOptions; formulation factors stand in both
    ///         groups; a group holds a factor twice or one that does not exist; a group's design is
    ///         not set, cannot be built, or has other runs than the plate's side and the run order
    ///         ask for; a plate factor has more than two levels; the plates are not as many as the
    ///         combinations of the plate factors
    REDMUP(const Factors& factors, const DesignOptions& options);
    /// Loads a saved design.
    REDMUP(const Factors& factors, const ConfigurationSection& section);
    REDMUP(const REDMUP&) = default;

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    /// Writes the child section "Design" with the matrix.
    void Save(ConfigurationSection* section) const override;
    /// Reads the same; the matrix is empty where none was saved.
    bool Load(const ConfigurationSection* section) override;

  private:
    void GenerateDesign(const Factors& factors, const DesignOptions& options);
};

/// Plate designs, asked for by name. Runs and models are those of the two small designs, which
/// stand in REDMUPOptions.
class QORVA_EXPORT REDMUPBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// Deliberate: without asking IsValid, so that the caller is told what is wrong.
    /// @throws Exception as REDMUP
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    /// The wells of one plate.
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::REDMUP; }
    /// Centre points belong to the small designs.
    [[nodiscard]] bool IsCenterPointsAllowed() const override { return false; }
    /// Some design is valid for each group under its objective and model and the plate's size.
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;
};
