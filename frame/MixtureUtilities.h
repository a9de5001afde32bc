#pragma once

#include "foundation/stream/Export.h"

class Factors;

/// Whether the settings of the formulation factors allow the target sum, and the shape of the
/// region they leave. The target is 1 minus `Factors::GetConstantMixtureShare`. All sums are in
/// float.
///
/// Every function may raise an Exception on infeasible settings: a filler beside formulation
/// factors that add up to 1; a sum of lows not below the target; a sum of highs below the target
/// without a filler.
namespace MixtureUtilities {

/// The factors are three or more formulation factors alone, `excluded` is false, and their region
/// is a regular simplex. Raises nothing where the factors alone decide.
[[nodiscard]] QORVA_EXPORT bool IsSimplex(const Factors& factors, bool excluded);

/// The region is a simplex whose vertices point to the high settings (the low settings bound it).
[[nodiscard]] QORVA_EXPORT bool IsSimplexLower(const Factors& factors, bool excluded);

/// The range of every one of at least three formulation factors lies within 10 percent of the
/// smaller slack, and the slacks differ.
[[nodiscard]] QORVA_EXPORT bool CheckMixtureRanges(const Factors& factors);

/// Tightens the ranges, through `Factors::SetFactorRange`, to what some feasible blend can reach.
/// All slacks are those before the first change. Always returns true.
QORVA_EXPORT bool AdjustedMixtureRanges(Factors& factors);

}  // namespace MixtureUtilities
