#include "designs/optimal/engine/InverseInformation.h"

#include <algorithm>
#include <cmath>

#include "designs/optimal/engine/VectorKernels.h"
#include "foundation/mat/DlibMatrix.h"

namespace InverseInformation {
namespace {

using VectorKernels::Add;
using VectorKernels::Dot;

bool IsFinite(const PaddedMatrix& matrix) {
    for (std::size_t i = 0; i < matrix.Rows(); ++i) {
        if (!std::all_of(matrix.Row(i), matrix.Row(i) + matrix.Columns(), [](double value) {
                return std::isfinite(value);
            })) {
            return false;
        }
    }
    return true;
}

/// The lower Cholesky factor; empty when a pivot is not positive.
std::optional<PaddedMatrix> CholeskyFactor(const PaddedMatrix& matrix) {
    PaddedMatrix lower(matrix.Rows(), matrix.Rows());
    for (std::size_t i = 0; i < matrix.Rows(); ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            // What the row holds beyond its diagonal is still 0, so whole rows may be multiplied.
            const double rest = matrix(i, j) - Dot(lower.Row(i), lower.Row(j), lower.Stride());
            if (j < i) {
                lower(i, j) = rest / lower(j, j);
            } else if (rest > 0) {
                lower(i, i) = std::sqrt(rest);
            } else {
                return std::nullopt;
            }
        }
    }
    return lower;
}

/// L^-1 row by row, each from the rows before it.
PaddedMatrix LowerInverse(const PaddedMatrix& lower) {
    PaddedMatrix inverse(lower.Rows(), lower.Rows());
    for (std::size_t i = 0; i < lower.Rows(); ++i) {
        double* row = inverse.Row(i);
        for (std::size_t k = 0; k < i; ++k) {
            Add(row, -lower(i, k), inverse.Row(k), inverse.Stride());
        }
        row[i] = 1.0;
        for (std::size_t k = 0; k <= i; ++k) {
            row[k] /= lower(i, i);
        }
    }
    return inverse;
}

std::optional<PaddedMatrix> ByCholesky(const PaddedMatrix& information) {
    const auto lower = CholeskyFactor(information);
    if (!lower) {
        return std::nullopt;
    }
    const PaddedMatrix inverse = LowerInverse(*lower);
    std::vector<const double*> rows;
    for (std::size_t i = 0; i < inverse.Rows(); ++i) {
        rows.push_back(inverse.Row(i));
    }
    return CrossProduct(rows, inverse.Columns());
}

/// The largest sum of absolute values of a row: no singular value of a symmetric matrix is above
/// it.
double RowSumNorm(const PaddedMatrix& matrix) {
    double norm = 0;
    for (std::size_t i = 0; i < matrix.Rows(); ++i) {
        double sum = 0;
        for (std::size_t j = 0; j < matrix.Columns(); ++j) {
            sum += std::abs(matrix(i, j));
        }
        norm = std::max(norm, sum);
    }
    return norm;
}

}  // namespace

PaddedMatrix CrossProduct(const std::vector<const double*>& rows, std::size_t columns) {
    PaddedMatrix product(columns, columns);
    for (const double* row : rows) {
        for (std::size_t i = 0; i < columns; ++i) {
            // The blocks from the diagonal on; the rest follows by symmetry.
            const std::size_t first = i / PaddedMatrix::cBlock * PaddedMatrix::cBlock;
            Add(product.Row(i) + first, row[i], row + first, product.Stride() - first);
        }
    }
    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            product(i, j) = product(j, i);
        }
    }
    return product;
}

std::optional<PaddedMatrix> BySingularValues(const PaddedMatrix& information) {
    if (!IsFinite(information)) {
        return std::nullopt;
    }
    const auto size = static_cast<long>(information.Rows());
    dlib::matrix<double> a(size, size), u, w, v;
    for (long i = 0; i < size; ++i) {
        for (long j = 0; j < size; ++j) {
            a(i, j) = information(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
        }
    }
    if (dlib::svd4(dlib::SVD_FULL_U, true, a, u, w, v) != 0) {
        return std::nullopt;
    }
    const double smallest = dlib::min(w);
    if (!(smallest >= cSmallestSingularValue) || !(dlib::max(w) / smallest <= cMostCondition)) {
        return std::nullopt;
    }
    const dlib::matrix<double> inverse =
        dlib::scale_columns(v, dlib::reciprocal(w)) * dlib::trans(u);
    PaddedMatrix result(information.Rows(), information.Rows());
    for (std::size_t i = 0; i < result.Rows(); ++i) {
        for (std::size_t j = 0; j < result.Rows(); ++j) {
            result(i, j) = inverse(static_cast<long>(i), static_cast<long>(j));
        }
    }
    return result;
}

std::optional<PaddedMatrix> Find(const PaddedMatrix& information) {
    // A margin for the rounding of norms and inverse; what falls between is decided exactly.
    constexpr double cCertain = 0.5 * cMostCondition;
    if (auto inverse = ByCholesky(information)) {
        const double norm = RowSumNorm(*inverse);
        if (RowSumNorm(information) * norm <= cCertain && norm * cSmallestSingularValue <= 0.5) {
            return inverse;
        }
    }
    return BySingularValues(information);
}

PaddedMatrix Product(const PaddedMatrix& a, const PaddedMatrix& b) {
    PaddedMatrix product(a.Rows(), b.Columns());
    for (std::size_t i = 0; i < a.Rows(); ++i) {
        for (std::size_t k = 0; k < a.Columns(); ++k) {
            Add(product.Row(i), a(i, k), b.Row(k), b.Stride());
        }
    }
    return product;
}

double TraceOfProduct(const PaddedMatrix& a, const PaddedMatrix& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.Rows(); ++i) {
        for (std::size_t j = 0; j < a.Columns(); ++j) {
            sum += a(j, i) * b(j, i);
        }
    }
    return sum;
}

bool AreStartRows(const std::vector<const double*>& rows, std::size_t columns) {
    const auto p = static_cast<long>(columns);
    dlib::matrix<double> x(static_cast<long>(rows.size()), p), u, w, v;
    for (long i = 0; i < x.nr(); ++i) {
        for (long j = 0; j < p; ++j) {
            x(i, j) = rows[static_cast<std::size_t>(i)][j];
            if (!std::isfinite(x(i, j))) {
                return false;
            }
        }
    }
    dlib::svd3(x, u, w, v);
    const double smallest = dlib::min(w);
    return smallest > cSmallestSingularValue && dlib::max(w) / smallest < cMostCondition;
}

}  // namespace InverseInformation
