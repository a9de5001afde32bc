#include "designs/optimal/D_Optimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/ValidatingScope.h"

namespace {

using D_OptimalCases::cTriangle;
using D_OptimalCases::ExceptionText;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::FiguresOf;
using D_OptimalCases::Given;
using D_OptimalCases::Request;
using D_OptimalCases::Search;
using D_OptimalCases::Table;
using D_OptimalCases::WithStoredCandidates;

TEST(DOptimal, BestIsLargeOrSmallAsTheFigureWants) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const D_Optimal design = Given()
                                 .Result(FiguresOf(3, 60, 5, 9))
                                 .Result(FiguresOf(2, 50, 7, 8))
                                 .Result(FiguresOf(4, 70, 6, 7))
                                 .Result(FiguresOf(2, 70, 7, 7))
                                 .Design(factors);
    EXPECT_EQ(design.GetBestDesignBy(EDesign::GEfficiency), 2);
    EXPECT_EQ(design.GetBestDesignBy(EDesign::ConditionNumber), 1);
    EXPECT_EQ(design.GetBestDesignBy(EDesign::LogDeterminant), 1);
    EXPECT_EQ(design.GetBestDesignBy(EDesign::NormalizedLogDeterminant), 0);
    EXPECT_EQ(design.GetBestDesignBy(EDesign::IOptimality), 2);
}

TEST(DOptimal, MissingFiguresComeLast) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const D_Optimal design = Given()
                                 .Result(FiguresOf(-99, -99, -99, -99))
                                 .Result(FiguresOf(300, 1, -5, 200))
                                 .Result(FiguresOf(-99, -99, -99, -99))
                                 .Design(factors);
    for (const auto by : {EDesign::GEfficiency,
                          EDesign::ConditionNumber,
                          EDesign::LogDeterminant,
                          EDesign::IOptimality}) {
        EXPECT_EQ(design.GetBestDesignBy(by), 1) << by;
    }
}

TEST(DOptimal, NoResultsHaveNoBest) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const D_Optimal design = Given().Design(factors);
    EXPECT_EQ(ExceptionText([&] { (void)design.GetBestDesignBy(EDesign::GEfficiency); }),
              "No design was found.");
}

TEST(DOptimal, SearchSelectsByTheOptionsFigure) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    FamilyOf(options).SetRunRange(2);
    FamilyOf(options).SetUsePotentialTerms(false);
    FamilyOf(options).SetSelectDesignBy(EDesign::LogDeterminant);
    // Without centre points the figures of the search are those that are kept.
    const auto design = Search(factors, options);
    EXPECT_EQ(design->GetSelectedIndex(), design->GetBestDesignBy(EDesign::LogDeterminant));
    EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), 14);
}

TEST(DOptimal, SelectingMakesTheOtherDesign) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    DesignOptions options = Request(factors, EObjective::Screening, 10);
    FamilyOf(options).SetRunRange(2);
    options.SetCenterPoints(1);
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    const auto design = Search(factors, options);
    const int chosen = design->GetSelectedIndex();
    const Table before = *design->GetDesignMatrix();
    design->SelectDesign(chosen == 0 ? 1 : 0, factors, options, 0);
    EXPECT_EQ(design->GetSelectedIndex(), chosen == 0 ? 1 : 0);
    EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), 2 * (8 + 1 + 2));
    design->SelectDesign(chosen, factors, options, 0);
    EXPECT_EQ(*design->GetDesignMatrix(), before);
}

TEST(DOptimal, SelectingFindsInclusionsAndCopiesAgain) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options =
        WithStoredCandidates(Request(factors, EObjective::Screening, 11), cTriangle);
    FamilyOf(options).SetUsePotentialTerms(false);
    FamilyOf(options).SetInclusions({{0.5F, 0.5F}}, factors);
    const auto design = Search(factors, options);
    const Table before = *design->GetDesignMatrix();
    // With fewer runs in the options, candidates are still repeated up to the largest row picked.
    options.SetRuns(4);
    design->SelectDesign(design->GetSelectedIndex(), factors, options, 0);
    EXPECT_EQ(*design->GetDesignMatrix(), before);
}

TEST(DOptimal, SelectingALayerTakesItsRows) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = Request(factors, EObjective::Screening, 2);
    const std::vector<int> starts{1, 3};
    const std::vector<int> numbers{2, 2};
    CandidateSet set;
    set.SetCandidateSet(cTriangle, {}, &starts, &numbers);
    FamilyOf(options).SetCandidateSet(set);
    FamilyOf(options).SetNewCandidateSet(false);
    D_Optimal design = Given().Result({}, {1, 2}).Design(factors);
    design.SelectDesign(0, factors, options, 2);
    EXPECT_EQ(RowsOf(*design.GetDesignMatrix()), RowsOf(cTriangle, 3, 4));
    design.SelectDesign(0, factors, options, 0);
    EXPECT_EQ(RowsOf(*design.GetDesignMatrix()), RowsOf(cTriangle, 1, 2));
}

TEST(DOptimal, SelectingWhatIsNotThereChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Request(factors, EObjective::Screening, 9);
    const auto design = Search(factors, options);
    const auto before = design->GetDesignMatrix();
    EXPECT_THROW(design->SelectDesign(-1, factors, options, 0), InvalidOperationException);
    EXPECT_THROW(design->SelectDesign(99, factors, options, 0), InvalidOperationException);
    EXPECT_EQ(design->GetDesignMatrix(), before);
}

TEST(DOptimal, RemovingLeavesTheSelectedResult) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Given given;
    for (int i = 0; i < 5; ++i) {
        given.Result({}, {i});
    }
    D_Optimal design = given.Selected(2).Design(factors);
    design.RemoveGeneratedDesigns();
    ASSERT_EQ(design.GetResults().size(), 1U);
    EXPECT_EQ(design.GetSelectedIndex(), 0);
    EXPECT_THAT(design.GetResults().front().rows, ::testing::ElementsAre(2));
}

TEST(DOptimal, RemovingWithoutResultsDoesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    D_Optimal design = Given().Design(factors);
    design.RemoveGeneratedDesigns();
    EXPECT_TRUE(design.GetResults().empty());
}

// Which runs are repeated is partly chance.
TEST(DOptimal, FiguresOfASelectedResultAreThoseOfItsMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 9);
    options.SetReplicatedRuns(2);
    const auto design = Search(factors, options);
    const DesignStatistics::Terms terms =
        FamilyOf(options).GetModel(EDesign::DOpt, factors, options);
    for (int i = 0; i < 20; ++i) {
        design->SelectDesign(0, factors, options, 0);
        bool stop = false;
        const DesignStatistics::Results figures = DesignStatistics::CalculateStatistics(
            factors, terms, *design->GetDesignMatrix(), nullptr, false, 1, stop);
        EXPECT_EQ(design->GetResults()[0].LogDet, figures.LogDet) << "selection " << i;
        EXPECT_EQ(design->GetResults()[0].CondNo, figures.CondNo) << "selection " << i;
        EXPECT_GT(design->GetResults()[0].GEff, 0) << "selection " << i;
    }
}

}  // namespace
