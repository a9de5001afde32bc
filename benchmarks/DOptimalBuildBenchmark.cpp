// Whole D-optimal designs as a host asks for them: candidates, five searches of each of five run
// counts, and the figures of all results.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "designs/optimal/D_Optimal.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

constexpr unsigned cAnyRuns = 12000;

DesignOptions DefaultRequest(const DesignBuilder& builder,
                             const Factors& factors,
                             EObjective::Type objective) {
    return {builder,
            factors,
            objective,
            builder.GetDefaultProcessModel(factors, objective, cAnyRuns),
            builder.GetDefaultMixtureModel(factors, objective, cAnyRuns),
            cAnyRuns};
}

// The counter D is |X'X|^(1/p) / n of the best result, in coded units.
void BuildDefault(benchmark::State& state, const Factors& factors, EObjective::Type objective) {
    const ValidatingScope validating;
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    const DesignOptions options = DefaultRequest(*builder, factors, objective);
    std::unique_ptr<NCDesign> built;
    for (auto _ : state) {
        built = builder->Build(factors, options);
    }
    const auto& design = dynamic_cast<const D_Optimal&>(*built);
    const int best = design.GetBestDesignBy(EDesign::LogDeterminant);
    const auto& result = design.GetResults()[static_cast<std::size_t>(best)];
    const DOpt::NumData& counts = design.GetNumData();
    state.counters["D"] = std::pow(10.0, result.NormLogDet);
    state.counters["runs"] = options.GetRuns();
    state.counters["candidates"] = counts.ExtVert + counts.NumEdges + counts.NumHiDimCent;
}

/// Quadratic models. Argument: factors.
void Quadratic(benchmark::State& state) {
    BuildDefault(state,
                 TestFactors().Quantitatives(static_cast<int>(state.range(0))),
                 EObjective::Optimization);
}
BENCHMARK(Quadratic)->DenseRange(3, 10)->Unit(benchmark::kMillisecond);

/// Linear models. Argument: factors.
void Linear(benchmark::State& state) {
    BuildDefault(state,
                 TestFactors().Quantitatives(static_cast<int>(state.range(0))),
                 EObjective::RobustnessVerification);
}
BENCHMARK(Linear)->Arg(3)->Arg(7)->Arg(10)->Arg(16)->Arg(32)->Unit(benchmark::kMillisecond);

/// A mixture with a process factor and a factor of three levels. Argument: components.
void Mixture(benchmark::State& state) {
    TestFactors factors = TestFactors().Quantitative().Qualitative(3);
    for (int i = 0; i < state.range(0); ++i) {
        factors.Formulation(0, i % 2 == 0 ? 0.7F : 1);
    }
    BuildDefault(state, factors, EObjective::Optimization);
}
BENCHMARK(Mixture)->Arg(3)->Arg(4)->Arg(5)->Unit(benchmark::kMillisecond);

}  // namespace
