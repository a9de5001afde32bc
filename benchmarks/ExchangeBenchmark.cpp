#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "designs/optimal/engine/DOptExchange.h"
#include "designs/optimal/engine/InformationInverse.h"
#include "foundation/mat/NCSVD.h"

namespace {

using DOpt::ExchangeModel;
using DOpt::SquareMatrix;

/// A constant column and columns uniform in [-1, 1) from a fixed seed.
NCDataMatrix<float> RandomRows(int rows, int columns) {
    std::mt19937 engine(1);
    NCDataMatrix<float> matrix(rows, columns, 1.0F);
    for (int row = 1; row <= rows; ++row) {
        for (int column = 2; column <= columns; ++column) {
            const double uniform = static_cast<double>(engine()) / 2147483648.0 - 1.0;
            matrix(row, column, static_cast<float>(uniform));
        }
    }
    return matrix;
}

/// Full quadratic model on a three-level grid of the factors, or on `limit` random points of it.
NCDataMatrix<float> QuadraticGrid(int factors, int limit) {
    const bool isWhole = std::pow(3.0, factors) <= limit;
    const int rows = isWhole ? static_cast<int>(std::lround(std::pow(3.0, factors))) : limit;
    std::mt19937 engine(1);
    const int columns = (factors + 1) * (factors + 2) / 2;
    NCDataMatrix<float> matrix(rows, columns, 1.0F);
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        int rest = row - 1;
        for (int f = 1; f <= factors; ++f, rest /= 3) {
            const int level = isWhole ? rest % 3 : static_cast<int>(engine() % 3);
            matrix(row, f + 1, static_cast<float>(level - 1));
        }
        int next = factors + 2;
        for (int i = 1; i <= factors; ++i) {
            for (int j = i; j <= factors; ++j) {
                matrix(row, next++, matrix(row, i + 1) * matrix(row, j + 1));
            }
        }
    }
    return matrix;
}

DOpt::ExchangeSettings Settings(int runs) {
    DOpt::ExchangeSettings settings;
    settings.runs = runs;
    settings.progress = [](DOpt::EClassName, float) { return DOpt::Success; };
    return settings;
}

/// Five repetitions as the default of designs is. Arguments: factors, runs, candidates at most.
/// The counter is |X'X|^(1/p) / n of the best of them.
void QuadraticDesigns(benchmark::State& state) {
    const NCDataMatrix<float> rows =
        QuadraticGrid(static_cast<int>(state.range(0)), static_cast<int>(state.range(2)));
    double best = 0;
    for (auto _ : state) {
        ExchangeModel model(rows, 0);
        DOpt::DOptExchange exchange(model, Settings(static_cast<int>(state.range(1))));
        std::vector<DOpt::ExchangeResult> results;
        exchange.RepetitionLoop(results, 5, {}, false);
        for (const DOpt::ExchangeResult& result : results) {
            const double log10 = static_cast<double>(result.figures.logDeterminant);
            best = std::max(
                best,
                std::pow(10.0, log10 / rows.SizeColumns()) / static_cast<double>(state.range(1)));
        }
    }
    state.counters["D"] = best;
}
BENCHMARK(QuadraticDesigns)
    ->Args({3, 14, 1000})
    ->Args({4, 18, 1000})
    ->Args({5, 26, 1000})
    ->Args({6, 33, 1000})
    ->Args({7, 41, 3000})
    ->Args({10, 71, 2000})
    ->Args({10, 71, 12000})
    ->Args({10, 71, 50000})
    ->Args({17, 180, 5000})
    ->Unit(benchmark::kMillisecond);

/// Two-factor interactions on the whole two-level grid, five repetitions. Arguments: factors, runs.
void InteractionDesigns(benchmark::State& state) {
    const int factors = static_cast<int>(state.range(0));
    const int columns = 1 + factors + factors * (factors - 1) / 2;
    NCDataMatrix<float> rows(1 << factors, columns, 1.0F);
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        int next = factors + 2;
        for (int i = 0; i < factors; ++i) {
            rows(row, i + 2, ((row - 1) >> i & 1) != 0 ? 1.0F : -1.0F);
        }
        for (int i = 2; i <= factors + 1; ++i) {
            for (int j = i + 1; j <= factors + 1; ++j) {
                rows(row, next++, rows(row, i) * rows(row, j));
            }
        }
    }
    double best = 0;
    for (auto _ : state) {
        ExchangeModel model(rows, 0);
        DOpt::DOptExchange exchange(model, Settings(static_cast<int>(state.range(1))));
        std::vector<DOpt::ExchangeResult> results;
        exchange.RepetitionLoop(results, 5, {}, false);
        for (const DOpt::ExchangeResult& result : results) {
            const double log10 = static_cast<double>(result.figures.logDeterminant);
            best = std::max(best,
                            std::pow(10.0, log10 / columns) / static_cast<double>(state.range(1)));
        }
    }
    state.counters["D"] = best;
}
BENCHMARK(InteractionDesigns)
    ->Args({5, 20})
    ->Args({7, 36})
    ->Args({9, 64})
    ->Unit(benchmark::kMillisecond);

void Sizes(benchmark::internal::Benchmark* run) {
    for (const int candidates : {500, 5000, 50000}) {
        for (const int columns : {10, 60, 190}) {
            run->Args({candidates, columns});
        }
    }
    run->Unit(benchmark::kMicrosecond);
}

