#include "designs/optimal/DOptFactorAdapter.h"

#include <gtest/gtest.h>

#include "foundation/util/NCInternalError.h"
#include "tests/support/TestFactors.h"

namespace {

// Caller's order: mixture, 3-level qualitative, mixture, quantitative.
TestFactors Mixed() {
    return TestFactors()
        .Formulation(0, 1)
        .Qualitative(3)
        .Formulation(0.1F, 0.9F)
        .Quantitative(5, 7);
}

NCDataMatrix<float> Numbered(int columns) {
    NCDataMatrix<float> matrix(1, columns);
    for (int column = 1; column <= columns; ++column) {
        matrix(1, column, static_cast<float>(column));
    }
    return matrix;
}

TEST(DOptFactorAdapter, FormulationFactorsComeLast) {
    const TestFactors factors = TestFactors().Formulation().Quantitative().Formulation();
    const DOptFactorAdapter adapter(factors, 1);
    EXPECT_EQ(adapter.GetFactorType(0), CEType::Quantitative);
    EXPECT_EQ(adapter.GetFactorType(1), CEType::Formulation);
    EXPECT_EQ(adapter.GetFactorType(2), CEType::Formulation);
}

TEST(DOptFactorAdapter, OneBlockAddsNoFactor) {
    const TestFactors factors = Mixed();
    EXPECT_EQ(DOptFactorAdapter(factors, 1).GetDesignFactorCount(), 4U);
    EXPECT_EQ(DOptFactorAdapter(factors, 0).GetDesignFactorCount(), 4U);
}

TEST(DOptFactorAdapter, TwoBlocksAddAQualitativeFactorBeforeTheMixture) {
    const TestFactors factors = Mixed();
    const DOptFactorAdapter adapter(factors, 2);
    EXPECT_EQ(adapter.GetDesignFactorCount(), 5U);
    EXPECT_EQ(adapter.GetFactorType(2), CEType::Qualitative);
    EXPECT_EQ(adapter.GetFactorSettings(2), std::vector<float>({0, 0}));
    EXPECT_EQ(adapter.GetLevelCount(2), 2U);
    EXPECT_EQ(adapter.GetFactorTransform(2), nullptr);
    EXPECT_EQ(adapter.GetFactorType(3), CEType::Formulation);
}

TEST(DOptFactorAdapter, OtherFactorsAreForwarded) {
    const TransformStruct log(TransformStruct::Log10);
    const TestFactors factors = Mixed().Transformed(log).WithConstantShare(0.25F).WithFiller(false);
    const DOptFactorAdapter adapter(factors, 3);
    EXPECT_EQ(adapter.GetFactorSettings(1), std::vector<float>({5, 7}));
    EXPECT_EQ(*adapter.GetFactorTransform(1), log);
    EXPECT_EQ(adapter.GetLevelCount(0), 3U);
    EXPECT_TRUE(adapter.HasFiller());
    EXPECT_FALSE(adapter.IsFormulationSumFree());
    EXPECT_EQ(adapter.GetConstantMixtureShare(), 0.25F);
}

TEST(DOptFactorAdapter, NeverChangesTheCallersFactors) {
    const TestFactors factors = Mixed();
    DOptFactorAdapter adapter(factors, 2);
    try {
        adapter.SetFactorRange(0, 0, 1);
        FAIL();
    } catch (const NCInternalError& error) {
        EXPECT_STREQ(error.what(), "should only be used const.");
    }
}

TEST(DOptFactorAdapter, PlainColumnsFollowTheFactors) {
    const TestFactors factors = Mixed();
    NCDataMatrix<float> matrix = Numbered(5);
    DOptFactorAdapter(factors, 2).ReorderFromOriginal(matrix);
    EXPECT_EQ(matrix, (NCDataMatrix<float>{{2, 4, 5, 1, 3}}));
}

TEST(DOptFactorAdapter, ExpandedColumnsFollowTheFactors) {
    // Mixture, two columns, mixture, quantitative, and two columns of three blocks.
    const TestFactors factors = Mixed();
    NCDataMatrix<float> matrix = Numbered(7);
    DOptFactorAdapter(factors, 3).ReorderFromOriginal(matrix);
    EXPECT_EQ(matrix, (NCDataMatrix<float>{{2, 3, 5, 6, 7, 1, 4}}));
}

TEST(DOptFactorAdapter, TheWayBackRestoresTheMatrix) {
    const TestFactors factors = Mixed();
    for (const unsigned blocks : {1U, 2U, 4U}) {
        const DOptFactorAdapter adapter(factors, blocks);
        for (const unsigned width :
             {adapter.GetDesignFactorCount(), adapter.GetDesignFactorCountExpanded()}) {
            NCDataMatrix<float> matrix = Numbered(static_cast<int>(width));
            adapter.ReorderFromOriginal(matrix);
            adapter.ReorderToOriginal(matrix);
            EXPECT_EQ(matrix, Numbered(static_cast<int>(width))) << blocks << " blocks";
        }
    }
}

TEST(DOptFactorAdapter, AnyOtherWidthThrows) {
    const TestFactors factors = Mixed();
    const DOptFactorAdapter adapter(factors, 1);
    NCDataMatrix<float> matrix = Numbered(6);
    for (const bool back : {false, true}) {
        try {
            back ? adapter.ReorderToOriginal(matrix) : adapter.ReorderFromOriginal(matrix);
            FAIL();
        } catch (const NCInternalError& error) {
            EXPECT_STREQ(error.what(), "ReorderFromOriginal");
        }
    }
}

TEST(DOptFactorAdapter, AnAscendingOrderHasNoWidthRule) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).Formulation();
    const DOptFactorAdapter adapter(factors, 1);
    NCDataMatrix<float> matrix = Numbered(9);
    adapter.ReorderFromOriginal(matrix);
    adapter.ReorderToOriginal(matrix);
    EXPECT_EQ(matrix, Numbered(9));
}

