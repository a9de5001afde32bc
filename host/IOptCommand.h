#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

struct IOptArguments {
    static constexpr long long cDefaultLevels = 5;
    static constexpr long long cDefaultStarts = 10;

    std::string study;  // path of the study file
    std::optional<long long> runs;
    std::optional<long long> levels;  // settings of a continuous factor on the grid
    std::optional<long long> starts;  // searches, each from its own random start
    std::string model;                // empty: the study's, else that of its objective
    std::optional<std::string> modelTerms;
    std::optional<std::uint32_t> seed;  // of starts and run order; drawn when there is none
    std::string output;                 // worksheet; empty: standard output
};

/// Searches a design of small average prediction variance over a grid of the study's region, tells
/// its figures and writes its worksheet.
/// @throws Exception naming the option and what is wrong; CancelException when the user asked to
///         stop, with every file as it was
void RunIOpt(const IOptArguments& arguments, std::ostream& out, std::ostream& err);
