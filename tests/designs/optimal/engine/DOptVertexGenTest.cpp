#include "designs/optimal/engine/DOptVertexGen.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/designs/optimal/engine/RegionSamples.h"
#include "tests/oracles/SubsetVertices.h"

namespace {

using DOpt::DOptVertexGen;
using DOpt::PointTable;
using RegionSamples::Sample;
using RegionSamples::ToRows;
using RegionSamples::ToTable;

constexpr int cPlenty = 1000000;

DOptVertexGen Generator(const Sample& sample, int maxVertices = cPlenty) {
    const int variables = static_cast<int>(sample.start.vertices.front().size());
    return {ToTable(sample.start.vertices, variables),
            ToTable(sample.start.constraints, variables + 1),
            sample.start.hasMixture,
            {},
            maxVertices};
}

PointTable Cuts(const Sample& sample) {
    return ToTable(sample.cuts, static_cast<int>(sample.start.vertices.front().size()) + 1);
}

// Vertices, constraints and status of the engine and of the plain form.
void ExpectSameAsLiteral(const Sample& sample) {
    LiteralRegion::State literal = sample.start;
    const int expected = LiteralRegion::Cut(literal, sample.cuts);
    DOptVertexGen generator = Generator(sample);
    ASSERT_EQ(generator.Cut(Cuts(sample), {}), expected);
    if (expected == 0) {
        ASSERT_EQ(ToRows(generator.Vertices()), literal.vertices);
        ASSERT_EQ(ToRows(generator.Constraints()), literal.constraints);
    }
}

TEST(DOptVertexGen, RandomCutsOfCubesEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        Sample sample = RegionSamples::Cube(1 + static_cast<int>(seed % 7));
        RegionSamples::AddCuts(sample, static_cast<int>(seed % 9), false, engine);
        ExpectSameAsLiteral(sample);
    }
}

TEST(DOptVertexGen, CutsThroughVerticesEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        Sample sample = RegionSamples::Cube(2 + static_cast<int>(seed % 5));
        RegionSamples::AddCuts(sample, static_cast<int>(seed % 9), true, engine);
        ExpectSameAsLiteral(sample);
    }
}

TEST(DOptVertexGen, LimitedMixturesEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<float> uniform(0, 1);
        const int n = 2 + static_cast<int>(seed % 7);
        Sample sample = RegionSamples::Simplex(n);
        for (int i = 0; i < n; ++i) {
            const float share = 1.0F / static_cast<float>(n);
            RegionSamples::AddLimits(sample,
                                     static_cast<std::size_t>(i),
                                     0.8F * share * uniform(engine),
                                     share * (1 + 2 * uniform(engine)));
        }
        RegionSamples::AddCuts(sample, static_cast<int>(seed % 3), seed % 2 == 0, engine);
        ExpectSameAsLiteral(sample);
    }
}

// Equal limits let many constraints meet in every vertex.
TEST(DOptVertexGen, CrowdedVerticesEqualThePlainForm) {
    for (const int n : {4, 6, 8, 10}) {
        SCOPED_TRACE(n);
        Sample sample = RegionSamples::Simplex(n);
        for (int i = 0; i < n; ++i) {
            RegionSamples::AddLimits(sample, static_cast<std::size_t>(i), 0, 0.25F);
        }
        ExpectSameAsLiteral(sample);
    }
}

// Large enough for neighbours to be looked up instead of compared.
TEST(DOptVertexGen, LookedUpNeighboursEqualThePlainForm) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        Sample sample = RegionSamples::Cube(10);
        RegionSamples::AddCuts(sample, 2, seed == 3, engine);
        ExpectSameAsLiteral(sample);
    }
}

TEST(DOptVertexGen, VerticesAreThoseOfAllSubsetsOfConstraints) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        const int n = 3 + static_cast<int>(seed % 3);
        Sample sample = RegionSamples::Cube(n);
        RegionSamples::AddCuts(sample, 1 + static_cast<int>(seed % 3), false, engine);
        SubsetVertices::Matrix all;
        for (const auto& rows : {sample.start.constraints, sample.cuts}) {
            for (const auto& row : rows) {
                all.emplace_back(row.begin(), row.end());
            }
        }
        const auto truth = SubsetVertices::Find(all, static_cast<std::size_t>(n), nullptr, 2e-5);
        DOptVertexGen generator = Generator(sample);
        if (generator.Cut(Cuts(sample), {}) != DOpt::Success) {
            EXPECT_TRUE(truth.empty());
            continue;
        }
        ++compared;
        EXPECT_EQ(generator.Vertices().Size(), static_cast<int>(truth.size()));
        for (const auto& row : ToRows(generator.Vertices())) {
            EXPECT_TRUE(SubsetVertices::Contains(truth, {row.begin(), row.end()}, 5e-5));
        }
    }
    EXPECT_GT(compared, 150);
}

