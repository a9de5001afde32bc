#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/DesignNames.h"
#include "host/ModelTermsText.h"
#include "host/Study.h"

/// What a user may ask of the search for a D-optimal design.
struct OptimalRequest {
    std::optional<long long> repetitions;   // searches of each run count
    std::optional<long long> runRange;      // run counts on either side of the one asked for
    std::string selectBy;                   // the figure that picks one of the results
    std::string inclusions;                 // file of runs that every design holds
    std::string candidates;                 // candidate set file
    std::optional<std::string> modelTerms;  // as ModelTermsText reads them
    std::string balanceOn;                  // name of a qualitative factor
    bool onlyBalanced = false;
    bool noPotentialTerms = false;
    std::optional<long long> select;  // of the results, from 1
    // Whether the two have a meaning for every design, which is judged by them.
    bool termsAreForAnyDesign = false;
    bool candidatesAreForAnyDesign = false;
};

/// Refuses a request that the design has no use for.
/// @throws Exception naming the option
void RequireOptimalDesign(const OptimalRequest& request, const DesignBuilder& builder);

/// Bounds of what a search may be asked for.
namespace SearchLimits {

constexpr int cMostRepetitions = 10'000;
constexpr int cMostRunRange = 1'000;

}  // namespace SearchLimits

/// Repetitions, run range and the figure that picks the best result.
/// @throws Exception naming the option and what is allowed
void ApplySearchSettings(const OptimalRequest& request, D_OptimalOptions& family);

/// Whether the design is D-optimal.
[[nodiscard]] bool IsDOptimal(const DesignBuilder& builder);

/// The model terms of the request, else of the study ("modelTerms" among its options), and where
/// they stand; nothing without any.
struct GivenTerms {
    std::string place;
    std::string text;
};
[[nodiscard]] std::optional<GivenTerms> TermsGiven(const std::optional<std::string>& requested,
                                                   const Study& study);

/// Puts the request into the options of a D-optimal design, before its runs are set: an explicit
/// model brings its own default of the runs and, where the objective's candidates could not tell
/// its squares, candidates of its own. Blocks must be set.
/// @return what the user should know about it
/// @throws Exception naming the option or file and what is wrong
std::vector<std::string> ApplyOptimalRequest(const OptimalRequest& request,
                                             const Study& study,
                                             const DesignBuilder& builder,
                                             DesignOptions& options);

/// The mixture model whose candidates can tell the terms: by the number of Formulation factors in
/// the longest product.
[[nodiscard]] EModel::Type MixtureModelFor(const ModelTermsText::Terms& terms,
                                           const StudyFactors& factors);

/// The candidates of a file for a design in that many blocks.
/// @throws Exception as ReadCandidateFile does, and for rows outside the study
[[nodiscard]] CandidateSet ReadFittingCandidates(const std::string& path,
                                                 const Study& study,
                                                 int blocks);

/// Refuses options from a file that no search can have written: a balance on what has no levels,
/// terms of factors that are not there, counts out of their range.
/// @param place names the file
void RequireSound(const D_OptimalOptions& family,
                  const StudyFactors& factors,
                  unsigned int blocks,
                  const std::string& place);

/// The model that a D-optimal design without model terms is searched for, whatever else was asked:
/// the further terms are potential ones.
[[nodiscard]] EModel::Type SearchedModel(const DesignOptions& options);

/// The part of the request that needs the final runs.
/// @throws Exception when no run count that is searched leaves room beside the inclusions
void RequireSearchable(const DesignOptions& options);
