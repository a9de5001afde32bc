// Candidate generation: vertices and face centres of regions, crossing, levels. The plain form of
// the same steps runs beside it where it ends in reasonable time.

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>

#include "designs/optimal/engine/CandidateRows.h"
#include "designs/optimal/engine/Centroids.h"
#include "designs/optimal/engine/DOptVertexGen.h"
#include "designs/optimal/engine/PointIndex.h"
#include "tests/designs/optimal/engine/RegionSamples.h"

namespace {

using RegionSamples::Sample;
using RegionSamples::ToTable;

constexpr int cNoMaximum = 100000000;

// Planes that take the neighbourhood of the upper corner of three variables each.
Sample CutCube(int n, int cuts) {
    Sample sample = RegionSamples::Cube(n);
    std::mt19937 engine(7);
    std::uniform_real_distribution<float> uniform(0.2F, 1);
    for (int cut = 0; cut < cuts; ++cut) {
        LiteralRegion::Row row(static_cast<std::size_t>(n) + 1, 0.0F);
        float sum = 0;
        for (int i = 0; i < 3; ++i) {
            float& coefficient = row[static_cast<std::size_t>((cut + 2 * i) % n)];
            coefficient = -uniform(engine);
            sum -= coefficient;
        }
        row.back() = 0.7F * sum;
        sample.cuts.push_back(row);
    }
    return sample;
}

// Every component between a low and a high limit of its own.
Sample LimitedMixture(int q) {
    Sample sample = RegionSamples::Simplex(q);
    std::mt19937 engine(7);
    std::uniform_real_distribution<float> uniform(0, 1);
    for (int i = 0; i < q; ++i) {
        RegionSamples::AddLimits(sample,
                                 static_cast<std::size_t>(i),
                                 0.3F / static_cast<float>(q) * uniform(engine),
                                 0.5F + 0.2F * uniform(engine));
    }
    return sample;
}

struct Result {
    int vertices = 0;
    int points = 0;
};

Result Fast(const Sample& sample, const std::vector<int>& dimensions) {
    const int n = static_cast<int>(sample.start.vertices.front().size());
    DOpt::DOptVertexGen generator(ToTable(sample.start.vertices, n),
                                  ToTable(sample.start.constraints, n + 1),
                                  sample.start.hasMixture,
                                  {},
                                  cNoMaximum);
    if (generator.Cut(ToTable(sample.cuts, n + 1), {}) != DOpt::Success) {
        return {};
    }
    const DOpt::Region region{
        generator.Vertices(), generator.Constraints(), sample.start.hasMixture};
    DOpt::CentroidRequest request;
    request.dimensions = dimensions;
    DOpt::CtdList found(n);
    static_cast<void>(DOpt::ComputeCentroids(region, {region.vertices, {}}, request, {}, found));
    return {region.vertices.Size(), found.points.Size()};
}

Result Plain(const Sample& sample, const std::vector<int>& dimensions) {
    LiteralRegion::State state = sample.start;
    LiteralRegion::Cut(state, sample.cuts);
    const auto found = LiteralRegion::FindCentroids(state, {}, dimensions, true, false);
    return {static_cast<int>(state.vertices.size()), static_cast<int>(found.points.size())};
}

template <Result (*Run)(const Sample&, const std::vector<int>&)>
void Measure(benchmark::State& state, const Sample& sample, const std::vector<int>& dimensions) {
    Result result;
    for (auto _ : state) {
        result = Run(sample, dimensions);
        benchmark::DoNotOptimize(result);
    }
    state.counters["vertices"] = result.vertices;
    state.counters["points"] = result.points;
}

template <Result (*Run)(const Sample&, const std::vector<int>&)>
void CubeEdges(benchmark::State& state) {
    const auto n = static_cast<int>(state.range(0));
    Measure<Run>(state, CutCube(n, static_cast<int>(state.range(1))), {1, n});
}

template <Result (*Run)(const Sample&, const std::vector<int>&)>
void MixtureEdges(benchmark::State& state) {
    const auto q = static_cast<int>(state.range(0));
    Measure<Run>(state, LimitedMixture(q), {1, q - 1});
}

BENCHMARK(CubeEdges<Fast>)
    ->ArgNames({"n", "cuts"})
    ->ArgsProduct({{6, 8, 10}, {0, 4, 8}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(CubeEdges<Plain>)
    ->ArgNames({"n", "cuts"})
    ->ArgsProduct({{6, 8}, {0, 4}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(MixtureEdges<Fast>)
    ->ArgName("q")
    ->Arg(6)
    ->Arg(10)
    ->Arg(12)
    ->Arg(16)
    ->Arg(20)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(MixtureEdges<Plain>)
    ->ArgName("q")
    ->Arg(6)
    ->Arg(10)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond);

// All components between 0 and 3 shares: many limits meet in every vertex.
void CrowdedMixture(benchmark::State& state) {
    const auto q = static_cast<int>(state.range(0));
    Sample sample = RegionSamples::Simplex(q);
    for (int i = 0; i < q; ++i) {
        RegionSamples::AddLimits(
            sample, static_cast<std::size_t>(i), 0, 2.0F / static_cast<float>(q));
    }
    Measure<Fast>(state, sample, {1, q - 1});
}
BENCHMARK(CrowdedMixture)
    ->ArgName("q")
    ->Arg(6)
    ->Arg(8)
    ->Arg(10)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond);

DOpt::PointTable RandomPoints(int rows, int width) {
    std::mt19937 engine(3);
    std::uniform_int_distribution<int> grid(0, 12);
    DOpt::PointTable points(width);
    std::vector<float> point(static_cast<std::size_t>(width));
    for (int row = 0; row < rows; ++row) {
        for (float& value : point) {
            value = static_cast<float>(grid(engine)) / 12;
        }
        points.Append(point);
    }
    return points;
}

void DuplicatesHashed(benchmark::State& state) {
    const DOpt::PointTable points = RandomPoints(static_cast<int>(state.range(0)), 8);
    for (auto _ : state) {
        DOpt::PointIndex index(8, 1e-5F);
        int kept = 0;
        for (int row = 0; row < points.Size(); ++row) {
            if (!index.HasNear(points, points.Row(row))) {
                index.Add(points, row);
                ++kept;
            }
        }
        benchmark::DoNotOptimize(kept);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(DuplicatesHashed)
    ->Arg(1638)
    ->Arg(6552)
    ->Arg(26208)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void DuplicatesCompared(benchmark::State& state) {
    const DOpt::PointTable points = RandomPoints(static_cast<int>(state.range(0)), 8);
    for (auto _ : state) {
        DOpt::PointTable kept(8);
        for (int row = 0; row < points.Size(); ++row) {
            bool near = false;
            for (int other = 0; !near && other < kept.Size(); ++other) {
                near = DOpt::PointIndex::IsNear(kept.Row(other), points.Row(row), 1e-5F);
            }
            if (!near) {
                kept.Append(points.Row(row));
            }
        }
        benchmark::DoNotOptimize(kept.Size());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(DuplicatesCompared)
    ->Arg(1638)
    ->Arg(6552)
    ->Arg(26208)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void Crossing(benchmark::State& state) {
    const auto rows = static_cast<int>(state.range(0));
    const DOpt::BlockRows process{RandomPoints(rows, 5), true, {0, 1, 2, 3, 4}};
    const DOpt::BlockRows mixture{RandomPoints(rows, 5), true, {5, 6, 7, 8, 9}};
    DOpt::CandidateRequest request;
    request.process = &process;
    request.mixture = &mixture;
    request.columns = 10;
    for (auto _ : state) {
        NCDataMatrix<float> result;
        benchmark::DoNotOptimize(DOpt::CombineCandidates(request, {}, result));
    }
    state.SetItemsProcessed(state.iterations() * rows * rows);
}
BENCHMARK(Crossing)->Arg(100)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);

void Levels(benchmark::State& state) {
    DOpt::CandidateRequest request;
    request.combinations = 1;
    for (int i = 0; i < static_cast<int>(state.range(0)); ++i) {
        request.levels.push_back({i, RandomPoints(10, 1)});
        request.combinations *= 10;
    }
    request.columns = static_cast<int>(state.range(0));
    for (auto _ : state) {
        NCDataMatrix<float> result;
        benchmark::DoNotOptimize(DOpt::CombineCandidates(request, {}, result));
    }
    state.SetItemsProcessed(state.iterations() * request.combinations);
}
BENCHMARK(Levels)->Arg(4)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

}  // namespace
