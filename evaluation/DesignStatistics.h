#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

class ConfigurationSection;
class Factors;

namespace NCDOE {
class Power;
}

/// Figures of merit of finished designs, and the power of their tests.
class QORVA_EXPORT DesignStatistics {
  public:
    /// The five figures of one design, -99 where one cannot be formed.
    struct QORVA_EXPORT Results {
        double CondNo = -99.0;      // condition number of the model matrix
        double GEff = -99.0;        // G-efficiency, percent
        double LogDet = -99.0;      // log10 of the determinant of X'X
        double NormLogDet = -99.0;  // LogDet / terms - log10(runs)
        /// Average scaled prediction variance over the candidates; NaN for a design of bad
        /// condition.
        double IOptimality = -99.0;

        /// Writes a key for each figure.
        void Save(ConfigurationSection& section) const;
        /// Reads them; a figure whose key is missing stays. Always true.
        bool Load(const ConfigurationSection& section);
    };
    /// One list of factor indices a term; see ModelTerms.
    using Terms = std::vector<std::vector<int>>;

    /// The figures of a design for a model with a constant, main effects and the terms of two or
    /// three factors in a list. Computed in float, but for the sums and the I-value.
    /// @param design coded, or in real units with a column for each expanded variable
    /// @param candidates the runs over which predictions are judged, in real units and expanded
    ///        variables; without them GEff and IOptimality stay -99
    /// @param stop read between the steps; the figures had so far are returned
    /// @throws InvalidOperationException for a level code that no level has, and, with an empty
    ///         text, for candidates of another width than the design
    [[nodiscard]] static Results CalculateStatistics(const Factors& factors,
                                                     const Terms& terms,
                                                     const NCDataMatrix<float>& design,
                                                     const NCDataMatrix<float>* candidates,
                                                     bool coded,
                                                     int blocks,
                                                     bool& stop);

    /// A coded design [runs x factors, one more with blocks] in real units [runs x expanded factor
    /// count, blocks - 1 more], Qualitative factors and blocks as coding columns.
    /// @param pseudo coded values of Formulation factors are pseudo-component proportions
    /// @throws InvalidOperationException for a letter code that no level has
    [[nodiscard]] static NCDataMatrix<float> FromCodedMatrix(const NCDataMatrix<float>& coded,
                                                             const Factors& factors,
                                                             int blocks,
                                                             bool pseudo);
    /// The matrix that SetupPower takes: one column a factor, levels counted from 0, and a last
    /// column of ones unless all factors form a mixture.
    /// @param pseudoFlag how Formulation values become pseudo-component proportions; see
    ///        Factors::GetPseudoComponent
    /// @param dropExtra leaves out the block
    /// @param lettersCoded the design holds letter codes, else expanded variables in real units
    /// @throws InvalidOperationException for a letter code that no level has
    [[nodiscard]] static NCDataMatrix<float> DesignMatrixPower(const NCDataMatrix<float>& design,
                                                               const Factors& factors,
                                                               bool pseudoFlag,
                                                               bool dropExtra,
                                                               bool lettersCoded);

    /// Prepares the power of a design; copies of this object made earlier keep theirs.
    /// @param matrix from DesignMatrixPower
    /// @param terms without the constant, which is added here: were it in the list, the model would
    ///        hold it twice and no power could be told
    void SetupPower(NCDataMatrix<float> matrix, Terms terms, const Factors& factors);
    /// The chance to detect an effect of one term. After SetupPower only.
    /// @param modelIndex of the term in the list given to SetupPower, from 0
    /// @param effect in the unit of the noise
    /// @param noise standard deviation of one run
    /// @param probability confidence level of the test
    /// @return NaN where no power can be told
    /// @throws InvalidOperationException before SetupPower
    [[nodiscard]] double CalculatePower(int modelIndex,
                                        double effect,
                                        double noise,
                                        double probability) const;

  private:
    std::shared_ptr<const NCDOE::Power> power_;
};
