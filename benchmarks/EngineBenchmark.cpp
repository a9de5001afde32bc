// What a host waits for: proposals of a study, building a design, and the road to a file and back.

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

// Everything that a list of proposals shows of each valid family.
void Proposals(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::size_t valid = 0;
        for (const auto& builder : AllDesigns::ClassicDesigns().GetAllDesigns()) {
            const DesignOptions options(*builder, factors);
            if (builder->IsValid(factors, options)) {
                benchmark::DoNotOptimize(builder->GetPriority(factors));
                benchmark::DoNotOptimize(builder->GetLegalRuns(factors, options));
                benchmark::DoNotOptimize(builder->GetLegalBlocks(factors, options, false));
                ++valid;
            }
        }
        benchmark::DoNotOptimize(valid);
    }
}
BENCHMARK(Proposals)->Arg(3)->Arg(7)->Arg(15)->Arg(30)->Unit(benchmark::kMicrosecond);

void BuildFF2(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FF2, "");
    DesignOptions options(*builder, factors);
    options.SetBlocks(static_cast<unsigned>(state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.counters["cells"] = static_cast<double>((options.GetRuns() + options.GetCenterPoints()) *
                                                  static_cast<unsigned>(state.range(0)));
}
BENCHMARK(BuildFF2)->Args({4, 1})->Args({7, 1})->Args({10, 1})->Args({10, 8})->Unit(
    benchmark::kMicrosecond);

// A mixed factorial of factors at 2, 3 and 4 levels.
void BuildFFM(benchmark::State& state) {
    TestFactors factors;
    for (int i = 0; i < state.range(0); ++i) {
        factors.Quantitative().Qualitative(3).MultilevelOf(4);
    }
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FFM, "");
    const DesignOptions options(*builder, factors);
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.counters["runs"] = options.GetRuns();
}
BENCHMARK(BuildFFM)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void SaveAndLoadOptions(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitatives(7);
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FF2, "");
    DesignOptions options(*builder, factors);
    const Generators generators(128);
    options.SetGenerators(&generators);
    for (auto _ : state) {
        ConfigurationStore store;
        options.Save(store.OpenRoot().get());
        DesignOptions loaded;
        benchmark::DoNotOptimize(loaded.Load(store.OpenRoot().get()));
    }
}
BENCHMARK(SaveAndLoadOptions)->Unit(benchmark::kMicrosecond);

}  // namespace
