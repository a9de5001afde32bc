// Exact designs against the optimum over all weights of the candidates, which no exact design
// exceeds (Kiefer and Wolfowitz, 1960).

#include <gtest/gtest.h>

#include "tests/designs/optimal/engine/ExchangeSamples.h"

namespace {

using ExchangeSamples::BestEfficiency;
using ExchangeSamples::Expanded;
using ExchangeSamples::FindDesigns;
using ExchangeSamples::Grid;
using ExchangeSamples::Model;
using ExchangeSamples::Rows;
using ExchangeSamples::Settings;

struct Optimum {
    double root = 0;     // |M|^(1/p) of the weighted information matrix
    double largest = 0;  // prediction variance of a candidate; p at the optimum
};

/// Multiplies every weight by its candidate's variance over p, again and again (Titterington,
/// 1976).
Optimum FindOptimum(const Rows& rows, int steps) {
    const std::size_t columns = rows[0].size();
    std::vector<double> weights(rows.size(), 1.0 / static_cast<double>(rows.size()));
    Optimum optimum;
    for (int step = 0; step < steps; ++step) {
        LiteralExchange::Matrix information(columns, std::vector<double>(columns, 0.0));
        for (std::size_t k = 0; k < rows.size(); ++k) {
            for (std::size_t i = 0; i < columns; ++i) {
                for (std::size_t j = 0; j < columns; ++j) {
                    information[i][j] += weights[k] * static_cast<double>(rows[k][i] * rows[k][j]);
                }
            }
        }
        const LiteralExchange::Inverse inverse = LiteralExchange::InvertPlainly(information);
        optimum.root = std::pow(10.0, inverse.logDeterminant / static_cast<double>(columns));
        optimum.largest = 0;
        for (std::size_t k = 0; k < rows.size(); ++k) {
            double variance = 0;
            for (std::size_t i = 0; i < columns; ++i) {
                for (std::size_t j = 0; j < columns; ++j) {
                    variance += static_cast<double>(rows[k][i]) * inverse.matrix[i][j] *
                                static_cast<double>(rows[k][j]);
                }
            }
            weights[k] *= variance / static_cast<double>(columns);
            optimum.largest = std::max(optimum.largest, variance);
        }
    }
    return optimum;
}

/// The optimum of a quadratic model on a three-level grid, proven by its largest variance.
double QuadraticOptimum(int factors) {
    const Rows rows = Expanded(Grid(factors, 3), Model::Quadratic);
    const Optimum optimum = FindOptimum(rows, factors < 4 ? 600 : 200);
    const auto columns = static_cast<double>(rows[0].size());
    // |M*|^(1/p) <= |M|^(1/p) max d / p.
    EXPECT_LT(optimum.largest / columns, 1.01) << factors << " factors";
    return optimum.root * optimum.largest / columns;
}

// Atkinson and Donev, "Optimum Experimental Designs" (1992): the three-level factorial of two
// factors has a D-efficiency of 97.4 percent.
TEST(ContinuousOptimum, IsThatOfTheTextbookForTwoFactors) {
    const double factorial = std::pow(64.0 / 6561, 1.0 / 6);
    EXPECT_NEAR(factorial / QuadraticOptimum(2), 0.974, 0.0005);
}

TEST(ContinuousOptimum, IsNeverExceededAndNearlyReachedWithManyRuns) {
    for (int factors = 2; factors <= 4; ++factors) {
        const double optimum = QuadraticOptimum(factors);
        const Rows rows = Expanded(Grid(factors, 3), Model::Quadratic);
        const auto columns = static_cast<int>(rows[0].size());
        for (const int runs : {columns, columns + 3, 2 * columns}) {
            if (runs > static_cast<int>(rows.size())) {
                continue;
            }
            for (unsigned seed = 1; seed <= 5; ++seed) {
                const double share =
                    BestEfficiency(FindDesigns(rows, Settings(runs, seed), 5), columns) / optimum;
                EXPECT_LE(share, 1.0 + 1e-6) << factors << " factors, " << runs << " runs";
                EXPECT_GE(share, runs == columns ? 0.8 : 0.9)
                    << factors << " factors, " << runs << " runs, seed " << seed;
            }
        }
    }
}

}  // namespace
