#pragma once

#include <cmath>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

/// The full grid of `factors` factors at `levels` levels from -1 to 1, first factor fastest, as
/// model rows of a quadratic model: constant, main effects, interactions, squares.
inline NCDataMatrix<float> QuadraticGrid(int factors, int levels) {
    const int rows = static_cast<int>(std::lround(std::pow(levels, factors)));
    NCDataMatrix<float> grid(rows, (factors + 1) * (factors + 2) / 2);
    for (int row = 0; row < rows; ++row) {
        std::vector<float> x;
        for (int i = 0, rest = row; i < factors; ++i, rest /= levels) {
            x.push_back(2.0F * static_cast<float>(rest % levels) / static_cast<float>(levels - 1) -
                        1.0F);
        }
        int column = 0;
        grid(row + 1, ++column, 1.0F);
        for (const float value : x) {
            grid(row + 1, ++column, value);
        }
        for (std::size_t i = 0; i < x.size(); ++i) {
            for (std::size_t j = i + 1; j < x.size(); ++j) {
                grid(row + 1, ++column, x[i] * x[j]);
            }
        }
        for (const float value : x) {
            grid(row + 1, ++column, value * value);
        }
    }
    return grid;
}
