#pragma once

#include <stdexcept>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

/// Short roads from factors to a design through the registered builder of a type.
namespace built {

inline const DesignBuilder& BuilderOf(EDesign::Type type) {
    return *AllDesigns::GetDesignBuilder(type, "");
}

/// The family's defaults without centre points; `runs` 0 keeps the default run count.
inline DesignOptions CoreOptions(EDesign::Type type, const Factors& factors, unsigned runs = 0) {
    DesignOptions options(BuilderOf(type), factors);
    options.SetCenterPoints(0);
    if (runs > 0) {
        options.SetRuns(runs);
    }
    return options;
}

/// A copy of the design matrix.
/// @throws std::runtime_error when the request is refused
inline NCDataMatrix<float> MatrixOf(EDesign::Type type,
                                    const Factors& factors,
                                    const DesignOptions& options) {
    const auto design = BuilderOf(type).Build(factors, options);
    if (!design) {
        throw std::runtime_error("the request was refused");
    }
    return *design->GetDesignMatrix();
}

inline NCDataMatrix<float> MatrixOf(EDesign::Type type, const Factors& factors) {
    return MatrixOf(type, factors, DesignOptions(BuilderOf(type), factors));
}

/// Gives the options a constraint on the first factor, which must be continuous.
inline void Constrain(DesignOptions& options, const Factors& factors) {
    const auto specific = std::make_shared<DesignSpecificOptions>();
    specific->SetConstraints(NCDOE::Constraints({{{{0, 1.0}}, 0.5, false}}), factors);
    options.SetDesignSpecificOptions(specific);
}

inline std::vector<float> ColumnOf(const NCDataMatrix<float>& matrix, int column) {
    std::vector<float> values;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        values.push_back(matrix(row, column));
    }
    return values;
}

inline std::vector<float> RowOf(const NCDataMatrix<float>& matrix, int row) {
    const auto span = matrix.RowSpan(row);
    return {span.begin(), span.end()};
}

}  // namespace built
