#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

/// Point lists of the designs on a simplex, by permuting shares instead of counting indices.
namespace oracles {

using Shares = std::vector<float>;
using Points = std::vector<Shares>;

inline Shares Padded(Shares shares, int components, float rest) {
    shares.resize(static_cast<std::size_t>(components), rest);
    return shares;
}

/// Every distinct arrangement of the shares, larger shares in front first.
inline Points Arrangements(Shares shares) {
    std::sort(shares.begin(), shares.end(), std::greater<>());
    Points points;
    do {
        points.push_back(shares);
    } while (std::prev_permutation(shares.begin(), shares.end()));
    return points;
}

inline Points Vertices(int components) {
    return Arrangements(Padded({1.0F}, components, 0.0F));
}

inline Points EdgeCentres(int components) {
    return Arrangements(Padded({0.5F, 0.5F}, components, 0.0F));
}

inline Points TripleBlends(int components) {
    return Arrangements(Padded({0.33333334F, 0.33333334F, 0.33333334F}, components, 0.0F));
}

/// From the back: the missing component moves from the first to the last.
inline Points FaceCentres(int components) {
    Points points =
        Arrangements(Padded({0.0F}, components, static_cast<float>(1.0 / (components - 1))));
    std::reverse(points.begin(), points.end());
    return points;
}

/// On each edge, the point nearer to its first component comes first.
inline Points EdgeThirds(int components) {
    Points points;
    for (const Shares& centre : EdgeCentres(components)) {
        for (const bool firstLarger : {true, false}) {
            Shares point = centre;
            bool isFirst = true;
            for (float& share : point) {
                if (share > 0) {
                    share = isFirst == firstLarger ? 0.6666667F : 0.33333334F;
                    isFirst = false;
                }
            }
            points.push_back(point);
        }
    }
    return points;
}

inline Points InteriorPoints(int components, int count) {
    const double n = components;
    Points points = Arrangements(Padded(
        {static_cast<float>((n + 1) / (2 * n))}, components, static_cast<float>(1 / (2 * n))));
    points.resize(static_cast<std::size_t>(count));
    return points;
}

inline Points Centroids(int components, int count) {
    return Points(static_cast<std::size_t>(count),
                  Padded({}, components, static_cast<float>(1.0 / components)));
}

inline Points Joined(const std::vector<Points>& parts) {
    Points all;
    for (const Points& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

}  // namespace oracles
