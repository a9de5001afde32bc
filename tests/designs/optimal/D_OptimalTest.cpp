#include "designs/optimal/D_Optimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/IniFileSection.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using Table = NCDataMatrix<float>;

const DesignBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    return *builder;
}

D_OptimalOptions& FamilyOf(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

/// A request of one run count without centre points.
DesignOptions Request(const Factors& factors, EObjective::Type objective, unsigned runs) {
    DesignOptions options(Builder(),
                          factors,
                          objective,
                          Builder().GetDefaultProcessModel(factors, objective, 12000),
                          Builder().GetDefaultMixtureModel(factors, objective, 12000),
                          12000);
    options.SetRuns(runs);
    options.SetCenterPoints(0);
    FamilyOf(options).SetRunRange(0);
    return options;
}

std::unique_ptr<D_Optimal> Search(const Factors& factors, const DesignOptions& options) {
    auto design = Builder().Build(factors, options);
    EXPECT_NE(design, nullptr);
    return std::unique_ptr<D_Optimal>(dynamic_cast<D_Optimal*>(design.release()));
}

std::string ExceptionText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

bool IsRowOf(const Table& table, const NCDataVector<float>& row) {
    for (int i = 1; i <= table.SizeRows(); ++i) {
        if (table.GetRow(i) == row) {
            return true;
        }
    }
    return false;
}

/// Results given by their figures, read from a store.
class Given {
  public:
    Given& Result(const DesignStatistics::Results& figures, const std::vector<int>& rows = {1}) {
        const auto section =
            store_.OpenRoot()->OpenOrCreateSection("Design")->OpenOrCreateSection("DOptimal");
        const auto child = section->OpenOrCreateSection("Result", ++count_);
        figures.Save(*child);
        child->WriteIntVector("CandidateSetRows", rows);
        return *this;
    }
    Given& Selected(int index) {
        store_.OpenRoot()
            ->OpenOrCreateSection("Design")
            ->OpenOrCreateSection("DOptimal")
            ->WriteInt("SelectedDesign", index);
        return *this;
    }
    [[nodiscard]] D_Optimal Design(const Factors& factors) const {
        return {factors, *store_.OpenRoot()};
    }

  private:
    mutable ConfigurationStore store_;
    int count_ = 0;
};

DesignStatistics::Results FiguresOf(double condition, double g, double logDet, double average) {
    DesignStatistics::Results figures;
    figures.CondNo = condition;
    figures.GEff = g;
    figures.LogDet = logDet;
    figures.IOptimality = average;
    return figures;
}

// --- The search -------------------------------------------------------------------------------

TEST(DOptimal, RunsAreCandidates) {
    const TestFactors factors =
        TestFactors().Quantitative(10, 20).Qualitative(3).Quantitative(0, 5);
    const DesignOptions options = Request(factors, EObjective::Screening, 12);
    const auto design = Search(factors, options);
    const Table candidates =
        DOpt::GenerateCandidateset(nullptr, factors, options, true, nullptr, nullptr, 0);
    const Table matrix = *design->GetDesignMatrix();
    ASSERT_EQ(matrix.SizeRows(), 12);
    ASSERT_EQ(matrix.SizeColumns(), 4);
    for (int row = 1; row <= 12; ++row) {
        EXPECT_TRUE(IsRowOf(candidates, matrix.GetRow(row))) << row;
    }
    EXPECT_FALSE(design->IsDesignMatrixCoded());
}

// The bound of a linear model over a cube is |X'X| <= n^p, and a Hadamard matrix reaches it.
TEST(DOptimal, LinearModelNearlyReachesTheBoundOfHadamard) {
    const TestFactors factors = TestFactors().Quantitatives(7);
    const DesignOptions options = Request(factors, EObjective::Screening, 12);
    const double bound = 8 * std::log10(12.0);
    int good = 0;
    for (int i = 0; i < 20; ++i) {
        const auto design = Search(factors, options);
        const int best = design->GetBestDesignBy(EDesign::LogDeterminant);
        const double logDet = design->GetResults()[static_cast<std::size_t>(best)].LogDet;
        EXPECT_LE(logDet, bound + 1e-5);
        // 85 percent of the bound, as a share of the p-th root.
        good += logDet >= bound + 8 * std::log10(0.85) ? 1 : 0;
    }
    EXPECT_GE(good, 18);
}

TEST(DOptimal, FiguresAreThoseOfTheDesign) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    options.SetCenterPoints(3);
    const auto design = Search(factors, options);
    const auto& result = design->GetResults()[static_cast<std::size_t>(design->GetSelectedIndex())];
    const auto model = oracles::ModelMatrix(*design->GetDesignMatrix(), 3, oracles::QuadraticTerms);
    ASSERT_EQ(model.size(), 18U);
    const double logDet = static_cast<double>(
        oracles::LogDeterminant(oracles::Product(oracles::Transposed(model), model)));
    EXPECT_NEAR(result.LogDet, logDet, 1e-4);
    EXPECT_NEAR(result.NormLogDet, logDet / 10 - std::log10(18.0), 1e-4);
}

