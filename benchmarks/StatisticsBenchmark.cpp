// The five figures of a finished design.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "evaluation/DesignStatistics.h"
#include "tests/support/TestFactors.h"

namespace {

/// Constant, main effects, interactions, squares.
std::vector<std::vector<int>> QuadraticTerms(int factors) {
    std::vector<std::vector<int>> terms{{}};
    for (int i = 0; i < factors; ++i) {
        terms.push_back({i});
    }
    for (int i = 0; i < factors; ++i) {
        for (int j = i; j < factors; ++j) {
            terms.push_back({i, j});
        }
    }
    return terms;
}

/// Levels -1, 0 and 1 from a fixed seed.
NCDataMatrix<float> ThreeLevelRuns(int runs, int factors) {
    std::mt19937 engine(1);
    NCDataMatrix<float> matrix(runs, factors);
    for (float& cell : matrix.Cells()) {
        cell = static_cast<float>(static_cast<int>(engine() % 3) - 1);
    }
    return matrix;
}

/// All figures of a quadratic design over as many candidates as told. Arguments: runs, factors,
/// candidates.
void Figures(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(1));
    const TestFactors list = TestFactors().Quantitatives(factors);
    const auto terms = QuadraticTerms(factors);
    const NCDataMatrix<float> design = ThreeLevelRuns(static_cast<int>(state.range(0)), factors);
    const NCDataMatrix<float> candidates =
        ThreeLevelRuns(static_cast<int>(state.range(2)), factors);
    bool stop = false;
    double condition = 0;
    for (auto _ : state) {
        condition =
            DesignStatistics::CalculateStatistics(list, terms, design, &candidates, false, 1, stop)
                .CondNo;
    }
    state.counters["condition"] = condition;
}
BENCHMARK(Figures)
    ->Args({24, 4, 500})
    ->Args({240, 4, 500})
    ->Args({2400, 4, 500})
    ->Args({240, 10, 500})
    ->Args({2400, 10, 500})
    ->Args({240, 10, 5000})
    ->Args({240, 10, 50000})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
