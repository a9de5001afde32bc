#pragma once

#include <string>

#include "host/Study.h"

/// The results of a search for D-optimal designs.

/// The model that the figures are for and a table of all results, the selected one marked.
/// @param options those of the search
[[nodiscard]] std::string FormatOptimalResults(const D_Optimal& design,
                                               const StudyFactors& factors,
                                               const DesignOptions& options);

/// Makes another result the design.
/// @param number of the result, from 1
/// @param place names the option in errors
/// @param options those of the search
/// @throws Exception for a number without a result, telling those there are
void SelectOptimalResult(D_Optimal& design,
                         long long number,
                         const StudyFactors& factors,
                         const DesignOptions& options,
                         const std::string& place);