TEST(DOptVertexGen, AConstraintWithAMarginIsTakenBack) {
    Sample sample = RegionSamples::Cube(3);
    sample.cuts = {{1, 1, 1, 0.5F}};
    DOptVertexGen generator = Generator(sample);
    ASSERT_EQ(generator.Cut(Cuts(sample), {}), DOpt::Success);
    EXPECT_EQ(ToRows(generator.Vertices()), sample.start.vertices);
    EXPECT_EQ(ToRows(generator.Constraints()), sample.start.constraints);
}

TEST(DOptVertexGen, ARegionCutAwayIsInconsistent) {
    Sample sample = RegionSamples::Cube(3);
    sample.cuts = {{1, 1, 1, -3.5F}};
    EXPECT_EQ(Generator(sample).Cut(Cuts(sample), {}), DOpt::Inconsistent);
}

TEST(DOptVertexGen, OppositeConstraintsAreInconsistent) {
    Sample sample = RegionSamples::Cube(2);
    sample.cuts = {{1, 0, -0.5F}, {-1, 0, 0.5F}};
    EXPECT_EQ(Generator(sample).Cut(Cuts(sample), {}), DOpt::Inconsistent);
}

TEST(DOptVertexGen, AStartOutsideItsOwnConstraintsIsInconsistent) {
    Sample sample = RegionSamples::Cube(2);
    sample.start.vertices.front()[0] = -0.5F;
    EXPECT_EQ(Generator(sample).Cut(Cuts(sample), {}), DOpt::Inconsistent);
}

TEST(DOptVertexGen, RepeatedConstraintsCutOnce) {
    Sample sample = RegionSamples::Cube(3);
    for (int i = 0; i < 3000; ++i) {
        sample.cuts.push_back({-1, -1, 0, 1.5F});
    }
    DOptVertexGen generator = Generator(sample);
    ASSERT_EQ(generator.Cut(Cuts(sample), {}), DOpt::Success);
    EXPECT_EQ(generator.Vertices().Size(), 10);
    EXPECT_EQ(generator.Constraints().Size(), 7);
}

// A polygon with a side for each of several hundred tangents of a circle.
TEST(DOptVertexGen, HundredsOfConstraintsCanAllBound) {
    Sample sample = RegionSamples::Cube(2);
    constexpr int sides = 300;
    for (int i = 0; i < sides; ++i) {
        const double angle = 2 * 3.14159265358979 * (i + 0.3) / sides;
        const auto x = static_cast<float>(std::cos(angle));
        const auto y = static_cast<float>(std::sin(angle));
        sample.cuts.push_back({-x, -y, 0.45F + 0.5F * (x + y)});
    }
    DOptVertexGen generator = Generator(sample);
    ASSERT_EQ(generator.Cut(Cuts(sample), {}), DOpt::Success);
    EXPECT_EQ(generator.Vertices().Size(), sides);
    EXPECT_EQ(generator.Constraints().Size(), sides);
}

TEST(DOptVertexGen, TooManyVerticesEndTheCut) {
    Sample sample = RegionSamples::Cube(3);
    sample.cuts = {{-1, -1, -1, 0.5F}, {-1, -1, -1, 1.5F}};
    EXPECT_EQ(Generator(sample, 7).Cut(Cuts(sample), {}), DOpt::TooManyVertices);
    EXPECT_EQ(Generator(sample, 10).Cut(Cuts(sample), {}), DOpt::TooManyVertices);
    EXPECT_EQ(Generator(sample, 11).Cut(Cuts(sample), {}), DOpt::Success);
}

TEST(DOptVertexGen, StopsAtEveryQuestion) {
    std::mt19937 engine(5);
    Sample sample = RegionSamples::Cube(8);
    RegionSamples::AddCuts(sample, 4, false, engine);
    int questions = 0;
    ASSERT_EQ(Generator(sample).Cut(Cuts(sample), [&](float) { return ++questions < 0; }),
              DOpt::Success);
    ASSERT_GE(questions, 4);
    for (int last = 1; last <= questions; ++last) {
        int asked = 0;
        EXPECT_EQ(Generator(sample).Cut(Cuts(sample), [&](float) { return ++asked == last; }),
                  DOpt::Stopped)
            << last;
        EXPECT_EQ(asked, last);
    }
}

}  // namespace
