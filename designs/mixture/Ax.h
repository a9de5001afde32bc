#pragma once

#include <memory>
#include <vector>

#include "designs/mixture/SimplexDesign.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

/// An axial design on a simplex (Snee and Marquardt, 1976), in pseudo-component proportions: the
/// vertices, points on the axes between vertices and centroid, and the overall centroid as centre
/// point.
class QORVA_EXPORT Ax : public SimplexDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @param type AxN: all interior points; AxE: these and the face centres; AxR: as many interior
    ///        points as the options' runs leave room for
    Ax(EDesign::Type type, const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Axial designs of 3 to 20 formulation factors whose region is a regular simplex, for screening
/// and robustness verification with a linear model.
class QORVA_EXPORT AxBuilder : public DesignBuilder {
  public:
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// @param type AxN, AxE or AxR
    AxBuilder(EDesign::Type type,
              const char* shortString,
              const char* displayName,
              const char* description)
        : DesignBuilder(shortString, displayName, description), designType_(type) {}

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return designType_; }
    [[nodiscard]] bool IsMixtureOnlyDesign() const override { return true; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;

  private:
    EDesign::Type designType_;
};
