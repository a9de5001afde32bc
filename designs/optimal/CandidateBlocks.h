#pragma once

#include <array>
#include <optional>
#include <span>

#include "designs/optimal/engine/CandidateRows.h"
#include "designs/optimal/engine/DOptStatus.h"
#include "frame/CandidateSet.h"
#include "frame/EModel.h"

class DOptFactorAdapter;
class NCProgress;

namespace DOpt {

/// What the blocks are made from.
struct BlockRequest {
    const DOptFactorAdapter* factors = nullptr;  // borrowed
    EModel::Type processModel = EModel::None;
    EModel::Type mixtureModel = EModel::None;
    bool usePotentialTerms = false;
    /// Rows over the Quantitative and Formulation factors in the adapter's order, and the constant.
    NCDataMatrix<float> constraints;
    long long combinations = 1;      // of the levels
    long long maxCells = 0;          // of the result; 0 for no limit
    NCProgress* progress = nullptr;  // borrowed, may be null
    const bool* cancel = nullptr;    // borrowed, may be null
};

/// Rows by kind: the vertices, the points of dimension 1, and those of each larger dimension of the
/// plan; the last count that is not 0 is that of the overall centroid, if there is one.
using BlockCounts = std::array<long long, 6>;

struct CandidateBlock {
    BlockRows rows;
    BlockCounts counts{};
};

/// The points of the Quantitative factors, and of Formulation factors whose sum is free; nothing
/// without such factors.
/// @throws Status for a step that failed; so does MakeMixtureBlock.
[[nodiscard]] std::optional<CandidateBlock> MakeProcessBlock(const BlockRequest& request);

/// The points of the mixture factors; nothing without them.
[[nodiscard]] std::optional<CandidateBlock> MakeMixtureBlock(const BlockRequest& request);

/// How many candidates of each kind the combined blocks have. A centre of an edge of one block
/// beside a vertex of the other is an edge centre of the whole, and so on.
/// @param process, mixture null for none
[[nodiscard]] NumData CountCandidates(const CandidateBlock* process,
                                      const CandidateBlock* mixture,
                                      long long combinations);

}  // namespace DOpt
