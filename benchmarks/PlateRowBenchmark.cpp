// What the choice of a plate's side asks every pre-made row, and the building of rows.

#include <benchmark/benchmark.h>

#include <string>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/PlateRowCases.h"

namespace {

// Options and validity of all rows on the side of a plate that has so many wells.
void AskEveryRow(benchmark::State& state) {
    const auto side = static_cast<unsigned int>(state.range(0));
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).MultilevelOf(4);
    const auto& builders = AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns();
    for (auto _ : state) {
        for (const auto& builder : builders) {
            if (builder->IsDesign() == EDesign::Plugin) {
                DesignOptions options(*builder, factors);
                options.SetMaxRuns(side);
                benchmark::DoNotOptimize(builder->IsValid(factors, options));
            }
        }
    }
}

void Build(benchmark::State& state, const std::string& name) {
    const plate::RowCase row = plate::RowNamed(name);
    const auto builder = plate::BuilderNamed(name);
    const TestFactors factors = plate::FactorsOf(row);
    const DesignOptions options = plate::SideOptions(*builder, factors, row);
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder->Build(factors, options));
    }
    state.counters["runs"] = row.runs;
}

}  // namespace

BENCHMARK(AskEveryRow)->Arg(8)->Arg(12)->Arg(24)->Arg(48)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFM34b, "FFM34b")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFM224c, "FFM224c")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFM224g, "FFM224g")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, CCF22a, "CCF22a")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFM2224a, "FFM2224a")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Build, FFFFR3d, "FF+FFR3d")->Unit(benchmark::kMicrosecond);
