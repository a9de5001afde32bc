#pragma once

#include <concepts>
#include <memory>
#include <vector>

#include "foundation/mat/DlibMatrixForward.h"
#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

namespace boost {
// Who passes a callback includes <boost/function.hpp>.
template <typename Signature>
class function;
}  // namespace boost

namespace NCDOE {

/// Searches designs with a small average prediction variance, and tells that figure of any design.
///
/// The candidates are rows of a model matrix C [Nc x p], one column per model column. With X the
/// rows of C that a design of n runs picks, and M = C'C, the I-value is n trace(M (X'X)^-1) / Nc:
/// the prediction variance averaged over all candidates, scaled by the number of runs. Smaller is
/// better.
///
/// An object never changes; several threads may use it at the same time.
class QORVA_EXPORT IOptimal {
  public:
    /// @param candidates  the model matrix C; copied
    /// @throws std::logic_error when it is empty.
    explicit IOptimal(const NCDataMatrix<float>& candidates);

    /// Searches a design by exchange: in every step the pair of a run and a candidate that lowers
    /// the I-value most change places, as long as this gains at least 0.1 percent. Among equal
    /// pairs the candidate first in the pool wins, then the first run, whatever the number of
    /// threads. A run that has left does not come back.
    ///
    /// @param runs  number of runs; ignored when a start is given
    /// @param seed  fixes the random start design, and with it the result; a negative seed gives a
    ///        start of its own each time
    /// @param maxIterations  draws of a start design at most, and, less one, exchanges at most
    /// @param start  candidate row numbers, counted from 0, of the design to improve; borrowed, may
    ///        be null. All its rows may enter once more, so that the result may repeat runs.
    ///        Without it the start is drawn at random without repetition.
    /// @param cancelled  asked before every exchange and after every refused draw; may be empty
    /// @return candidate row numbers, counted from 0, in no order. A start design whose I-value is
    /// not
    ///         a number comes back as it is.
    /// @throws NCError (severe) "The number of runs can not be less than {1}" for fewer runs than
    ///         model columns, "No design could be found" when no regular start was drawn or the
    ///         runs outnumber the candidates; CancelException when `cancelled` answers true;
    ///         std::invalid_argument as GetIValue; std::logic_error when rounding led the search to
    ///         an ill-conditioned design.
    [[nodiscard]] std::vector<int> GetDesign(unsigned int runs,
                                             int seed,
                                             unsigned int maxIterations,
                                             const std::vector<int>* start,
                                             boost::function<bool()> cancelled) const;

    /// The I-value of the design that consists of these candidates.
    /// @param design  row numbers, counted from 0; a number may repeat
    /// @return a quiet NaN when a singular value of X'X is below 1e-17 or the largest is more than
    ///         100000 times the smallest
    /// @throws std::invalid_argument for fewer rows than model columns or a number that is no row.
    [[nodiscard]] double GetIValue(const std::vector<int>& design) const;

    /// The I-value, over the candidates, of a design whose runs need not be candidates.
    /// @param rows  the design's model matrix [n x p]
    /// @throws std::invalid_argument for fewer rows than model columns or another number of
    /// columns.
    template <class Matrix>
    requires std::same_as<Matrix, DlibMatrix> || std::same_as<Matrix, NCDataMatrix<float>>
    [[nodiscard]] double GetIValue(const Matrix& rows) const {
        // A template, so that a list of numbers in braces is always a list of candidates.
        return GetIValueOfRows(rows);
    }

  private:
    struct Data;
    struct GenDesignArgs;

    [[nodiscard]] static std::shared_ptr<const Data> Init(const NCDataMatrix<float>& candidates);
    [[nodiscard]] double GetIValueOfRows(const DlibMatrix& rows) const;
    [[nodiscard]] double GetIValueOfRows(const NCDataMatrix<float>& rows) const;
    [[nodiscard]] std::vector<const double*> RowsOf(const std::vector<int>& design) const;
    [[nodiscard]] double IValueOf(const std::vector<const double*>& rows) const;
    void DrawStart(GenDesignArgs& args,
                   int seed,
                   unsigned int attempts,
                   const boost::function<bool()>& cancelled) const;
    [[nodiscard]] bool NextIter(GenDesignArgs& args) const;
    [[nodiscard]] bool UpdateResult(GenDesignArgs& args,
                                    double change,
                                    int poolIndex,
                                    int designIndex) const;

    // Shared by copies, since nothing in it ever changes.
    std::shared_ptr<const Data> data_;
};

}  // namespace NCDOE
