#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "tests/oracles/DenseOracles.h"

/// Model matrices written out term by term, and their rank by elimination.
namespace oracles {

using Run = std::vector<long double>;

/// 1, x_i, x_i x_j.
inline Run InteractionTerms(const Run& x) {
    Run terms{1};
    terms.insert(terms.end(), x.begin(), x.end());
    for (std::size_t i = 0; i < x.size(); ++i) {
        for (std::size_t j = i + 1; j < x.size(); ++j) {
            terms.push_back(x[i] * x[j]);
        }
    }
    return terms;
}

/// 1, x_i, x_i x_j, x_i^2.
inline Run QuadraticTerms(const Run& x) {
    Run terms = InteractionTerms(x);
    for (const long double value : x) {
        terms.push_back(value * value);
    }
    return terms;
}

/// Scheffé's linear mixture model: x_i.
inline Run MixtureLinearTerms(const Run& x) {
    return x;
}

/// Scheffé's quadratic mixture model: x_i, x_i x_j.
inline Run MixtureQuadraticTerms(const Run& x) {
    Run terms = InteractionTerms(x);
    terms.erase(terms.begin());
    return terms;
}

/// Scheffé's special cubic mixture model: the quadratic one and x_i x_j x_l.
inline Run MixtureSpecialCubicTerms(const Run& x) {
    Run terms = MixtureQuadraticTerms(x);
    for (std::size_t i = 0; i < x.size(); ++i) {
        for (std::size_t j = i + 1; j < x.size(); ++j) {
            for (std::size_t l = j + 1; l < x.size(); ++l) {
                terms.push_back(x[i] * x[j] * x[l]);
            }
        }
    }
    return terms;
}

/// Scheffé's full cubic mixture model: the special cubic one and x_i x_j (x_i - x_j).
inline Run MixtureCubicTerms(const Run& x) {
    Run terms = MixtureSpecialCubicTerms(x);
    for (std::size_t i = 0; i < x.size(); ++i) {
        for (std::size_t j = i + 1; j < x.size(); ++j) {
            terms.push_back(x[i] * x[j] * (x[i] - x[j]));
        }
    }
    return terms;
}

using Terms = Run (*)(const Run&);

/// The model matrix over the first `factors` columns of the runs.
inline Table ModelMatrix(const NCDataMatrix<float>& runs, int factors, Terms terms) {
    Table model;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        Run run;
        for (int column = 1; column <= factors; ++column) {
            run.push_back(static_cast<long double>(runs(row, column)));
        }
        model.push_back(terms(run));
    }
    return model;
}

/// Rank by elimination with a search for the largest pivot. A pivot below `smallest` counts as 0:
/// entries of float runs carry errors near 1e-7, true pivots of these models are far larger.
inline std::size_t Rank(Table a, long double smallest = 1e-5L) {
    const std::size_t columns = a.empty() ? 0 : a[0].size();
    std::size_t rank = 0;
    for (std::size_t column = 0; column < columns && rank < a.size(); ++column) {
        std::size_t pivot = rank;
        for (std::size_t row = rank + 1; row < a.size(); ++row) {
            if (std::abs(a[row][column]) > std::abs(a[pivot][column])) {
                pivot = row;
            }
        }
        if (std::abs(a[pivot][column]) < smallest) {
            continue;
        }
        std::swap(a[rank], a[pivot]);
        for (std::size_t row = rank + 1; row < a.size(); ++row) {
            const long double factor = a[row][column] / a[rank][column];
            for (std::size_t i = column; i < columns; ++i) {
                a[row][i] -= factor * a[rank][i];
            }
        }
        ++rank;
    }
    return rank;
}

/// Sum over runs of the product of the named columns; a column may be named more than once.
inline double Moment(const NCDataMatrix<float>& runs, const std::vector<int>& columns) {
    double sum = 0;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        double product = 1;
        for (const int column : columns) {
            product *= static_cast<double>(runs(row, column));
        }
        sum += product;
    }
    return sum;
}

}  // namespace oracles
