#include "designs/optimal/D_Optimal.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/support/MatrixRows.h"

namespace {

using D_OptimalCases::Builder;
using D_OptimalCases::ExceptionText;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::Given;
using D_OptimalCases::IsRowOf;
using D_OptimalCases::Request;
using D_OptimalCases::Search;
using D_OptimalCases::Table;

TEST(DOptimal, OnlyBalancedDesignsAreBalanced) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    FamilyOf(options).SetRepetitions(20);
    FamilyOf(options).SetRunRange(2);
    FamilyOf(options).SetBalanceOnFactor(2);
    FamilyOf(options).SetOnlyAllowBalanced(true);
    const auto design = Search(factors, options);
    for (const auto& result : design->GetResults()) {
        EXPECT_TRUE(result.balanced);
        EXPECT_EQ(result.rows.size(), 12U);
    }
    const Table& matrix = *design->GetDesignMatrix();
    int first = 0;
    for (int row = 1; row <= 12; ++row) {
        first += matrix(row, 3) == -1.0F ? 1 : 0;
    }
    EXPECT_EQ(first, 4);
}

TEST(DOptimal, BalanceThatCannotBeIsToldSo) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    DesignOptions options = Request(factors, EObjective::Screening, 11);
    FamilyOf(options).SetBalanceOnFactor(2);
    FamilyOf(options).SetOnlyAllowBalanced(true);
    EXPECT_EQ(
        ExceptionText([&] { (void)Builder().Build(factors, options); }),
        "A balanced D-Optimal design could not be generated. Try unchecking the 'Use balanced "
        "only' option.");
}

TEST(DOptimal, EveryLegalBlockCountBuilds) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions request = Request(factors, EObjective::Screening, 12);
    for (const int blocks : Builder().GetLegalBlocks(factors, request, false)) {
        SCOPED_TRACE(blocks);
        DesignOptions options = request;
        options.SetBlocks(static_cast<unsigned>(blocks));
        options.SetRuns(Builder().GetLegalRuns(factors, options).front());
        options.SetCenterPoints(2);
        const auto design = Search(factors, options);
        const Table& matrix = *design->GetDesignMatrix();
        ASSERT_EQ(matrix.SizeColumns(), 3 + blocks - 1);
        const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, blocks);
        std::set<std::vector<float>> used;
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            const auto cells = std::as_const(matrix).RowSpan(row).subspan(3);
            used.insert({cells.begin(), cells.end()});
        }
        EXPECT_EQ(used.size(), static_cast<std::size_t>(blocks));
        for (int i = 0; blocks > 1 && i < 2; ++i) {
            for (int j = 1; j < blocks; ++j) {
                EXPECT_EQ(matrix(matrix.SizeRows() - 1 + i, 3 + j), (*coding)(i + 1, j));
            }
        }
    }
}

TEST(DOptimal, CentrePointsThenReplicatedRunsThenReplicatesFollow) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    options.SetCenterPoints(3);
    options.SetReplicatedRuns(4);
    options.SetReplicates(1);
    const Table matrix = *Search(factors, options)->GetDesignMatrix();
    ASSERT_EQ(matrix.SizeRows(), 2 * (10 + 3 + 4));
    for (int row = 11; row <= 13; ++row) {
        EXPECT_EQ(matrix.GetRow(row), NCDataVector<float>({0, 0, 0}));
    }
    Table core = matrix;
    core.RemoveRows(14, 21);
    for (int row = 14; row <= 17; ++row) {
        EXPECT_TRUE(IsRowOf(core, matrix.GetRow(row))) << row;
    }
    for (int row = 1; row <= 17; ++row) {
        EXPECT_EQ(matrix.GetRow(17 + row), matrix.GetRow(row)) << row;
    }
}

TEST(DOptimal, CentrePointsCopyTheLastCandidateThatKeepsTheConstraints) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitatives(2);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    FamilyOf(options).SetConstraints(NCDOE::Constraints({{{{1, 1.0}}, 0.5, false}}), factors);
    options.SetCenterPoints(2);
    const D_Optimal design = Given().Design(factors);
    Table matrix(1, 4, 9.0F);
    design.InsertCenterPoints(
        matrix, {{-1, -1, 0.25F, 0}, {1, 0, 0.5F, 1}, {0, 1, 0.75F, 0}}, options);
    ASSERT_EQ(matrix.SizeRows(), 3);
    EXPECT_EQ(matrix.GetRow(2), NCDataVector<float>({1, 0, 0.5F, 1}));
    EXPECT_EQ(matrix.GetRow(3), matrix.GetRow(2));
}

TEST(DOptimal, CentrePointsTurnThroughTheBlocks) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    DesignOptions options(Builder(), factors);
    options.SetBlocks(3);
    options.SetCenterPoints(4);
    Table matrix(0, 3);
    Given().Design(factors).InsertCenterPoints(matrix, {{7, 1, 0}}, options);
    EXPECT_EQ(RowsOf(matrix),
              (std::vector<std::vector<float>>{{7, -1, -1}, {7, 1, 0}, {7, 0, 1}, {7, -1, -1}}));
}

}  // namespace
