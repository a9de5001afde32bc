#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/DesignNames.h"
#include "host/Study.h"

/// What a design has to satisfy. The factors are borrowed.
struct Conditions {
    const Factors* factors = nullptr;
    NCDOE::Constraints constraints;
    EObjective::Type objective = EObjective::Screening;
    std::optional<EModel::Type> model;  // without one, each family's default for the objective
    unsigned int maxRuns = DesignOptions::cNoRunLimit;  // of runs and centre points together
    std::optional<unsigned int> centerPoints;           // without them, each family's default
};

/// The conditions that a study states. It must outlive them.
[[nodiscard]] Conditions ConditionsOf(const Study& study);

/// The default options of a family under the conditions.
[[nodiscard]] DesignOptions MakeOptions(const DesignBuilder& builder, const Conditions& conditions);

/// Runs and centre points fit the run limit of the options. The engine's families look at the limit
/// each in its own way; a study's limit holds for all of them.
[[nodiscard]] bool KeepsRunLimit(const DesignOptions& options);

/// The family keeps the constraints, or there are none. All families say whether they take
/// constraints, but for definitive screening, which does not look at them.
[[nodiscard]] bool KeepsConstraints(const DesignBuilder& builder, const Conditions& conditions);

/// A design that the engine can build under the conditions.
struct Proposal {
    BuilderHandle builder;
    DesignOptions options;
    unsigned int priority = 0;  // the lower, the stronger; 0: no opinion
    std::vector<unsigned int> legalRuns;
    std::vector<int> legalBlocks;
};

/// The valid designs among `builders`, strongest first: priority ascending, those without one last,
/// ties in the given order.
/// @throws CancelException when the user has asked to stop
[[nodiscard]] std::vector<Proposal> Propose(const Conditions& conditions,
                                            const std::vector<BuilderHandle>& builders);

/// The same among the families that are proposed unasked.
[[nodiscard]] std::vector<Proposal> Propose(const Conditions& conditions);

/// Why none of the builders has a valid design: one line for each single condition (objective,
/// model, run limit, constraints, centre points, factor types or factor count) without which there
/// would be one.
/// Never empty.
[[nodiscard]] std::vector<std::string> FindObstacles(const Conditions& conditions,
                                                     const std::vector<BuilderHandle>& builders);

/// @throws NoValidDesign with the text `what` and the obstacles, a line each
[[noreturn]] void ThrowNoValidDesign(const std::string& what,
                                     const Conditions& conditions,
                                     const std::vector<BuilderHandle>& builders);

/// "8", "4, 8 and 12 to 20".
[[nodiscard]] std::string CountsText(const std::vector<long long>& counts);
