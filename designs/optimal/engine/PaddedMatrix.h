#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// A row-major matrix of double whose rows are filled up with zeros to a multiple of four, so that
/// kernels work on whole blocks of four numbers without a remainder. Counts from 0.
class PaddedMatrix {
  public:
    static constexpr std::size_t cBlock = 4;

    PaddedMatrix() = default;
    PaddedMatrix(std::size_t rows, std::size_t columns)
        : rows_(rows),
          columns_(columns),
          stride_((columns + cBlock - 1) / cBlock * cBlock),
          cells_(rows * stride_, 0.0) {}

    [[nodiscard]] std::size_t Rows() const { return rows_; }
    [[nodiscard]] std::size_t Columns() const { return columns_; }
    /// Numbers from one row to the next, padding included.
    [[nodiscard]] std::size_t Stride() const { return stride_; }
    [[nodiscard]] double* Row(std::size_t row) { return cells_.data() + row * stride_; }
    [[nodiscard]] const double* Row(std::size_t row) const { return cells_.data() + row * stride_; }
    [[nodiscard]] double& operator()(std::size_t row, std::size_t column) {
        return cells_[row * stride_ + column];
    }
    [[nodiscard]] double operator()(std::size_t row, std::size_t column) const {
        return cells_[row * stride_ + column];
    }
    void Fill(double value) { std::fill(cells_.begin(), cells_.end(), value); }

  private:
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::size_t stride_ = 0;
    std::vector<double> cells_;
};
