// The screening families: building the default design, and the questions a host asks before.

#include <benchmark/benchmark.h>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

void BuildDefault(benchmark::State& state, EDesign::Type type) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    const auto builder = AllDesigns::GetDesignBuilder(type, "");
    const DesignOptions options(*builder, factors);
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.SetComplexityN(state.range(0));
}

// Default options and validity, as a host asks them of every family.
void Ask(benchmark::State& state, EDesign::Type type) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(0)));
    const auto builder = AllDesigns::GetDesignBuilder(type, "");
    for (auto unused : state) {
        static_cast<void>(unused);
        const DesignOptions options(*builder, factors);
        benchmark::DoNotOptimize(builder->IsValid(factors, options));
    }
}

// Evenly spaced runs of one factor.
void BuildLevels(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitative();
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::Levels, "");
    DesignOptions options(*builder, factors);
    options.SetRuns(static_cast<unsigned>(state.range(0)));
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(BuildDefault, PB, EDesign::PB)->Arg(7)->Arg(15)->Arg(32);
BENCHMARK_CAPTURE(BuildDefault, PB_SS, EDesign::PB_SS)->Arg(6)->Arg(14)->Arg(31);
BENCHMARK_CAPTURE(BuildDefault, L9, EDesign::L9)->Arg(2)->Arg(3)->Arg(4);
BENCHMARK_CAPTURE(BuildDefault, L18, EDesign::L18)->Arg(2)->Arg(5)->Arg(8);
BENCHMARK_CAPTURE(BuildDefault, L27, EDesign::L27)->Arg(5)->Arg(9)->Arg(13);
BENCHMARK_CAPTURE(BuildDefault, L36, EDesign::L36)->Arg(2)->Arg(7)->Arg(13);
BENCHMARK_CAPTURE(BuildDefault, DefinitiveScreening, EDesign::DefinitiveScreening)
    ->Arg(4)
    ->Arg(12)
    ->Arg(30);
BENCHMARK(BuildLevels)->RangeMultiplier(10)->Range(10, 100000)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(Ask, PB, EDesign::PB)->Arg(32);
BENCHMARK_CAPTURE(Ask, PB_SS, EDesign::PB_SS)->Arg(31);
BENCHMARK_CAPTURE(Ask, L18, EDesign::L18)->Arg(8);
BENCHMARK_CAPTURE(Ask, L36, EDesign::L36)->Arg(13);
BENCHMARK_CAPTURE(Ask, DefinitiveScreening, EDesign::DefinitiveScreening)->Arg(30);
BENCHMARK_CAPTURE(Ask, Levels, EDesign::Levels)->Arg(1);

}  // namespace
