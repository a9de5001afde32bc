#pragma once

#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

namespace NCDOE {

/// What a two-level design can tell apart: its defining words, resolution and word lengths, which
/// main effects and two-factor interactions are aliased with one another, and which are confounded
/// with blocks. Computed from the runs alone, so it holds for regular fractions, for user
/// generators and for designs without generators such as Plackett-Burman's.
struct QORVA_EXPORT AliasStructure {
    /// Factor indices, counted from 0, ascending; empty for the mean.
    using Effect = std::vector<int>;

    /// The product of the factors' columns is `sign` in every run.
    struct Word {
        Effect factors;
        int sign = 1;

        friend bool operator==(const Word&, const Word&) = default;
    };

    /// Effects whose columns agree, each with its sign relative to the first.
    struct AliasSet {
        std::vector<Effect> effects;
        std::vector<int> signs;
    };

    /// What a unit of `of` adds to the estimate of `effect`: the inner product of the two columns
    /// by the number of runs, between -1 and 1 but neither of them, and not 0.
    struct PartialAlias {
        Effect effect;
        Effect of;
        double coefficient = 0;
    };

    /// The share of the effect's sum of squares that differences between blocks carry: 1 for an
    /// effect that is lost to the blocks; not 0.
    struct BlockConfounding {
        Effect effect;
        double share = 0;
    };

    /// Runs that were looked at.
    int runs = 0;
    /// The runs are all that some defining words allow, each equally often.
    bool isRegular = false;
    /// Length of the shortest word; for a design without defining words the generalised resolution
    /// r + 1 - max |J_r| / runs (Deng and Tang, 1999). Infinite for a full factorial.
    double resolution = 0;
    /// Element j - 1 is the number of words of j letters, or its generalisation: the sum of the
    /// squared inner products of all products of j columns with the mean, by runs^2 (Tang and Deng,
    /// 1999).
    std::vector<double> wordLengthPattern;
    /// Of a regular fraction: one word for each generated factor, which it ends with; the other
    /// factors of the word are base factors, the leftmost that will do.
    std::vector<Word> generators;
    /// All defining words, by length, when there are at most 1023; the shortest ones otherwise.
    std::vector<Word> definingWords;
    /// Sets of two and more among the mean, the main effects and the two-factor interactions.
    std::vector<AliasSet> aliasSets;
    /// Partial aliases of main effects with main effects and two-factor interactions. None in a
    /// regular fraction.
    std::vector<PartialAlias> partialAliases;
    /// Main effects and two-factor interactions that blocks take up, wholly or in part.
    std::vector<BlockConfounding> blockConfounding;
};

/// Computes the structure of a coded design [runs x factors, or factors + 1 with a block column].
/// Factor columns hold -1 and 1 or the letter codes 65 and 66; rows with a 0 are centre points and
/// are left out. Up to 64 factors.
/// @throws Exception naming the column and the value when a cell is at neither level; when there
/// are
///         no runs, or no or too many factors
[[nodiscard]] QORVA_EXPORT AliasStructure ComputeAliasStructure(const NCDataMatrix<float>& matrix,
                                                                int factorCount);

}  // namespace NCDOE
