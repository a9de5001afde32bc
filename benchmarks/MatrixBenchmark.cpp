#include <benchmark/benchmark.h>

#include <random>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/NCSVD.h"

namespace {

/// Entries uniform in [-1, 1) from a fixed seed.
template <class T>
NCDataMatrix<T> RandomMatrix(int rows, int columns) {
    std::mt19937 engine(1);
    NCDataMatrix<T> matrix(rows, columns);
    for (T& cell : matrix.Cells()) {
        cell = static_cast<T>(static_cast<double>(engine()) / 2147483648.0 - 1.0);
    }
    return matrix;
}

/// Arguments: rows, columns.
template <class T>
void Decomposition(benchmark::State& state) {
    const auto matrix =
        RandomMatrix<T>(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix.GetSVD(nullptr));
    }
}

void DecompositionSizes(benchmark::internal::Benchmark* run) {
    run->Args({20, 10})->Args({100, 60})->Args({500, 150})->Args({2000, 150});
    run->Unit(benchmark::kMicrosecond);
}
BENCHMARK(Decomposition<float>)->Apply(DecompositionSizes);
BENCHMARK(Decomposition<double>)->Apply(DecompositionSizes);

/// Argument: rows of the finished matrix, all built one by one at the end.
void AppendRows(benchmark::State& state) {
    const NCDataVector<float> row(20, 1.0f);
    for (auto _ : state) {
        NCDataMatrix<float> matrix;
        for (int i = 1; i <= state.range(0); ++i) {
            matrix.InsertRow(i, row);
        }
        benchmark::DoNotOptimize(matrix.Cells().data());
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The same, every row before the first.
void InsertRowsAtFront(benchmark::State& state) {
    const NCDataVector<float> row(20, 1.0f);
    for (auto _ : state) {
        NCDataMatrix<float> matrix;
        for (int i = 1; i <= state.range(0); ++i) {
            matrix.InsertRow(1, row);
        }
        benchmark::DoNotOptimize(matrix.Cells().data());
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(AppendRows)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);
BENCHMARK(InsertRowsAtFront)->RangeMultiplier(4)->Range(64, 4096)->Complexity(benchmark::oNSquared);

/// Counts one multiplication and one addition a term.
void CountTerms(benchmark::State& state, double rows, double inner, double columns) {
    state.counters["flops"] = benchmark::Counter(2 * rows * inner * columns,
                                                 benchmark::Counter::kIsIterationInvariantRate,
                                                 benchmark::Counter::kIs1000);
}

/// Argument: the size of both square factors.
template <class T>
void SquareProduct(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    const auto matrix = RandomMatrix<T>(size, size);
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix * matrix);
    }
    CountTerms(state, size, size, size);
}

BENCHMARK(SquareProduct<float>)->RangeMultiplier(4)->Range(16, 1024)->Unit(benchmark::kMicrosecond);
BENCHMARK(SquareProduct<double>)
    ->RangeMultiplier(4)
    ->Range(16, 1024)
    ->Unit(benchmark::kMicrosecond);

/// What SquareProduct is compared with: three loops, one double sum an element.
void PlainTripleLoop(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    const auto matrix = RandomMatrix<float>(size, size);
    NCDataMatrix<float> product(size, size);
    for (auto _ : state) {
        for (int i = 1; i <= size; ++i) {
            for (int j = 1; j <= size; ++j) {
                double sum = 0;
                for (int k = 1; k <= size; ++k) {
                    sum += static_cast<double>(matrix(i, k)) * static_cast<double>(matrix(k, j));
                }
                product(i, j, static_cast<float>(sum));
            }
        }
        benchmark::DoNotOptimize(product.Cells().data());
    }
    CountTerms(state, size, size, size);
}

BENCHMARK(PlainTripleLoop)->RangeMultiplier(4)->Range(16, 1024)->Unit(benchmark::kMicrosecond);

/// X'X without the transpose. Arguments: rows, columns.
void CrossProduct(benchmark::State& state) {
    const auto rows = static_cast<int>(state.range(0));
    const auto columns = static_cast<int>(state.range(1));
    const auto matrix = RandomMatrix<float>(rows, columns);
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix.Prim() * matrix);
    }
    CountTerms(state, columns, rows, columns);
}

BENCHMARK(CrossProduct)
    ->Args({100, 20})
    ->Args({1000, 60})
    ->Args({12000, 150})
    ->Unit(benchmark::kMicrosecond);

/// Argument: rows and columns of the matrix.
void InsertOneColumn(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    auto matrix = RandomMatrix<float>(size, size);
    const NCDataVector<float> column(size, 1.0f);
    for (auto _ : state) {
        matrix.InsertColumn(size / 2, column);
        matrix.RemoveColumns(size / 2, 1);
        benchmark::DoNotOptimize(matrix.Cells().data());
    }
    state.SetComplexityN(state.range(0) * state.range(0));
}

BENCHMARK(InsertOneColumn)->RangeMultiplier(4)->Range(16, 1024)->Complexity(benchmark::oN);

}  // namespace
