#pragma once

#include <optional>
#include <ostream>
#include <string>

struct CandidatesArguments {
    /// Cells of a set at most, and unless the user says otherwise. A set of the first size still
    /// makes a file that can be read back.
    static constexpr long long cMostCells = 80'000'000;
    static constexpr long long cDefaultCells = 10'000'000;

    std::string study;              // path of the study file
    std::string model;              // of the process factors; empty: the study's, else linear
    std::string mixtureModel;       // empty: that of the process factors where mixtures have it
    bool noPotentialTerms = false;  // edges get their middle instead of points at their thirds
    std::optional<long long> limit;
    std::string candidates;  // a file to check; empty: a new set is generated
    std::string output;      // file to write the set to; empty: none
    bool json = false;       // JSON instead of text
};

/// Generates the candidate set of a study, or reads one from a file and looks at every row, and
/// prints how many candidates of each kind it has.
/// @throws Exception for bad input, inconsistent constraints and a set above the limit
/// @throws CancelException when the user asked to stop; a file that was there stays
void RunCandidates(const CandidatesArguments& arguments, std::ostream& out, std::ostream& err);
