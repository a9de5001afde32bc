#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

namespace DOpt {

/// Rows of floats of one width, counted from 0; grows at its end. A point has one value a variable,
/// a constraint (a, c) the coefficients and then the constant of a * x + c >= 0.
class PointTable {
  public:
    explicit PointTable(int width) : width_(static_cast<std::size_t>(width)) { assert(width > 0); }
    explicit PointTable(const NCDataMatrix<float>& matrix)
        : width_(static_cast<std::size_t>(matrix.SizeColumns())),
          cells_(matrix.Cells().begin(), matrix.Cells().end()) {
        assert(matrix.SizeColumns() > 0);
    }

    [[nodiscard]] int Width() const { return static_cast<int>(width_); }
    [[nodiscard]] int Size() const { return static_cast<int>(cells_.size() / width_); }

    [[nodiscard]] std::span<const float> Row(int row) const {
        return std::span(cells_).subspan(static_cast<std::size_t>(row) * width_, width_);
    }
    [[nodiscard]] std::span<float> Row(int row) {
        return std::span(cells_).subspan(static_cast<std::size_t>(row) * width_, width_);
    }

    void Reserve(int rows) { cells_.reserve(static_cast<std::size_t>(rows) * width_); }
    void Append(std::span<const float> row) {
        assert(row.size() == width_);
        cells_.insert(cells_.end(), row.begin(), row.end());
    }
    void RemoveLast() { cells_.resize(cells_.size() - width_); }
    /// Moves a row down to a lower number, to close gaps from the front.
    void MoveRow(int from, int to) {
        if (from != to) {
            std::ranges::copy(Row(from), Row(to).begin());
        }
    }
    void Truncate(int rows) { cells_.resize(static_cast<std::size_t>(rows) * width_); }

    [[nodiscard]] NCDataMatrix<float> ToMatrix() const {
        NCDataMatrix<float> matrix(Size(), Width());
        std::ranges::copy(cells_, matrix.Cells().begin());
        return matrix;
    }

    friend bool operator==(const PointTable&, const PointTable&) = default;

  private:
    std::size_t width_;
    std::vector<float> cells_;
};

}  // namespace DOpt
