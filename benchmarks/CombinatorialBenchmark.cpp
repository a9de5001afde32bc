// Reduced combinatorial designs: the best swap of a column and whole searches, beside the plain
// form of both, and designs as they are built, with replicated runs and figures.

#include <benchmark/benchmark.h>

#include <random>
#include <span>
#include <utility>
#include <vector>

#include "designs/stability/BalancedColumns.h"
#include "designs/stability/ColumnSwaps.h"
#include "designs/stability/J2Design.h"
#include "designs/stability/J2Options.h"
#include "designs/stability/PairCoincidences.h"
#include "foundation/utl/QvRandom.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/oracles/LiteralJ2.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr int cMaxSwaps = 1000;

// Columns of 5, 4, 3 and 2 levels, the most levels first.
std::vector<int> LevelsOf(int columns) {
    std::vector<int> levels;
    for (int column = 0; column < columns; ++column) {
        levels.push_back(5 - 4 * column / columns);
    }
    return levels;
}

class Seeded : public ColumnSearch {
  public:
    void Shuffle(std::span<int> column) override { QvRandom::Shuffle(column, engine_); }
    void Begin(int /*column*/) override {}
    void End(int /*column*/) override {}
    void AfterSwaps(int /*swaps*/) override {}
    void Poll() override {}

  private:
    std::mt19937 engine_{1};
};

std::vector<std::vector<int>> Columns(int runs, int columns) {
    Seeded search;
    return MakeBalancedColumns(runs, LevelsOf(columns), cMaxSwaps, search);
}

std::vector<int> RandomColumn(int runs, int levels) {
    std::vector<int> column;
    for (int run = 0; run < runs; ++run) {
        column.push_back(run % levels);
    }
    std::mt19937 engine(2);
    QvRandom::Shuffle(std::span(column), engine);
    return column;
}

// runs, columns
void Sizes(benchmark::internal::Benchmark* sizes) {
    for (const int runs : {64, 128, 255}) {
        for (const int columns : {5, 10, 20}) {
            sizes->Args({runs, columns});
        }
    }
}

void BestSwap(benchmark::State& state) {
    const int runs = static_cast<int>(state.range(0));
    PairCoincidences table(runs);
    for (const auto& column : Columns(runs, static_cast<int>(state.range(1)))) {
        table.Add(column);
    }
    ColumnSwaps swaps(runs, table.Columns());
    swaps.Start(table, RandomColumn(runs, 3), 3);
    for (auto _ : state) {
        benchmark::DoNotOptimize(swaps.FindBest([] {}));
    }
}

void LiteralBestSwap(benchmark::State& state) {
    const int runs = static_cast<int>(state.range(0));
    LiteralJ2::PairTable table(runs);
    for (const auto& column : Columns(runs, static_cast<int>(state.range(1)))) {
        table.Add(LiteralJ2::PairTable::Of(column));
    }
    const std::vector<int> column = RandomColumn(runs, 3);
    const auto own = LiteralJ2::PairTable::Of(column);
    for (auto _ : state) {
        benchmark::DoNotOptimize(LiteralJ2::BestSwap(table, own, column));
    }
}

void Search(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            Columns(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
    }
}

// The same columns, swap for swap.
void LiteralSearch(benchmark::State& state) {
    for (auto _ : state) {
        std::mt19937 engine(1);
        const auto design = LiteralJ2::Generate(
            static_cast<int>(state.range(0)),
            LevelsOf(static_cast<int>(state.range(1))),
            cMaxSwaps,
            [&](std::vector<int>& column) { QvRandom::Shuffle(std::span(column), engine); });
        std::size_t swaps = 0;
        for (const auto& made : design.swaps) {
            swaps += made.size();
        }
        state.counters["swaps"] = static_cast<double>(swaps);
        if (design.columns !=
            Columns(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)))) {
            state.SkipWithError("the columns differ");
        }
    }
}

// One design of multilevel factors of 3 levels and quantitative ones, half of each.
void Design(benchmark::State& state) {
    TestFactors factors;
    for (int factor = 0; factor < state.range(1); ++factor) {
        if (factor % 2 == 0) {
            factors.MultilevelOf(3);
        } else {
            factors.Quantitative();
        }
    }
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::J2, "");
    DesignOptions options(*builder, factors);
    options.SetRuns(static_cast<unsigned>(state.range(0)));
    options.SetReplicatedRuns(static_cast<unsigned>(state.range(2)));
    dynamic_cast<J2Options&>(*options.GetDesignSpecificOptions()).SetRepetitions(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
}

BENCHMARK(BestSwap)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(LiteralBestSwap)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(Search)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(LiteralSearch)
    ->Args({64, 5})
    ->Args({64, 10})
    ->Args({64, 20})
    ->Args({128, 5})
    ->Args({128, 10})
    ->Args({255, 5})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Design)->ArgsProduct({{32, 128, 255}, {5, 10}, {0, 3}})->Unit(benchmark::kMillisecond);

}  // namespace
