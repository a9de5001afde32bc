#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

/// Textbook linear algebra in long double, in its plainest form and apart from everything the
/// foundation does: elimination with a search for the largest pivot, sums by the definition.
namespace oracles {

using Table = std::vector<std::vector<long double>>;

template <class T>
Table ToTable(const NCDataMatrix<T>& matrix) {
    Table table;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        table.emplace_back();
        for (int column = 1; column <= matrix.SizeColumns(); ++column) {
            table.back().push_back(static_cast<long double>(matrix(row, column)));
        }
    }
    return table;
}

inline Table Transposed(const Table& a) {
    Table result(a.empty() ? 0 : a[0].size(), std::vector<long double>(a.size()));
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < a[i].size(); ++j) {
            result[j][i] = a[i][j];
        }
    }
    return result;
}

inline Table Product(const Table& a, const Table& b) {
    Table result(a.size(), std::vector<long double>(b[0].size(), 0));
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b[0].size(); ++j) {
            for (std::size_t k = 0; k < b.size(); ++k) {
                result[i][j] += a[i][k] * b[k][j];
            }
        }
    }
    return result;
}

/// Brings the row with the largest entry of column `step` at or below the diagonal to the diagonal.
/// Returns true when rows changed places.
inline bool BringUpPivot(Table& a, std::size_t step) {
    std::size_t pivot = step;
    for (std::size_t row = step + 1; row < a.size(); ++row) {
        if (std::abs(a[row][step]) > std::abs(a[pivot][step])) {
            pivot = row;
        }
    }
    std::swap(a[step], a[pivot]);
    return pivot != step;
}

/// Inverse by Gauss-Jordan elimination of [A I]. The matrix must be square and regular.
inline Table GaussJordanInverse(Table a) {
    const std::size_t size = a.size();
    for (std::size_t i = 0; i < size; ++i) {
        a[i].resize(2 * size, 0);
        a[i][size + i] = 1;
    }
    for (std::size_t step = 0; step < size; ++step) {
        BringUpPivot(a, step);
        const long double pivot = a[step][step];
        for (long double& value : a[step]) {
            value /= pivot;
        }
        for (std::size_t row = 0; row < size; ++row) {
            const long double factor = row == step ? 0 : a[row][step];
            for (std::size_t column = 0; column < 2 * size; ++column) {
                a[row][column] -= factor * a[step][column];
            }
        }
    }
    for (auto& row : a) {
        row.erase(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(size));
    }
    return a;
}

/// log10 of the absolute determinant by elimination; minus infinity when it is 0.
inline long double LogDeterminant(Table a) {
    long double sum = 0;
    for (std::size_t step = 0; step < a.size(); ++step) {
        BringUpPivot(a, step);
        sum += std::log10(std::abs(a[step][step]));
        for (std::size_t row = step + 1; row < a.size(); ++row) {
            const long double factor = a[row][step] / a[step][step];
            for (std::size_t column = step; column < a.size(); ++column) {
                a[row][column] -= factor * a[step][column];
            }
        }
    }
    return sum;
}

/// Largest absolute entry.
inline long double LargestEntry(const Table& a) {
    long double largest = 0;
    for (const auto& row : a) {
        for (const long double value : row) {
            largest = std::max(largest, std::abs(value));
        }
    }
    return largest;
}

/// Largest absolute difference of two tables; infinite when their shapes differ.
inline long double LargestDifference(const Table& a, const Table& b) {
    if (a.size() != b.size()) {
        return std::numeric_limits<long double>::infinity();
    }
    long double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].size() != b[i].size()) {
            return std::numeric_limits<long double>::infinity();
        }
        for (std::size_t j = 0; j < a[i].size(); ++j) {
            largest = std::max(largest, std::abs(a[i][j] - b[i][j]));
        }
    }
    return largest;
}

/// The product by its definition: three loops, one double sum an element, ascending inner index.
template <class T>
NCDataMatrix<T> LiteralProduct(const NCDataMatrix<T>& a, const NCDataMatrix<T>& b) {
    NCDataMatrix<T> product(a.SizeRows(), b.SizeColumns());
    for (int i = 1; i <= a.SizeRows(); ++i) {
        for (int j = 1; j <= b.SizeColumns(); ++j) {
            double sum = 0;
            for (int k = 1; k <= a.SizeColumns(); ++k) {
                sum += static_cast<double>(a(i, k)) * static_cast<double>(b(k, j));
            }
            product(i, j, static_cast<T>(sum));
        }
    }
    return product;
}

/// Entries uniform in [-1, 1), portable across standard libraries.
template <class T>
NCDataMatrix<T> RandomMatrix(int rows, int columns, std::mt19937& engine) {
    NCDataMatrix<T> matrix(rows, columns);
    for (T& cell : matrix.Cells()) {
        cell = static_cast<T>(static_cast<double>(engine()) / 2147483648.0 - 1.0);
    }
    return matrix;
}

}  // namespace oracles
