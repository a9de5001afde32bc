#include "designs/optimal/GenerateCandidateset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <string>

#include "designs/optimal/DOptGen.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/CandidateCases.h"
#include "tests/oracles/SubsetVertices.h"

namespace {

using CandidateCases::Candidates;
using CandidateCases::Generate;
using CandidateCases::MakeOptions;
using CandidateCases::Request;
using CandidateCases::Sum;
using DOpt::NumData;
using NCDOE::Constraint;

Constraint AtMost(std::vector<Constraint::Term> terms, double value) {
    return {std::move(terms), value, false};
}
Constraint AtLeast(std::vector<Constraint::Term> terms, double value) {
    return {std::move(terms), value, true};
}

std::set<std::vector<float>> RowSet(const NCDataMatrix<float>& rows, int first, int count) {
    std::set<std::vector<float>> set;
    for (int row = first; row < first + count; ++row) {
        set.emplace(rows.RowSpan(row).begin(), rows.RowSpan(row).end());
    }
    return set;
}

std::string MessageOf(const Factors& factors, const Request& request) {
    try {
        Generate(factors, request);
    } catch (const Exception& error) {
        return error.what();
    }
    return "";
}

TEST(GenerateCandidateset, TwoFactorsHaveCornersAndCentre) {
    const TestFactors factors = TestFactors().Quantitative(10, 20).Quantitative(-3, 5);
    const Candidates made = Generate(factors, {});
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    EXPECT_EQ(made.rows, (NCDataMatrix<float>{{10, -3}, {20, -3}, {10, 5}, {20, 5}, {15, 1}}));
}

TEST(GenerateCandidateset, QuadraticModelsAddEdgeCentres) {
    Request request;
    request.process = EModel::Quadratic;
    request.usePotentialTerms = false;
    const Candidates made = Generate(TestFactors().Quantitatives(2), request);
    EXPECT_EQ(made.counts, (NumData{4, 4, 1}));
    EXPECT_EQ(RowSet(made.rows, 5, 4),
              (std::set<std::vector<float>>{{-1, 0}, {1, 0}, {0, -1}, {0, 1}}));
}

TEST(GenerateCandidateset, PotentialTermsDivideEdgesInThree) {
    Request request;
    request.process = EModel::Quadratic;
    const Candidates made = Generate(TestFactors().Quantitatives(2), request);
    EXPECT_EQ(made.counts, (NumData{4, 8, 1}));
}

TEST(GenerateCandidateset, OneFactorHasItsMiddle) {
    const Candidates made = Generate(TestFactors().Quantitative(2, 4), {});
    EXPECT_EQ(made.rows, (NCDataMatrix<float>{{2}, {4}, {3}}));
    EXPECT_EQ(made.counts, (NumData{2, 1, 0}));
}

TEST(GenerateCandidateset, AConstraintWithAMarginChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    Request request;
    request.process = EModel::Quadratic;
    const Candidates free = Generate(factors, request);
    request.constraints = {AtMost({{0, 1}, {1, 1}, {2, 1}}, 3.5)};
    EXPECT_EQ(Generate(factors, request).rows, free.rows);
}

TEST(GenerateCandidateset, AnImpossibleConstraintIsInconsistent) {
    Request request;
    request.constraints = {AtLeast({{0, 1}, {1, 1}}, 2.5)};
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, AConstraintWithoutCoefficientsHoldsNowhereOrChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Request request;
    const Candidates free = Generate(factors, request);
    request.constraints = {AtMost({{0, 0}}, 0), AtMost({{0, 1}, {0, -1}}, 0.5)};
    EXPECT_EQ(Generate(factors, request).rows, free.rows);
    for (const NCDOE::Constraint& impossible :
         {AtMost({{0, 0}}, -0.25), AtLeast({{1, 2}, {1, -2}}, 0.25)}) {
        request.constraints = {impossible};
        EXPECT_EQ(MessageOf(factors, request),
                  "The candidate set could not be generated: The constraints are inconsistent.");
    }
}

TEST(GenerateCandidateset, AnEqualityIsInconsistent) {
    Request request;
    request.constraints = {AtLeast({{0, 1}, {1, 1}}, 0.5), AtMost({{0, 1}, {1, 1}}, 0.5)};
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, AFixedMixtureComponentIsInconsistent) {
    EXPECT_EQ(
        MessageOf(TestFactors().Formulation(0.2F, 0.2F).Formulation(0, 1).Formulation(0, 1), {}),
        "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, AFreeMixtureKeepsItsPureComponents) {
    const Candidates made = Generate(TestFactors().Formulation().Formulation().Formulation(), {});
    EXPECT_EQ(RowSet(made.rows, 1, 3),
              (std::set<std::vector<float>>{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
    EXPECT_EQ(made.counts, (NumData{3, 0, 1}));
}

TEST(GenerateCandidateset, AConstantShareIsLeftOut) {
    const Candidates made =
        Generate(TestFactors().Formulation(0, 1).Formulation(0, 1).WithConstantShare(0.25F), {});
    EXPECT_EQ(RowSet(made.rows, 1, 2), (std::set<std::vector<float>>{{0.75F, 0}, {0, 0.75F}}));
}

TEST(GenerateCandidateset, ALevelFactorCopiesTheProcessRows) {
    const Candidates made = Generate(TestFactors().Multilevel({10, 20, 30}).Quantitative(0, 1), {});
    // The middle level comes last.
    EXPECT_EQ(made.rows,
              (NCDataMatrix<float>{{10, 0},
                                   {10, 1},
                                   {10, 0.5F},
                                   {30, 0},
                                   {30, 1},
                                   {30, 0.5F},
                                   {20, 0},
                                   {20, 1},
                                   {20, 0.5F}}));
    EXPECT_EQ(made.counts, (NumData{6, 3, 0}));
}

TEST(GenerateCandidateset, LevelsAloneGiveTheirCombinations) {
    const Candidates made = Generate(TestFactors().Qualitative(3).Multilevel({1, 2}), {});
    EXPECT_EQ(made.rows,
              (NCDataMatrix<float>{
                  {-1, -1, 1}, {1, 0, 1}, {0, 1, 1}, {-1, -1, 2}, {1, 0, 2}, {0, 1, 2}}));
    EXPECT_EQ(made.counts, (NumData{6, 0, 0}));
}

TEST(GenerateCandidateset, BlocksAreCodingColumnsBehindTheFactors) {
    Request request;
    request.blocks = 2;
    const Candidates made =
        Generate(TestFactors().Formulation().Formulation().Quantitative(), request);
    ASSERT_EQ(made.rows.SizeColumns(), 4);
    // Process {-1, 1} crossed with two components, and the centre; then the other block.
    ASSERT_EQ(made.rows.SizeRows(), 2 * 5);
    EXPECT_EQ(
        RowSet(made.rows, 1, 5),
        (std::set<std::vector<float>>{
            {1, 0, -1, -1}, {0, 1, -1, -1}, {1, 0, 1, -1}, {0, 1, 1, -1}, {0.5F, 0.5F, 0, -1}}));
    EXPECT_EQ(made.rows(6, 4), 1);
    EXPECT_EQ(made.counts, (NumData{8, 0, 2}));
}

TEST(GenerateCandidateset, ALimitCountsCells) {
    Request request;
    request.limit = 9;
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(MessageOf(factors, request),
              "The candidate set could not be generated: The candidate set will exceed the limit "
              "of runs.");
    request.limit = 10;
    EXPECT_EQ(Generate(factors, request).rows.SizeRows(), 5);
}

TEST(GenerateCandidateset, TheLimitHoldsForLevelsAndForCrossedBlocks) {
    Request request;
    request.limit = 10;
    for (const TestFactors& factors : {TestFactors().MultilevelOf(11),
                                       TestFactors().Quantitative().Formulation().Formulation(),
                                       TestFactors().Quantitative().MultilevelOf(2)}) {
        EXPECT_NE(MessageOf(factors, request).find("exceed the limit of runs"), std::string::npos);
    }
}

// At most two of 24 shares each: C(24, 12), some 2.7 million vertices, of which a limit lets no
// more be made than it and a million cells hold.
TEST(GenerateCandidateset, ARegionFarAboveTheLimitIsNotCutToItsEnd) {
    TestFactors factors;
    for (int i = 0; i < 24; ++i) {
        factors.Formulation(0, 2.0F / 24);
    }
    Request request;
    request.limit = 10;
    EXPECT_NE(MessageOf(factors, request).find("Too many vertices"), std::string::npos);
}

TEST(GenerateCandidateset, GrowsByDoublingAllRows) {
    Request request;
    request.runs = 17;
    request.grow = true;
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Candidates made = Generate(factors, request);
    ASSERT_EQ(made.rows.SizeRows(), 20);
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    for (int row = 6; row <= 20; ++row) {
        EXPECT_EQ(made.rows.GetRow(row), made.rows.GetRow(row - 5));
    }
    request.grow = false;
    EXPECT_EQ(Generate(factors, request).rows.SizeRows(), 5);
}

TEST(GenerateCandidateset, NoFactorsAreRefused) {
    EXPECT_EQ(MessageOf(TestFactors(), {}), "The candidate set could not be generated.");
}

TEST(GenerateCandidateset, AFactorWithoutLevelsHasNoRuns) {
    EXPECT_EQ(MessageOf(TestFactors().Multilevel({}), {}),
              "The candidate set could not be generated.");
}

TEST(GenerateCandidateset, NoModelForProcessFactorsIsRefused) {
    Request request;
    request.process = EModel::None;
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: No design for the problem. Internal "
              "D-Optimal error number 6003.");
}

TEST(GenerateCandidateset, FactorsWithoutARangeAreRefused) {
    const TestFactors factors = TestFactors().Quantitative().Other(CEType::Time, {1, 2}, 2);
    EXPECT_NE(MessageOf(factors, {}).find("6003"), std::string::npos);
}

TEST(GenerateCandidateset, MissingLimitsAreRefused) {
    EXPECT_NE(MessageOf(TestFactors().Quantitative(0, std::nanf("")), {}).find("6003"),
              std::string::npos);
}

TEST(GenerateCandidateset, TooManyLevelCombinationsAreRefused) {
    TestFactors factors;
    for (int i = 0; i < 4; ++i) {
        factors.Qualitative(216);  // 216^4 = 2,176,782,336 = 0x81bf1000
    }
    EXPECT_NE(MessageOf(factors, {}).find("Too many vertices"), std::string::npos);
}

TEST(GenerateCandidateset, AFailedCallLeavesTheCountsAlone) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Request request;
    request.limit = 1;
    NumData counts;
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     nullptr, factors, MakeOptions(factors, request), false, &counts, nullptr, 1)),
                 Exception);
    EXPECT_EQ(counts, NumData());
}

