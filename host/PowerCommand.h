#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "host/JudgedDesign.h"

struct PowerArguments {
    static constexpr double cDefaultAlpha = 0.05;
    static constexpr const char* cDefaultEffects = "1,2,3";

    JudgeRequest judged;
    std::optional<double> sigma;  // standard deviation of one run; effects are told in it, too
    std::string effects;          // in units of sigma, "1,2,3"; empty: the default
    std::optional<double> alpha;  // level of significance
    std::optional<double> power;  // wanted: prints the smallest effects that are detected with it
};

/// Prints the chance to detect effects of each term of the model.
/// @throws Exception for bad input and for designs whose power cannot be told; what
///         MakeJudgedDesign throws
void RunPower(const PowerArguments& arguments, std::ostream& out, std::ostream& err);
