#pragma once

#include <map>
#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "foundation/utl/QvCombinatorics.h"

class Factors;

namespace NCDOE::detail {

class IOptCandidateVariable;

/// Walks a grid of candidate points once, row by row: every combination of settings of the factors.
/// Ask Next first, and read GetRow while it answers false:
///   while (!generator.Next()) { use(generator.GetRow()); }
/// A grid of mixture factors alone never reports its end; count SizeRows() rows there.
///
/// Entries of a row, one a factor: Quantitative (and Formulation factors with a free sum) evenly
/// from -1 to 1; Multilevel its settings scaled to -1 to 1, ascending; Qualitative the level number
/// counted from 0; Formulation the share of a simplex lattice, which is the digit that turns
/// fastest; Filler and Time always NaN. The other factors turn in their order, the first one
/// fastest.
class QORVA_EXPORT CandidateSetGenerator {
  public:
    /// @param steps  points on the grid of a continuous factor; negative for 7. A mixture has the
    ///        shares 0, 1/(steps - 1), ..., 1.
    /// @throws std::invalid_argument for no factors, fewer than 2 steps, a Multilevel factor with
    ///         fewer than 2 settings, a Qualitative factor with fewer than 3 levels, a mixture of
    ///         one factor, or a factor without a type; InvalidOperationException for a lattice
    ///         whose size does not fit a long.
    CandidateSetGenerator(const Factors& factors, long steps);
    ~CandidateSetGenerator();
    CandidateSetGenerator(CandidateSetGenerator&&) noexcept;
    CandidateSetGenerator& operator=(CandidateSetGenerator&&) noexcept;

    /// Moves to the next row. Returns true when the grid has wrapped to its first row.
    bool Next();
    /// The present row. Without a mixture it holds the first row before the first call of Next,
    /// with one its shares are NaN until then.
    [[nodiscard]] const std::vector<double>& GetRow() const { return mRow; }
    /// Number of rows of the grid.
    [[nodiscard]] long SizeRows() const { return mRows; }
    /// Number of factors.
    [[nodiscard]] long SizeColumns() const { return mColumns; }
    [[nodiscard]] bool HasMixture() const { return mMixture != nullptr; }

  private:
    void AddFactor(const Factors& factors, int factor, long steps);
    void AddVariable(int factor, double first, std::shared_ptr<IOptCandidateVariable> variable);
    bool NextMixture();

    long mRows = 1;
    long mColumns = 0;
    std::vector<int> mMixtureFactors;
    std::map<int, std::shared_ptr<IOptCandidateVariable>> mVariables;
    std::vector<double> mRow;
    std::unique_ptr<QvCombinatorics::NIntoK> mMixture;
    long mMixtureTotal = 0;
    bool mFirstRow = true;
};

}  // namespace NCDOE::detail
