// The response surface and mixture families: building the default design, growing a Doehlert
// design, and the questions a host asks before.

#include <benchmark/benchmark.h>

#include <set>

#include "designs/rsm/Doehlert.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr const char* cOptimization = "Optimization (RSM)";

TestFactors MakeFactors(int count, bool mixture) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        mixture ? factors.Formulation() : factors.Quantitative();
    }
    return factors;
}

void Build(benchmark::State& state, EDesign::Type type, const char* data) {
    const auto builder = AllDesigns::GetDesignBuilder(type, data);
    const TestFactors factors =
        MakeFactors(static_cast<int>(state.range(0)), builder->IsMixtureOnlyDesign());
    const DesignOptions options(*builder, factors);
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.counters["cells"] =
        static_cast<double>((options.GetRuns() + options.GetCenterPoints()) * state.range(0));
}

// Default options and validity.
void Ask(benchmark::State& state, EDesign::Type type, const char* data) {
    const auto builder = AllDesigns::GetDesignBuilder(type, data);
    const TestFactors factors =
        MakeFactors(static_cast<int>(state.range(0)), builder->IsMixtureOnlyDesign());
    for (auto _ : state) {
        const DesignOptions options(*builder, factors);
        benchmark::DoNotOptimize(builder->IsValid(factors, options));
    }
}

void GrowDoehlert(benchmark::State& state) {
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::Doehlert, "");
    const TestFactors factors = MakeFactors(static_cast<int>(state.range(0)), false);
    const Doehlert design(factors, DesignOptions(*builder, factors));
    for (auto _ : state) {
        std::set<int> existing;
        benchmark::DoNotOptimize(design.GetNewPointsAround(1, existing));
    }
}

BENCHMARK_CAPTURE(Build, BB, EDesign::BB, "")->Arg(3)->Arg(7)->Arg(12);
BENCHMARK_CAPTURE(Build, Doehlert, EDesign::Doehlert, "")->Arg(3)->Arg(10)->Arg(20);
BENCHMARK_CAPTURE(Build, RSS, EDesign::Rechtschaffner, cOptimization)->Arg(3)->Arg(6)->Arg(10);
BENCHMARK_CAPTURE(Build, RSR, EDesign::Rechtschaffner, "Screening")->Arg(3)->Arg(6)->Arg(10);
BENCHMARK_CAPTURE(Build, AxN, EDesign::AxN, "")->Arg(3)->Arg(10)->Arg(20);
BENCHMARK_CAPTURE(Build, AxE, EDesign::AxE, "")->Arg(3)->Arg(10)->Arg(20);
BENCHMARK_CAPTURE(Build, AxR, EDesign::AxR, "")->Arg(3)->Arg(10)->Arg(20);
BENCHMARK_CAPTURE(Build, SimM, EDesign::SimM, "")->Arg(3)->Arg(6)->Arg(12);
BENCHMARK_CAPTURE(Build, SimF, EDesign::SimF, "")->Arg(3)->Arg(6)->Arg(12);
BENCHMARK_CAPTURE(Build, SimSC, EDesign::SimSC, "")->Arg(3)->Arg(6)->Arg(10);
BENCHMARK_CAPTURE(Build, SimC, EDesign::SimC, "")->Arg(3)->Arg(6)->Arg(9);
BENCHMARK_CAPTURE(Ask, BB, EDesign::BB, "")->Arg(12);
BENCHMARK_CAPTURE(Ask, Doehlert, EDesign::Doehlert, "")->Arg(20);
BENCHMARK_CAPTURE(Ask, RSS, EDesign::Rechtschaffner, cOptimization)->Arg(10);
BENCHMARK_CAPTURE(Ask, AxE, EDesign::AxE, "")->Arg(20);
BENCHMARK_CAPTURE(Ask, SimC, EDesign::SimC, "")->Arg(9);
BENCHMARK(GrowDoehlert)->Arg(3)->Arg(10)->Arg(20)->Unit(benchmark::kMicrosecond);

}  // namespace
