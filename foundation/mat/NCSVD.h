#pragma once

#include <memory>
#include <span>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

/// Singular value decomposition A = U diag(w) V' of a matrix, computed and kept in double for both
/// element types (float results are rounded once, at the end). Made by NCDataMatrix<T>::GetSVD.
///
/// A matrix is rank-deficient when its smallest singular value is not above
/// epsilon(double) * max(rows, columns) * w_max. An empty matrix, or one with missing (-99) or
/// non-finite cells, has no decomposition: no inverse, and -99 for every figure.
template <class T>
class QORVA_EXPORT NCSVD {
  public:
    explicit NCSVD(const NCDataMatrix<T>& matrix);
    ~NCSVD();
    NCSVD(const NCSVD&) = delete;
    NCSVD& operator=(const NCSVD&) = delete;

    /// The inverse of a square matrix, the pseudo-inverse [columns x rows] of any other.
    /// With tolerance -99 (the default one) a rank-deficient matrix gives a null handle. With a
    /// tolerance of 0 or more, singular values not above tolerance * w_max are left out and the
    /// pseudo-inverse of the rest is given; null only when nothing is left.
    [[nodiscard]] std::unique_ptr<NCDataMatrix<T>> GetInverse(float tolerance) const;

    /// (A'A)^-1 = V diag(1/w^2) V' [columns x columns], or a null handle when A has not full column
    /// rank.
    [[nodiscard]] std::unique_ptr<NCDataMatrix<T>> GetCrossInverse() const;

    /// Sum of 2 * log10(w), that is log10 of the determinant of A'A; -99 when A has not full column
    /// rank, since that determinant is 0 but for rounding.
    [[nodiscard]] T GetLogDeterminant() const;

    /// Largest over smallest singular value, infinite when the smallest is 0.
    [[nodiscard]] float GetConditionNumber() const;

    /// Singular values, descending; empty when there is no decomposition.
    [[nodiscard]] std::span<const double> GetSingularValues() const { return values_; }

  private:
    struct Factors;

    int rows_;
    int columns_;
    std::vector<double> values_;
    std::unique_ptr<Factors> factors_;
};

extern template class NCSVD<float>;
extern template class NCSVD<double>;
