#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/CEType.h"

struct TransformStruct;

/// The abstract view of an experiment's factors. The host implements it; the engine never owns
/// factor data. Factor indices count from 0; their order is the column order of every design. A
/// filler is reported by `HasFiller` and is not among the counted factors.
class QORVA_EXPORT Factors {
  public:
    /// The mark of no value.
    static constexpr float cNoValue = -99.0F;
    /// Letter code of the first level of a level factor; the second is 66.
    static constexpr float cFirstLevelCode = 65.0F;

    Factors() = default;
    Factors(const Factors&) = default;
    Factors& operator=(const Factors&) = default;
    virtual ~Factors();

    [[nodiscard]] virtual unsigned int GetDesignFactorCount() const = 0;
    [[nodiscard]] virtual CEType::EType GetFactorType(int factor) const = 0;
    /// Multilevel: the level values in level order. Quantitative and Formulation: exactly two
    /// elements, low then high. Qualitative: no numeric meaning.
    [[nodiscard]] virtual std::vector<float> GetFactorSettings(int factor) const = 0;
    /// Number of levels of a Multilevel or Qualitative factor.
    [[nodiscard]] virtual unsigned int GetLevelCount(int factor) const = 0;
    /// Tightens a formulation factor's range.
    virtual void SetFactorRange(int factor, float low, float high) = 0;
    /// Transform between the real and the working scale, null when the factor has none. Borrowed.
    [[nodiscard]] virtual const TransformStruct* GetFactorTransform(int factor) const = 0;
    /// A filler stands among the mixture factors.
    [[nodiscard]] virtual bool HasFiller() const = 0;
    /// The formulation factors other than the filler do not add up to 1.
    [[nodiscard]] virtual bool IsFormulationSumFree() const = 0;
    /// Part of the whole not available to the design's formulation factors; their settings must add
    /// up to 1 minus this value.
    [[nodiscard]] virtual float GetConstantMixtureShare() const = 0;

    /// Some factor is a formulation factor, and there is no filler.
    [[nodiscard]] bool IsMixture() const;
    /// All factors are formulation factors, there is at least one, and there is no filler.
    [[nodiscard]] bool IsMixtureOnly() const;
    /// No factor counts as a mixture factor; true for no factors.
    [[nodiscard]] bool IsProcessOnly() const;
    [[nodiscard]] bool IsProcessAndMixture() const;
    /// Every factor can stand at exactly two (three) levels. A Quantitative factor passes in both
    /// cases; a Formulation factor only where there is a filler; no factors pass.
    [[nodiscard]] bool IsAll2Levels() const;
    [[nodiscard]] bool IsAll3Levels() const;
    /// No mixture and no level factor.
    [[nodiscard]] bool IsAllQuantitative() const;

    [[nodiscard]] unsigned int GetQualitativeCount() const;
    [[nodiscard]] unsigned int GetMultilevelCount() const;
    /// Formulation factors that have to add up; 0 where a filler frees their sum.
    [[nodiscard]] unsigned int GetMixtureFactorCount() const;
    [[nodiscard]] unsigned int GetProcessFactorCount() const;
    /// Factor count in model columns: a Qualitative factor of L > 1 levels counts L - 1.
    [[nodiscard]] unsigned int GetDesignFactorCountExpanded() const;
    [[nodiscard]] unsigned int GetProcessFactorCountExpanded() const;
    /// Model columns of one factor.
    [[nodiscard]] unsigned int GetExpandedVariableCount(int factor) const;

    /// Real value of a coded value: -1 to 1 between low and high, or the letter code of a
    /// Multilevel factor's level. -99 where there is no number: a Qualitative factor, a code
    /// outside the levels, settings that are not a pair, a limit that is missing or has no image
    /// under the transform. `pseudo`: the coded value of a Formulation factor is a pseudo-component
    /// proportion.
    /// @throws Exception from the mixture ranges when `pseudo` is set and they are infeasible.
    [[nodiscard]] float FromCoded(int factor, float coded, bool pseudo) const;
    /// Pseudo-component proportion of a Formulation factor's real value, by the orientation of the
    /// region (`excluded` as in MixtureUtilities::IsSimplexLower); another factor's value
    /// unchanged.
    /// @throws Exception as FromCoded.
    [[nodiscard]] float GetPseudoComponent(int factor, float value, bool excluded) const;

    /// How a factor is coded in model columns: [levels x max(levels - 1, 1)] for a Qualitative
    /// factor, sum to zero with the first level as reference; a single 1 for any other type.
    [[nodiscard]] static std::unique_ptr<NCDataMatrix<float>> MakeCodingMatrix(CEType::EType type,
                                                                               int levels);

  protected:
    /// All Formulation factors, with or without a filler.
    [[nodiscard]] unsigned int GetNumMixtureFactors() const;

  private:
    [[nodiscard]] int Count() const { return static_cast<int>(GetDesignFactorCount()); }
    [[nodiscard]] unsigned int CountOfType(CEType::EType type) const;
    [[nodiscard]] bool HasOnlyLevelCount(unsigned int levels) const;
    [[nodiscard]] float LevelFromCoded(int factor, float coded) const;
};
