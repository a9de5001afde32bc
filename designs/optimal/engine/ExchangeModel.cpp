#include "designs/optimal/engine/ExchangeModel.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <memory>
#include <numeric>
#include <utility>

#include "foundation/mat/NCIntegralVector.h"
#include "foundation/mat/NCSVD.h"

namespace DOpt {

namespace {

bool IsComplete(std::span<const float> row) {
    return std::ranges::all_of(row, [](float cell) {
        return std::isfinite(cell) && cell != NCDataMatrix<float>::cMissing;
    });
}

NCDataMatrix<float> ColumnRange(const NCDataMatrix<float>& matrix, int first, int count) {
    NCIntegralVector<int, -99> columns(count);
    std::iota(columns.begin(), columns.end(), first);
    NCDataMatrix<float> part = matrix;
    part.ReduceColumns(columns);
    return part;
}

// Divides every column by its range; false, with nothing promised, for a column without one.
bool DivideByRanges(NCDataMatrix<float>& matrix) {
    std::vector<float> ranges;
    for (int column = 1; column <= matrix.SizeColumns(); ++column) {
        float min = 0;
        float max = 0;
        matrix.GetColumnMinMax(column, min, max);
        ranges.push_back(max - min);
        if (ranges.back() == 0) {
            return false;
        }
    }
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const std::span<float> cells = matrix.RowSpan(row);
        for (std::size_t j = 0; j < cells.size(); ++j) {
            cells[j] /= ranges[j];
        }
    }
    return true;
}

void SubtractFrom(NCDataMatrix<float>& matrix, const NCDataMatrix<float>& other) {
    std::ranges::transform(
        matrix.Cells(), other.Cells(), matrix.Cells().begin(), [](float a, float b) {
            return a - b;
        });
}

}  // namespace

ExchangeModel::ExchangeModel(NCDataMatrix<float> rows, int potential)
    : rows_(std::move(rows)), potential_(potential) {
    assert(potential >= 0 && potential < std::max(rows_.SizeColumns(), 1));
    for (int row = 1; row <= rows_.SizeRows(); ++row) {
        usable_.push_back(IsComplete(std::as_const(rows_).RowSpan(row)) ? 1 : 0);
    }
    FillTiles();
}

void ExchangeModel::FillTiles() {
    const auto columns = static_cast<std::size_t>(Columns());
    // Rows that take part in nothing are zeros here: no update ever moves their variance.
    tiles_.assign(PaddedCandidates() * columns, 0.0F);
    for (std::size_t k = 0; k < usable_.size(); ++k) {
        if (usable_[k] == 0) {
            continue;
        }
        const std::span<const float> row = Row(static_cast<int>(k));
        float* const tile = tiles_.data() + k / TileView::cWidth * TileView::cWidth * columns;
        for (std::size_t j = 0; j < columns; ++j) {
            tile[j * TileView::cWidth + k % TileView::cWidth] = row[j];
        }
    }
}

NCDataMatrix<float> ExchangeModel::UsableRows() const {
    const auto count = static_cast<int>(std::ranges::count(usable_, 1));
    NCDataMatrix<float> rows(count, Columns());
    int next = 1;
    for (int k = 0; k < Candidates(); ++k) {
        if (IsUsable(k)) {
            std::ranges::copy(Row(k), rows.RowSpan(next++).begin());
        }
    }
    return rows;
}

Status ExchangeModel::ResidualisePotential(const StopTest& stop, bool* cancel) {
    if (potential_ == 0 || residualised_) {
        return Success;
    }
    if (MustStop(stop, 0)) {
        return Stopped;
    }
    const NCDataMatrix<float> usable = UsableRows();
    const NCDataMatrix<float> primary = ColumnRange(usable, 1, PrimaryColumns());
    NCDataMatrix<float> potential = ColumnRange(usable, PrimaryColumns() + 1, potential_);
    const auto svd = primary.GetSVD(cancel);
    if (svd == nullptr) {
        return Cancelled;
    }
    const auto inverse = svd->GetCrossInverse();
    if (inverse == nullptr) {
        return Singular;
    }
    if (MustStop(stop, 0)) {
        return Stopped;
    }
    SubtractFrom(potential, primary * (*inverse * (primary.Prim() * potential)));
    residualised_ = true;
    if (!DivideByRanges(potential)) {
        return Success;
    }
    int next = 1;
    for (int k = 0; k < Candidates(); ++k) {
        if (IsUsable(k)) {
            std::ranges::copy(std::as_const(potential).RowSpan(next++),
                              rows_.RowSpan(k + 1).begin() + PrimaryColumns());
        }
    }
    FillTiles();
    return MustStop(stop, 0) ? Stopped : Success;
}

void ExchangeModel::WidenRow(int candidate, std::vector<double>& x) const {
    const std::span<const float> row = Row(candidate);
    x.resize(SquareMatrix::PaddedSize(row.size()), 0.0);
    std::ranges::copy(row, x.begin());
}

TileView ExchangeModel::Tiles(int columns) const {
    const auto stride = static_cast<std::size_t>(Columns()) * TileView::cWidth;
    return {tiles_.data(),
            PaddedCandidates() / TileView::cWidth,
            stride,
            static_cast<std::size_t>(columns)};
}

void ExchangeModel::ComputeVariances(const SquareMatrix& inverse,
                                     std::vector<double>& variances) const {
    variances.resize(PaddedCandidates());
    BestTileKernels().variances(Tiles(static_cast<int>(inverse.Size())),
                                inverse.Row(0),
                                inverse.Stride(),
                                variances.data());
    for (std::size_t k = 0; k < variances.size(); ++k) {
        if (k >= usable_.size() || usable_[k] == 0) {
            variances[k] = cNoVariance;
        }
    }
}

SquareMatrix ExchangeModel::CrossProducts(std::span<const int> candidates) const {
    SquareMatrix information(Columns());
    for (const int candidate : candidates) {
        const std::span<const float> x = Row(candidate);
        for (std::size_t i = 0; i < x.size(); ++i) {
            double* const row = information.Row(i);
            for (std::size_t j = 0; j < x.size(); ++j) {
                row[j] += static_cast<double>(x[i] * x[j]);
            }
        }
    }
    return information;
}

}  // namespace DOpt
