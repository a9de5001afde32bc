#pragma once

#include <optional>
#include <ostream>
#include <string>

struct PlateArguments {
    std::string study;                      // path of the study file
    std::optional<long long> size;          // wells of a plate: 96 (default), 384 or 1536
    std::optional<long long> plates;        // default: 1
    std::optional<std::string> horizontal;  // names of the factors along the columns, "A,B"
    std::optional<std::string> vertical;    // and along the rows
    std::string horizontalDesign;           // short or display name; empty: the strongest proposal
    std::string verticalDesign;
    std::string plateFactors;  // "yes": one more column with the plate's letter
    bool validating = false;   // the same positions every time
    std::string output;        // CSV file of the runs; empty: none
};

/// Spreads a study over microtiter plates: prints the settings of each factor as a grid of wells
/// and writes the list of runs. A factor named for neither side is a plate factor; where one side
/// is named only, the other side takes all other factors.
/// @throws NoValidDesign when no design fills a side of the plate; Exception naming the option and
///         what is wrong in it
void RunPlate(const PlateArguments& arguments, std::ostream& out, std::ostream& err);