TEST(GenerateCandidateset, OptionsOfNoFamilyHaveNoConstraintsAndNoMixtureModel) {
    DesignOptions options;
    options.SetModel(EModel::Linear);
    const TestFactors factors = TestFactors().Formulation().Formulation().Formulation();
    NumData counts;
    const auto rows =
        DOpt::GenerateCandidateset(nullptr, factors, options, false, &counts, nullptr, 0);
    EXPECT_EQ(rows.SizeRows(), 3);
    EXPECT_EQ(counts, (NumData{3, 0, 0}));
}

TEST(GenerateCandidateset, AnEmptyPlanCrossesAllRowsOfItsBlock) {
    Request request;
    request.mixture = EModel::None;
    const Candidates made =
        Generate(TestFactors().Quantitatives(2).Formulation().Formulation(), request);
    EXPECT_EQ(made.rows.SizeRows(), 4 * 2);
    EXPECT_EQ(made.counts, (NumData{8, 0, 0}));
}

TEST(GenerateCandidateset, AGeneratorKeepsItsOwnOrder) {
    const TestFactors factors = TestFactors().Formulation().Quantitative().Formulation();
    DOptGen generator;
    const auto rows = DOpt::GenerateCandidateset(
        &generator, factors, MakeOptions(factors, {}), false, nullptr, nullptr, 0);
    ASSERT_NE(generator.GetCandidates(), nullptr);
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        EXPECT_EQ(generator.GetCandidates()->rows(row, 1), rows(row, 2));
        EXPECT_EQ(generator.GetCandidates()->rows(row, 2), rows(row, 1));
    }
    EXPECT_EQ(generator.GetMixtureVariables(), 2);
    EXPECT_EQ(generator.GetStatus(), DOpt::Success);
}

