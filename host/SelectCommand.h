#pragma once

#include <ostream>
#include <string>

struct SelectArguments {
    std::string project;   // path of the project file
    long long number = 0;  // of the result, from 1
    std::string output;    // worksheet; empty: standard output
    std::string saved;     // project to save; empty: the project itself
};

/// Makes another result of a D-optimal search the design of a project, saves the project and writes
/// the worksheet. The run order is drawn from the project's seed.
/// @throws Exception for a project of another design, a number without a result and files that are
///         the same; files that exist stay whole
void RunSelect(const SelectArguments& arguments, std::ostream& out, std::ostream& err);
