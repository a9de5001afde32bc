#include "designs/optimal/engine/PointIndex.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using DOpt::PointIndex;
using DOpt::PointTable;

constexpr float cTolerance = 1e-5F;

// Points that are near, far and just about the tolerance away from one another.
PointTable ClusteredPoints(int count, int width, std::mt19937& engine) {
    std::uniform_int_distribution<int> grid(0, 3);
    std::uniform_real_distribution<float> shift(-2 * cTolerance, 2 * cTolerance);
    PointTable points(width);
    std::vector<float> point(static_cast<std::size_t>(width));
    for (int i = 0; i < count; ++i) {
        for (float& coordinate : point) {
            coordinate = static_cast<float>(grid(engine)) / 3.0F +
                         (grid(engine) == 0 ? shift(engine) : 0.0F);
        }
        points.Append(point);
    }
    return points;
}

TEST(PointIndex, AnswersAsComparingWithEveryPoint) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 engine(seed);
        const int width = 1 + static_cast<int>(seed % 4);
        const PointTable points = ClusteredPoints(600, width, engine);
        PointIndex index(width, cTolerance);
        int near = 0;
        for (int row = 0; row < points.Size(); ++row) {
            bool expected = false;
            for (int other = 0; other < row; ++other) {
                expected =
                    expected || PointIndex::IsNear(points.Row(row), points.Row(other), cTolerance);
            }
            ASSERT_EQ(index.HasNear(points, points.Row(row)), expected)
                << "seed " << seed << " row " << row;
            near += expected ? 1 : 0;
            index.Add(points, row);
        }
        EXPECT_GT(near, 0) << "seed " << seed;
        EXPECT_LT(near, 600) << "seed " << seed;
    }
}

TEST(PointIndex, RemovedRowsAreForgotten) {
    std::mt19937 engine(3);
    const PointTable points = ClusteredPoints(2000, 6, engine);
    PointIndex index(6, cTolerance);
    for (int row = 0; row < points.Size(); ++row) {
        index.Add(points, row);
    }
    for (int row = 0; row < points.Size(); ++row) {
        index.Remove(points, row);
    }
    for (int row = 0; row < points.Size(); ++row) {
        EXPECT_FALSE(index.HasNear(points, points.Row(row))) << row;
    }
}

TEST(PointIndex, ADifferenceOfTheToleranceIsNear) {
    PointTable points(1);
    points.Append(std::vector<float>{0.0F});
    PointIndex index(1, 0.125F);
    index.Add(points, 0);
    EXPECT_TRUE(index.HasNear(points, std::vector<float>{0.125F}));
    EXPECT_TRUE(index.HasNear(points, std::vector<float>{-0.125F}));
    EXPECT_FALSE(index.HasNear(points, std::vector<float>{0.1250001F}));
}

}  // namespace
