#pragma once

#include <ostream>
#include <string>

struct ShowArguments {
    std::string project;  // path of the project file
    bool coded = false;   // coded values instead of real ones
};

/// Prints study, options and worksheet of a saved project.
/// @throws Exception for a file that is no project or holds what does not fit together
void RunShow(const ShowArguments& arguments, std::ostream& out);
