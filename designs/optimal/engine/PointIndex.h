#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "designs/optimal/engine/PointTable.h"

namespace DOpt {

/// Answers whether a point lies within a tolerance of an indexed row in every coordinate, in
/// constant time on average. Points are hashed by the cells of two skew projections: close points
/// have close projections, so that a look-up visits the cells within reach only, mostly one.
class PointIndex {
  public:
    /// @param width coordinates of a point
    /// @param tolerance largest difference of two equal coordinates
    PointIndex(int width, float tolerance);

    void Add(const PointTable& points, int row);
    /// Takes back a row that was added and has not changed since.
    void Remove(const PointTable& points, int row);
    [[nodiscard]] bool HasNear(const PointTable& points, std::span<const float> point) const;

    /// The plain test of two points.
    [[nodiscard]] static bool IsNear(std::span<const float> a,
                                     std::span<const float> b,
                                     float tolerance);

  private:
    static constexpr std::size_t cProjections = 2;
    using Cell = std::array<std::int64_t, cProjections>;
    struct Entry {
        Cell cell;
        int row;
        int next;  // entry in the same bucket, -1 for none
    };

    [[nodiscard]] std::array<double, cProjections> Project(std::span<const float> point) const;
    [[nodiscard]] Cell CellOf(std::span<const float> point) const;
    [[nodiscard]] std::size_t Bucket(const Cell& cell) const;
    void Link(int entry);
    void Grow();

    float tolerance_;
    double reach_;  // how far the projections of two near points can be apart
    double cellWidth_;
    std::vector<double> weights_;  // [projections x width]
    std::vector<int> buckets_;
    std::vector<Entry> entries_;
};

}  // namespace DOpt
