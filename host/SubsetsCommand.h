#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "host/SubsetSearch.h"

struct SubsetsArguments {
    std::string study;                   // path of the study file
    std::optional<long long> reduction;  // number of subsets; the family's without one
    SubsetSearchRequest search;
};

/// Divides the full factorial and prints how good each subset is, and its runs.
/// @throws NoValidDesign, Exception naming the option and what is wrong in it
void RunSubsets(const SubsetsArguments& arguments, std::ostream& out, std::ostream& err);
