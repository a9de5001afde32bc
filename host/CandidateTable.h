#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/Study.h"

/// Candidates that a user brings along for a design in layers.
struct CandidateTable {
    NCDataMatrix<float> rows;        // [candidates x factors], in real units
    std::vector<std::string> names;  // one a row, or none
    std::vector<int> layers;         // one a row, from 1, or none
    std::vector<double> scores;      // one a row, ascending from the inside out, or none
    std::vector<std::string> notes;  // what the user should know about its reading
};

/// Columns of a table that are no factors, by name; empty for none.
struct CandidateColumnNames {
    std::string layer;
    std::string score;
};

/// Reads a candidate set file, or a table as comma-separated values: a header with the names of the
/// factors in any order, then one line a candidate in real units. A column Name, or name, names the
/// candidates. Candidates that break a constraint of the study are left out, with a note.
/// @throws Exception naming the file and what is wrong: a column that is missing, a value that is
///         missing or outside its range, a layer that is no whole number of 1 or more, a score that
///         is no number, a candidate set file where a column is named, no candidate that keeps the
///         constraints
[[nodiscard]] CandidateTable ReadCandidateTable(const std::string& path,
                                                const CandidateColumnNames& columns,
                                                const Study& study);

/// How far a candidate lies from the centre of the factors' ranges, in half ranges and in the scale
/// of the factors' transforms.
[[nodiscard]] double DistanceFromCentre(std::span<const float> row, const StudyFactors& factors);

/// The candidates in layers, the innermost first: those that the table tells, else equal shares by
/// ascending score, else equal shares by distance from the centre. The candidate nearest the centre
/// stands behind the last layer once more: that layer is given it, and centre points copy it.
/// Each layer begins with candidates far from one another, for the search starts there; the others
/// keep their order.
/// @param layers from 1 to the number of candidates; with layers in the table, as many as these
[[nodiscard]] CandidateSet DivideIntoLayers(const CandidateTable& table,
                                            int layers,
                                            const StudyFactors& factors);
