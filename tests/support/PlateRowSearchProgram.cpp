// Searches again for the contents of every pre-made plate row that a search has found, and tells
// whether it finds better ones: plate_row_search [starts] [seed] [row].

#include <cstdlib>
#include <iostream>
#include <string>

#include "designs/plate/PreCreatedRows.h"
#include "designs/plate/ReducedRows.h"
#include "tests/support/PlateRowSearch.h"

namespace {

std::vector<int> Levels(std::string_view digits) {
    std::vector<int> levels;
    for (const char digit : digits) {
        levels.push_back(digit - '0');
    }
    return levels;
}

void Tell(const char* name, double known, const PlateRowSearch::Found& found) {
    std::cout << name << ": " << known << " in the table, " << found.efficiency << " found"
              << (found.efficiency > known + 1e-6 ? ", BETTER:" : "");
    for (const int run : found.List()) {
        std::cout << ' ' << run;
    }
    std::cout << std::endl;
}

void SearchReduced(const ReducedRows::Row& row, int starts, unsigned int seed) {
    const PlateRowSearch::Problem problem{
        Levels(row.levels), static_cast<int>(row.runs), row.model == EModel::Interaction};
    const auto list = row.RowList();
    const double known =
        WorstEfficiency(problem, CountsOf(problem, std::vector<int>(list.begin(), list.end())));
    Tell(row.shortString, known, Search(problem, starts, seed));
}

std::vector<int> CountsOf(const PreCreatedRows::Row& row, const std::vector<int>& levels) {
    std::size_t runs = 1;
    for (const int count : levels) {
        runs *= static_cast<std::size_t>(count);
    }
    std::vector<int> counts(runs);
    for (const std::string_view run : row.runs) {
        std::size_t index = 0;
        std::size_t stride = 1;
        for (std::size_t f = 0; f < levels.size(); ++f) {
            const std::string_view alphabet = levels[f] == 2   ? "-+"
                                              : levels[f] == 3 ? "-0+"
                                                               : "ABCDEF";
            index += stride * alphabet.find(run[f]);
            stride *= static_cast<std::size_t>(levels[f]);
        }
        ++counts[index];
    }
    return counts;
}

void SearchPreCreated(const PreCreatedRows::Row& row, int starts, unsigned int seed) {
    const std::vector<int> levels = Levels(row.levels);
    const PlateRowSearch::Problem problem{
        levels, static_cast<int>(row.runs.size()), row.model == EModel::Interaction, false, true};
    const auto found = Search(problem, starts, seed);
    const double known = WorstEfficiency(problem, CountsOf(row, levels));
    std::cout << row.shortString << ": " << known << " in the table, " << found.efficiency
              << " found" << (found.efficiency > known + 1e-6 ? ", BETTER:" : "");
    for (std::size_t run = 0; run < found.counts.size(); ++run) {
        for (int i = 0; i < found.counts[run]; ++i) {
            std::size_t rest = run;
            std::cout << ' ';
            for (const int count : levels) {
                const char* alphabet = count == 2 ? "-+" : count == 3 ? "-0+" : "ABCDEF";
                std::cout << alphabet[rest % static_cast<std::size_t>(count)];
                rest /= static_cast<std::size_t>(count);
            }
        }
    }
    std::cout << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
    const int starts = argc > 1 ? std::atoi(argv[1]) : 20;
    const auto seed = static_cast<unsigned int>(argc > 2 ? std::atoi(argv[2]) : 1);
    const std::string only = argc > 3 ? argv[3] : "";
    for (const ReducedRows::Row& row : ReducedRows::cRows) {
        if (row.model != EModel::Quadratic && (only.empty() || only == row.shortString)) {
            SearchReduced(row, starts, seed);
        }
    }
    for (const PreCreatedRows::Row& row : PreCreatedRows::cRows) {
        if (row.model != EModel::Quadratic && (only.empty() || only == row.shortString)) {
            SearchPreCreated(row, starts, seed);
        }
    }
}