TEST(DOptFactorAdapter, ExpandedVariablesKnowTheirFactor) {
    // Adapter order: qualitative (2), quantitative (1), block (2), mixture (1), mixture (1).
    const TestFactors factors = Mixed();
    const DOptFactorAdapter adapter(factors, 3);
    const std::vector<int> owners = {0, 1, 1, 2, 3, 3, 4, 5, 0};
    for (int variable = 0; variable < static_cast<int>(owners.size()); ++variable) {
        EXPECT_EQ(adapter.ExpandedToFactor(variable), owners[static_cast<std::size_t>(variable)])
            << variable;
    }
    const std::vector<int> firsts = {0, 1, 3, 4, 6, 7, 0};
    const std::vector<int> widths = {0, 2, 1, 2, 1, 1, 0};
    for (int factor = 0; factor < static_cast<int>(firsts.size()); ++factor) {
        EXPECT_EQ(adapter.FactorToExpanded(factor), firsts[static_cast<std::size_t>(factor)]);
        EXPECT_EQ(adapter.ExpandedWidth(factor), widths[static_cast<std::size_t>(factor)]);
    }
}

TEST(DOptFactorAdapter, PositionsCountTheBlockWithTheFactors) {
    const TestFactors factors = Mixed();
    const DOptFactorAdapter adapter(factors, 2);
    EXPECT_EQ(adapter.FactorPosition(0), 4);
    EXPECT_EQ(adapter.FactorPosition(1), 1);
    EXPECT_EQ(adapter.FactorPosition(2), 5);
    EXPECT_EQ(adapter.FactorPosition(3), 2);
    EXPECT_EQ(adapter.FactorPosition(4), 3);
    EXPECT_EQ(adapter.FactorPosition(5), 6);
    EXPECT_EQ(adapter.FactorPosition(9), 10);
}

}  // namespace
