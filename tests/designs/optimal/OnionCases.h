#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/optimal/OnionBuilder.h"
#include "designs/optimal/OnionOptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

/// Requests for onion designs.
namespace OnionCases {

inline const OnionBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::OnionDOpt, "");
    return dynamic_cast<const OnionBuilder&>(*builder);
}

inline OnionOptions& FamilyOf(DesignOptions& options) {
    return dynamic_cast<OnionOptions&>(*options.GetDesignSpecificOptions());
}

inline DesignOptions Request(const Factors& factors,
                             EObjective::Type objective,
                             EModel::Type model,
                             unsigned int maxRuns = 12000) {
    DesignOptions options(Builder(), factors, objective, model, EModel::None, maxRuns);
    options.SetCenterPoints(0);
    return options;
}

inline DesignOptions Linear(const Factors& factors) {
    return Request(factors, EObjective::Screening, EModel::Linear);
}

/// The first factor at least at a bound.
inline NCDOE::Constraints AtLeast(double bound) {
    return NCDOE::Constraints({{{{0, 1.0}}, bound, true}});
}

/// Candidates of `columns` factors of which the first `good` keep AtLeast(0), the last `bad` do
/// not.
inline CandidateSet Scored(int good, int bad, int columns = 2) {
    NCDataMatrix<float> rows(good + bad, columns, 0.0F);
    for (int row = 1; row <= good + bad; ++row) {
        rows(row, 1, row <= good ? 0.5F : -0.5F);
        rows(row, 2, static_cast<float>(row) / static_cast<float>(good + bad));
    }
    CandidateSet set;
    set.SetCandidateSet(rows, DOpt::NumData());
    return set;
}

/// Options that know of `good` acceptable candidates.
inline DesignOptions WithScores(const Factors& factors, EModel::Type model, int good) {
    DesignOptions options =
        Request(factors,
                model == EModel::Quadratic ? EObjective::Optimization : EObjective::Screening,
                model);
    FamilyOf(options).SetConstraints(AtLeast(0), factors);
    FamilyOf(options).SetCandidateSet(
        Scored(good, 7, static_cast<int>(factors.GetDesignFactorCount())));
    return options;
}

}  // namespace OnionCases
