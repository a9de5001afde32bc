#include "tests/support/PlateRowSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/oracles/RowFigures.h"
#include "tests/support/PlateRowCases.h"

namespace {

using PlateRowSearch::CountsOf;
using PlateRowSearch::Found;
using PlateRowSearch::Problem;
using PlateRowSearch::Search;
using PlateRowSearch::WorstEfficiency;
using ::testing::ElementsAre;

constexpr unsigned int cSeed = 1974;

const ReducedRows::Row& TableRow(const std::string& name) {
    return *std::find_if(ReducedRows::cRows.begin(),
                         ReducedRows::cRows.end(),
                         [&](const auto& row) { return row.shortString == name; });
}

Problem ProblemOf(const ReducedRows::Row& row) {
    return {plate::Digits(row.levels),
            static_cast<int>(row.runs),
            row.model == EModel::Interaction,
            true,
            false};
}

std::vector<int> ListOf(const ReducedRows::Row& row) {
    return {row.RowList().begin(), row.RowList().end()};
}

TEST(PlateRowSearch, FindsRowsAsGoodAsThoseOfTheTable) {
    for (const std::string name :
         {"FFM23a", "FFM33a", "FFM34b", "FFM34c", "FFM44b", "FFM223a", "FFM224b", "eFFM24b"}) {
        const auto& row = TableRow(name);
        const Problem problem = ProblemOf(row);
        const double known = WorstEfficiency(problem, CountsOf(problem, ListOf(row)));
        const Found found = Search(problem, 20, cSeed);
        EXPECT_NEAR(found.efficiency, known, 1e-9) << name << ", seed " << cSeed;
    }
}

TEST(PlateRowSearch, ListsItFindsFillTheSideAndAscend) {
    for (const std::string name : {"FFM34b", "FFM34c"}) {
        const auto& row = TableRow(name);
        const std::vector<int> list = Search(ProblemOf(row), 3, cSeed).List();
        EXPECT_EQ(list.size(), row.RowList().size()) << name;
        EXPECT_TRUE(std::is_sorted(list.begin(), list.end())) << name;
    }
}

TEST(PlateRowSearch, MeasureIsTheOneOfTheBuiltDesignsWorstOrder) {
    for (const std::string name : {"FFM34b", "FFM234d", "FFM233a", "FFM2223"}) {
        const auto& row = TableRow(name);
        const plate::RowCase rowCase = plate::RowNamed(name);
        double worst = 2;
        for (const TestFactors& factors : plate::FactorsInEveryOrder(rowCase)) {
            const auto matrix = plate::BuiltSide(*plate::BuilderNamed(name), factors, rowCase);
            worst = std::min(worst, oracles::FiguresOf(matrix, factors, row.model).efficiency);
        }
        EXPECT_NEAR(
            WorstEfficiency(ProblemOf(row), CountsOf(ProblemOf(row), ListOf(row))), worst, 1e-9)
            << name;
    }
}

TEST(PlateRowSearch, OneOrderIsNeverHarderThanAllOfThem) {
    Problem problem = ProblemOf(TableRow("FFM34b"));
    const double all = Search(problem, 20, cSeed).efficiency;
    problem.everyOrder = false;
    EXPECT_GE(Search(problem, 20, cSeed).efficiency, all - 1e-9);
}

TEST(PlateRowSearch, FewerRunsThanTermsHaveNoEfficiency) {
    EXPECT_EQ(Search({{3, 4}, 5, false, true, false}, 5, cSeed).efficiency, 0);
}

TEST(PlateRowSearch, FreeCountsFindThePlanOfOrthogonalMainEffects) {
    EXPECT_NEAR(Search({{2, 2, 2, 4}, 8, false, false, true}, 20, cSeed).efficiency, 1, 1e-9);
}

TEST(PlateRowSearch, CountsAndListsTellTheSame) {
    const Problem problem{{2, 3}, 8, true, true, false};
    EXPECT_THAT(CountsOf(problem, {1, 6}), ElementsAre(2, 1, 1, 1, 1, 2));
    EXPECT_THAT((Found{{2, 1, 1, 1, 1, 2}, 0}.List()), ElementsAre(1, 6));
    EXPECT_THAT((Found{{1, 0, 1, 1, 0, 1}, 0}.List()), ElementsAre(2, 5));
}

}  // namespace