/// One whole search among random candidates, ten runs more than columns. Arguments: candidates,
/// columns. The counter is |X'X|^(1/p) / n.
void OneSearch(benchmark::State& state) {
    const int columns = static_cast<int>(state.range(1));
    const NCDataMatrix<float> rows = RandomRows(static_cast<int>(state.range(0)), columns);
    double reached = 0;
    for (auto _ : state) {
        ExchangeModel model(rows, 0);
        DOpt::DOptExchange exchange(model, Settings(columns + 10));
        std::vector<DOpt::ExchangeResult> results;
        exchange.RepetitionLoop(results, 1, {}, false);
        const double log10 = static_cast<double>(results.front().figures.logDeterminant);
        reached = std::pow(10.0, log10 / columns) / (columns + 10);
    }
    state.counters["D"] = reached;
}
BENCHMARK(OneSearch)->Apply(Sizes)->Unit(benchmark::kMillisecond);

/// One exchange: inverse and the variances of all candidates. Arguments: candidates, columns.
void OneExchange(benchmark::State& state) {
    const int columns = static_cast<int>(state.range(1));
    ExchangeModel model(RandomRows(static_cast<int>(state.range(0)), columns), 0);
    DOpt::DOptExchange exchange(model, Settings(columns + 10));
    exchange.StartDesign();
    DOpt::DOptDesignState design = exchange.GetState();
    DOpt::StateUpdate update(model);
    DOpt::DOptExchangeStep there;
    there.from = design.rows.front();
    there.to = model.Candidates() - 1;
    DOpt::DOptExchangeStep back;
    back.from = there.to;
    back.to = there.from;
    for (auto _ : state) {
        update.Exchange(there, design);
        std::swap(there, back);
    }
    benchmark::DoNotOptimize(design.variances.data());
}
BENCHMARK(OneExchange)->Apply(Sizes);

/// The same, each candidate's sum on its own and along its row.
void OneExchangePlain(benchmark::State& state) {
    const auto columns = static_cast<std::size_t>(state.range(1));
    const NCDataMatrix<float> rows =
        RandomRows(static_cast<int>(state.range(0)), static_cast<int>(columns));
    std::vector<double> variances(static_cast<std::size_t>(rows.SizeRows()), 1.0);
    std::vector<double> inverse(columns * columns, 1e-3);
    std::vector<double> u(columns);
    for (auto _ : state) {
        for (int point = 1; point <= 2; ++point) {
            const auto x = rows.RowSpan(point);
            double t = 1;
            for (std::size_t a = 0; a < columns; ++a) {
                double sum = 0;
                for (std::size_t b = 0; b < columns; ++b) {
                    sum += inverse[a * columns + b] * static_cast<double>(x[b]);
                }
                u[a] = sum;
                t += sum * static_cast<double>(x[a]) * 1e-3;
            }
            for (std::size_t a = 0; a < columns; ++a) {
                for (std::size_t b = 0; b < columns; ++b) {
                    inverse[a * columns + b] -= (u[a] / t) * u[b] * 1e-6;
                }
            }
            for (int k = 1; k <= rows.SizeRows(); ++k) {
                const auto candidate = rows.RowSpan(k);
                double product = 0;
                for (std::size_t a = 0; a < columns; ++a) {
                    product += static_cast<double>(candidate[a]) * u[a];
                }
                variances[static_cast<std::size_t>(k - 1)] -= (product / t) * product;
            }
        }
    }
    benchmark::DoNotOptimize(variances.data());
}
BENCHMARK(OneExchangePlain)->Apply(Sizes);

/// Variances of all candidates from a fresh inverse. Arguments: candidates, columns.
void AllVariances(benchmark::State& state) {
    const int columns = static_cast<int>(state.range(1));
    const ExchangeModel model(RandomRows(static_cast<int>(state.range(0)), columns), 0);
    SquareMatrix inverse(columns);
    for (std::size_t j = 0; j < inverse.Size(); ++j) {
        inverse(j, j) = 1;
    }
    std::vector<double> variances;
    for (auto _ : state) {
        model.ComputeVariances(inverse, variances);
    }
    benchmark::DoNotOptimize(variances.data());
}
BENCHMARK(AllVariances)->Apply(Sizes);

SquareMatrix InformationOf(int columns) {
    const ExchangeModel model(RandomRows(2 * columns, columns), 0);
    std::vector<int> rows;
    for (int row = 0; row < 2 * columns; ++row) {
        rows.push_back(row);
    }
    return model.CrossProducts(rows);
}

/// Inverse and determinant of an information matrix. Argument: columns.
void Inversion(benchmark::State& state) {
    const SquareMatrix information = InformationOf(static_cast<int>(state.range(0)));
    DOpt::InformationInverse inverse;
    for (auto _ : state) {
        benchmark::DoNotOptimize(DOpt::InvertInformation(information, nullptr, inverse));
    }
}
BENCHMARK(Inversion)->Arg(10)->Arg(60)->Arg(190)->Unit(benchmark::kMicrosecond);

/// The same by singular values of the matrix and of its inverse.
void InversionBySingularValues(benchmark::State& state) {
    const int columns = static_cast<int>(state.range(0));
    const SquareMatrix information = InformationOf(columns);
    NCDataMatrix<double> matrix(columns, columns);
    for (int i = 1; i <= columns; ++i) {
        const double* const row = information.Row(static_cast<std::size_t>(i - 1));
        std::copy(row, row + columns, matrix.RowSpan(i).begin());
    }
    for (auto _ : state) {
        const auto inverse = matrix.GetSVD(nullptr)->GetInverse(-99.0F);
        benchmark::DoNotOptimize(inverse->GetSVD(nullptr)->GetLogDeterminant());
    }
}
BENCHMARK(InversionBySingularValues)->Arg(10)->Arg(60)->Arg(190)->Unit(benchmark::kMicrosecond);

}  // namespace
