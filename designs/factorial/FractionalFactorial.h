#pragma once

#include <memory>
#include <span>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

class Generators;

/// A two-level fraction made by generator words, alone or as the core of a central composite
/// design.
class QORVA_EXPORT FractionalFactorial : public NCDesign {
  public:
    using NCDesign::NCDesign;

    /// Default generator words of the family: those of `factors` design columns, then those of
    /// `blockGens` block generators. Rows that the family's tables lack stay without a word.
    /// @param runs runs of the fraction, without star runs
    [[nodiscard]] virtual std::unique_ptr<Generators> MakeGenerators(int factors,
                                                                     unsigned int runs,
                                                                     int blockGens) const = 0;

    /// Builds the whole design: the fraction by the options' generators, or by default ones where
    /// the options have none or none that fit; `starRuns` star runs at +-`starDistance` on the
    /// axes; replicated runs, centre points and replicates. Default generators are not written
    /// back.
    /// @param starRuns 0, or two for each factor; the options' runs count them. With blocks they
    ///        form the last block, which takes no generator.
    /// @throws Exception "Generator error: {1}" when no generators fit the runs and blocks
    void GenerateDesign(const Factors& factors,
                        const DesignOptions& options,
                        int starRuns,
                        float starDistance);

    /// Makes the matrix anew from the generators that the options hold, which are taken as they
    /// are: without a check, without defaults, and without star runs or replicated runs. All runs
    /// of the options are runs of the fraction.
    /// @throws InvalidOperationException when the options hold no generators, Exception "Generator
    ///         error: {1}" when these have more base factors than the runs can hold,
    ///         NCInternalError when a word names a base factor that no column is; the old matrix
    ///         stays.
    void UpdateDesign(DesignOptions& options, const Factors& factors);

  protected:
    /// A word by row number (design columns from 1, block generators from -1 down), factors, runs
    /// and block generators.
    using Selector = unsigned short (*)(int index, unsigned factors, int runs, int blockGens);
    [[nodiscard]] static std::unique_ptr<Generators> SelectGenerators(Selector select,
                                                                      int factors,
                                                                      unsigned int runs,
                                                                      int blockGens);
};

/// What the builders of fractions, and of designs that have a fraction at their core, share: the
/// runs follow from the number of factors.
class QORVA_EXPORT FractionalFactorialBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    /// The family's runs for that many factors; 0 where it has no design.
    [[nodiscard]] virtual unsigned int RunsForFactors(int factors) const = 0;
    /// The conditions that all fractions share: process factors only, no constraints, and a run
    /// count within the limit.
    [[nodiscard]] virtual bool IsFractionalValid(const Factors& factors,
                                                 const DesignOptions& options) const;

  protected:
    /// A run count and the factors it serves.
    struct RunsOfFactors {
        int firstFactor;
        int lastFactor;
        unsigned int runs;
    };
    /// The runs of the row that holds the factor count; 0 without one.
    [[nodiscard]] static unsigned int LookUpRuns(std::span<const RunsOfFactors> table, int factors);
};
