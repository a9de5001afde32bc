#pragma once

#include <memory>
#include <vector>

#include "designs/factorial/FractionalFactorial.h"
#include "foundation/stream/Export.h"

/// The two-level fraction of resolution IV: main effects are clear of two-factor interactions.
class QORVA_EXPORT FFR_IV : public FractionalFactorial {
  public:
    using FractionalFactorial::FractionalFactorial;
    ~FFR_IV() override;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] std::unique_ptr<Generators> MakeGenerators(int factors,
                                                             unsigned int runs,
                                                             int blockGens) const override;
};

/// Fractions of resolution IV of 4 and 6 to 32 two-level factors in 8 to 256 runs, for screening
/// and robustness verification with a linear model. From 7 factors on there are larger fractions to
/// choose from. Where no block generators keep the resolution, blocking takes the fraction of
/// resolution III.
class QORVA_EXPORT FFR_IVBuilder : public FractionalFactorialBuilder {
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
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::FFR_IV; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] unsigned int RunsForFactors(int factors) const override;
};
