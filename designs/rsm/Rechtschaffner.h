#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// Saturated fractions (Rechtschaffner, 1967): as many runs as the model has terms. All low, each
/// factor alone low, each two factors alone high; for response surfaces also each factor alone high
/// with the others in the middle.
class QORVA_EXPORT Rechtschaffner : public NCDesign {
  public:
    /// Builds the whole design, for response surfaces where the options' objective is one; the
    /// options must be valid for the factors.
    Rechtschaffner(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Saturated designs of 3 to 10 factors: one builder for the quadratic model of response surfaces,
/// one for the interaction model of screening. They share a design type and differ in their design
/// data.
class QORVA_EXPORT RechtschaffnerBuilder : public DesignBuilder {
  public:
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// @param objectiveType Optimization or Screening
    RechtschaffnerBuilder(EObjective::Type objectiveType,
                          const char* shortString,
                          const char* displayName,
                          const char* description)
        : DesignBuilder(shortString, displayName, description), objectiveType_(objectiveType) {}

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    /// The rule reaches 32 factors, further than the designs.
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    /// The name of the objective.
    /// @throws std::runtime_error for any other objective than the two
    [[nodiscard]] std::string GetDesignData() const override;
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::Rechtschaffner; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;

  private:
    [[nodiscard]] bool IsRightPurpose(const DesignOptions& options) const;

    EObjective::Type objectiveType_;
};
