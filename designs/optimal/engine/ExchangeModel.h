#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/SquareMatrix.h"
#include "designs/optimal/engine/TileKernels.h"
#include "foundation/mat/NCDataMatrix.h"

namespace DOpt {

/// The candidates of a search in model columns, and the sums over all of them. Potential columns
/// stand last; they carry less weight (DuMouchel and Jones, 1994). Candidates and columns count
/// from 0. A candidate with a missing (-99) or non-finite cell takes part in nothing.
class ExchangeModel {
  public:
    /// Weight of a potential column in the information matrix, on top of its sum of squares.
    static constexpr double cPotentialScale = 1.0;
    /// Variance of a candidate that takes part in nothing.
    static constexpr double cNoVariance = -99.0;

    /// @param rows [candidates x columns]
    /// @param potential how many of the last columns are potential ones
    ExchangeModel(NCDataMatrix<float> rows, int potential);

    /// Replaces the potential columns by their residuals from a regression on the primary columns,
    /// each divided by its range. A second call does nothing, and so does the first without
    /// potential columns. Deliberate: when a residual has no range at all the columns stay as they
    /// were, and that is no failure.
    /// Success, Singular when the primary columns are dependent, Cancelled, Stopped.
    Status ResidualisePotential(const StopTest& stop, bool* cancel);

    [[nodiscard]] int Candidates() const { return rows_.SizeRows(); }
    [[nodiscard]] int Columns() const { return rows_.SizeColumns(); }
    [[nodiscard]] int PrimaryColumns() const { return Columns() - potential_; }
    [[nodiscard]] int PotentialColumns() const { return potential_; }
    [[nodiscard]] bool IsUsable(int candidate) const {
        return usable_[static_cast<std::size_t>(candidate)] != 0;
    }
    [[nodiscard]] const NCDataMatrix<float>& Rows() const { return rows_; }
    [[nodiscard]] std::span<const float> Row(int candidate) const {
        return rows_.RowSpan(candidate + 1);
    }
    /// A candidate in double, padded with zeros to whole lanes.
    void WidenRow(int candidate, std::vector<double>& x) const;
    /// The first `columns` columns of all candidates.
    [[nodiscard]] TileView Tiles(int columns) const;
    [[nodiscard]] TileView Tiles() const { return Tiles(Columns()); }
    /// Candidates up to whole tiles: the length of a vector over the candidates.
    [[nodiscard]] std::size_t PaddedCandidates() const {
        return (usable_.size() + TileView::cWidth - 1) / TileView::cWidth * TileView::cWidth;
    }
    /// Prediction variances x' M x over the first columns, as many as M has; cNoVariance for
    /// candidates that take part in nothing and for the padding.
    void ComputeVariances(const SquareMatrix& inverse, std::vector<double>& variances) const;
    /// Sum of x x' over the listed candidates, each product in float.
    [[nodiscard]] SquareMatrix CrossProducts(std::span<const int> candidates) const;

  private:
    void FillTiles();
    [[nodiscard]] NCDataMatrix<float> UsableRows() const;

    NCDataMatrix<float> rows_;
    int potential_;
    bool residualised_ = false;
    std::vector<char> usable_;
    std::vector<float> tiles_;
};

}  // namespace DOpt
