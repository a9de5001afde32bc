#pragma once

#include <gmock/gmock.h>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/Constraints.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

/// Properties of design matrices, as matchers that name the columns and rows which break them:
///   EXPECT_THAT(*design->GetDesignMatrix(), HasResolutionAtLeast(4));
/// All of them are computed from the matrix itself. Rows and columns are named from 1. Factors are
/// borrowed; they must outlive the matcher.
using DesignMatcher = ::testing::Matcher<const NCDataMatrix<float>&>;

/// Every value that a factor's column holds stands there equally often, and a level factor's column
/// holds all of its levels. A block column is looked at too.
[[nodiscard]] DesignMatcher IsBalanced(const Factors& factors);

/// The columns, each less its mean, have products that sum to zero in every pair.
[[nodiscard]] DesignMatcher HasOrthogonalColumns();

/// In every pair of columns each pair of values occurs as often as the two frequencies demand:
/// n(a, b) * rows = n(a) * n(b). It is what orthogonality means for columns of letter codes.
[[nodiscard]] DesignMatcher HasProportionalFrequencies();

/// Every cell of a coded matrix [runs x factors, one column more with blocks] is allowed: level
/// factors hold the code of one of their levels, the block column of one of the blocks, continuous
/// factors a number within -reach to reach, where reach is the star distance, and 1 at least.
[[nodiscard]] DesignMatcher HasOnlyLegalLevels(const Factors& factors,
                                               const DesignOptions& options);

/// Every column has two values, and every product of fewer than `resolution` columns, the values
/// taken as -1 and +1, sums to zero: no effects of orders that add up to less are confounded.
[[nodiscard]] DesignMatcher HasResolutionAtLeast(int resolution);

/// The mirror image of every run is a run, equally often. Letter codes of two levels mirror into
/// one another, numbers change their sign.
[[nodiscard]] DesignMatcher IsFoldOver();

/// The cells of every row add up to the target within the tolerance.
[[nodiscard]] DesignMatcher RowsSumTo(double target, double tolerance);

/// Every run, in real units, keeps all of the inequalities; a missing value does not.
[[nodiscard]] DesignMatcher KeepsWithin(const NCDOE::Constraints& constraints);

/// The last `count` rows are centre points: 0 for continuous factors, the middle level (rounded up)
/// of a Multilevel factor, the first level of a Qualitative one. A block column may hold anything.
[[nodiscard]] DesignMatcher HasCentrePointRows(int count, const Factors& factors);
