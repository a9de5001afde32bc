#pragma once

#include <optional>
#include <string>
#include <vector>

#include "QORVAncdoe.h"
#include "host/StudyFactors.h"

/// What a study file says, checked.
struct Study {
    std::string file;  // where it was read, for messages
    std::string name;  // may be empty, as the next two
    std::string description;
    std::string citation;
    StudyFactors factors;
    NCDOE::Constraints constraints;
    EObjective::Type objective = EObjective::Screening;
    std::optional<EModel::Type> model;  // without one, each family's default
    std::string design;                 // short or display name of a family; empty: the strongest
    json_value options = json_value::make_object();  // the members the user gave, of known kinds
    std::string text;                                // the whole study as compact JSON
    std::vector<std::string> notes;                  // what the user should know about its reading

    /// The run limit of the options; DesignOptions::cNoRunLimit when there is none.
    [[nodiscard]] unsigned int MaxRuns() const;
};

/// More than this in one study or request is refused.
namespace StudyLimits {

constexpr long long cMaxRuns = NCDesign::cMaxFinishedRuns;
constexpr unsigned long long cMaxFactors = 1000;
constexpr unsigned long long cMaxLevels = 1000;
constexpr unsigned long long cMaxConstraints = 1000;
/// A text is read into a tree some fifty times its size.
constexpr std::size_t cMaxFileBytes = std::size_t{16} << 20U;

}  // namespace StudyLimits
