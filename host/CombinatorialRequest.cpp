#include "host/CombinatorialRequest.h"

#include <fmt/format.h>

#include <string_view>

#include "host/HostError.h"
#include "host/ModelTermsText.h"

namespace {

constexpr long long cMostLevels = J2Options::cMaxLevels;

J2Options& FamilyOptions(DesignOptions& options) {
    return dynamic_cast<J2Options&>(*options.GetDesignSpecificOptions());
}

// Settings that the study gave are looked at here: those of an option were when it was read.
void RequireWithin(int value, int least, int most, const Study& study, std::string_view member) {
    if (value < least || value > most) {
        FailWith(
            fmt::format("{}: options.designSpecificOptions.{}: {} must be a whole number from "
                        "{} to {}.",
                        study.file,
                        member,
                        value,
                        least,
                        most));
    }
}

}  // namespace

bool IsCombinatorial(const DesignBuilder& builder) {
    return EDesign::IsJ2(builder.IsDesign());
}

void RequireLevelsTaken(const DesignRequest& request, const DesignBuilder& builder) {
    if (request.levels && !IsCombinatorial(builder)) {
        FailWith(
            fmt::format("--levels: the design {} decides the levels of continuous factors itself; "
                        "only J2 takes them.",
                        builder.GetShortString()));
    }
}

void ApplyCombinatorialRequest(const DesignRequest& request,
                               const Study& study,
                               const DesignBuilder& builder,
                               DesignOptions& options) {
    J2Options& family = FamilyOptions(options);
    RequireWithin(family.GetRepetitions(), 1, SearchLimits::cMostRepetitions, study, "repetitions");
    RequireWithin(family.GetRunRange(), 0, SearchLimits::cMostRunRange, study, "runSpan");
    ApplySearchSettings(request.optimal, family);
    if (request.levels) {
        if (*request.levels < 2 || *request.levels > cMostLevels) {
            FailWith(fmt::format(
                "--levels: {} must be a whole number from 2 to {}.", *request.levels, cMostLevels));
        }
        family.SetLevels(static_cast<int>(*request.levels));
    }
    if (const auto terms = TermsGiven(request.optimal.modelTerms, study)) {
        family.SetModel(ModelTermsText::Read(terms->text, study, 1, terms->place));
        options.SetRuns(builder.GetDefaultRuns(study.factors, options));
    }
}

void RequireNoReplicates(const Study& study, const DesignOptions& options) {
    if (options.GetReplicates() > 0) {
        FailWith(
            fmt::format("{}: J2 takes no replicates of the whole design; allowed: 0. Single runs "
                        "are repeated by --replicated-runs.",
                        study.file));
    }
}
