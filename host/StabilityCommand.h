#pragma once

#include <ostream>
#include <string>

#include "host/SubsetSearch.h"

struct StabilityArguments {
    std::string study;  // path of the study file
    std::string used;   // design sets in time order, "1:1,3:1"; empty: the family's
    std::string times;  // points in time, "0,3,6"; empty: 0, 1, 2 and so on
    SubsetSearchRequest search;
};

/// Prints the plan of a stability study: for every run its design set, point in time, name,
/// combination and factor settings.
/// @throws NoValidDesign, Exception naming the option and what is wrong in it
void RunStability(const StabilityArguments& arguments, std::ostream& out, std::ostream& err);
