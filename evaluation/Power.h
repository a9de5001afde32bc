#pragma once

#include <set>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

namespace NCDOE {

/// One factor of a model column.
struct ExpandedFactor {
    int Factor = 0;  ///< column of the design matrix, counted from 0
    int Level = -1;  ///< -1 for a quantitative factor, or else the level that the column stands for

    friend bool operator==(const ExpandedFactor&, const ExpandedFactor&) = default;
};

namespace Detail {

/// A qualitative column of the design matrix.
struct QualitativeVar {
    int Column = 0;
    int Levels = 0;

    friend bool operator<(const QualitativeVar& a, const QualitativeVar& b) {
        return a.Column < b.Column;
    }
};

/// A model column: the term it belongs to, and its factors.
using ExpandedTerm = std::pair<int, std::vector<ExpandedFactor>>;

/// One entry per model column, term by term. A qualitative factor of L levels turns every column of
/// its term into L - 1.
[[nodiscard]] QORVA_EXPORT std::vector<ExpandedTerm> ExpandTerms(
    const std::vector<std::vector<int>>& terms, const std::set<QualitativeVar>& qualitative);

}  // namespace Detail

/// The probability that a design detects an effect of a given size of one model term, by the F test
/// of the term against the residual of the full model. The statistic is non-central F (Montgomery,
/// Design and Analysis of Experiments; Cohen, Statistical Power Analysis, 1988).
///
/// An object never changes; several threads may use it at the same time.
class QORVA_EXPORT Power {
  public:
    /// Bit values, so that types can be grouped by masks.
    enum TermType {
        Unsupported = 0,    ///< no power can be given
        Quantitative = 1,   ///< a main effect, or another product of quantitative factors
        Square = 2,         ///< a factor times itself
        MixtureLinear = 4,  ///< one factor of a mixture
        MixtureBinary = 8,  ///< two factors of one mixture
        MixtureCubic = 16,  ///< three factors of one mixture, not all equal
        MixtureCube = 32,   ///< one mixture factor three times
        Qualitative = 64    ///< one level of one qualitative factor
    };

    /// Types whose effect is given in units of the noise: Quantitative and Square.
    static const int siDivideWithVariance;
    /// The four mixture types.
    static const int siMixtureFactor;

    /// @param matrix  design matrix [runs x factors] with quantitative columns coded -1 to 1,
    /// shares
    ///        in mixture columns, and level numbers counted from 0 in qualitative columns
    /// @param terms  the model: lists of columns counted from 0; {} is the constant. A design that
    /// is
    ///        not a mixture needs it, once; with two of it every power is NaN.
    /// @param mixtures  the columns of each mixture, if any
    /// @param qualitative  the qualitative columns, counted from 0
    /// @throws std::invalid_argument for fewer than 4 runs or 2 columns, for qualitative columns
    /// that
    ///         do not hold 0, 1, ..., N - 1 with N of at least 2, and for a column outside the
    ///         matrix.
    Power(const NCDataMatrix<float>& matrix,
          const std::vector<std::vector<int>>& terms,
          std::vector<std::set<int>> mixtures,
          const std::set<int>& qualitative);

    /// The power of one term.
    /// @param modelIndex  the term's place in the list, counted from 0
    /// @param effect  for Quantitative and Square terms in units of `noise`: from the low to the
    /// high
    ///        setting, and from the centre to the edge; for the others in units of the response
    /// @param noise  standard deviation of the residual
    /// @param probability  1 minus the level of significance, such as 0.95
    /// @return a quiet NaN for a term of an unsupported type, when the other terms are not
    /// estimable,
    ///         and for a power that is not above 1 - probability
    /// @throws std::invalid_argument for an unknown term; std::domain_error without residual
    /// degrees
    ///         of freedom or for a probability outside 0 to 1; NCError when a mixture term belongs
    ///         to no mixture.
    [[nodiscard]] double GetPower(int modelIndex,
                                  double effect,
                                  double noise,
                                  double probability) const;

  private:
    [[nodiscard]] TermType GetTermType(const std::vector<ExpandedFactor>& factors) const;
    [[nodiscard]] TermType GetMixtureType(const std::vector<ExpandedFactor>& factors,
                                          const std::set<int>& mixture) const;
    [[nodiscard]] const std::set<int>* MixtureOf(int factor) const;
    /// Every factor of b occurs in a.
    [[nodiscard]] static bool Contains(const std::vector<ExpandedFactor>& a,
                                       const std::vector<ExpandedFactor>& b);
    [[nodiscard]] std::vector<int> ColumnsOf(int modelIndex) const;
    [[nodiscard]] std::vector<int> OtherColumns(const std::vector<int>& tested,
                                                TermType type) const;
    [[nodiscard]] NCDataMatrix<double> AdjustForMixture(int tested) const;
    [[nodiscard]] double CalcPower(double nonCentrality,
                                   std::size_t tested,
                                   double probability) const;

    NCDataMatrix<double> mX;  // the model matrix
    std::vector<Detail::ExpandedTerm> mTerms;
    std::vector<std::set<int>> mMixtures;
};

}  // namespace NCDOE
