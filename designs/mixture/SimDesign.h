#pragma once

#include <memory>
#include <vector>

#include "designs/mixture/SimplexDesign.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

// The simplex centroid designs (Scheffé, 1963, with interior points as Snee and Marquardt, 1976),
// in pseudo-component proportions. All have the vertices, one interior point for each factor and
// the overall centroid as centre point; they differ in the points between.

/// Modified simplex centroid: the edge centres.
class QORVA_EXPORT SimDesignM : public SimplexDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    SimDesignM(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Modified simplex centroid with faces: the edge and face centres. With three factors each face is
/// an edge, and its centre comes twice.
class QORVA_EXPORT SimDesignF : public SimplexDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    SimDesignF(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Special cubic simplex centroid: the thirds of the edges and the blends of three.
class QORVA_EXPORT SimDesignSC : public SimplexDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    SimDesignSC(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Full cubic simplex centroid: the edge centres, the thirds of the edges and the blends of three.
class QORVA_EXPORT SimDesignC : public SimplexDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    SimDesignC(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// Simplex centroid designs of 3 to 12 formulation factors (special cubic: 10, full cubic: 9) whose
/// region is a regular simplex, for response surfaces. The type decides the model: quadratic for
/// SimM and SimF, special cubic for SimSC, cubic for SimC.
class QORVA_EXPORT SimBuilder : public DesignBuilder {
  public:
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// @param type SimM, SimF, SimSC or SimC
    SimBuilder(EDesign::Type type,
               const char* shortString,
               const char* displayName,
               const char* description)
        : DesignBuilder(shortString, displayName, description), designType_(type) {}

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 1; }
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
