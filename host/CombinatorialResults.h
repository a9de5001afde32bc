#pragma once

#include <string>

#include "host/Study.h"

/// The results of a search for reduced combinatorial designs: the model that the figures are for
/// and a table of all results, the selected one marked.
/// @param options those of the search
[[nodiscard]] std::string FormatCombinatorialResults(const J2Design& design,
                                                     const StudyFactors& factors,
                                                     const DesignOptions& options);

/// Makes another result the design.
/// @param number of the result, from 1
/// @throws Exception for a number without a result, telling those there are
void SelectCombinatorialResult(J2Design& design, long long number);
