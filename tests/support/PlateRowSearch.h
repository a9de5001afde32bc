#pragma once

#include <vector>

/// The search that finds the contents of the pre-made plate rows: which runs of a full factorial to
/// leave out or to repeat, so that a model is estimated well whatever order the factors stand in.
///
/// Efficiency is D-efficiency, [det(X'X / runs)]^(1/p), with contrasts scaled so that a full
/// factorial has 1. The runs of the list are numbered in the standard order of the factors as they
/// stand (first factor fastest), so one list means other runs under another order; the search
/// maximises the efficiency in the worst of all orders. It starts at random and moves one run at a
/// time, the best move first, until no move helps.
namespace PlateRowSearch {

struct Problem {
    std::vector<int> levels;    // a factor each
    int runs = 0;               // of the design to find
    bool interactions = false;  // of two factors each; main effects otherwise
    bool everyOrder = true;     // false: only that of `levels`
    bool freeCounts = false;    // any run any number of times; otherwise the whole factorial with
                                // runs left out, or with runs added
};

struct Found {
    std::vector<int> counts;  // how often each run of the full factorial stands in the design
    double efficiency = 0;    // in the worst order

    /// The runs left out, or the runs added, in ascending order, counted from 1.
    [[nodiscard]] std::vector<int> List() const;
};

/// Of a design given by counts; 0 when some order leaves a term that cannot be estimated.
[[nodiscard]] double WorstEfficiency(const Problem& problem, const std::vector<int>& counts);
/// Counts from a list as ReducedRows has it: runs to leave out when the design is smaller than the
/// full factorial, runs to add otherwise.
[[nodiscard]] std::vector<int> CountsOf(const Problem& problem, const std::vector<int>& list);
[[nodiscard]] Found Search(const Problem& problem, int starts, unsigned int seed);

}  // namespace PlateRowSearch
