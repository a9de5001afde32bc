#include "designs/optimal/D_Optimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/support/MatrixRows.h"

namespace {

using D_OptimalCases::Builder;
using D_OptimalCases::cTriangle;
using D_OptimalCases::ExceptionText;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::IsRowOf;
using D_OptimalCases::Request;
using D_OptimalCases::Search;
using D_OptimalCases::Table;
using D_OptimalCases::WithStoredCandidates;

TEST(DOptimal, StoredCandidatesAreTaken) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options =
        WithStoredCandidates(Request(factors, EObjective::Screening, 6), cTriangle);
    FamilyOf(options).SetUsePotentialTerms(false);
    const auto design = Search(factors, options);
    for (int row = 1; row <= 6; ++row) {
        EXPECT_TRUE(IsRowOf(cTriangle, design->GetDesignMatrix()->GetRow(row))) << row;
    }
    EXPECT_EQ(design->GetNumData(), (DOpt::NumData{4, 3, 2}));
    EXPECT_THAT(design->GetReplicateRow(), ::testing::ElementsAre(0, 0));
}

// Three points twice each are the only optimum of a linear model on a triangle.
TEST(DOptimal, SearchFindsTheRepeatedTriangle) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options =
        WithStoredCandidates(Request(factors, EObjective::Screening, 6), cTriangle);
    FamilyOf(options).SetUsePotentialTerms(false);
    const auto design = Search(factors, options);
    std::map<float, int> counts;
    for (int row = 1; row <= 6; ++row) {
        ++counts[(*design->GetDesignMatrix())(row, 1) + 10 * (*design->GetDesignMatrix())(row, 2)];
    }
    EXPECT_EQ(counts, (std::map<float, int>{{-11.0F, 2}, {-9.0F, 2}, {10.0F, 2}}));
}

TEST(DOptimal, StoredCandidatesOfAnotherWidthAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions options =
        WithStoredCandidates(Request(factors, EObjective::Screening, 6), cTriangle);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "The candidate set could not be generated.");
}

TEST(DOptimal, InclusionsStandInEveryResult) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    const Table inclusions{{0.25F, 0.5F, -0.5F}, {-0.75F, 0, 1}};
    FamilyOf(options).SetInclusions(inclusions, factors);
    const auto design = Search(factors, options);
    EXPECT_EQ(design->GetInclusionRows(1), 2);
    for (const auto& result : design->GetResults()) {
        ASSERT_EQ(result.rows.size(), 10U);
        EXPECT_EQ(result.rows[0], 1);
        EXPECT_EQ(result.rows[1], 2);
    }
    EXPECT_EQ(RowsOf(*design->GetDesignMatrix(), 1, 2), RowsOf(inclusions));
}

TEST(DOptimal, InclusionsAreLeftOutWhenNotWanted) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    FamilyOf(options).SetInclusions({{0.25F, 0.5F, -0.5F}}, factors);
    FamilyOf(options).SetUseInclusion(false);
    const auto design = Search(factors, options);
    EXPECT_EQ(design->GetInclusionRows(1), 0);
    EXPECT_FALSE(IsRowOf(*design->GetDesignMatrix(), {0.25F, 0.5F, -0.5F}));
}

TEST(DOptimal, InclusionsOfAnotherWidthAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    FamilyOf(options).SetInclusions({{1, 1}}, factors);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "The inclusions file and the candidate set are not consistent. They don't have the "
              "same variables.");
}

TEST(DOptimal, CandidateSetFindsItsRunsBelowTheInclusions) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options =
        WithStoredCandidates(Request(factors, EObjective::Screening, 7), cTriangle);
    FamilyOf(options).SetUsePotentialTerms(false);
    FamilyOf(options).SetInclusions({{0.5F, 0.5F}}, factors);
    const std::shared_ptr<const NCDesign> design = Search(factors, options);
    const CandidateSet& set = FamilyOf(options).GetCandidateSet();
    int found = 0;
    for (int row = 1; row <= 4; ++row) {
        for (const int run : set.GetAllDesignRuns(row, design, options)) {
            EXPECT_EQ(design->GetDesignMatrix()->GetRow(run), cTriangle.GetRow(row));
            ++found;
        }
    }
    EXPECT_EQ(found, 6);
}

}  // namespace
