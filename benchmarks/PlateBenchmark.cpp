// Plates: the choice of both sides' designs among all families, the wells of several plates, their
// names and the check of the whole.

#include <benchmark/benchmark.h>

#include <vector>

#include "designs/plate/REDMUP.h"
#include "designs/plate/REDMUPOptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

namespace {

using EPlateSize = REDMUPOptions::EPlateSize;

TestFactors MixedFactors() {
    return TestFactors().Quantitatives(2).Qualitative(3).MultilevelOf(4).Quantitatives(5);
}

EPlateSize SizeOf(const benchmark::State& state) {
    return static_cast<EPlateSize>(state.range(0));
}

// Two groups of two factors each; the other factors are for the plates.
DesignOptions PlatesOf(const benchmark::State& state, const Factors& factors, int plates) {
    DesignOptions options(*AllDesigns::GetREDMUPBuilder(), factors);
    auto& own = dynamic_cast<REDMUPOptions&>(*options.GetDesignSpecificOptions());
    own.GetHorizontalDesign().factors = {0, 2};
    own.GetVerticalDesign().factors = {1, 3};
    own.SetPlateSize(SizeOf(state), factors, true);
    own.SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(plates));
    return options;
}

// One side over all families.
void SetUpSide(benchmark::State& state) {
    const TestFactors factors = MixedFactors();
    std::vector<unsigned long long> group;
    for (long factor = 0; factor < state.range(1); ++factor) {
        group.push_back(static_cast<unsigned long long>(factor));
    }
    REDMUPOptions::REDMUPSubDesign side;
    for (auto _ : state) {
        side.Setup(static_cast<unsigned long long>(state.range(0)), factors, group);
    }
}

// The default options of a plate design, with both sides.
void SetUpPlate(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitatives(static_cast<int>(state.range(1)));
    REDMUPOptions options(factors);
    for (auto _ : state) {
        options.SetPlateSize(SizeOf(state), factors, true);
    }
}

void AskValidity(benchmark::State& state) {
    const TestFactors factors = MixedFactors();
    const DesignOptions options = PlatesOf(state, factors, 1);
    const DesignBuilder& builder = *AllDesigns::GetREDMUPBuilder();
    for (auto _ : state) {
        benchmark::DoNotOptimize(builder.IsValid(factors, options));
    }
}

// Generation of so many plates, with as many plate factors as they take.
void Generate(benchmark::State& state) {
    const int plates = static_cast<int>(state.range(1));
    TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3).MultilevelOf(4);
    for (int combinations = 2; combinations <= plates; combinations *= 2) {
        factors.Quantitative();
    }
    const DesignOptions options = PlatesOf(state, factors, plates);
    const DesignBuilder& builder = *AllDesigns::GetREDMUPBuilder();
    int wells = 0;
    for (auto _ : state) {
        wells = builder.Build(factors, options)->GetDesignMatrix()->SizeRows();
    }
    state.counters["wells"] = wells;
    state.counters["wells/s"] = benchmark::Counter(static_cast<double>(wells),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

void Name(benchmark::State& state) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions options(factors);
    options.SetPlateSize(SizeOf(state), factors, false);
    options.SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(options.GetDefaultExperimentNames());
    }
}

void SizesAndPlates(benchmark::internal::Benchmark* sizes) {
    for (const int size : {0, 1, 2}) {
        for (const int plates : {1, 2, 8}) {
            sizes->Args({size, plates});
        }
    }
}

BENCHMARK(SetUpSide)->ArgsProduct({{8, 16, 32, 48}, {1, 2, 4, 8}})->Unit(benchmark::kMicrosecond);
BENCHMARK(SetUpPlate)->ArgsProduct({{0, 1, 2}, {4, 8, 16}})->Unit(benchmark::kMicrosecond);
BENCHMARK(AskValidity)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(Generate)->Apply(SizesAndPlates)->Unit(benchmark::kMicrosecond);
BENCHMARK(Name)->Apply(SizesAndPlates)->Unit(benchmark::kMicrosecond);

}  // namespace
