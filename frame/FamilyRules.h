#pragma once

#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/EObjective.h"
#include "frame/Factors.h"

/// Conditions that the rules of many families share.
namespace FamilyRules {

[[nodiscard]] inline bool IsScreening(EObjective::Type objective) {
    return objective == EObjective::Screening || objective == EObjective::RobustnessVerification;
}

[[nodiscard]] inline bool IsResponseSurface(EObjective::Type objective) {
    return objective == EObjective::Optimization || objective == EObjective::SystemCharacterization;
}

/// Without a filler, or with one that leaves the sum of the formulation factors free.
[[nodiscard]] inline bool IsFillerFree(const Factors& factors) {
    return !factors.HasFiller() || factors.IsFormulationSumFree();
}

[[nodiscard]] inline bool HasConstraints(const DesignOptions& options) {
    const DesignSpecificOptions* specific = options.GetDesignSpecificOptions();
    return specific != nullptr && !specific->GetConstraints().IsEmpty();
}

[[nodiscard]] inline bool IsLinearOrInteraction(EModel::Type model) {
    return model == EModel::Linear || model == EModel::Interaction;
}

/// What the composite designs ask for: a quadratic model of quantitative factors for a response
/// surface, without constraints.
[[nodiscard]] inline bool IsQuantitativeResponseSurface(const Factors& factors,
                                                        const DesignOptions& options) {
    return IsFillerFree(factors) && !HasConstraints(options) &&
           IsResponseSurface(options.GetObjective()) && options.GetModel() == EModel::Quadratic &&
           factors.IsProcessOnly() && factors.IsAllQuantitative();
}

}  // namespace FamilyRules
