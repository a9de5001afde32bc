#pragma once

#include <algorithm>
#include <vector>

#include "foundation/utl/Exceptions.h"

/// Terms of a model that a caller gave.
namespace J2Terms {

/// To be asked before anything is asked of the factors.
/// @param terms lists of factor indices, counted from 0; `factorCount` itself is the block
/// @throws InvalidOperationException for any other index
inline void RequireFactors(const std::vector<std::vector<int>>& terms, int factorCount) {
    for (const std::vector<int>& term : terms) {
        if (std::ranges::any_of(term,
                                [&](int factor) { return factor < 0 || factor > factorCount; })) {
            throw InvalidOperationException("A model term names a factor that does not exist.");
        }
    }
}

}  // namespace J2Terms
