#include "designs/optimal/engine/Centroids.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>

#include "designs/optimal/engine/DOptVertexGen.h"
#include "designs/optimal/engine/FaceWalk.h"
#include "tests/designs/optimal/engine/RegionSamples.h"

namespace {

using DOpt::CentroidRequest;
using DOpt::CtdList;
using DOpt::DOptVertexGen;
using DOpt::PointTable;
using DOpt::Region;
using DOpt::WorkingScale;
using RegionSamples::Sample;
using RegionSamples::ToRows;
using RegionSamples::ToTable;

int Variables(const Sample& sample) {
    return static_cast<int>(sample.start.vertices.front().size());
}

Region CutRegion(const Sample& sample) {
    const int variables = Variables(sample);
    DOptVertexGen generator(ToTable(sample.start.vertices, variables),
                            ToTable(sample.start.constraints, variables + 1),
                            sample.start.hasMixture,
                            {},
                            1000000);
    EXPECT_EQ(generator.Cut(ToTable(sample.cuts, variables + 1), {}), DOpt::Success);
    return {generator.Vertices(), generator.Constraints(), sample.start.hasMixture};
}

CentroidRequest Request(std::vector<int> dimensions, bool centres, bool thirds) {
    CentroidRequest request;
    request.dimensions = std::move(dimensions);
    request.edgeCentres = centres;
    request.edgeThirds = thirds;
    return request;
}

CtdList Compute(const Region& region, const CentroidRequest& request) {
    CtdList found(region.vertices.Width());
    EXPECT_EQ(DOpt::ComputeCentroids(region, {region.vertices, {}}, request, {}, found),
              DOpt::Success);
    return found;
}

// Squares and their roots stand for a transform: the mean on one scale is none on the other.
float Squared(std::size_t variable, float value) {
    return variable % 2 == 0 ? value * value : value;
}
float Rooted(std::size_t variable, float value) {
    return variable % 2 == 0 ? std::sqrt(std::max(value, 0.0F)) : value;
}

void ExpectSameAsLiteral(const Sample& sample, const CentroidRequest& request, bool transformed) {
    LiteralRegion::State literal = sample.start;
    if (LiteralRegion::Cut(literal, sample.cuts) != 0) {
        return;
    }
    const Region region = CutRegion(sample);
    LiteralRegion::Scale scale;
    WorkingScale working{region.vertices, {}};
    if (transformed) {
        scale = {Squared, Rooted};
        for (int row = 0; row < working.vertices.Size(); ++row) {
            for (std::size_t i = 0; i < working.vertices.Row(row).size(); ++i) {
                working.vertices.Row(row)[i] = Squared(i, working.vertices.Row(row)[i]);
            }
        }
        working.back = [](int variable, float value) {
            return Rooted(static_cast<std::size_t>(variable), value);
        };
    }
    const auto expected = LiteralRegion::FindCentroids(
        literal, scale, request.dimensions, request.edgeCentres, request.edgeThirds);
    CtdList found(region.vertices.Width());
    ASSERT_EQ(DOpt::ComputeCentroids(region, working, request, {}, found), DOpt::Success);
    ASSERT_EQ(found.points.Size(), static_cast<int>(expected.points.size()));
    const auto rows = ToRows(found.points);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i], expected.points[i].values) << "point " << i;
        ASSERT_EQ(found.records[i].dimension, expected.points[i].dimension) << "point " << i;
        ASSERT_EQ(found.records[i].edgeLength, expected.points[i].length) << "point " << i;
    }
}

TEST(Centroids, RandomRegionsEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        const int n = 2 + static_cast<int>(seed % 4);
        Sample sample = RegionSamples::Cube(n);
        RegionSamples::AddCuts(sample, static_cast<int>(seed % 5), seed % 3 == 0, engine);
        std::vector<int> dimensions;
        for (int dimension = 1; dimension <= n; ++dimension) {
            dimensions.push_back(dimension);
        }
        ExpectSameAsLiteral(
            sample, Request(dimensions, seed % 2 == 0, seed % 5 < 3), seed % 7 == 0);
    }
}

TEST(Centroids, RandomMixturesEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<float> uniform(0, 1);
        const int n = 2 + static_cast<int>(seed % 5);
        Sample sample = RegionSamples::Simplex(n);
        for (int i = 0; i < n; ++i) {
            const float share = 1.0F / static_cast<float>(n);
            const bool equal = seed % 4 == 0;
            RegionSamples::AddLimits(sample,
                                     static_cast<std::size_t>(i),
                                     equal ? 0 : 0.8F * share * uniform(engine),
                                     equal ? 0.5F : share * (1 + 2 * uniform(engine)));
        }
        ExpectSameAsLiteral(
            sample, Request({1, n - 2, n - 1}, seed % 2 == 0, seed % 3 == 0), seed % 7 == 0);
    }
}

// 8-cube: 1,024 edges for 500 places; 7-cube: 448 edges, with thirds 896.
TEST(Centroids, BeyondFiveHundredEdgesTheLongestStay) {
    std::mt19937 engine(11);
    Sample plain = RegionSamples::Cube(8);
    ExpectSameAsLiteral(plain, Request({1, 8}, true, false), false);
    Sample cut = RegionSamples::Cube(7);
    RegionSamples::AddCuts(cut, 2, false, engine);
    ExpectSameAsLiteral(cut, Request({1, 7}, false, true), false);
    ExpectSameAsLiteral(cut, Request({1, 5, 7}, true, true), true);
}

TEST(Centroids, EdgePointsStopAtFiveHundred) {
    const CtdList found = Compute(CutRegion(RegionSamples::Cube(8)), Request({1, 8}, true, false));
    EXPECT_EQ(found.CountOfDimension(1), 500);
    EXPECT_EQ(found.CountOfDimension(8), 1);
    EXPECT_EQ(found.points.Size(), 501);
}

