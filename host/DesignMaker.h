#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/DesignNames.h"
#include "host/OnionRequest.h"
#include "host/OptimalRequest.h"
#include "host/Study.h"

/// What a user may ask for beside the study; what is given wins over the study.
struct DesignRequest {
    std::string design;  // short or display name; empty: the study's, or the strongest proposal
    std::string model;   // as in the study; empty: the study's
    std::optional<long long> runs;
    std::optional<long long> blocks;
    std::optional<long long> centerPoints;
    std::optional<long long> replicates;
    std::optional<long long> replicatedRuns;
    std::optional<std::string> generators;  // as GeneratorText reads them; without: the study's
    bool foldOver = false;                  // append the mirror image of the runs
    OptimalRequest optimal;                 // of a design that is searched for
    std::optional<long long> levels;        // of continuous factors, for J2
    OnionRequest onion;                     // of a design in layers
};

/// A built design. It borrows the study's factors.
struct BuiltDesign {
    BuilderHandle builder;
    DesignOptions options;
    std::unique_ptr<NCDesign> design;
    bool isFoldedOver = false;       // the mirror image of the runs stands behind them
    std::vector<std::string> notes;  // what the user should know about it
};

/// Builds the design that study and request ask for.
/// A D-optimal design has the model in its options that was searched for.
/// @throws NoValidDesign saying which condition stands in the way; Exception for a count that the
///         family does not allow, naming those it does, for generators that do not fit and for a
///         design that cannot be folded over; what the engine throws while it generates
/// @throws StoppedWork when the user stopped a search, with the engine's text
[[nodiscard]] BuiltDesign MakeDesign(const Study& study, const DesignRequest& request);

/// The options that MakeDesign would build from, and the family; nothing is built.
[[nodiscard]] BuiltDesign PrepareDesign(const Study& study, const DesignRequest& request);
