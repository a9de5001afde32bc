#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "tests/oracles/DenseOracles.h"

/// Second-order properties of coded designs, by their definitions and in long double. Columns count
/// from 1.
namespace SecondOrder {

/// Sum over all runs of the product of the columns; a column named twice is squared.
inline long double Moment(const NCDataMatrix<float>& design, const std::vector<int>& columns) {
    long double sum = 0;
    for (int row = 1; row <= design.SizeRows(); ++row) {
        long double product = 1;
        for (const int column : columns) {
            product *= static_cast<long double>(design(row, column));
        }
        sum += product;
    }
    return sum;
}

/// Model row of a full quadratic model: constant, linear, square and interaction terms.
inline std::vector<long double> QuadraticTerms(const std::vector<long double>& run) {
    std::vector<long double> terms{1};
    terms.insert(terms.end(), run.begin(), run.end());
    for (std::size_t i = 0; i < run.size(); ++i) {
        for (std::size_t j = i; j < run.size(); ++j) {
            terms.push_back(run[i] * run[j]);
        }
    }
    return terms;
}

/// X'X of the full quadratic model in the first `factors` columns.
inline oracles::Table Information(const NCDataMatrix<float>& design, int factors) {
    oracles::Table model;
    for (int row = 1; row <= design.SizeRows(); ++row) {
        const auto cells = design.RowSpan(row);
        model.push_back(QuadraticTerms({cells.begin(), cells.begin() + factors}));
    }
    return oracles::Product(oracles::Transposed(model), model);
}

/// A symmetric matrix has full rank: no pivot of its elimination is lost in rounding.
inline bool HasFullRank(oracles::Table information) {
    // Singular matrices leave pivots of about 1e-18 of it; those of the designs are far above.
    const long double smallest = 1e-10L * oracles::LargestEntry(information);
    for (std::size_t step = 0; step < information.size(); ++step) {
        oracles::BringUpPivot(information, step);
        const long double pivot = information[step][step];
        if (!(std::abs(pivot) > smallest)) {
            return false;
        }
        for (std::size_t row = step + 1; row < information.size(); ++row) {
            const long double factor = information[row][step] / pivot;
            for (std::size_t column = step; column < information.size(); ++column) {
                information[row][column] -= factor * information[step][column];
            }
        }
    }
    return true;
}

/// Variance of the predicted response at a point, in units of the error variance.
inline long double PredictionVariance(const oracles::Table& inverse,
                                      const std::vector<long double>& point) {
    const std::vector<long double> terms = QuadraticTerms(point);
    long double variance = 0;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        for (std::size_t j = 0; j < terms.size(); ++j) {
            variance += terms[i] * inverse[i][j] * terms[j];
        }
    }
    return variance;
}

}  // namespace SecondOrder