// An n-cube has 2^(n-d) * C(n, d) faces of dimension d, an n-simplex C(n + 1, d + 1).
TEST(Centroids, CubesHaveTheirNumberOfFaces) {
    const Region cube = CutRegion(RegionSamples::Cube(5));
    const CtdList found = Compute(cube, Request({1, 2, 3, 4, 5}, true, false));
    EXPECT_EQ(found.CountOfDimension(1), 80);
    // Every later centroid is that of a face of its own.
    EXPECT_EQ(found.CountOfDimension(2), 80);
    EXPECT_EQ(found.CountOfDimension(3), 40);
    EXPECT_EQ(found.CountOfDimension(4), 10);
    EXPECT_EQ(found.CountOfDimension(5), 1);
}

TEST(Centroids, SimplicesHaveTheirNumberOfFaces) {
    const Region simplex = CutRegion(RegionSamples::Simplex(6));
    const CtdList found = Compute(simplex, Request({1, 2, 3, 4, 5}, true, true));
    EXPECT_EQ(found.CountOfDimension(1), 15 * 3);
    EXPECT_EQ(found.CountOfDimension(2), 20);
    EXPECT_EQ(found.CountOfDimension(3), 15);
    EXPECT_EQ(found.CountOfDimension(4), 6);
    EXPECT_EQ(found.CountOfDimension(5), 1);
}

TEST(Centroids, EdgesLieHalfwayAndAtThirds) {
    const CtdList found = Compute(CutRegion(RegionSamples::Cube(1)), Request({1}, true, true));
    // One variable: the only centroid is that of all.
    ASSERT_EQ(ToRows(found.points), (LiteralRegion::Rows{{0.5F}}));
    const CtdList square = Compute(CutRegion(RegionSamples::Cube(2)), Request({1}, true, true));
    ASSERT_EQ(square.points.Size(), 12);
    // The first edge in the order of constraints: x1 = 0, from (0, 0) to (0, 1).
    EXPECT_EQ(ToRows(square.points)[0], (LiteralRegion::Row{0, 0.5F}));
    EXPECT_EQ(ToRows(square.points)[1], (LiteralRegion::Row{0, 1.0F / 3.0F}));
    EXPECT_EQ(ToRows(square.points)[2], (LiteralRegion::Row{0, 2.0F / 3.0F}));
}

TEST(Centroids, TheOverallCentroidStandsLastEvenTwice) {
    Region region = CutRegion(RegionSamples::Cube(3));
    const CtdList found = Compute(region, Request({3, 3}, true, false));
    EXPECT_EQ(ToRows(found.points), (LiteralRegion::Rows{{0.5F, 0.5F, 0.5F}, {0.5F, 0.5F, 0.5F}}));
    EXPECT_EQ(found.records.back().vertices, 8);
}

TEST(Centroids, MoreConstraintsThanThereAreGiveNoFaces) {
    Region region = CutRegion(RegionSamples::Cube(3));
    region.constraints.Truncate(1);
    EXPECT_EQ(Compute(region, Request({1}, true, false)).points.Size(), 0);
}

TEST(Centroids, ARegionWithoutVerticesIsRefused) {
    const Region region{PointTable(2), PointTable(3), false};
    CtdList found(2);
    EXPECT_EQ(
        DOpt::ComputeCentroids(region, {region.vertices, {}}, Request({2}, true, false), {}, found),
        DOpt::IllegalArgument);
}

TEST(Centroids, TooManyPointsEndTheStep) {
    const Region region = CutRegion(RegionSamples::Cube(4));
    CentroidRequest request = Request({1, 4}, true, false);
    CtdList found(4);
    request.maxPoints = 32;  // one less than there are
    EXPECT_EQ(DOpt::ComputeCentroids(region, {region.vertices, {}}, request, {}, found),
              DOpt::TooManyCentroids);
    request.maxPoints = 33;
    CtdList again(4);
    EXPECT_EQ(DOpt::ComputeCentroids(region, {region.vertices, {}}, request, {}, again),
              DOpt::Success);
}

TEST(Centroids, StopsAtEveryQuestion) {
    const Region region = CutRegion(RegionSamples::Cube(4));
    const CentroidRequest request = Request({1, 2, 4}, true, true);
    const auto run = [&](const DOpt::StopTest& stop) {
        CtdList found(4);
        return DOpt::ComputeCentroids(region, {region.vertices, {}}, request, stop, found);
    };
    int questions = 0;
    ASSERT_EQ(run([&](float) { return ++questions < 0; }), DOpt::Success);
    ASSERT_GE(questions, 32 + 24);
    for (int last = 1; last <= questions; ++last) {
        int asked = 0;
        EXPECT_EQ(run([&](float) { return ++asked == last; }), DOpt::Stopped) << last;
    }
}

TEST(Centroids, TheOverallCentroidForgetsCancelledNoise) {
    // In the scale of the working values the third sum is 1 + 1e-9 - 1.
    Region region = CutRegion(RegionSamples::Cube(2));
    WorkingScale scale{PointTable(2), {}};
    for (const float value : {4.0F, -4.0F + 2.4e-7F, 8.0F, -8.0F}) {
        scale.vertices.Append(std::vector<float>{value, 1});
    }
    CtdList found(2);
    ASSERT_EQ(DOpt::ComputeCentroids(region, scale, Request({2}, true, false), {}, found),
              DOpt::Success);
    EXPECT_EQ(ToRows(found.points), (LiteralRegion::Rows{{0, 1}}));
}

}  // namespace