TEST(GenerateCandidateset, AnEarlierResultNeverStandsForAFailedOne) {
    DOptGen generator;
    const TestFactors good = TestFactors().Quantitatives(2);
    static_cast<void>(DOpt::GenerateCandidateset(
        &generator, good, MakeOptions(good, {}), false, nullptr, nullptr, 0));
    const TestFactors empty = TestFactors().Multilevel({});
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     &generator, empty, MakeOptions(empty, {}), false, nullptr, nullptr, 0)),
                 Exception);
}

TEST(GenerateCandidateset, AFreeSumMakesMixturesProcessVariables) {
    const TestFactors factors = TestFactors().Formulation(0, 0.4F).Quantitative().WithFiller(true);
    const Candidates made = Generate(factors, {});
    EXPECT_EQ(made.counts, (NumData{4, 0, 1}));
    EXPECT_EQ(RowSet(made.rows, 1, 4),
              (std::set<std::vector<float>>{{0, -1}, {0.4F, -1}, {0, 1}, {0.4F, 1}}));
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

TEST(GenerateCandidateset, MoreThanTenFactorsStartFromAFraction) {
    for (const int n : {11, 16, 28}) {
        const Candidates made = Generate(TestFactors().Quantitatives(n), {});
        EXPECT_EQ(made.counts, (NumData{1024, 0, 1})) << n << " factors";
        EXPECT_EQ(RowSet(made.rows, 1, 1024).size(), 1024U) << n << " factors";
    }
    EXPECT_EQ(Generate(TestFactors().Quantitatives(32), {}).counts, (NumData{2048, 0, 1}));
}

TEST(GenerateCandidateset, ConstrainedLinearModelsTakeAllCornersOfTwelve) {
    Request request;
    request.constraints = {AtMost({{0, 1}}, 2)};
    EXPECT_EQ(Generate(TestFactors().Quantitatives(12), request).counts.ExtVert, 4096);
}

TEST(GenerateCandidateset, FactorsBeyondTheFractionsAreRefused) {
    EXPECT_NE(MessageOf(TestFactors().Quantitatives(33), {}).find("6003"), std::string::npos);
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

TEST(GenerateCandidateset, PointsAtALimitHaveExactlyTheLimit) {
    std::mt19937 engine(17);
    std::uniform_real_distribution<double> uniform(0, 1);
    for (int round = 0; round < 100; ++round) {
        TestFactors factors;
        std::vector<float> limits;
        for (int i = 0; i < 4; ++i) {
            const double scale = std::pow(10, 10 * uniform(engine) - 5);
            const auto low = static_cast<float>(scale * (uniform(engine) - 0.5));
            const auto high = low + static_cast<float>(scale * (0.1 + uniform(engine)));
            factors.Quantitative(low, high);
            limits.insert(limits.end(), {low, high});
        }
        Request request;
        request.process = EModel::Quadratic;
        request.constraints = {
            AtMost({{0, 1.0 / (static_cast<double>(limits[1]) - limits[0])},
                    {1, 1.0 / (static_cast<double>(limits[3]) - limits[2])}},
                   1.4 + limits[0] / (static_cast<double>(limits[1]) - limits[0]) +
                       limits[2] / (static_cast<double>(limits[3]) - limits[2]))};
        const Candidates made = Generate(factors, request);
        EXPECT_EQ(made.counts.ExtVert, 20) << "round " << round;
        for (int row = 1; row <= made.rows.SizeRows(); ++row) {
            for (std::size_t i = 0; i < 4; ++i) {
                const float value = made.rows(row, static_cast<int>(i) + 1);
                const float low = limits[2 * i];
                const float high = limits[2 * i + 1];
                EXPECT_GE(value, low);
                EXPECT_LE(value, high);
                const float near = 1e-4F * (high - low);
                EXPECT_TRUE(value == low || value - low > near) << "round " << round;
                EXPECT_TRUE(value == high || high - value > near) << "round " << round;
            }
        }
    }
}

// All subsets of constraints, solved in the factors' own units relative to their ranges.
TEST(GenerateCandidateset, VerticesAreRightAtEveryMagnitude) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 240; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(-1, 1);
        const int n = 3 + static_cast<int>(seed % 4);
        const double scale = std::pow(10.0, static_cast<int>(seed % 12) - 6);  // 1e-6 to 1e5
        TestFactors factors;
        for (int i = 0; i < n; ++i) {
            factors.Quantitative(static_cast<float>(scale), static_cast<float>(3 * scale));
        }
        // In units u from 0 to 1: x = scale * (1 + 2 u).
        SubsetVertices::Matrix rows;
        for (int i = 0; i < n; ++i) {
            SubsetVertices::Vector row(static_cast<std::size_t>(n) + 1, 0.0);
            row[static_cast<std::size_t>(i)] = 1;
            rows.push_back(row);
            row[static_cast<std::size_t>(i)] = -1;
            row.back() = 1;
            rows.push_back(row);
        }
        Request request;
        for (unsigned cut = 0; cut < 1 + seed % 2; ++cut) {
            SubsetVertices::Vector row;
            Constraint constraint;
            double value = 0;
            for (int i = 0; i < n; ++i) {
                const double a = uniform(engine);
                row.push_back(a);
                constraint.terms.push_back({i, a / (2 * scale)});
                value += a * (0.5 + 0.3 * uniform(engine));
            }
            row.push_back(-value);
            rows.push_back(row);
            for (int i = 0; i < n; ++i) {
                value += row[static_cast<std::size_t>(i)] * 0.5;
            }
            constraint.value = value;
            request.constraints.push_back(constraint);
        }
        const auto truth = SubsetVertices::Find(rows, static_cast<std::size_t>(n), nullptr, 3e-5);
        if (truth.empty()) {
            EXPECT_NE(MessageOf(factors, request).find("inconsistent"), std::string::npos);
            continue;
        }
        const Candidates made = Generate(factors, request);
        ++compared;
        EXPECT_EQ(made.counts.ExtVert, static_cast<int>(truth.size()));
        for (int row = 1; row <= made.counts.ExtVert; ++row) {
            SubsetVertices::Vector units;
            for (int i = 1; i <= n; ++i) {
                units.push_back((static_cast<double>(made.rows(row, i)) / scale - 1) / 2);
            }
            EXPECT_TRUE(SubsetVertices::Contains(truth, units, 1e-4)) << "row " << row;
        }
    }
    EXPECT_GT(compared, 200);
}

