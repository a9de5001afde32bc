#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/EModel.h"
#include "frame/Factors.h"
#include "tests/oracles/DenseOracles.h"

/// The quality of a finished design, from its cells and the factors alone. In linear and
/// interaction models the columns of each factor are orthogonal polynomials over its levels with a
/// mean square of 1, so that a full factorial has an efficiency and a condition number of 1; a
/// quadratic model takes coded values, their squares and products as they are.
namespace oracles {

struct RowFigures {
    double efficiency = 0;  // [det(X'X / runs)]^(1/p); 0 when the model cannot be estimated
    double condition = 0;   // largest by smallest singular value of X; 0 without an estimate
};

using Values = std::vector<long double>;

/// The values of orthogonal polynomials of degree 1 to levels - 1 at each level: [level][degree-1].
inline Table OrthogonalPolynomials(int levels) {
    const auto count = static_cast<std::size_t>(levels);
    Table byDegree{Values(count, 1)};
    for (int degree = 1; degree < levels; ++degree) {
        Values values;
        for (int level = 0; level < levels; ++level) {
            values.push_back(std::pow(static_cast<long double>(level), degree));
        }
        // Gram-Schmidt, twice against rounding.
        for (int pass = 0; pass < 2; ++pass) {
            for (const Values& other : byDegree) {
                long double product = 0;
                for (std::size_t i = 0; i < count; ++i) {
                    product += values[i] * other[i] / levels;
                }
                for (std::size_t i = 0; i < count; ++i) {
                    values[i] -= product * other[i];
                }
            }
        }
        long double square = 0;
        for (const long double value : values) {
            square += value * value / levels;
        }
        for (long double& value : values) {
            value /= std::sqrt(square);
        }
        byDegree.push_back(values);
    }
    byDegree.erase(byDegree.begin());
    return Transposed(byDegree);
}

/// The main-effect columns of one cell.
/// @throws std::invalid_argument for a cell that is no level
inline Values MainEffects(const Factors& factors, int factor, float cell) {
    const bool isQuantitative = factors.GetFactorType(factor) == CEType::Quantitative;
    const int levels = isQuantitative ? 2 : static_cast<int>(factors.GetLevelCount(factor));
    const float level = isQuantitative ? (cell + 1) / 2 : cell - Factors::cFirstLevelCode;
    if (level != std::floor(level) || level < 0 || level >= static_cast<float>(levels)) {
        throw std::invalid_argument("a cell is no level");
    }
    return OrthogonalPolynomials(levels)[static_cast<std::size_t>(level)];
}

inline Values InteractionModelRow(const NCDataMatrix<float>& matrix,
                                  int run,
                                  const Factors& factors,
                                  bool interactions) {
    Values row{1};
    std::vector<Values> mains;
    for (int factor = 0; factor < matrix.SizeColumns(); ++factor) {
        mains.push_back(MainEffects(factors, factor, matrix(run, factor + 1)));
        row.insert(row.end(), mains.back().begin(), mains.back().end());
    }
    for (std::size_t f = 0; interactions && f < mains.size(); ++f) {
        for (std::size_t g = 0; g < f; ++g) {
            for (const long double a : mains[f]) {
                for (const long double b : mains[g]) {
                    row.push_back(a * b);
                }
            }
        }
    }
    return row;
}

inline Values QuadraticModelRow(const NCDataMatrix<float>& matrix, int run) {
    Values row{1};
    for (int a = 1; a <= matrix.SizeColumns(); ++a) {
        row.push_back(static_cast<long double>(matrix(run, a)));
        for (int b = 1; b <= a; ++b) {
            row.push_back(static_cast<long double>(matrix(run, a)) * matrix(run, b));
        }
    }
    return row;
}

/// Largest and smallest eigenvalue of a symmetric matrix by Jacobi's rotations.
inline std::pair<long double, long double> ExtremeEigenvalues(Table a) {
    const std::size_t size = a.size();
    for (int sweep = 0; sweep < 60; ++sweep) {
        for (std::size_t p = 0; p < size; ++p) {
            for (std::size_t q = p + 1; q < size; ++q) {
                if (std::abs(a[p][q]) < 1e-18L) {
                    continue;
                }
                const long double angle = std::atan2(2 * a[p][q], a[q][q] - a[p][p]) / 2;
                const long double c = std::cos(angle);
                const long double s = std::sin(angle);
                for (std::size_t k = 0; k < size; ++k) {
                    const long double kp = a[k][p];
                    a[k][p] = c * kp - s * a[k][q];
                    a[k][q] = s * kp + c * a[k][q];
                }
                for (std::size_t k = 0; k < size; ++k) {
                    const long double pk = a[p][k];
                    a[p][k] = c * pk - s * a[q][k];
                    a[q][k] = s * pk + c * a[q][k];
                }
            }
        }
    }
    long double largest = a[0][0];
    long double smallest = a[0][0];
    for (std::size_t i = 0; i < size; ++i) {
        largest = std::max(largest, a[i][i]);
        smallest = std::min(smallest, a[i][i]);
    }
    return {largest, smallest};
}

/// The matrix has one column for each factor; level factors hold letter codes.
/// @throws std::invalid_argument for a cell of a screening design that is no level
inline RowFigures FiguresOf(const NCDataMatrix<float>& matrix,
                            const Factors& factors,
                            EModel::Type model) {
    if (matrix.IsEmpty()) {
        return {};
    }
    Table rows;
    for (int run = 1; run <= matrix.SizeRows(); ++run) {
        rows.push_back(
            model == EModel::Quadratic
                ? QuadraticModelRow(matrix, run)
                : InteractionModelRow(matrix, run, factors, model == EModel::Interaction));
    }
    Table information = Product(Transposed(rows), rows);
    for (Values& row : information) {
        for (long double& value : row) {
            value /= static_cast<long double>(rows.size());
        }
    }
    const auto [largest, smallest] = ExtremeEigenvalues(information);
    if (smallest < 1e-9L * largest) {
        return {};
    }
    const auto terms = static_cast<long double>(information.size());
    return {static_cast<double>(std::pow(10.0L, LogDeterminant(information) / terms)),
            static_cast<double>(std::sqrt(largest / smallest))};
}

}  // namespace oracles
