#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "designs/optimal/engine/DOptExchange.h"
#include "designs/optimal/engine/InformationInverse.h"
#include "tests/oracles/LiteralExchange.h"

/// Candidates and models for the tests of the exchange.
namespace ExchangeSamples {

using Rows = std::vector<std::vector<float>>;

enum class Model { Linear, Interaction, Quadratic };

/// All combinations of `levels` even levels from -1 to 1, the first factor changing fastest.
inline Rows Grid(int factors, int levels) {
    Rows points{{}};
    for (int f = 0; f < factors; ++f) {
        Rows longer;
        for (int level = 0; level < levels; ++level) {
            for (std::vector<float> point : points) {
                point.push_back(2.0F * static_cast<float>(level) / static_cast<float>(levels - 1) -
                                1.0F);
                longer.push_back(point);
            }
        }
        points = longer;
    }
    return points;
}

/// 1, x_i, x_i x_j, x_i^2 as far as the model goes.
inline Rows Expanded(const Rows& points, Model model) {
    Rows rows;
    for (const std::vector<float>& x : points) {
        std::vector<float> row{1};
        row.insert(row.end(), x.begin(), x.end());
        for (std::size_t i = 0; i < x.size() && model != Model::Linear; ++i) {
            for (std::size_t j = i + 1; j < x.size(); ++j) {
                row.push_back(x[i] * x[j]);
            }
        }
        for (std::size_t i = 0; i < x.size() && model == Model::Quadratic; ++i) {
            row.push_back(x[i] * x[i]);
        }
        rows.push_back(row);
    }
    return rows;
}

/// A constant column and `columns` - 1 columns uniform in [-1, 1).
inline Rows Random(int rows, int columns, unsigned seed) {
    std::mt19937 engine(seed);
    Rows result;
    for (int i = 0; i < rows; ++i) {
        std::vector<float> row{1};
        while (static_cast<int>(row.size()) < columns) {
            row.push_back(static_cast<float>(static_cast<double>(engine()) / 2147483648.0 - 1.0));
        }
        result.push_back(row);
    }
    return result;
}

inline NCDataMatrix<float> ToMatrix(const Rows& rows) {
    NCDataMatrix<float> matrix(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::ranges::copy(rows[i], matrix.RowSpan(static_cast<int>(i) + 1).begin());
    }
    return matrix;
}

inline DOpt::Status GoOn(DOpt::EClassName /*event*/, float /*value*/) {
    return DOpt::Success;
}

inline DOpt::ExchangeSettings Settings(int runs, unsigned seed) {
    DOpt::ExchangeSettings settings;
    settings.runs = runs;
    settings.randomPoints = std::min(3, runs);
    settings.seed = seed;
    settings.progress = GoOn;
    return settings;
}

struct Found {
    DOpt::Status status = DOpt::Success;
    std::vector<DOpt::ExchangeResult> results;
};

inline Found FindDesigns(const Rows& rows,
                         const DOpt::ExchangeSettings& settings,
                         int repetitions,
                         int potential = 0) {
    DOpt::ExchangeModel model(ToMatrix(rows), potential);
    DOpt::DOptExchange exchange(model, settings);
    Found found;
    found.status = exchange.GetStatus();
    if (found.status == DOpt::Success) {
        found.status = exchange.RepetitionLoop(found.results, repetitions, {}, false);
    }
    return found;
}

/// |X'X|^(1/p) / n of the best result; 0 without one.
inline double BestEfficiency(const Found& found, int columns) {
    double best = 0;
    for (const DOpt::ExchangeResult& result : found.results) {
        const double perColumn = static_cast<double>(result.figures.logDeterminant) / columns;
        best = std::max(best, std::pow(10.0, perColumn) / static_cast<double>(result.rows.size()));
    }
    return best;
}

/// The engine's own inverse for the plain form: on grids equal variances are told apart by their
/// last bit, which is the inverse's.
inline LiteralExchange::Inverse InvertAsEngine(const LiteralExchange::Matrix& matrix) {
    DOpt::SquareMatrix square(static_cast<int>(matrix.size()));
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        std::ranges::copy(matrix[i], square.Row(i));
    }
    DOpt::InformationInverse inverted;
    LiteralExchange::Inverse inverse;
    inverse.regular = DOpt::InvertInformation(square, nullptr, inverted) == DOpt::Success;
    inverse.logDeterminant = inverted.logDeterminant;
    for (std::size_t i = 0; inverse.regular && i < matrix.size(); ++i) {
        const double* const row = inverted.inverse.Row(i);
        inverse.matrix.emplace_back(row, row + matrix.size());
    }
    return inverse;
}

}  // namespace ExchangeSamples
