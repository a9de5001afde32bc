#include "designs/optimal/GenerateCandidateset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "tests/designs/optimal/CandidateCases.h"

namespace {

using CandidateCases::AtLeast;
using CandidateCases::AtMost;
using CandidateCases::Candidates;
using CandidateCases::Generate;
using CandidateCases::MessageOf;
using CandidateCases::Request;
using CandidateCases::RowSet;
using CandidateCases::Sum;
using DOpt::NumData;
using NCDOE::Constraint;

TEST(GenerateCandidateset, AConstraintWithAMarginChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    Request request;
    request.process = EModel::Quadratic;
    const Candidates free = Generate(factors, request);
    request.constraints = {AtMost({{0, 1}, {1, 1}, {2, 1}}, 3.5)};
    EXPECT_EQ(Generate(factors, request).rows, free.rows);
}

TEST(GenerateCandidateset, AConstantShareIsLeftOut) {
    const Candidates made =
        Generate(TestFactors().Formulation(0, 1).Formulation(0, 1).WithConstantShare(0.25F), {});
    EXPECT_EQ(RowSet(made.rows, 1, 2), (std::set<std::vector<float>>{{0.75F, 0}, {0, 0.75F}}));
}

TEST(GenerateCandidateset, TransformedFactorsHaveTheirCentreOnTheirScale) {
    Request request;
    request.process = EModel::Quadratic;
    request.usePotentialTerms = false;
    const Candidates made = Generate(TestFactors()
                                         .Quantitative(1, 100)
                                         .Transformed(TransformStruct(TransformStruct::Log10))
                                         .Quantitative(0, 1),
                                     request);
    ASSERT_EQ(made.counts, (NumData{4, 4, 1}));
    for (int row = 1; row <= 8; ++row) {
        const float value = made.rows(row, 1);
        EXPECT_TRUE(value == 1 || value == 100 || std::fabs(value - 10) < 1e-4F) << value;
    }
    EXPECT_NEAR(made.rows(9, 1), 10, 1e-4);
    EXPECT_EQ(made.rows(9, 2), 0.5F);
}

TEST(GenerateCandidateset, ATransformWithoutAnImageOfALimitIsLeftOut) {
    const Candidates made = Generate(
        TestFactors().Quantitative(0, 100).Transformed(TransformStruct(TransformStruct::Log10)),
        {});
    EXPECT_EQ(made.rows, (NCDataMatrix<float>{{0}, {100}, {50}}));
}

// On the log scale the middle of the edge x + y = 110 is (10, 10), where x + y is only 20.
TEST(GenerateCandidateset, TransformedEdgesStayInsideTheConstraints) {
    Request request;
    request.process = EModel::Quadratic;
    TestFactors factors;
    for (int i = 0; i < 2; ++i) {
        factors.Quantitative(1, 100).Transformed(TransformStruct(TransformStruct::Log10));
    }
    request.constraints = {AtLeast({{0, 1}, {1, 1}}, 101)};
    const Candidates made = Generate(factors, request);
    ASSERT_GT(made.counts.NumEdges, 0);
    for (int row = 1; row <= made.rows.SizeRows(); ++row) {
        EXPECT_GE(made.rows(row, 1) + made.rows(row, 2), 101 - 1e-2) << "row " << row;
    }
}

TEST(GenerateCandidateset, ARangeOfZeroStaysOneValue) {
    Request request;
    request.constraints = {AtMost({{1, 1}}, 0.5)};
    const Candidates made = Generate(TestFactors().Quantitative(7, 7).Quantitative(0, 1), request);
    EXPECT_EQ(Sum(made.counts), made.rows.SizeRows());
    for (int row = 1; row <= made.rows.SizeRows(); ++row) {
        EXPECT_EQ(made.rows(row, 1), 7);
        EXPECT_LE(made.rows(row, 2), 0.5F);
    }
}

TEST(GenerateCandidateset, AConstraintOnARangeOfZeroIsTrueOrFalse) {
    const TestFactors factors = TestFactors().Quantitative(7, 7).Quantitative(0, 1);
    Request request;
    request.constraints = {AtMost({{0, 1}}, 8)};
    EXPECT_EQ(Generate(factors, request).counts, (NumData{4, 0, 1}));
    request.constraints = {AtMost({{0, 1}}, 6)};
    EXPECT_NE(MessageOf(factors, request).find("inconsistent"), std::string::npos);
}

TEST(GenerateCandidateset, ReversedLimitsGiveTheSameRegion) {
    Request request;
    request.constraints = {AtMost({{0, 1}, {1, 1}}, 1.5)};
    const Candidates made = Generate(TestFactors().Quantitative(1, 0).Quantitative(0, 1), request);
    EXPECT_EQ(RowSet(made.rows, 1, made.counts.ExtVert),
              (std::set<std::vector<float>>{{0, 0}, {1, 0}, {0, 1}, {1, 0.5F}, {0.5F, 1}}));
}

TEST(GenerateCandidateset, ThousandsOfConstraintsAreTaken) {
    Request request;
    for (int i = 0; i < 3000; ++i) {
        const double angle = 2 * 3.14159265358979 * i / 3000;
        request.constraints.push_back(
            AtMost({{0, std::cos(angle)}, {1, std::sin(angle)}}, i % 30 == 0 ? 0.8 : 0.9));
    }
    const Candidates made = Generate(TestFactors().Quantitatives(2), request);
    EXPECT_EQ(made.counts.ExtVert, 100);
}

TEST(GenerateCandidateset, TenFactorsCanBeCut) {
    Request request;
    request.process = EModel::Quadratic;
    request.constraints = {AtMost({{0, 1}, {1, 1}}, 1)};
    const Candidates made = Generate(TestFactors().Quantitatives(10), request);
    // A quarter of the corners goes, each leaves two new ones.
    EXPECT_EQ(made.counts.ExtVert, 768 + 512);
}

TEST(GenerateCandidateset, ConstrainedLinearModelsTakeAllCornersOfTwelve) {
    Request request;
    request.constraints = {AtMost({{0, 1}}, 2)};
    EXPECT_EQ(Generate(TestFactors().Quantitatives(12), request).counts.ExtVert, 4096);
}

// McLean and Anderson, "Extreme vertices design of mixture experiments", Technometrics 8 (1966):
// four components of a railroad flare, eight vertices.
TEST(GenerateCandidateset, FlareExampleOfMcLeanAndAnderson) {
    const Candidates made = Generate(TestFactors()
                                         .Formulation(0.40F, 0.60F)
                                         .Formulation(0.10F, 0.50F)
                                         .Formulation(0.10F, 0.50F)
                                         .Formulation(0.03F, 0.08F),
                                     {});
    ASSERT_EQ(made.counts.ExtVert, 8);
    const double published[8][4] = {{0.40, 0.10, 0.47, 0.03},
                                    {0.40, 0.10, 0.42, 0.08},
                                    {0.60, 0.10, 0.27, 0.03},
                                    {0.60, 0.10, 0.22, 0.08},
                                    {0.40, 0.47, 0.10, 0.03},
                                    {0.40, 0.42, 0.10, 0.08},
                                    {0.60, 0.27, 0.10, 0.03},
                                    {0.60, 0.22, 0.10, 0.08}};
    for (const auto& vertex : published) {
        int found = 0;
        for (int row = 1; row <= 8; ++row) {
            bool same = true;
            for (int i = 0; i < 4; ++i) {
                same = same &&
                       std::fabs(static_cast<double>(made.rows(row, i + 1)) - vertex[i]) < 1e-6;
            }
            found += same ? 1 : 0;
        }
        EXPECT_EQ(found, 1) << vertex[0] << " " << vertex[1] << " " << vertex[2];
    }
    // The overall centroid is the mean of the vertices.
    const int last = made.rows.SizeRows();
    EXPECT_NEAR(made.rows(last, 1), 0.5, 1e-6);
    EXPECT_NEAR(made.rows(last, 2), 0.2225, 1e-6);
    EXPECT_NEAR(made.rows(last, 4), 0.055, 1e-6);
}

// The region of that example has 6 facets and 12 edges: Euler's 8 - 12 + 6 = 2.
TEST(GenerateCandidateset, FlareExampleHasTwelveEdges) {
    Request request;
    request.mixture = EModel::Quadratic;
    request.usePotentialTerms = false;
    const Candidates made = Generate(TestFactors()
                                         .Formulation(0.40F, 0.60F)
                                         .Formulation(0.10F, 0.50F)
                                         .Formulation(0.10F, 0.50F)
                                         .Formulation(0.03F, 0.08F),
                                     request);
    EXPECT_EQ(made.counts, (NumData{8, 12, 1}));
}

// Components of at most 1/k: the hypersimplex, with C(q, k) vertices and C(q, k) k (q - k) / 2
// edges.
TEST(GenerateCandidateset, EqualUpperLimitsGiveHypersimplices) {
    const int cases[][4] = {{4, 2, 6, 12}, {5, 2, 10, 30}, {6, 3, 20, 90}, {7, 3, 35, 210}};
    for (const auto& [q, k, vertices, edges] : cases) {
        TestFactors factors;
        for (int i = 0; i < q; ++i) {
            factors.Formulation(0, 1.0F / static_cast<float>(k));
        }
        Request request;
        request.mixture = EModel::Quadratic;
        request.usePotentialTerms = false;
        EXPECT_EQ(Generate(factors, request).counts, (NumData{vertices, edges, 1}))
            << q << " components of at most 1/" << k;
    }
}

// Pure components have C(q, 2) edges between them.
TEST(GenerateCandidateset, SimplicesHaveAnEdgeBetweenEveryPair) {
    for (int q = 3; q <= 20; ++q) {
        TestFactors factors;
        for (int i = 0; i < q; ++i) {
            factors.Formulation();
        }
        Request request;
        request.mixture = EModel::Quadratic;
        EXPECT_EQ(Generate(factors, request).counts, (NumData{q, q * (q - 1), 1})) << q;
    }
}

// The plane through the middle of the cube cuts off half of the corners and meets, at odd n, the
// C(n, (n - 1) / 2) (n + 1) / 2 edges between the two middle layers of corners.
TEST(GenerateCandidateset, CubesCutInTheMiddleGainTheirCrossSection) {
    const int sections[][2] = {{3, 6}, {5, 30}, {7, 140}, {9, 630}};
    for (const auto& [n, crossed] : sections) {
        Request request;
        Constraint sum;
        for (int i = 0; i < n; ++i) {
            sum.terms.push_back({i, 1});
        }
        sum.greaterOrEqual = false;
        request.constraints = {sum};
        EXPECT_EQ(Generate(TestFactors().Quantitatives(n), request).counts.ExtVert,
                  (1 << (n - 1)) + crossed)
            << n;
    }
}

}  // namespace
