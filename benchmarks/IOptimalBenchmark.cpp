// The I-optimal search on grids of 343, 2,401 and 16,807 candidates, one step of it against its
// plain form, and the power of model terms.

#include <benchmark/benchmark.h>
#ifdef QORVA_HAS_OPENMP
#include <omp.h>
#endif

#include <algorithm>
#include <boost/function.hpp>
#include <numeric>
#include <vector>

#include "designs/optimal/IOptimal.h"
#include "evaluation/Power.h"
#include "tests/oracles/IOptimalOracle.h"
#include "tests/oracles/PowerOracle.h"
#include "tests/support/QuadraticGrid.h"

namespace {

constexpr unsigned cSteps = 1000;

void SetThreads([[maybe_unused]] int threads) {
#ifdef QORVA_HAS_OPENMP
    omp_set_num_threads(threads);
#endif
}

int Terms(int factors) {
    return (factors + 1) * (factors + 2) / 2;
}

// A whole search from one random start; factors, levels, threads.
void Search(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(0));
    const NCDOE::IOptimal search(QuadraticGrid(factors, static_cast<int>(state.range(1))));
    SetThreads(static_cast<int>(state.range(2)));
    const auto runs = static_cast<unsigned>(Terms(factors) + 5);
    int seed = 1;
    double best = 1e9;
    for (auto _ : state) {
        const auto design = search.GetDesign(runs, seed++, cSteps, nullptr, {});
        best = std::min(best, search.GetIValue(design));
    }
    state.counters["best"] = best;
    SetThreads(1);
}
BENCHMARK(Search)
    ->Args({3, 7, 1})
    ->Args({3, 7, 2})
    ->Args({4, 7, 1})
    ->Args({4, 7, 2})
    ->Args({7, 3, 1})
    ->Args({5, 7, 1})
    ->Args({5, 7, 2})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// The first `steps` steps from one start, here and in the plain form. The difference of two counts
// of steps is the time of a step.
std::vector<int> Start(const NCDOE::IOptimal& search, int factors) {
    return search.GetDesign(static_cast<unsigned>(Terms(factors) + 5), 1, 3, nullptr, {});
}

void Steps(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(0));
    const NCDOE::IOptimal search(QuadraticGrid(factors, static_cast<int>(state.range(1))));
    SetThreads(1);
    const std::vector<int> start = Start(search, factors);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            search.GetDesign(0, 0, static_cast<unsigned>(state.range(2)), &start, {}));
    }
}
BENCHMARK(Steps)
    ->Args({3, 7, 0})
    ->Args({3, 7, 10})
    ->Args({6, 3, 0})
    ->Args({6, 3, 10})
    ->Unit(benchmark::kMillisecond);

void PlainStep(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(0));
    const NCDataMatrix<float> candidates = QuadraticGrid(factors, static_cast<int>(state.range(1)));
    const oracles::IOptimalOracle oracle(candidates);
    const std::vector<int> start = Start(NCDOE::IOptimal(candidates), factors);
    oracles::IOptimalOracle::Search search{{}, start, oracle.IValue(start)};
    search.pool.resize(static_cast<std::size_t>(candidates.SizeRows()));
    std::iota(search.pool.begin(), search.pool.end(), 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(oracle.Best(search));
    }
}
BENCHMARK(PlainStep)->Args({3, 7})->Args({6, 3})->Iterations(1)->Unit(benchmark::kMillisecond);

// The power of every main effect of a two-level design with all interactions of two factors.
void PowerOfMainEffects(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(0));
    const int runs = 1 << static_cast<int>(state.range(1));
    NCDataMatrix<float> design(runs, factors);
    for (int row = 0; row < runs; ++row) {
        for (int factor = 0; factor < factors; ++factor) {
            design(row + 1, factor + 1, ((row >> factor) & 1) != 0 ? 1.0F : -1.0F);
        }
    }
    std::vector<std::vector<int>> terms = {{}};
    for (int i = 0; i < factors; ++i) {
        terms.push_back({i});
    }
    for (int i = 0; i < factors; ++i) {
        for (int j = i + 1; j < factors; ++j) {
            terms.push_back({i, j});
        }
    }
    const NCDOE::Power power(design, terms, {}, {});
    for (auto _ : state) {
        for (int term = 1; term <= factors; ++term) {
            benchmark::DoNotOptimize(power.GetPower(term, 1.5, 1.0, 0.95));
        }
    }
}
BENCHMARK(PowerOfMainEffects)
    ->Args({3, 3})
    ->Args({5, 5})
    ->Args({8, 8})
    ->Unit(benchmark::kMicrosecond);

// The distributions behind one power, and their plain series in long double.
void Distributions(benchmark::State& state) {
    const NCDOE::Power power(
        {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}, {0, 0}, {0, 0}}, {{}, {0}, {1}}, {}, {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(power.GetPower(1, 2.0, 1.0, 0.95));
    }
}
BENCHMARK(Distributions)->Unit(benchmark::kMicrosecond);

void PlainDistributions(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(oracles::PowerOfF(1, 3, 4, 0.95L));
    }
}
BENCHMARK(PlainDistributions)->Iterations(3)->Unit(benchmark::kMicrosecond);

}  // namespace
