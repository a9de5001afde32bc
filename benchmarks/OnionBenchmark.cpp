// Onion designs of three layers of random candidates, and what their rules cost.

#include <benchmark/benchmark.h>

#include <random>

#include "designs/optimal/OnionBuilder.h"
#include "designs/optimal/OnionDesign.h"
#include "designs/optimal/OnionOptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Validating.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr int cFactors = 4;
constexpr int cLayers = 3;

const OnionBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::OnionDOpt, "");
    return dynamic_cast<const OnionBuilder&>(*builder);
}

// Candidates within cubes that grow from layer to layer.
CandidateSet Candidates(int rowsOfLayer) {
    std::mt19937 engine(1);
    CandidateSet set;
    for (int layer = 0; layer < cLayers; ++layer) {
        const double reach = static_cast<double>(layer + 1) / cLayers;
        NCDataMatrix<float> rows(rowsOfLayer, cFactors);
        for (float& cell : rows.Cells()) {
            const double share = static_cast<double>(engine()) / 4294967295.0;
            cell = static_cast<float>(reach * (2 * share - 1));
        }
        set.ConcatCandidateSet(static_cast<unsigned long long>(layer), rows);
    }
    return set;
}

// state: candidates of a layer, and the model of the last one.
DesignOptions Request(const benchmark::State& state, const Factors& factors) {
    const auto model = static_cast<EModel::Type>(state.range(1));
    DesignOptions options(
        Builder(),
        factors,
        model == EModel::Quadratic ? EObjective::Optimization : EObjective::Screening,
        model,
        EModel::None,
        DesignOptions::cNoRunLimit);
    auto& family = dynamic_cast<OnionOptions&>(*options.GetDesignSpecificOptions());
    family.SetCandidateSet(Candidates(static_cast<int>(state.range(0))));
    return options;
}

void Sizes(benchmark::internal::Benchmark* sizes) {
    for (const int model : {1, 3}) {
        for (const int rows : {1000, 5000, 20000}) {
            sizes->Args({rows, model});
        }
    }
}

// All layers with their run counts two more and fewer, once each.
void Build(benchmark::State& state) {
    Validating::Set();
    const auto factors = TestFactors().Quantitatives(cFactors);
    const DesignOptions options = Request(state, factors);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Builder().Build(factors, options));
    }
}

// The bounds of all layers under a constraint, which looks at every candidate.
void SetTotalRuns(benchmark::State& state) {
    const auto factors = TestFactors().Quantitatives(cFactors);
    DesignOptions options = Request(state, factors);
    auto& family = dynamic_cast<OnionOptions&>(*options.GetDesignSpecificOptions());
    family.SetConstraints(NCDOE::Constraints({{{{0, 1}, {1, 1}}, 1.5, false}}), factors);
    int runs = family.GetTotalRuns();
    for (auto _ : state) {
        runs = runs == 30 ? 40 : 30;
        benchmark::DoNotOptimize(family.SetTotalRuns(runs, factors, options));
    }
}

BENCHMARK(Build)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(SetTotalRuns)->Apply(Sizes)->Unit(benchmark::kMicrosecond);

}  // namespace