TEST(DOptimal, RunRangeSearchesEachRunCountAsOftenAsAsked) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    FamilyOf(options).SetRunRange(2);
    FamilyOf(options).SetRepetitions(3);
    const auto design = Search(factors, options);
    std::map<std::size_t, int> counts;
    for (const auto& result : design->GetResults()) {
        ++counts[result.rows.size()];
    }
    EXPECT_EQ(counts, (std::map<std::size_t, int>{{10, 3}, {11, 3}, {12, 3}, {13, 3}, {14, 3}}));
    EXPECT_TRUE(std::ranges::is_sorted(
        design->GetResults(), {}, [](const auto& result) { return result.rows.size(); }));
}

TEST(DOptimal, ValidatingSearchesRepeat) {
    const ValidatingScope validating;
    EXPECT_TRUE(D_Optimal::GetValidating());
    const TestFactors factors = TestFactors().Quantitatives(3).Qualitative(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 22);
    options.SetReplicatedRuns(2);
    const auto first = Search(factors, options);
    const auto second = Search(factors, options);
    EXPECT_EQ(*first->GetDesignMatrix(), *second->GetDesignMatrix());
    ASSERT_EQ(first->GetResults().size(), second->GetResults().size());
    for (std::size_t i = 0; i < first->GetResults().size(); ++i) {
        EXPECT_EQ(first->GetResults()[i].rows, second->GetResults()[i].rows) << i;
    }
}

TEST(DOptimal, ObjectiveForcesTheModel) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options = Request(factors, EObjective::Screening, 14);
    ASSERT_EQ(options.GetModel(), EModel::Interaction);
    FamilyOf(options).SetUsePotentialTerms(false);
    const auto design = Search(factors, options);
    const auto& result = design->GetResults().front();
    // Five terms of a linear model, not eleven.
    EXPECT_NEAR(result.NormLogDet, result.LogDet / 5 - std::log10(14.0), 1e-5);
    EXPECT_EQ(options.GetModel(), EModel::Interaction);
}

TEST(DOptimal, CountsTellTheCandidatesByKind) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DOpt::NumData counts;
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    (void)DOpt::GenerateCandidateset(nullptr, factors, options, true, &counts, nullptr, 0);
    EXPECT_EQ(Search(factors, options)->GetNumData(), counts);
    EXPECT_EQ(counts.ExtVert, 8);
}

TEST(DOptimal, RequestWithoutFamilyOptionsIsSearchedWithTheDefaults) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 12);
    options.SetDesignSpecificOptions(nullptr);
    // Five repetitions of five run counts.
    EXPECT_EQ(Search(factors, options)->GetResults().size(), 25U);
}

TEST(DOptimal, TooFewRunsForTheModelAreToldSo) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 9);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "No proper design could be generated. The current candidate set is not rich enough "
              "or the model is too complex.");
}

TEST(DOptimal, NoRepetitionsAreToldByTheirNumber) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 9);
    FamilyOf(options).SetRepetitions(0);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors, options); }),
              "No design for the problem. Internal D-Optimal error number 6007.");
}

TEST(DOptimal, ImpossibleRegionIsToldSo) {
    TestFactors factors;
    factors.Formulation(0.5F, 1).Formulation(0.5F, 1).Formulation(0.5F, 1);
    DesignOptions options(Builder(), factors);
    EXPECT_THAT(ExceptionText([&] { (void)Builder().Build(factors, options); }),
                ::testing::HasSubstr("The constraints are inconsistent."));
}

TEST(DOptimal, CancelledSearchIsNoFailure) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const DesignOptions options = Request(factors, EObjective::Screening, 9);
    bool cancel = true;
    EXPECT_THROW((void)Builder().Build(factors, options, &cancel), CancelException);
}

TEST(DOptimal, DesignBeyondEverySizeIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Screening, 9);
    options.SetCenterPoints(2'000'000'000);
    EXPECT_NE(ExceptionText([&] { (void)Builder().Build(factors, options); }), "no exception");
}

// --- Candidates and inclusions ----------------------------------------------------------------

DesignOptions WithStoredCandidates(DesignOptions options, const Table& rows) {
    CandidateSet set;
    set.SetCandidateSet(rows, {4, 3, 2});
    FamilyOf(options).SetCandidateSet(set);
    FamilyOf(options).SetNewCandidateSet(false);
    return options;
}

const Table cTriangle{{-1, -1}, {1, -1}, {0, 1}, {0, 0}};

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

// --- Balance and blocks -----------------------------------------------------------------------

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

// --- Finishing --------------------------------------------------------------------------------

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

