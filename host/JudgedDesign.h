#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/DesignMaker.h"
#include "host/ModelTermsText.h"
#include "host/Worksheet.h"

/// Which runs a user wants judged, and by which model.
struct JudgeRequest {
    std::string subject;    // path of a study, whose design is built, or of a project
    DesignRequest request;  // for a study; model, model terms and candidates serve all subjects
    std::string worksheet;  // CSV file of the runs in place of the design's; may be empty
    bool validating = false;
};

/// Runs to be judged by a model.
struct JudgedDesign {
    Study study;
    std::string name;  // of the design or of the worksheet's file
    /// [runs x expanded factor count, blocks - 1 more] in real units.
    NCDataMatrix<float> runs;
    int blocks = 1;
    ModelTermsText::Terms terms;
    /// Runs over which predictions are judged, in the same form; without rows there are none.
    NCDataMatrix<float> candidates;

    /// The runs in the terms of the study, in the order of the matrix.
    [[nodiscard]] std::vector<WorksheetRun> Decoded() const;
};

/// Builds, loads or reads the runs. The model is that of the request, else that of the design (for
/// a D-optimal one that of its search), else for a worksheet that of the study or its objective:
/// linear for screening and robustness verification, quadratic for response surfaces. Notes go to
/// `err`.
/// @throws Exception for bad input, options that the subject has no use for among them; what
///         MakeDesign throws
[[nodiscard]] JudgedDesign MakeJudgedDesign(const JudgeRequest& asked, std::ostream& err);

/// The model of runs without a family or blocks: named by `model`, else told by model terms, else
/// that of the study, else of its objective.
/// @param model as in the study; may be empty
/// @param modelTerms as ModelTermsText reads them; they win over `model`
/// @throws Exception naming the option and what is wrong in it
[[nodiscard]] ModelTermsText::Terms TermsOfStudy(const Study& study,
                                                 const std::string& model,
                                                 const std::optional<std::string>& modelTerms);
