// Saving and loading a design matrix of two-level settings and measured figures.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/util/ConfigurationStore.h"

namespace {

constexpr int cColumns = 10;

ConfigurationStore MakeStore(int cells) {
    std::mt19937 engine(5489);
    NCDataMatrix<float> matrix(cells / cColumns, cColumns, 0);
    for (float& cell : matrix.Cells()) {
        const auto draw = static_cast<std::uint32_t>(engine());
        // Half settings, half figures that need all their digits.
        cell = draw % 2 == 0 ? (draw % 4 == 0 ? -1.0F : 1.0F) : static_cast<float>(draw) * 1e-5F;
    }
    ConfigurationStore store;
    store.OpenRoot()->WriteMatrix("Design", matrix);
    return store;
}

void SaveStore(benchmark::State& state) {
    const ConfigurationStore store = MakeStore(static_cast<int>(state.range(0)));
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(store.ToText());
    }
    state.SetComplexityN(state.range(0));
}

void LoadStore(benchmark::State& state) {
    const std::string text = MakeStore(static_cast<int>(state.range(0))).ToText();
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(ConfigurationStore::FromText(text, "benchmark"));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(SaveStore)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);
BENCHMARK(LoadStore)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

}  // namespace
