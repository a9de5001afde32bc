#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/StudyFactors.h"

/// How a design matrix is to be read.
struct DesignForm {
    bool coded = true;    // codes and letter codes; otherwise real values with expanded columns
    bool pseudo = false;  // coded formulation factors hold pseudo-component proportions
    int blocks = 1;
};

/// One run in the terms of the study.
struct WorksheetRun {
    int standardOrder = 0;      // row of the design matrix, from 1
    int runOrder = 0;           // from 1
    int block = 0;              // from 1, or 0 without blocks
    std::vector<float> values;  // one a counted factor: real value, or level number from 0
    std::vector<float> codes;   // one a counted factor: coded value, or letter code from 65
    float fillerShare = 0;      // with a filler: what the other formulation factors leave
};

/// Reads a design matrix [runs x factors, with blocks one or more columns further] in standard
/// order; run orders are not set. Qualitative levels become level numbers.
/// @throws Exception for a cell that means no level, no block or no real value, naming run and
///         factor, and for a matrix of another width
[[nodiscard]] std::vector<WorksheetRun> DecodeRuns(const NCDataMatrix<float>& matrix,
                                                   const StudyFactors& factors,
                                                   const DesignForm& form);

/// A random run order, one number from 1 a run, the same for the same seed everywhere. With blocks
/// runs are shuffled within each block and the blocks follow one another.
[[nodiscard]] std::vector<int> MakeRunOrder(const std::vector<WorksheetRun>& runs,
                                            std::uint32_t seed);

/// A table of texts, a header and one line a run in run order: StdOrder, RunOrder, the factors in
/// the study's order, and Block when there are blocks. `coded` shows coded values and leaves out
/// the filler, which has none.
struct WorksheetTable {
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> lines;
};

[[nodiscard]] WorksheetTable MakeWorksheetTable(const std::vector<WorksheetRun>& runs,
                                                const StudyFactors& factors,
                                                bool coded);

/// Comma-separated values in UTF-8, quoted as RFC 4180 tells, lines ended by a line feed.
[[nodiscard]] std::string ToCsv(const WorksheetTable& table);
