#pragma once

#include <ostream>
#include <string>

struct ProposeArguments {
    std::string study;  // path of the study file
    bool json = false;  // one JSON object instead of a table
};

/// Lists the valid designs for a study, strongest first.
/// @throws NoValidDesign when there is none; Exception for a bad study
void RunPropose(const ProposeArguments& arguments, std::ostream& out, std::ostream& err);
