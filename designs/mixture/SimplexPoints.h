#pragma once

#include "foundation/mat/NCDataMatrix.h"

/// A list of points on the simplex of some components (Scheffé, 1958 and 1963; Snee and Marquardt,
/// 1976) as pseudo-component proportions: every row sums to 1. Each operation appends its points,
/// in lexicographic order of the components that stand out in them.
class SimplexPoints {
  public:
    /// @param components at least 2
    explicit SimplexPoints(int components) : matrix_(0, components) {}

    /// [points x components]
    [[nodiscard]] const NCDataMatrix<float>& GetMatrix() const { return matrix_; }

    /// One component alone.
    void AddVertices();
    /// Midpoints between the overall centroid and a vertex, for the first `count` components.
    void AddInteriorPoints(int count);
    /// All components but one in equal shares.
    void AddFaceCenters();
    /// Two components in equal shares.
    void AddEdgeCenters();
    /// Two components, two to one and one to two.
    void AddEdgeThirds();
    /// Three components in equal shares.
    void AddTripleBlends();
    /// The overall centroid, `count` times.
    void AddCentroids(int count);

  private:
    [[nodiscard]] int CountComponents() const { return matrix_.SizeColumns(); }
    // Appends rows of one value and returns the number of the row before them.
    int AppendRows(int count, float value);

    NCDataMatrix<float> matrix_;
};
