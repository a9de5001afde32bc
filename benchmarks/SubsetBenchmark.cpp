// Divisions of a full factorial: how many the search looks at in a second, how much of that is
// drawing them, and the figures of the one that is kept.

#include <benchmark/benchmark.h>

#include <random>

#include "designs/stability/SplitBalance.h"
#include "designs/stability/SubsetDistances.h"
#include "designs/stability/SubsetModel.h"
#include "designs/stability/SubsetQuality.h"
#include "designs/stability/SubsetSplit.h"
#include "tests/oracles/SubsetOracle.h"
#include "tests/support/TestFactors.h"

namespace {

std::vector<int> LevelsOf(const benchmark::State& state) {
    return std::vector<int>(static_cast<std::size_t>(state.range(1)),
                            static_cast<int>(state.range(0)));
}

// levels, factors, reduction
void Sizes(benchmark::internal::Benchmark* sizes) {
    for (const auto& [levels, factors] : {std::pair{3, 4}, std::pair{3, 6}, std::pair{4, 6}}) {
        for (const int reduction : {2, 3, 5}) {
            sizes->Args({levels, factors, reduction});
        }
    }
}

void CountIterations(benchmark::State& state) {
    state.counters["iterations/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// One iteration of the search for balance.
void Balance(benchmark::State& state) {
    const LevelGroups groups(LevelsOf(state), static_cast<int>(state.range(2)));
    SubsetSplit split(groups);
    SplitBalance balance(groups);
    std::mt19937 engine(1);
    for (auto _ : state) {
        split.Draw(engine, false, BreakCheck());
        benchmark::DoNotOptimize(balance.GetCodes(split, BreakCheck()));
    }
    CountIterations(state);
}

// One iteration of the search for small condition numbers.
void Condition(benchmark::State& state) {
    const LevelGroups groups(LevelsOf(state), static_cast<int>(state.range(2)));
    TestFactors factors;
    for (int i = 0; i < groups.FactorCount(); ++i) {
        factors.MultilevelOf(static_cast<unsigned>(state.range(0)));
    }
    const SubsetModel model(factors);
    SubsetSplit split(groups);
    std::vector<int> cells;
    std::mt19937 engine(1);
    for (auto _ : state) {
        split.Draw(engine, false, BreakCheck());
        for (int subset = 0; subset < groups.Reduction(); ++subset) {
            split.WriteSubset(subset, cells, BreakCheck());
            benchmark::DoNotOptimize(
                model.GetConditionNumber({cells, static_cast<std::size_t>(groups.FactorCount())}));
        }
    }
    CountIterations(state);
}

// The balance search in its plain form: matrices, rows, row by row.
void PlainBalance(benchmark::State& state) {
    const std::vector<int> levels = LevelsOf(state);
    const int reduction = static_cast<int>(state.range(2));
    std::mt19937 engine(1);
    for (auto _ : state) {
        for (const auto& subset : SubsetOracle::Divide(levels, reduction, engine, false)) {
            benchmark::DoNotOptimize(SubsetOracle::QualityCode(subset, levels, reduction));
        }
    }
    CountIterations(state);
}

// The rows of the kept division and their figures.
void Figures(benchmark::State& state) {
    const LevelGroups groups(LevelsOf(state), static_cast<int>(state.range(2)));
    SubsetSplit split(groups);
    std::mt19937 engine(1);
    split.Draw(engine, false, BreakCheck());
    std::vector<int> cells;
    for (auto _ : state) {
        for (int subset = 0; subset < groups.Reduction(); ++subset) {
            split.WriteSubset(subset, cells, BreakCheck());
            const LevelRows rows{cells, static_cast<std::size_t>(groups.FactorCount())};
            benchmark::DoNotOptimize(SubsetQuality::IsUnique(rows));
            benchmark::DoNotOptimize(SubsetQuality::IsBalanced(rows));
            benchmark::DoNotOptimize(SubsetQuality::CheckPairBalance(rows, BreakCheck()));
        }
        benchmark::DoNotOptimize(SubsetDistances::CountInSplit(split, BreakCheck()));
    }
}

BENCHMARK(Balance)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(Condition)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(Figures)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainBalance)
    ->Args({3, 4, 2})
    ->Args({3, 4, 3})
    ->Args({3, 6, 3})
    ->Args({4, 6, 3})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