TEST(GenerateCandidateset, MixtureVerticesAreThoseOfAllSubsets) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(0, 1);
        const int q = 3 + static_cast<int>(seed % 4);
        TestFactors factors;
        SubsetVertices::Matrix rows;
        for (int i = 0; i < q; ++i) {
            const auto low = static_cast<float>(0.7 * uniform(engine) / q);
            const auto high = static_cast<float>((1.1 + 2 * uniform(engine)) / q);
            factors.Formulation(low, high);
            SubsetVertices::Vector row(static_cast<std::size_t>(q) + 1, 0.0);
            row[static_cast<std::size_t>(i)] = 1;
            row.back() = -static_cast<double>(low);
            rows.push_back(row);
            row[static_cast<std::size_t>(i)] = -1;
            row.back() = static_cast<double>(high);
            rows.push_back(row);
        }
        const double total = 1;
        const auto truth = SubsetVertices::Find(rows, static_cast<std::size_t>(q), &total, 2e-5);
        ASSERT_FALSE(truth.empty());
        const Candidates made = Generate(factors, {});
        ++compared;
        EXPECT_EQ(made.counts.ExtVert, static_cast<int>(truth.size()));
        for (int row = 1; row <= made.counts.ExtVert; ++row) {
            const auto span = made.rows.RowSpan(row);
            EXPECT_TRUE(SubsetVertices::Contains(truth, {span.begin(), span.end()}, 5e-5));
        }
    }
    EXPECT_EQ(compared, 150);
}

