#pragma once

#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/SquareMatrix.h"

namespace DOpt {

struct InformationInverse {
    SquareMatrix inverse;
    /// log10 of the determinant of the information matrix.
    double logDeterminant = 0;
};

/// Inverts a symmetric information matrix; the result is symmetric to the last bit. One Cholesky
/// decomposition gives inverse and determinant; a matrix near the edge of singularity is judged by
/// its singular values, as NCSVD does.
/// Success; Singular; NoDeterminant when log10 of the determinant comes out exactly 0 or has no
/// value; Cancelled when the flag is set.
/// @param cancel borrowed, null allowed
[[nodiscard]] Status InvertInformation(const SquareMatrix& information,
                                       bool* cancel,
                                       InformationInverse& result);

}  // namespace DOpt
