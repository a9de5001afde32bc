#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

/// Reduced combinatorial designs: any number of runs of process factors at several levels, too many
/// for all combinations. At least one Multilevel or Qualitative factor has three levels or more.
class QORVA_EXPORT J2Builder : public DesignBuilder {
  public:
    J2Builder(EDesign::Type type,
              const char* shortString,
              const char* displayName,
              const char* description)
        : DesignBuilder(shortString, displayName, description), type_(type) {}

    /// @throws Exception when no design is found; CancelException on a stop;
    ///         InvalidOperationException for a model that leaves a level factor without a column
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] unsigned int GetDefaultCenterPoints(EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetDefaultReplicatedRuns() const override;
    /// Every count from that of the model's terms and one more up to 255, or 24 more where that is
    /// further.
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return type_; }
    [[nodiscard]] bool IsCenterPointsAllowed() const override { return false; }
    [[nodiscard]] bool IsREDMUPRecommended(const Factors& factors,
                                           const DesignOptions& options) const override;
    using DesignBuilder::IsValid;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    /// J2Options of ten repetitions at the run count asked for.
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;
    /// Runs whose repetition is enough to tell the error of a run.
    [[nodiscard]] virtual unsigned int GetRecommendedReplicatedRuns() const;

    /// The fewest runs for the options' model.
    /// @throws InvalidOperationException for a term of a factor that does not exist
    [[nodiscard]] unsigned int MinimumRuns(const Factors& factors,
                                           const DesignOptions& options) const;

  private:
    EDesign::Type type_;
};
