#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "designs/optimal/engine/PaddedMatrix.h"

/// The inverse of the information matrix of a design, and when a design counts as regular.
namespace InverseInformation {

/// A design is regular when the smallest singular value of its information matrix X'X is at least
/// this, and the largest at most cMostCondition times the smallest.
constexpr double cSmallestSingularValue = 1e-17;
constexpr double cMostCondition = 100000.0;

/// X'X of the rows of X.
[[nodiscard]] PaddedMatrix CrossProduct(const std::vector<const double*>& rows,
                                        std::size_t columns);

/// (X'X)^-1 by the singular value decomposition; empty when X'X is not regular or not finite.
[[nodiscard]] std::optional<PaddedMatrix> BySingularValues(const PaddedMatrix& information);

/// As BySingularValues, up to rounding; faster, since a matrix whose norm times the norm of its
/// inverse is within the limit needs no singular values to be regular.
[[nodiscard]] std::optional<PaddedMatrix> Find(const PaddedMatrix& information);

/// A B for square matrices of one size.
[[nodiscard]] PaddedMatrix Product(const PaddedMatrix& a, const PaddedMatrix& b);

/// The sum of the diagonal of A B, for symmetric A.
[[nodiscard]] double TraceOfProduct(const PaddedMatrix& a, const PaddedMatrix& b);

/// True when the smallest singular value of X is above cSmallestSingularValue and the largest is
/// below cMostCondition times the smallest: the test of a start design, on X itself.
[[nodiscard]] bool AreStartRows(const std::vector<const double*>& rows, std::size_t columns);

}  // namespace InverseInformation
