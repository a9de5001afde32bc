#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// Columns of -1 and +1, one bit a run (a set bit is -1), so that the product of two columns is an
/// exclusive or and an inner product a count of bits.
class SignColumns {
  public:
    SignColumns(int runs, int columns);

    [[nodiscard]] int Runs() const { return runs_; }
    [[nodiscard]] int Columns() const { return columns_; }

    /// Runs and columns count from 0.
    void SetNegative(int run, int column);

    /// The column's bits; those behind the last run are 0.
    [[nodiscard]] std::span<const std::uint64_t> Column(int column) const;

    /// Product of two columns.
    [[nodiscard]] std::vector<std::uint64_t> Product(std::span<const std::uint64_t> a,
                                                     std::span<const std::uint64_t> b) const;
    /// Sum over the runs of the product of two columns.
    [[nodiscard]] int InnerProduct(std::span<const std::uint64_t> a,
                                   std::span<const std::uint64_t> b) const;
    /// Sum over the runs of a column.
    [[nodiscard]] int Sum(std::span<const std::uint64_t> column) const;

    /// The runs as words of one bit a column, for at most 64 columns.
    [[nodiscard]] std::vector<std::uint64_t> Rows() const;

  private:
    int runs_;
    int columns_;
    std::size_t words_;
    std::vector<std::uint64_t> bits_;
};
