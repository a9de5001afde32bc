#pragma once

#include <string>
#include <vector>

#include "host/JudgedDesign.h"

/// What the runs of a design can tell about a model.
struct DesignEvaluation {
    /// Two columns of the model matrix, counted from 0, and their correlation over the runs.
    struct Correlation {
        std::size_t first = 0;
        std::size_t second = 0;
        double value = 0;
    };

    DesignStatistics::Results figures;
    std::vector<std::string> columns;  // names, as "Temperature*Catalyst=B"
    /// Those that are combinations of earlier columns; with any, the model is singular and has
    /// neither leverages nor variances.
    std::vector<std::string> dependent;
    std::vector<double> leverages;          // one a run
    std::vector<double> variances;          // of the coefficients, in units of sigma^2
    std::vector<Correlation> correlations;  // of all that vary, the strongest first
};

[[nodiscard]] DesignEvaluation EvaluateDesign(const JudgedDesign& design);
