#pragma once

#include <span>
#include <string>

#include "host/Study.h"

/// A candidate set file as it was read for a study.
struct CandidateFile {
    CandidateSet set;
    int misfits = 0;          // rows that the study does not allow
    std::string firstMisfit;  // the first of them and its reason: row 5: "Flow" is 12; ...
};

/// Number of columns that a candidate set of the study has: one a factor, levels - 1 for a
/// qualitative one and for the blocks.
[[nodiscard]] int CandidateColumns(const Study& study);

/// The reason why a row cannot be a run of the study, or an empty text: a missing value, a setting
/// outside its range, no level, shares that do not add up, a broken constraint. The file keeps six
/// digits of a number, so what these leave open is allowed.
/// @param row [CandidateColumns], in real units, Qualitative factors and blocks as coding columns
[[nodiscard]] std::string MisfitOf(std::span<const float> row, const Study& study);

/// Reads a candidate set file, which CandidateSet::WriteToFile describes, and looks at every row.
/// @throws Exception naming the file and what is wrong: the file cannot be opened, is empty or cut
///         short, its lines do not have the form of one, or its columns are not those of the study
/// @throws CancelException when the user asked to stop
[[nodiscard]] CandidateFile ReadCandidateFile(const std::string& path, const Study& study);
