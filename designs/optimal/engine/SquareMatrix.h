#pragma once

#include <cstddef>
#include <vector>

namespace DOpt {

/// A square matrix of doubles for kernels, counted from 0. Rows are padded with zeros to a whole
/// number of lanes, so that a kernel needs no remainder loop; the padding stays zero.
class SquareMatrix {
  public:
    static constexpr std::size_t cLanes = 8;

    SquareMatrix() = default;
    explicit SquareMatrix(int size)
        : size_(static_cast<std::size_t>(size)),
          stride_(PaddedSize(size_)),
          cells_(size_ * stride_, 0.0) {}

    [[nodiscard]] static std::size_t PaddedSize(std::size_t size) {
        return (size + cLanes - 1) / cLanes * cLanes;
    }

    [[nodiscard]] std::size_t Size() const { return size_; }
    /// Doubles from one row to the next.
    [[nodiscard]] std::size_t Stride() const { return stride_; }
    [[nodiscard]] double* Row(std::size_t row) { return cells_.data() + row * stride_; }
    [[nodiscard]] const double* Row(std::size_t row) const { return cells_.data() + row * stride_; }
    [[nodiscard]] double& operator()(std::size_t row, std::size_t column) {
        return cells_[row * stride_ + column];
    }
    [[nodiscard]] double operator()(std::size_t row, std::size_t column) const {
        return cells_[row * stride_ + column];
    }

    void Add(const SquareMatrix& other) {
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            cells_[i] += other.cells_[i];
        }
    }

    friend bool operator==(const SquareMatrix&, const SquareMatrix&) = default;

  private:
    std::size_t size_ = 0;
    std::size_t stride_ = 0;
    std::vector<double> cells_;
};

}  // namespace DOpt
