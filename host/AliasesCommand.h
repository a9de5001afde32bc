#pragma once

#include <ostream>
#include <string>

#include "host/DesignMaker.h"

struct AliasesArguments {
    std::string study;  // path of the study file
    DesignRequest request;
    bool json = false;  // JSON instead of text
};

/// Prints what a two-level design cannot tell apart: defining words, resolution, word lengths,
/// alias sets up to two-factor interactions, partial aliases, and the confounding with blocks.
/// Computed from the built runs; centre points, replicates and replicated runs are left out.
/// @throws NoValidDesign, Exception naming a factor that is not at two levels
void RunAliases(const AliasesArguments& arguments, std::ostream& out, std::ostream& err);
