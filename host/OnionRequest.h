#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Study.h"

/// What a user may ask of the layers of an onion design.
struct OnionRequest {
    std::optional<long long> layers;
    std::optional<std::string> layerRuns;  // one count a layer, such as 5,5,7
    std::string layerColumn;               // of the table of candidates: the layer of each
    std::string scoreColumn;               // of the table: what the layers are divided by
};

/// Whether the design has layers.
[[nodiscard]] bool IsOnion(const DesignBuilder& builder);

/// The first option that was given, or null.
[[nodiscard]] const char* FirstOption(const OnionRequest& request);

/// Refuses a request that the design has no use for.
/// @throws Exception naming the option
void RequireLayeredDesign(const OnionRequest& request, const DesignBuilder& builder);

/// Divides an onion design into layers, before its runs are set, and gives it the default runs of
/// these. A study that no onion design is valid for is left alone.
/// @param candidates path of a table or a candidate set file; empty where each layer generates its
///        own candidates
/// @return what the user should know about it
/// @throws Exception naming the option or file and what is wrong
std::vector<std::string> ApplyOnionRequest(const OnionRequest& request,
                                           const std::string& candidates,
                                           const Study& study,
                                           const DesignBuilder& builder,
                                           DesignOptions& options);

/// Brings the layers' runs and those of the whole design together.
/// @param runsPlace where the user gave the runs of the whole design; empty where they are default
/// @throws Exception for runs that the layers cannot have
void FitLayerRuns(const OnionRequest& request,
                  const std::string& runsPlace,
                  const StudyFactors& factors,
                  DesignOptions& options);

/// Shows in each layer the best result of the runs that were asked for; the search looks at more
/// and fewer as well.
/// @param options those of the search
void SelectAskedRuns(OnionDesign& design, const DesignOptions& options);

/// A table of the layers with their figures and, where candidates have names, those that were
/// picked.
/// @param options those of the search
[[nodiscard]] std::string FormatLayers(const OnionDesign& design, const DesignOptions& options);
