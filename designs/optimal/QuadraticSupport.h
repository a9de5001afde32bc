#pragma once

#include "designs/optimal/engine/PointTable.h"

namespace DOpt {

/// Whether all coefficients of a quadratic model can be told apart on these points: whether the
/// model matrix has full column rank.
/// @param points [points x variables]
/// @param mixture the variables of a point add up to a constant; the model is that of Scheffe
/// (1958)
[[nodiscard]] bool DeterminesQuadraticModel(const PointTable& points, bool mixture);

}  // namespace DOpt
