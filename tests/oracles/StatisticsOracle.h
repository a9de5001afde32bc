#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tests/oracles/DenseOracles.h"

/// The figures of a design by their definitions, from a model matrix written out by the test.
namespace oracles {

/// Eigenvalues of a symmetric table, ascending, by cyclic Jacobi rotations.
inline std::vector<long double> Eigenvalues(Table a) {
    const std::size_t size = a.size();
    for (int sweep = 0; sweep < 100; ++sweep) {
        for (std::size_t p = 0; p < size; ++p) {
            for (std::size_t q = p + 1; q < size; ++q) {
                if (a[p][q] == 0) {
                    continue;
                }
                const long double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
                const long double t =
                    (theta < 0 ? -1 : 1) / (std::abs(theta) + std::sqrt(theta * theta + 1));
                const long double c = 1 / std::sqrt(t * t + 1);
                const long double s = t * c;
                for (std::size_t k = 0; k < size; ++k) {
                    const long double left = a[k][p];
                    const long double right = a[k][q];
                    a[k][p] = c * left - s * right;
                    a[k][q] = s * left + c * right;
                }
                for (std::size_t k = 0; k < size; ++k) {
                    const long double upper = a[p][k];
                    const long double lower = a[q][k];
                    a[p][k] = c * upper - s * lower;
                    a[q][k] = s * upper + c * lower;
                }
            }
        }
    }
    std::vector<long double> values(size);
    for (std::size_t i = 0; i < size; ++i) {
        values[i] = a[i][i];
    }
    std::sort(values.begin(), values.end());
    return values;
}

struct Figures {
    long double condition = 0;
    long double gEfficiency = 0;
    long double logDeterminant = 0;
    long double normLogDeterminant = 0;
    long double averageVariance = 0;
};

/// @param model [runs x p]
/// @param candidates [rows x p]
inline Figures FiguresOf(const Table& model, const Table& candidates) {
    const Table information = Product(Transposed(model), model);
    const Table inverse = GaussJordanInverse(information);
    const auto values = Eigenvalues(information);
    const auto columns = static_cast<long double>(model[0].size());
    const auto runs = static_cast<long double>(model.size());
    Figures figures;
    figures.condition = std::sqrt(values.back() / values.front());
    figures.logDeterminant = LogDeterminant(information);
    figures.normLogDeterminant = figures.logDeterminant / columns - std::log10(runs);
    long double largest = 0;
    for (const auto& x : candidates) {
        long double variance = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            for (std::size_t j = 0; j < x.size(); ++j) {
                variance += x[i] * inverse[i][j] * x[j];
            }
        }
        largest = std::max(largest, variance);
        figures.averageVariance += variance * runs / static_cast<long double>(candidates.size());
    }
    figures.gEfficiency = 100 * columns / (runs * largest);
    return figures;
}

}  // namespace oracles
