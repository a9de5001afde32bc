#pragma once

#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

class Factors;

namespace NCDOE {

/// The model matrix of a set of runs, as the figures of designs are computed from it and as the
/// searches take it: the constant, the main effects of all variables coded to -1 to 1 (transforms
/// applied), the terms of two and three factors of a list. In a mixture the variable of the largest
/// range is left out, which the others determine, with the terms that touch it.
struct ModelMatrix {
    NCDataMatrix<float> rows;  // [runs x columns]; -99 where a setting is missing
    /// The expanded variables that are multiplied in each column, ascending, counted from 0 in the
    /// caller's order with those of the blocks last; an empty list is the constant.
    std::vector<std::vector<int>> columns;
};

/// @param terms lists of factor indices; see ModelTerms. Shorter ones than two are columns anyway.
/// @param runs in real units [runs x expanded factor count, blocks - 1 more], Qualitative factors
///        and blocks as coding columns
/// @throws InvalidOperationException with an empty text for runs of another width
[[nodiscard]] QORVA_EXPORT ModelMatrix MakeModelMatrix(const Factors& factors,
                                                       const std::vector<std::vector<int>>& terms,
                                                       const NCDataMatrix<float>& runs,
                                                       int blocks);

}  // namespace NCDOE
