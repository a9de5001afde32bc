#include "host/IndependentColumns.h"

#include <cmath>
#include <numeric>

namespace {

// Columns come from 32-bit floats: what is left of a combination is rounding of that size.
constexpr double cTolerance = 1e-5;

double Length(const std::vector<double>& column) {
    return std::sqrt(std::inner_product(column.begin(), column.end(), column.begin(), 0.0));
}

}  // namespace

bool IndependentColumns::Add(std::vector<double> column) {
    const double whole = Length(column);
    // Twice, since the first pass leaves rounding of the size of what it takes away.
    for (int pass = 0; pass < 2; ++pass) {
        for (const std::vector<double>& direction : basis_) {
            const double part =
                std::inner_product(column.begin(), column.end(), direction.begin(), 0.0);
            for (std::size_t i = 0; i < column.size(); ++i) {
                column[i] -= part * direction[i];
            }
        }
    }
    const double left = Length(column);
    if (!(left > cTolerance * whole)) {
        return false;
    }
    for (double& cell : column) {
        cell /= left;
    }
    basis_.push_back(std::move(column));
    return true;
}
