#include "designs/optimal/UnitScale.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using DOpt::PointTable;
using DOpt::UnitScale;

PointTable Points(const std::vector<std::vector<float>>& rows) {
    PointTable points(static_cast<int>(rows.front().size()));
    for (const auto& row : rows) {
        points.Append(row);
    }
    return points;
}

TEST(UnitScale, LimitsComeBackExactly) {
    const UnitScale scale({{0.1F, 0.7F, nullptr}});
    EXPECT_EQ(scale.ToReal(0, 0), 0.1F);
    EXPECT_EQ(scale.ToReal(0, 1), 0.7F);
    EXPECT_EQ(scale.ToReal(0, 1 - 1e-7F), 0.7F);
    EXPECT_EQ(scale.ToReal(0, -1e-6F), 0.1F);
    EXPECT_EQ(scale.ToReal(0, 1.5F), 0.7F);
    EXPECT_FLOAT_EQ(scale.ToReal(0, 0.5F), 0.4F);
}

TEST(UnitScale, ReversedLimitsTurnTheScale) {
    const UnitScale scale({{3, 1, nullptr}});
    EXPECT_EQ(scale.ToReal(0, 0), 3);
    EXPECT_EQ(scale.ToReal(0, 0.25F), 2.5F);
    EXPECT_EQ(scale.ToReal(0, 1), 1);
}

TEST(UnitScale, ConstraintsKeepTheirSignAtEveryPoint) {
    // 3 x - y - 40 >= 0 on [10, 20] x [-100, 100].
    const UnitScale scale({{10, 20, nullptr}, {-100, 100, nullptr}});
    const std::vector<float> units = scale.ToUnits(std::vector<float>{3, -1, -40});
    EXPECT_EQ(units[1], -1);  // the largest coefficient, 200
    for (const float u : {0.0F, 0.3F, 1.0F}) {
        for (const float v : {0.0F, 0.6F, 1.0F}) {
            const float real = 3 * scale.ToReal(0, u) - scale.ToReal(1, v) - 40;
            EXPECT_NEAR(units[0] * u + units[1] * v + units[2], real / 200, 1e-6);
        }
    }
}

TEST(UnitScale, AConstraintWithoutVariablesKeepsItsConstant) {
    const UnitScale scale({{2, 2, nullptr}});
    EXPECT_EQ(scale.ToUnits(std::vector<float>{1, -8}), (std::vector<float>{0, -0.75F}));
    EXPECT_EQ(scale.ToUnits(std::vector<float>{0, 0}), (std::vector<float>{0, 0}));
}

TEST(UnitScale, WithoutTransformsTheWorkingScaleIsItsOwn) {
    const TransformStruct identity;
    const UnitScale scale({{2, 4, &identity}});
    const PointTable vertices = Points({{0}, {1}});
    const auto working = scale.MakeWorkingScale(vertices);
    EXPECT_EQ(working.vertices, vertices);
    EXPECT_FALSE(working.back);
}

TEST(UnitScale, TransformsWorkOnRealValues) {
    const TransformStruct log(TransformStruct::Log10);
    const UnitScale scale({{10, 1000, &log}, {0, 1, nullptr}});
    const auto working = scale.MakeWorkingScale(Points({{0, 0.5F}, {1, 0.25F}}));
    EXPECT_EQ(working.vertices, Points({{1, 0.5F}, {3, 0.25F}}));
    EXPECT_NEAR(scale.ToReal(0, working.back(0, 2)), 100, 1e-3);
    EXPECT_EQ(working.back(1, 0.75F), 0.75F);
}

// Near a large low limit a float logarithm is coarser than the range.
TEST(UnitScale, LimitsSurviveATransformAndItsInverse) {
    const TransformStruct log(TransformStruct::Ln);
    const UnitScale scale({{100000, 100001, &log}});
    const auto working = scale.MakeWorkingScale(Points({{0}, {1}}));
    EXPECT_EQ(scale.ToReal(0, working.back(0, working.vertices.Row(0)[0])), 100000);
}

TEST(UnitScale, ATransformWithoutAnImageIsLeftOut) {
    const TransformStruct log(TransformStruct::Log10);
    const UnitScale scale({{0, 10, &log}});
    EXPECT_FALSE(scale.MakeWorkingScale(Points({{0}})).back);
}

}  // namespace
