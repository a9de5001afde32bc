#pragma once

#include "foundation/utl/Exceptions.h"
#include "frame/MixtureUtilities.h"

/// Conditions that both families of designs on a simplex share.
namespace MixtureRules {

/// The factors' region is a regular simplex. Infeasible settings only make it none here: they are
/// told where the mixture is asked about, not where designs are offered.
[[nodiscard]] inline bool IsSimplexRegion(const Factors& factors) {
    try {
        return MixtureUtilities::IsSimplex(factors, false);
    } catch (const Exception&) {
        return false;
    }
}

}  // namespace MixtureRules