// Every kind of model, block, level factor and constraint against one another.
TEST(GenerateCandidateset, CountsAreTheRowsByKindInCrossedCases) {
    int cases = 0;
    for (int processes = 0; processes <= 5; ++processes) {
        for (int mixtures = 0; mixtures <= 5; mixtures += mixtures == 0 ? 2 : 1) {
            for (const int model : {1, 3, 4, 5}) {
                for (int levels = 0; levels <= 1; ++levels) {
                    if (processes + mixtures == 0) {
                        continue;
                    }
                    TestFactors factors;
                    for (int i = 0; i < mixtures; ++i) {
                        factors.Formulation(0, i % 2 == 0 ? 1 : 0.7F);
                    }
                    factors.Quantitatives(processes);
                    if (levels == 1) {
                        factors.MultilevelOf(3).Qualitative(2);
                    }
                    Request request;
                    request.process =
                        model == 4 ? EModel::Interaction : static_cast<EModel::Type>(model);
                    request.mixture = static_cast<EModel::Type>(model);
                    request.usePotentialTerms = cases % 2 == 0;
                    if (processes > 1 && cases % 3 == 0) {
                        request.constraints = {AtMost({{mixtures, 1}, {mixtures + 1, 1}}, 1.3)};
                    }
                    const Candidates made = Generate(factors, request);
                    ASSERT_EQ(Sum(made.counts), made.rows.SizeRows())
                        << processes << " process, " << mixtures << " mixture factors, model "
                        << model << ", levels " << levels;
                    ++cases;
                }
            }
        }
    }
    EXPECT_EQ(cases, (6 * 5 - 1) * 4 * 2);
}

