#pragma once

#include <string>
#include <vector>

#include "host/Study.h"

/// Runs that a user wrote or edited.
struct RunsFile {
    /// [runs x expanded factor count, blocks - 1 more] in real units and the study's order,
    /// Qualitative factors and blocks as coding columns.
    NCDataMatrix<float> matrix;
    std::vector<int> lines;          // of the file, one a run
    std::vector<std::string> notes;  // columns that mean nothing, runs outside the study's region
};

/// Reads runs as comma-separated values: a header with the names of the factors in any order, then
/// one line a run in real units and level names, as worksheets are written. With blocks there is a
/// column Block. StdOrder, RunOrder and the filler are passed over, and so are other columns, with
/// a note. Runs outside the ranges or the constraints are taken, with a note.
/// @param blocks of the design
/// @throws Exception naming file, line and column: a column that is missing or stands twice, a
///         line of another length, no number, an unknown level or setting, shares that do not add
///         up, an unknown block
[[nodiscard]] RunsFile ReadRunsFile(const std::string& path, const Study& study, int blocks);
