#pragma once

#include <memory>
#include <vector>

#include "designs/factorial/FractionalFactorial.h"
#include "foundation/stream/Export.h"

/// The two-level fraction of resolution V: main effects and two-factor interactions are clear of
/// each other.
class QORVA_EXPORT FFR_V : public FractionalFactorial {
  public:
    using FractionalFactorial::FractionalFactorial;
    ~FFR_V() override;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] std::unique_ptr<Generators> MakeGenerators(int factors,
                                                             unsigned int runs,
                                                             int blockGens) const override;
};

/// Fractions of resolution V of 5 to 29 two-level factors in 16 to 1024 runs, for screening and
/// robustness verification with a linear or interaction model. Where no block generators keep the
/// resolution, blocking takes a fraction of resolution IV or III.
class QORVA_EXPORT FFR_VBuilder : public FractionalFactorialBuilder {
  public:
    using FractionalFactorialBuilder::FractionalFactorialBuilder;
    using FractionalFactorialBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::FFR_V; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] unsigned int RunsForFactors(int factors) const override;
};
