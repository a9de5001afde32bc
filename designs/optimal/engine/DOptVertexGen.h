#pragma once

#include <vector>

#include "designs/optimal/engine/BitTable.h"
#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/PointTable.h"

namespace DOpt {

/// A slack within this of zero makes the constraint tight, for variables and constraint
/// coefficients of the order of one.
inline constexpr float cVertexTolerance = 1e-5F;
/// Two points closer than this in every coordinate are one.
inline constexpr float cDuplicateTolerance = 1e-5F;

struct VertexTolerances {
    float tight = cVertexTolerance;
    float duplicate = cDuplicateTolerance;
};

/// Cuts a polytope that is given by its vertices and constraints with further constraints, one at a
/// time (the double description method of Motzkin, Raiffa, Thompson and Thrall, 1953). Kept are the
/// vertices in a fixed order, those that stay before those that a cut makes, and the constraints
/// that still bound the region.
///
/// The arithmetic is part of the contract: slacks are summed in double over the variables, then the
/// constant is added, and the result is stored as float; so are the coordinates of new vertices.
class DOptVertexGen {
  public:
    /// @param vertices [vertices x variables]
    /// @param constraints [constraints x (variables + 1)]
    /// @param hasMixture the values of every vertex add up to a constant, so that the region has
    ///        one dimension less than variables
    /// @param maxVertices more vertices than this, even in between, end with TooManyVertices
    DOptVertexGen(PointTable vertices,
                  PointTable constraints,
                  bool hasMixture,
                  VertexTolerances tolerances,
                  int maxVertices);

    /// Cuts with each of the constraints, in order. Success, Inconsistent, TooManyVertices or
    /// Stopped; vertices and constraints are of use after Success only.
    [[nodiscard]] Status Cut(const PointTable& newConstraints, const StopTest& stop);

    [[nodiscard]] const PointTable& Vertices() const { return vertices_; }
    [[nodiscard]] const PointTable& Constraints() const { return constraints_; }

    /// Value of a constraint at a point, positive inside.
    [[nodiscard]] static float Slack(std::span<const float> constraint,
                                     std::span<const float> point);

  private:
    struct Sides {
        std::vector<float> slack;  // at every vertex
        std::vector<int> outside;  // vertices clearly outside the plane
        std::vector<int> inside;   // and clearly inside
        bool hasNegative = false;
        bool hasPositive = false;
    };

    [[nodiscard]] Status AddConstraint(std::span<const float> constraint, const StopTest& stop);
    [[nodiscard]] Sides Classify(std::span<const float> constraint) const;
    [[nodiscard]] Status MakeNewVertices(Sides& sides,
                                         std::span<const float> constraint,
                                         const StopTest& stop);
    void AppendConstraint(std::span<const float> constraint, const std::vector<float>& slack);
    void AppendFlags(int vertex);
    void SetFlags(int vertex, int constraint, float slack);
    void KeepInside(const std::vector<float>& slack);
    [[nodiscard]] Status DropRedundantConstraints();

    PointTable vertices_;
    PointTable constraints_;
    BitTable tight_;              // by vertex: |slack| < tolerance
    BitTable notAbove_;           // by vertex: |slack| <= tolerance
    std::vector<bool> violates_;  // by vertex: some slack < -tolerance
    VertexTolerances tolerances_;
    int shared_;  // constraints that the ends of an edge have in common
    int maxVertices_;
};

/// The constraints that are worth keeping, ascending: those that touch the region, but for those
/// tight only where another one is tight too.
/// @param tight, notAbove constraints by vertex: |slack| < tolerance, |slack| <= tolerance
[[nodiscard]] std::vector<int> ConstraintsToKeep(const BitTable& tight,
                                                 const BitTable& notAbove,
                                                 int vertices,
                                                 int constraints);

}  // namespace DOpt
