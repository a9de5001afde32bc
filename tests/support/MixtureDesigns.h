#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

/// What the tests of mixture designs share.
namespace mixture {

/// Proportions are single-precision fractions; the sum of a row is off by their roundings.
inline constexpr double cSumTolerance = 1e-6;

inline TestFactors MakeFactors(int count, float low = 0, float high = 1) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.Formulation(low, high);
    }
    return factors;
}

inline const DesignBuilder& Builder(EDesign::Type type) {
    return *AllDesigns::GetDesignBuilder(type, "");
}

/// The finished matrix; empty for a request that is not valid.
inline NCDataMatrix<float> Build(EDesign::Type type,
                                 const Factors& factors,
                                 const DesignOptions& options) {
    const auto design = Builder(type).Build(factors, options);
    return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
}

inline NCDataMatrix<float> Build(EDesign::Type type, int count, unsigned centroids) {
    const TestFactors factors = MakeFactors(count);
    DesignOptions options(Builder(type), factors);
    options.SetCenterPoints(centroids);
    return Build(type, factors, options);
}

/// With the family's defaults.
inline bool IsValid(EDesign::Type type, const Factors& factors) {
    return Builder(type).IsValid(factors, DesignOptions(Builder(type), factors));
}

/// The runs in real settings, the matrix read as pseudo-component proportions.
inline NCDataMatrix<float> InRealSettings(const NCDataMatrix<float>& runs, const Factors& factors) {
    NCDataMatrix<float> real = runs;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        for (int column = 1; column <= runs.SizeColumns(); ++column) {
            real(row, column, factors.FromCoded(column - 1, runs(row, column), true));
        }
    }
    return real;
}

/// Rows with a value outside the range.
inline std::vector<int> RowsOutside(const NCDataMatrix<float>& runs, double low, double high) {
    std::vector<int> rows;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        for (const float value : runs.RowSpan(row)) {
            if (static_cast<double>(value) < low - cSumTolerance ||
                static_cast<double>(value) > high + cSumTolerance) {
                rows.push_back(row);
                break;
            }
        }
    }
    return rows;
}

}  // namespace mixture