TEST(GenerateCandidateset, EveryCandidateKeepsRangesAndConstraints) {
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(-1, 1);
        const int n = 2 + static_cast<int>(seed % 4);
        TestFactors factors;
        factors.Formulation(0.1F, 0.6F).Formulation(0.05F, 0.7F).Formulation(0, 0.5F);
        for (int i = 0; i < n; ++i) {
            factors.Quantitative(-2, 3);
        }
        if (seed % 3 == 0) {
            factors.Transformed(TransformStruct(TransformStruct::Exp));
        }
        Request request;
        request.process = seed % 2 == 0 ? EModel::Quadratic : EModel::Linear;
        request.mixture = seed % 3 == 0 ? EModel::Cubic : EModel::Quadratic;
        Constraint process;
        double middle = 0;
        for (int i = 0; i < n; ++i) {
            process.terms.push_back({3 + i, uniform(engine)});
            middle += 0.5 * process.terms.back().coefficient;
        }
        process.value = middle + 0.2 * uniform(engine);
        request.constraints = {process, AtMost({{0, 1}, {2, 0.5}}, 0.6)};
        const Candidates made = Generate(factors, request);
        for (int row = 1; row <= made.rows.SizeRows(); ++row) {
            const auto values = made.rows.RowSpan(row);
            double total = 0;
            for (std::size_t i = 0; i < values.size(); ++i) {
                const auto settings = factors.GetFactorSettings(static_cast<int>(i));
                ASSERT_GE(values[i], settings[0]);
                ASSERT_LE(values[i], settings[1]);
                total += i < 3 ? static_cast<double>(values[i]) : 0;
            }
            ASSERT_NEAR(total, 1, 2e-5) << "row " << row;
            for (const Constraint& constraint : request.constraints) {
                double sum = 0;
                for (const auto& term : constraint.terms) {
                    sum += term.coefficient *
                           static_cast<double>(values[static_cast<std::size_t>(term.factor)]);
                }
                const double slack =
                    constraint.greaterOrEqual ? sum - constraint.value : constraint.value - sum;
                ASSERT_GE(slack, -1e-4) << "row " << row;
            }
        }
    }
}

TEST(GenerateCandidateset, ASetCancelFlagStopsAtOnce) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const bool cancel = true;
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     nullptr, factors, MakeOptions(factors, {}), false, nullptr, &cancel, 0)),
                 CancelException);
}

}  // namespace