// --- Selection --------------------------------------------------------------------------------

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

// --- Texts and stores -------------------------------------------------------------------------

TEST(DOptimal, StatusTextsHoldTheirNumber) {
    EXPECT_EQ(D_Optimal::GetErrorString(5999, nullptr), "Internal MAT error number 5999.");
    EXPECT_EQ(D_Optimal::GetErrorString(6020, nullptr), D_Optimal::GetErrorString(6017, nullptr));
}

TEST(DOptimal, SearchIsReadBackFromAStore) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    FamilyOf(options).SetInclusions({{0.25F, 0.5F, -0.5F}}, factors);
    const auto design = Search(factors, options);
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    const D_Optimal loaded(factors, *store.OpenRoot());
    ASSERT_EQ(loaded.GetResults().size(), design->GetResults().size());
    for (std::size_t i = 0; i < loaded.GetResults().size(); ++i) {
        EXPECT_EQ(loaded.GetResults()[i].rows, design->GetResults()[i].rows);
        EXPECT_EQ(loaded.GetResults()[i].balanced, design->GetResults()[i].balanced);
        EXPECT_EQ(loaded.GetResults()[i].LogDet, design->GetResults()[i].LogDet);
        EXPECT_EQ(loaded.GetResults()[i].IOptimality, design->GetResults()[i].IOptimality);
    }
    EXPECT_EQ(loaded.GetNumData(), design->GetNumData());
    EXPECT_EQ(loaded.GetSelectedIndex(), design->GetSelectedIndex());
    EXPECT_EQ(loaded.GetReplicateRow(), design->GetReplicateRow());
    EXPECT_EQ(loaded.GetInclusionRows(1), 1);
    EXPECT_EQ(loaded.GetPickedRows(1), design->GetPickedRows(1));
    EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
}

TEST(DOptimal, SecondSaveForgetsTheFirst) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    Given().Result({}).Result({}).Result({}).Design(factors).Save(store.OpenRoot().get());
    Given().Result({}).Design(factors).Save(store.OpenRoot().get());
    EXPECT_EQ(D_Optimal(factors, *store.OpenRoot()).GetResults().size(), 1U);
}

TEST(DOptimal, NoStoreIsNoDesign) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    D_Optimal design = Given().Result({}).Design(factors);
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetResults().size(), 1U);
}

TEST(DOptimal, FiguresThatAreNotStoredAreMissing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("Design")
        ->OpenOrCreateSection("DOptimal")
        ->OpenOrCreateSection("Result", 1)
        ->WriteDouble("GEff", 80);
    const D_Optimal design(factors, *store.OpenRoot());
    ASSERT_EQ(design.GetResults().size(), 1U);
    EXPECT_EQ(design.GetResults()[0].GEff, 80);
    EXPECT_EQ(design.GetResults()[0].CondNo, -99);
    EXPECT_EQ(design.GetNumData(), DOpt::NumData());
}

TEST(DOptimal, OlderFormIsRead) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const IniFileSection section = IniFileSection::FromText(
        "ExtremeVertices=8\nEdges=12\nHighDimensionalCentroids=1\nOptionIndex=1\n"
        "DOpt10=CondNo:3.5\n"
        "DOpt2=CondNo:1.5 LogDet:3.25 LogDetNorm:-0.5 GEff:88.5 DesignIndex:1,4,5\n",
        "old");
    const D_Optimal design(factors, section);
    EXPECT_EQ(design.GetNumData(), (DOpt::NumData{8, 12, 1}));
    EXPECT_EQ(design.GetSelectedIndex(), 1);
    ASSERT_EQ(design.GetResults().size(), 2U);
    const auto& first = design.GetResults()[0];
    EXPECT_EQ(first.CondNo, 1.5);
    EXPECT_EQ(first.LogDet, 3.25);
    EXPECT_EQ(first.NormLogDet, -0.5);
    EXPECT_EQ(first.GEff, 88.5);
    EXPECT_EQ(first.IOptimality, -99);
    EXPECT_THAT(first.rows, ::testing::ElementsAre(1, 4, 5));
    EXPECT_EQ(design.GetResults()[1].CondNo, 3.5);
}

TEST(DOptimal, NumbersOfTheOlderFormMustBeNumbers) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const auto text = [&](const char* content) -> std::string {
        try {
            (void)D_Optimal(factors, IniFileSection::FromText(content, "old"));
        } catch (const std::invalid_argument& error) {
            return error.what();
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(text("DOptX=GEff:1\n"), "invalid stoi argument");
    EXPECT_EQ(text("DOpt99999999999=GEff:1\n"), "stoi argument out of range");
    EXPECT_EQ(text("DOpt1=DesignIndex:1,two\n"), "invalid stoi argument");
    EXPECT_EQ(text("DOpt1=GEff:1\n"), "");
}

}  // namespace
