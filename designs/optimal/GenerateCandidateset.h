#pragma once

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/CandidateSet.h"

class DesignOptions;
class DOptGen;
class Factors;

namespace DOpt {

/// Generates the candidate runs of a computer-generated design: the extreme vertices of the region
/// that factors and constraints leave (McLean and Anderson, 1966), edge points and centroids as the
/// models need them, the process runs crossed with the mixtures, for every combination of levels.
/// @param gen generator that keeps the candidates, in its own order; null for a passing one
/// @param options may hold D_OptimalOptions; without them there are no constraints and no mixture
///        model
/// @param grow rows are repeated as a whole until there are as many as the options have runs
/// @param counts filled with the rows by kind, before any are repeated; null allowed
/// @param cancel read at every safe point; null allowed
/// @param limit cells of the result at most; 0 for no limit. With a limit, a region of more
/// vertices
///        than the limit and 2^20 cells hold is refused while it is being cut.
/// @return [candidates x expanded factor count], in real units, Qualitative factors and blocks as
///         coding columns, in the caller's order
/// @throws Exception when there are no candidates, CancelException when the user stops
[[nodiscard]] QORVA_EXPORT NCDataMatrix<float> GenerateCandidateset(DOptGen* gen,
                                                                    const Factors& factors,
                                                                    const DesignOptions& options,
                                                                    bool grow,
                                                                    NumData* counts,
                                                                    const bool* cancel,
                                                                    unsigned int limit);

}  // namespace DOpt
