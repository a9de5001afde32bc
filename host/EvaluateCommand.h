#pragma once

#include <optional>
#include <ostream>

#include "host/JudgedDesign.h"

struct EvaluateArguments {
    /// Correlations below this are left out unless the user says otherwise.
    static constexpr double cDefaultLimit = 0.3;

    JudgeRequest judged;
    std::optional<double> correlationLimit;
    bool allCorrelations = false;
};

/// Prints how well runs serve a model: the five figures, the leverage of each run, the variance of
/// each coefficient and the correlations of the model's columns.
/// @throws Exception for bad input; what MakeJudgedDesign throws
void RunEvaluate(const EvaluateArguments& arguments, std::ostream& out, std::ostream& err);
