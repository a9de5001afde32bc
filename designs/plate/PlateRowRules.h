#pragma once

#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"

/// What pre-made rows of both kinds ask for.
namespace PlateRowRules {

/// The one objective that a row of this model serves.
[[nodiscard]] inline int ObjectiveClassOf(EModel::Type model) {
    return FamilyRules::IsLinearOrInteraction(model) ? EObjective::Screening
                                                     : EObjective::Optimization;
}

/// The row's own model where the objective asks for its kind. Deliberate: a row of a higher model
/// answers with it under every objective.
[[nodiscard]] inline EModel::Type DefaultModelOf(EModel::Type model, EObjective::Type objective) {
    if (FamilyRules::IsLinearOrInteraction(model)) {
        return FamilyRules::IsScreening(objective) ? model : EModel::None;
    }
    const bool isKnown =
        model == EModel::Quadratic || model == EModel::SpecialCubic || model == EModel::Cubic;
    return isKnown ? model : EModel::None;
}

/// A row answers the one side of a plate that it fits, and requests without a limit.
[[nodiscard]] inline bool FitsSide(const DesignOptions& options, unsigned int runs) {
    return options.GetMaxRuns() == runs || options.GetMaxRuns() == DesignOptions::cNoRunLimit;
}

/// Objective and model are the row's own. No table keeps to constraints.
[[nodiscard]] inline bool IsRequestFor(const DesignOptions& options,
                                       int objectiveClass,
                                       EModel::Type model) {
    return static_cast<int>(options.GetObjective()) == objectiveClass &&
           options.GetModel() == model && !FamilyRules::HasConstraints(options);
}

}  // namespace PlateRowRules
