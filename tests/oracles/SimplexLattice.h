#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <vector>

/// A Doehlert design in exact integers: run (a, b) is the difference of two vertices of a simplex
/// with vertices 0 to n, as the vector with +1 at a and -1 at b. Sums of runs stay in the lattice.
namespace oracles {

using LatticePoint = std::vector<int>;

inline LatticePoint Difference(int factors, int a, int b) {
    LatticePoint point(static_cast<std::size_t>(factors) + 1, 0);
    point[static_cast<std::size_t>(a)] += 1;
    point[static_cast<std::size_t>(b)] -= 1;
    return point;
}

inline LatticePoint Added(LatticePoint a, const LatticePoint& b) {
    std::transform(a.begin(), a.end(), b.begin(), a.begin(), std::plus<>());
    return a;
}

/// The shell in design order, then centre points.
inline std::vector<LatticePoint> ShellInLattice(int factors, int centerPoints) {
    std::vector<LatticePoint> points;
    for (int i = 1; i <= factors; ++i) {
        points.push_back(Difference(factors, i, 0));
    }
    for (int i = 1; i <= factors; ++i) {
        points.push_back(Difference(factors, 0, i));
    }
    for (const bool forward : {true, false}) {
        for (int a = 1; a < factors; ++a) {
            for (int b = a + 1; b <= factors; ++b) {
                points.push_back(forward ? Difference(factors, a, b) : Difference(factors, b, a));
            }
        }
    }
    points.insert(points.end(), static_cast<std::size_t>(centerPoints), Difference(factors, 0, 0));
    return points;
}

/// Cartesian coordinates, with vertex 0 at the origin and edges of length 1: vertex i stands above
/// the centroid of the vertices before it.
inline std::vector<double> ToCoordinates(const LatticePoint& point) {
    const std::size_t factors = point.size() - 1;
    std::vector<double> x(factors, 0.0);
    for (std::size_t i = 1; i <= factors; ++i) {
        for (std::size_t c = 1; c <= i; ++c) {
            const auto n = static_cast<double>(c);
            const double entry = c < i ? std::sqrt(1 / (2 * n * (n + 1)))  // centroid's coordinate
                                       : std::sqrt((n + 1) / (2 * n));     // height of a simplex
            x[c - 1] += point[i] * entry;
        }
    }
    return x;
}

/// What growth around a point must find: the rows already there, and the points that are not, each
/// once, in the order of the rows they come from. Rows count from 1.
struct Growth {
    std::set<int> existing;
    std::vector<LatticePoint> added;
};

inline Growth GrowAround(const std::vector<LatticePoint>& design, int row) {
    Growth growth;
    const LatticePoint& center = design[static_cast<std::size_t>(row - 1)];
    for (const LatticePoint& from : design) {
        const LatticePoint moved = Added(from, center);
        const auto found = std::find(design.begin(), design.end(), moved);
        if (found != design.end()) {
            growth.existing.insert(static_cast<int>(found - design.begin()) + 1);
        } else if (std::find(growth.added.begin(), growth.added.end(), moved) ==
                   growth.added.end()) {
            growth.added.push_back(moved);
        }
    }
    return growth;
}

}  // namespace oracles
