#pragma once

#include <memory>
#include <vector>

#include "designs/factorial/FractionalFactorial.h"
#include "foundation/stream/Export.h"

/// The face-centred central composite design (Box and Wilson, 1951): a two-level factorial or a
/// fraction of it of resolution V, star runs in pairs on the axes, and centre points.
class QORVA_EXPORT CCF : public FractionalFactorial {
  public:
    using FractionalFactorial::FractionalFactorial;

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] std::unique_ptr<Generators> MakeGenerators(int factors,
                                                             unsigned int runs,
                                                             int blockGens) const override;
    /// Builds the whole design at the options' star distance, or at 1 where they leave it unset.
    /// @throws Exception as GenerateDesign
    void GenerateComposite(const Factors& factors, const DesignOptions& options);
};

/// Face-centred designs of 2 to 21 quantitative factors in 8 to 554 runs and at least one centre
/// point, for the quadratic model of an optimization or a system characterization.
class QORVA_EXPORT CCFBuilder : public FractionalFactorialBuilder {
  public:
    using FractionalFactorialBuilder::FractionalFactorialBuilder;
    using FractionalFactorialBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    /// In coded units: how far star runs stand from the centre.
    [[nodiscard]] float GetDefaultStarDistance(unsigned int factorCount,
                                               const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 1; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::CCF; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    /// Factorial and star runs, without centre points.
    [[nodiscard]] unsigned int RunsForFactors(int factors) const override;

  protected:
    /// Plates take designs with distant star runs only where the run limit leaves room for them.
    [[nodiscard]] static bool HasRoomForDistantStars(const Factors& factors,
                                                     const DesignOptions& options);
};
