#include "evaluation/ModelMatrix.h"

#include <gtest/gtest.h>

#include "foundation/utl/Exceptions.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using Columns = std::vector<std::vector<int>>;
using Rows = std::vector<std::vector<float>>;

TEST(ModelMatrix, HoldsConstantMainEffectsAndTerms) {
    const TestFactors factors = TestFactors().Quantitative(10, 20).Quantitative(0, 4);
    const auto model =
        NCDOE::MakeModelMatrix(factors, {{}, {0}, {1}, {0, 1}, {1, 1}}, {{10, 4}, {15, 1}}, 1);
    EXPECT_EQ(RowsOf(model.rows), (Rows{{1, -1, 1, -1, 1}, {1, 0, -0.5F, 0, 0.25F}}));
    EXPECT_EQ(model.columns, (Columns{{}, {0}, {1}, {0, 1}, {1, 1}}));
}

TEST(ModelMatrix, NamesTheVariablesOfLevels) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3);
    const auto model = NCDOE::MakeModelMatrix(factors, {{0, 1}}, {{1, -1, -1}, {-1, 0, 1}}, 1);
    EXPECT_EQ(model.columns, (Columns{{}, {0}, {1}, {2}, {0, 1}, {0, 2}}));
    EXPECT_EQ(RowsOf(model.rows), (Rows{{1, 1, -1, -1, -1, -1}, {1, -1, 0, 1, 0, -1}}));
}

TEST(ModelMatrix, KeepsTheCallersNumbersOfReorderedFactors) {
    // The component of the largest range, number 0, is the slack; the block is variable 4.
    const TestFactors factors =
        TestFactors().Formulation(0, 0.8F).Formulation(0, 0.5F).Formulation(0, 0.6F).Quantitative();
    const auto model =
        NCDOE::MakeModelMatrix(factors, {{1, 2}, {0, 1}}, {{0, 0.5F, 0.5F, 1, -1}}, 2);
    EXPECT_EQ(model.columns, (Columns{{}, {3}, {4}, {1}, {2}, {1, 2}}));
    ASSERT_EQ(model.rows.SizeColumns(), 6);
    EXPECT_EQ(model.rows(1, 2), 1);
    EXPECT_EQ(model.rows(1, 3), -1);
}

TEST(ModelMatrix, RunsOfAnotherWidthAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_THROW((void)NCDOE::MakeModelMatrix(factors, {}, {{1, 1, 1}}, 1),
                 InvalidOperationException);
}

}  // namespace
