#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

/// The one product loop behind all matrix products. Every element of the result is the plain sum,
/// in double and in ascending order of the inner index: whole rows of sums are carried along
/// together, which is as fast as reordering the sums would be and leaves each of them as it is.
namespace ProductKernel {

/// The left factor: element (i, k) stands at cells[i * rowStride + k * innerStride], which lets a
/// transposed matrix be read where it stands.
template <class T>
struct LeftFactor {
    const T* cells;
    std::size_t rows;
    std::size_t inner;
    std::size_t rowStride;
    std::size_t innerStride;

    [[nodiscard]] double At(std::size_t i, std::size_t k) const {
        return static_cast<double>(cells[i * rowStride + k * innerStride]);
    }
};

/// Inner indices taken in one pass over a row of sums; fewer passes are fewer loads and stores.
constexpr std::size_t cInnerStep = 4;
/// Rows of the result carried at once: one pass over the right factor serves them all.
constexpr std::size_t cRowBlock = 16;

inline void AddOneRow(std::span<double> sums, double factor, const double* row) {
    for (std::size_t j = 0; j < sums.size(); ++j) {
        sums[j] += factor * row[j];
    }
}

/// `rows` holds four rows one after the other. They are added from the first to the last, each sum
/// rounded after each of them, exactly as four single passes would.
inline void AddFourRows(std::span<double> sums,
                        const std::array<double, cInnerStep>& factors,
                        const double* rows) {
    const std::size_t columns = sums.size();
    double* const target = sums.data();
    const double* const row0 = rows;
    const double* const row1 = row0 + columns;
    const double* const row2 = row1 + columns;
    const double* const row3 = row2 + columns;
    const double factor0 = factors[0];
    const double factor1 = factors[1];
    const double factor2 = factors[2];
    const double factor3 = factors[3];
    for (std::size_t j = 0; j < columns; ++j) {
        double sum = target[j];
        sum += factor0 * row0[j];
        sum += factor1 * row1[j];
        sum += factor2 * row2[j];
        sum += factor3 * row3[j];
        target[j] = sum;
    }
}

/// Sums of `count` result rows from row `first` on, [count x columns] in `sums`.
template <class T>
void SumRowBlock(const LeftFactor<T>& left,
                 std::size_t first,
                 std::size_t count,
                 const T* right,
                 std::size_t columns,
                 std::vector<double>& wideRows,
                 std::span<double> sums) {
    std::fill(sums.begin(), sums.end(), 0.0);
    std::size_t k = 0;
    for (; k + cInnerStep <= left.inner; k += cInnerStep) {
        const T* const rows = right + k * columns;
        std::copy(rows, rows + cInnerStep * columns, wideRows.begin());
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t row = first + i;
            const std::array<double, cInnerStep> factors{
                left.At(row, k), left.At(row, k + 1), left.At(row, k + 2), left.At(row, k + 3)};
            AddFourRows(sums.subspan(i * columns, columns), factors, wideRows.data());
        }
    }
    for (; k < left.inner; ++k) {
        std::copy(right + k * columns, right + (k + 1) * columns, wideRows.begin());
        for (std::size_t i = 0; i < count; ++i) {
            AddOneRow(sums.subspan(i * columns, columns), left.At(first + i, k), wideRows.data());
        }
    }
}

/// Writes left * right, [left.rows x columns], to `product`, row by row. `right` is
/// [left.inner x columns].
template <class T>
void Multiply(const LeftFactor<T>& left,
              const T* right,
              std::size_t columns,
              std::span<T> product) {
    std::vector<double> wideRows(cInnerStep * columns);
    std::vector<double> sums(std::min(cRowBlock, left.rows) * columns);
    for (std::size_t first = 0; first < left.rows; first += cRowBlock) {
        const std::size_t count = std::min(cRowBlock, left.rows - first);
        const std::span<double> blockSums(sums.data(), count * columns);
        SumRowBlock(left, first, count, right, columns, wideRows, blockSums);
        std::transform(
            blockSums.begin(), blockSums.end(), product.data() + first * columns, [](double sum) {
                return static_cast<T>(sum);
            });
    }
}

}  // namespace ProductKernel
