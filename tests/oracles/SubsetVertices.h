#pragma once

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

/// Vertices of {x : A x + c >= 0, and sum x = total where there is a mixture} by solving every
/// subset of constraints for the point where they meet. In double, with nothing of the engine.
namespace SubsetVertices {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

/// Solves the square system a x = b by elimination with full row pivoting; false when singular.
inline bool Solve(Matrix a, Vector b, Vector& x) {
    const std::size_t n = b.size();
    for (std::size_t column = 0; column < n; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < n; ++row) {
            if (std::fabs(a[row][column]) > std::fabs(a[pivot][column])) {
                pivot = row;
            }
        }
        if (std::fabs(a[pivot][column]) < 1e-10) {
            return false;
        }
        std::swap(a[pivot], a[column]);
        std::swap(b[pivot], b[column]);
        for (std::size_t row = column + 1; row < n; ++row) {
            const double factor = a[row][column] / a[column][column];
            for (std::size_t i = column; i < n; ++i) {
                a[row][i] -= factor * a[column][i];
            }
            b[row] -= factor * b[column];
        }
    }
    x.assign(n, 0);
    for (std::size_t i = n; i-- > 0;) {
        double sum = b[i];
        for (std::size_t j = i + 1; j < n; ++j) {
            sum -= a[i][j] * x[j];
        }
        x[i] = sum / a[i][i];
    }
    return true;
}

inline bool Contains(const Matrix& points, const Vector& point, double tolerance) {
    for (const Vector& other : points) {
        bool near = true;
        for (std::size_t i = 0; i < point.size(); ++i) {
            near = near && std::fabs(other[i] - point[i]) <= tolerance;
        }
        if (near) {
            return true;
        }
    }
    return false;
}

/// @param constraints rows (a, c)
/// @param mixtureTotal sum of all variables, or null for a process region
inline Matrix Find(const Matrix& constraints,
                   std::size_t variables,
                   const double* mixtureTotal,
                   double tolerance) {
    const std::size_t k = variables - (mixtureTotal != nullptr ? 1 : 0);
    Matrix found;
    if (k > constraints.size()) {
        return found;
    }
    std::vector<std::size_t> chosen(k);
    for (std::size_t i = 0; i < k; ++i) {
        chosen[i] = i;
    }
    for (bool more = true; more;) {
        Matrix a;
        Vector b;
        for (const std::size_t row : chosen) {
            a.emplace_back(constraints[row].begin(), constraints[row].end() - 1);
            b.push_back(-constraints[row].back());
        }
        if (mixtureTotal != nullptr) {
            a.emplace_back(variables, 1.0);
            b.push_back(*mixtureTotal);
        }
        Vector x;
        if (Solve(a, b, x)) {
            bool inside = true;
            for (const Vector& row : constraints) {
                double slack = row.back();
                for (std::size_t i = 0; i < variables; ++i) {
                    slack += row[i] * x[i];
                }
                inside = inside && slack >= -tolerance;
            }
            if (inside && !Contains(found, x, tolerance)) {
                found.push_back(x);
            }
        }
        more = false;
        for (std::size_t i = k; i-- > 0;) {
            if (chosen[i] < constraints.size() - k + i) {
                ++chosen[i];
                for (std::size_t next = i + 1; next < k; ++next) {
                    chosen[next] = chosen[next - 1] + 1;
                }
                more = true;
                break;
            }
        }
    }
    return found;
}

}  // namespace SubsetVertices
