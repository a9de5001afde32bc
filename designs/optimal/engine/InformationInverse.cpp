#include "designs/optimal/engine/InformationInverse.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/NCSVD.h"

namespace DOpt {

namespace {

constexpr double cNoDeterminant = -99;

/// Share of the largest condition number that counts as regular up to which the Cholesky
/// decomposition is trusted: beyond, rounding may have decided that it succeeded.
constexpr double cTrustedShare = 1e-3;

// Upper triangular R with R'R = A, by rows: every inner loop runs along a row of the target.
// False when A is not positive definite.
bool Decompose(SquareMatrix& upper) {
    const std::size_t size = upper.Size();
    for (std::size_t k = 0; k < size; ++k) {
        double* const pivotRow = upper.Row(k);
        if (!(pivotRow[k] > 0) || !std::isfinite(pivotRow[k])) {
            return false;
        }
        const double root = std::sqrt(pivotRow[k]);
        for (std::size_t j = k; j < size; ++j) {
            pivotRow[j] /= root;
        }
        for (std::size_t i = k + 1; i < size; ++i) {
            double* const row = upper.Row(i);
            const double factor = pivotRow[i];
            for (std::size_t j = i; j < size; ++j) {
                row[j] -= factor * pivotRow[j];
            }
        }
    }
    return true;
}

// W = (R')^-1, lower triangular.
SquareMatrix InvertTransposed(const SquareMatrix& upper) {
    const std::size_t size = upper.Size();
    SquareMatrix lower(static_cast<int>(size));
    for (std::size_t k = 0; k < size; ++k) {
        double* const row = lower.Row(k);
        for (std::size_t i = 0; i < k; ++i) {
            const double* const solved = lower.Row(i);
            const double factor = upper(i, k);
            for (std::size_t j = 0; j <= i; ++j) {
                row[j] -= factor * solved[j];
            }
        }
        row[k] = 1;
        for (std::size_t j = 0; j <= k; ++j) {
            row[j] /= upper(k, k);
        }
    }
    return lower;
}

// W'W of a lower triangular W, both halves.
SquareMatrix CrossProduct(const SquareMatrix& lower) {
    const std::size_t size = lower.Size();
    SquareMatrix product(static_cast<int>(size));
    for (std::size_t k = 0; k < size; ++k) {
        const double* const row = lower.Row(k);
        for (std::size_t i = 0; i <= k; ++i) {
            double* const target = product.Row(i);
            const double factor = row[i];
            for (std::size_t j = i; j <= k; ++j) {
                target[j] += factor * row[j];
            }
        }
    }
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            product(i, j) = product(j, i);
        }
    }
    return product;
}

double LargestRowSum(const SquareMatrix& matrix) {
    double largest = 0;
    for (std::size_t i = 0; i < matrix.Size(); ++i) {
        double sum = 0;
        for (std::size_t j = 0; j < matrix.Size(); ++j) {
            sum += std::fabs(matrix(i, j));
        }
        largest = std::max(largest, sum);
    }
    return largest;
}

// The ratio of the largest to the smallest singular value of a symmetric matrix is not above the
// product of the row sum norms of the matrix and its inverse.
bool IsClearlyRegular(const SquareMatrix& matrix, const SquareMatrix& inverse) {
    const double limit =
        1 / (std::numeric_limits<double>::epsilon() * static_cast<double>(matrix.Size()));
    return LargestRowSum(matrix) * LargestRowSum(inverse) < cTrustedShare * limit;
}

bool InvertByCholesky(const SquareMatrix& information, InformationInverse& result) {
    SquareMatrix upper = information;
    if (!Decompose(upper)) {
        return false;
    }
    result.inverse = CrossProduct(InvertTransposed(upper));
    result.logDeterminant = 0;
    for (std::size_t k = 0; k < upper.Size(); ++k) {
        result.logDeterminant += 2 * std::log10(upper(k, k));
    }
    return IsClearlyRegular(information, result.inverse);
}

NCDataMatrix<double> ToDataMatrix(const SquareMatrix& matrix) {
    const int size = static_cast<int>(matrix.Size());
    NCDataMatrix<double> copy(size, size);
    for (int i = 1; i <= size; ++i) {
        const double* const row = matrix.Row(static_cast<std::size_t>(i - 1));
        std::copy(row, row + size, copy.RowSpan(i).begin());
    }
    return copy;
}

// The two halves agree up to rounding; the upper one stands for both.
SquareMatrix FromDataMatrix(const NCDataMatrix<double>& matrix) {
    SquareMatrix copy(matrix.SizeRows());
    for (std::size_t i = 0; i < copy.Size(); ++i) {
        for (std::size_t j = i; j < copy.Size(); ++j) {
            copy(i, j) = matrix(static_cast<int>(i) + 1, static_cast<int>(j) + 1);
            copy(j, i) = copy(i, j);
        }
    }
    return copy;
}

bool InvertBySingularValues(const SquareMatrix& information, InformationInverse& result) {
    const NCSVD<double> svd(ToDataMatrix(information));
    const auto inverse = svd.GetInverse(-99.0F);
    if (inverse == nullptr) {
        return false;
    }
    result.inverse = FromDataMatrix(*inverse);
    result.logDeterminant =
        svd.GetLogDeterminant() == cNoDeterminant ? cNoDeterminant : svd.GetLogDeterminant() / 2;
    return true;
}

}  // namespace

Status InvertInformation(const SquareMatrix& information,
                         bool* cancel,
                         InformationInverse& result) {
    if (cancel != nullptr && *cancel) {
        return Cancelled;
    }
    if (!InvertByCholesky(information, result) && !InvertBySingularValues(information, result)) {
        return Singular;
    }
    if (cancel != nullptr && *cancel) {
        return Cancelled;
    }
    const bool hasDeterminant =
        result.logDeterminant != 0 && result.logDeterminant != cNoDeterminant;
    return hasDeterminant ? Success : NoDeterminant;
}

}  // namespace DOpt
