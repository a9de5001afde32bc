#pragma once

#include <initializer_list>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

/// Rows `first` to `last` of a matrix in a form that a failing test prints.
inline std::vector<std::vector<float>> RowsOf(const NCDataMatrix<float>& matrix,
                                              int first,
                                              int last) {
    std::vector<std::vector<float>> rows;
    for (int row = first; row <= last; ++row) {
        const auto cells = matrix.RowSpan(row);
        rows.emplace_back(cells.begin(), cells.end());
    }
    return rows;
}

inline std::vector<std::vector<float>> RowsOf(const NCDataMatrix<float>& matrix) {
    return RowsOf(matrix, 1, matrix.SizeRows());
}

/// A copy with one cell negated (a 0 becomes 1): what a check must object to.
inline NCDataMatrix<float> WithFlippedCell(NCDataMatrix<float> matrix, int row, int column) {
    const float value = matrix(row, column);
    matrix(row, column, value == 0.0F ? 1.0F : -value);
    return matrix;
}
