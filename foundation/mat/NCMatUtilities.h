#pragma once

#include <vector>

#include "foundation/stream/Export.h"

namespace NCMatUtilities {

/// All k-element subsets of 0 to n-1, each ascending, in lexicographic order. Empty when k is above
/// n; one empty subset when k is 0.
/// @throws InvalidOperationException when all subsets together have more than 100 million elements.
[[nodiscard]] QORVA_EXPORT std::vector<std::vector<unsigned long long>> combnk(
    unsigned long long n, unsigned long long k);

}  // namespace NCMatUtilities
