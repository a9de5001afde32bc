#pragma once

#include <span>
#include <vector>

#include "designs/optimal/engine/Centroids.h"
#include "designs/optimal/engine/PointTable.h"
#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/TransformStruct.h"

namespace DOpt {

/// Variables measured in their own ranges, 0 at the low limit and 1 at the high one: the geometry's
/// tolerances are absolute, and must not depend on the units of a factor.
class UnitScale {
  public:
    struct Variable {
        float low = 0;
        float high = 1;
        const TransformStruct* transform = nullptr;  // borrowed
    };

    explicit UnitScale(std::vector<Variable> variables);

    /// Real value of a variable counted from 0. A point at a limit, but for the rounding of the
    /// geometry, gets exactly the limit; none gets beyond it.
    [[nodiscard]] float ToReal(int variable, float unit) const;
    /// Points in real units.
    [[nodiscard]] PointTable ToReal(const PointTable& points) const;
    /// A constraint (a, c) over the real values as one over the units, divided by its largest
    /// coefficient.
    [[nodiscard]] std::vector<float> ToUnits(std::span<const float> constraint) const;
    /// The scale in which centroids are formed: that of the transforms. A transform that has no
    /// image of one of the limits is left out.
    [[nodiscard]] WorkingScale MakeWorkingScale(const PointTable& vertices) const;

  private:
    [[nodiscard]] bool HasTransform(int variable) const;
    [[nodiscard]] float ToWorking(int variable, float unit) const;
    [[nodiscard]] float FromWorking(int variable, float working) const;
    [[nodiscard]] const Variable& At(int variable) const {
        return variables_[static_cast<std::size_t>(variable)];
    }

    std::vector<Variable> variables_;
};

/// A value within the rounding of the geometry of a limit, or beyond it, becomes exactly the limit.
[[nodiscard]] float SnapToLimits(float value, float low, float high);

}  // namespace DOpt
