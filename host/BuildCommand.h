#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "host/DesignMaker.h"

struct BuildArguments {
    std::string study;  // path of the study file
    DesignRequest request;
    std::optional<std::uint32_t> seed;  // of the run order; drawn when there is none
    bool coded = false;                 // coded values instead of real ones
    std::string output;                 // path of the worksheet; empty: standard output
    std::string project;                // path of the project to save; empty: none
    bool validating = false;            // searches repeat exactly
};

/// Builds a design and writes its worksheet as CSV. Tells the seed of the run order on `err`. The
/// results of a search are printed, on `err` where `out` holds the worksheet.
/// @throws NoValidDesign, Exception, CancelException; files that exist stay whole
void RunBuild(const BuildArguments& arguments, std::ostream& out, std::ostream& err);
