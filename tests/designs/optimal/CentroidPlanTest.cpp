#include "designs/optimal/CentroidPlan.h"

#include <gtest/gtest.h>

namespace {

using DOpt::CentroidPlan;
using DOpt::MakeMixturePlan;
using DOpt::MakeProcessPlan;
using Dimensions = std::vector<int>;

TEST(CentroidPlan, LinearProcessModelsTakeTheMiddleOnly) {
    for (const auto model : {EModel::Linear, EModel::Interaction}) {
        for (const int n : {1, 2, 3, 4, 20, 48}) {
            EXPECT_EQ(MakeProcessPlan(n, model, true).dimensions, Dimensions{n}) << n;
        }
        EXPECT_TRUE(MakeProcessPlan(49, model, true).IsEmpty());
    }
}

TEST(CentroidPlan, CurvedProcessModelsTakeEdgesUpToEightVariables) {
    for (const auto model :
         {EModel::Quadratic, EModel::SpecialCubic, EModel::Cubic, EModel::LinearQuadratic}) {
        EXPECT_EQ(MakeProcessPlan(1, model, true).dimensions, Dimensions{1});
        EXPECT_EQ(MakeProcessPlan(2, model, true).dimensions, (Dimensions{1, 2}));
        EXPECT_EQ(MakeProcessPlan(8, model, false).dimensions, (Dimensions{1, 8}));
        EXPECT_EQ(MakeProcessPlan(9, model, false).dimensions, (Dimensions{6, 7, 9}));
    }
}

TEST(CentroidPlan, PotentialTermsTakeThirdsInsteadOfCentres) {
    const CentroidPlan thirds = MakeProcessPlan(4, EModel::Quadratic, true);
    EXPECT_TRUE(thirds.edgeThirds);
    EXPECT_FALSE(thirds.edgeCentres);
    const CentroidPlan centres = MakeProcessPlan(4, EModel::Quadratic, false);
    EXPECT_FALSE(centres.edgeThirds);
    EXPECT_TRUE(centres.edgeCentres);
}

TEST(CentroidPlan, NoModelHasNoPlan) {
    EXPECT_TRUE(MakeProcessPlan(3, EModel::None, true).IsEmpty());
    for (const auto model : {EModel::None, EModel::Interaction, EModel::LinearQuadratic}) {
        EXPECT_TRUE(MakeMixturePlan(5, model, true).IsEmpty());
    }
}

TEST(CentroidPlan, LinearMixturesTakeTheMiddleOnly) {
    for (const int q : {2, 3, 4, 12}) {
        EXPECT_EQ(MakeMixturePlan(q, EModel::Linear, true).dimensions, Dimensions{q - 1}) << q;
    }
}

TEST(CentroidPlan, QuadraticMixturesTakeEdgesUpToTwentyComponents) {
    EXPECT_EQ(MakeMixturePlan(2, EModel::Quadratic, false).dimensions, Dimensions{1});
    EXPECT_EQ(MakeMixturePlan(3, EModel::Quadratic, false).dimensions, (Dimensions{1, 2}));
    EXPECT_EQ(MakeMixturePlan(20, EModel::Quadratic, true).dimensions, (Dimensions{1, 19}));
    EXPECT_EQ(MakeMixturePlan(21, EModel::Quadratic, true).dimensions, (Dimensions{17, 18, 20}));
}

TEST(CentroidPlan, CubicMixturesTakeNoDimensionTwice) {
    EXPECT_EQ(MakeMixturePlan(3, EModel::SpecialCubic, true).dimensions, (Dimensions{1, 2}));
    EXPECT_EQ(MakeMixturePlan(4, EModel::SpecialCubic, true).dimensions, (Dimensions{1, 3}));
    EXPECT_EQ(MakeMixturePlan(6, EModel::SpecialCubic, true).dimensions, (Dimensions{1, 3, 5}));
    EXPECT_EQ(MakeMixturePlan(2, EModel::Cubic, true).dimensions, (Dimensions{1}));
    EXPECT_EQ(MakeMixturePlan(3, EModel::Cubic, true).dimensions, (Dimensions{1, 2}));
    EXPECT_EQ(MakeMixturePlan(4, EModel::Cubic, true).dimensions, (Dimensions{1, 2, 3}));
    EXPECT_EQ(MakeMixturePlan(5, EModel::Cubic, true).dimensions, (Dimensions{1, 2, 4}));
    EXPECT_EQ(MakeMixturePlan(8, EModel::Cubic, true).dimensions, (Dimensions{1, 2, 5, 7}));
    EXPECT_EQ(MakeMixturePlan(9, EModel::Cubic, true).dimensions, (Dimensions{4, 5, 6, 8}));
}

TEST(CentroidPlan, CubicMixturesTakeCentresAndThirds) {
    const CentroidPlan plan = MakeMixturePlan(4, EModel::Cubic, false);
    EXPECT_TRUE(plan.edgeCentres);
    EXPECT_TRUE(plan.edgeThirds);
}

TEST(CentroidPlan, ASinglePointHasNoCentroid) {
    for (const auto model :
         {EModel::Linear, EModel::Quadratic, EModel::SpecialCubic, EModel::Cubic}) {
        EXPECT_TRUE(MakeMixturePlan(1, model, true).IsEmpty()) << model;
    }
}

}  // namespace
