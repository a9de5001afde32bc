#pragma once

#include <memory>
#include <vector>

#include "designs/factorial/FractionalFactorial.h"
#include "foundation/stream/Export.h"

/// The two-level fraction of resolution III: main effects are clear of each other.
class QORVA_EXPORT FFR_III : public FractionalFactorial {
  public:
    using FractionalFactorial::FractionalFactorial;
    ~FFR_III() override;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] std::unique_ptr<Generators> MakeGenerators(int factors,
                                                             unsigned int runs,
                                                             int blockGens) const override;
};

/// Fractions of resolution III of 3, 5 to 7, 9 to 15 and 17 to 63 two-level factors in 4 to 64
/// runs, for screening and robustness verification with a linear model. The generator algebra
/// serves 48 factors and three block generators: from 52 factors on, `Build` ends in the generator
/// error.
class QORVA_EXPORT FFR_IIIBuilder : public FractionalFactorialBuilder {
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
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::FFR_III; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] unsigned int RunsForFactors(int factors) const override;
};
