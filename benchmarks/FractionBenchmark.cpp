// Building fractions and central composite designs, and what a host asks before it builds one.

#include <benchmark/benchmark.h>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

void Build(benchmark::State& state, EDesign::Type type, unsigned int blocks) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    const auto builder = AllDesigns::GetDesignBuilder(type, "");
    DesignOptions options(*builder, factors);
    options.SetBlocks(blocks);
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.counters["runs"] = options.GetRuns();
}

// Options, validity, runs, blocks and priority of one family.
void Propose(benchmark::State& state, EDesign::Type type) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    const auto builder = AllDesigns::GetDesignBuilder(type, "");
    for (auto _ : state) {
        const DesignOptions options(*builder, factors);
        benchmark::DoNotOptimize(builder->IsValid(factors, options));
        benchmark::DoNotOptimize(builder->GetLegalRuns(factors, options));
        benchmark::DoNotOptimize(builder->GetLegalBlocks(factors, options, false));
        benchmark::DoNotOptimize(builder->GetPriority(factors));
    }
}

}  // namespace

BENCHMARK_CAPTURE(Build, FFR_III, EDesign::FFR_III, 1)
    ->Arg(7)
    ->Arg(15)
    ->Arg(31)
    ->Arg(51)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFR_IV, EDesign::FFR_IV, 1)
    ->Arg(8)
    ->Arg(16)
    ->Arg(32)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFR_V, EDesign::FFR_V, 1)
    ->Arg(5)
    ->Arg(11)
    ->Arg(17)
    ->Arg(29)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFR_V_two_blocks, EDesign::FFR_V, 2)
    ->Arg(5)
    ->Arg(11)
    ->Arg(17)
    ->Arg(29)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, CCC, EDesign::CCC, 1)
    ->Arg(3)
    ->Arg(8)
    ->Arg(21)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, CCC_three_blocks, EDesign::CCC, 3)
    ->Arg(4)
    ->Arg(8)
    ->Arg(21)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Propose, FFR_IV, EDesign::FFR_IV)
    ->Arg(8)
    ->Arg(16)
    ->Arg(31)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Propose, CCC, EDesign::CCC)
    ->Arg(3)
    ->Arg(8)
    ->Arg(21)
    ->Unit(benchmark::kMicrosecond);
