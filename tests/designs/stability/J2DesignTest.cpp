#include "designs/stability/J2Design.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "designs/optimal/GenerateCandidateset.h"
#include "designs/stability/BalancedColumns.h"
#include "designs/stability/J2Options.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/util/NCInternalError.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/oracles/LiteralJ2.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/oracles/StatisticsOracle.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/SilentDisplay.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using Table = NCDataMatrix<float>;

constexpr double cNan = std::numeric_limits<double>::quiet_NaN();

const DesignBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::J2, "");
    return *builder;
}

J2Options& FamilyOf(DesignOptions& options) {
    return dynamic_cast<J2Options&>(*options.GetDesignSpecificOptions());
}

/// A screening of one design without replicated runs.
DesignOptions Request(const Factors& factors, unsigned runs, int repetitions = 1) {
    DesignOptions options(Builder(), factors);
    options.SetRuns(runs);
    options.SetReplicatedRuns(0);
    FamilyOf(options).SetRepetitions(repetitions);
    return options;
}

J2Design Generate(const Factors& factors, const DesignOptions& options, bool* stop = nullptr) {
    return {EDesign::J2, factors, options, stop};
}

TestFactors Mixed() {
    return TestFactors().MultilevelOf(3).Qualitative(4).Quantitatives(3);
}

std::string ExceptionText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

/// Notes the titles of all operations that begin during its life.
class TitleDisplay {
  public:
    TitleDisplay() { NCProgress::SetDisplay(display_); }
    TitleDisplay(const TitleDisplay&) = delete;
    TitleDisplay& operator=(const TitleDisplay&) = delete;
    ~TitleDisplay() { NCProgress::SetDisplay(nullptr); }

    [[nodiscard]] const std::vector<std::string>& Titles() const { return display_->titles; }

  private:
    struct Display : NCProgressDisplay {
        void Begin(const std::string& title, const std::string&, bool) override {
            titles.push_back(title);
        }
        void Show(double, const std::string&) override {}
        void Hide() override {}
        void End() override {}
        [[nodiscard]] bool IsBreakPressed() const override { return false; }

        std::vector<std::string> titles;
    };

    std::shared_ptr<Display> display_ = std::make_shared<Display>();
};

std::map<float, int> CountsOf(const Table& table, int column) {
    std::map<float, int> counts;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        ++counts[table(row, column)];
    }
    return counts;
}

std::vector<std::vector<int>> ColumnsOf(const Table& table) {
    std::vector<std::vector<int>> columns(static_cast<std::size_t>(table.SizeColumns()));
    for (int row = 1; row <= table.SizeRows(); ++row) {
        for (int column = 1; column <= table.SizeColumns(); ++column) {
            columns[static_cast<std::size_t>(column - 1)].push_back(
                static_cast<int>(table(row, column)));
        }
    }
    return columns;
}

// --- Runs -------------------------------------------------------------------------------------

TEST(J2Design, EveryLevelOccursEquallyOftenUpToOne) {
    const auto factors = Mixed();
    for (const unsigned runs : {12U, 13U, 24U, 31U}) {
        const auto design = Generate(factors, Request(factors, runs));
        const Table& table = *design.GetDesignMatrix();
        ASSERT_EQ(table.SizeRows(), static_cast<int>(runs));
        for (int column = 1; column <= table.SizeColumns(); ++column) {
            const unsigned levels = column == 1 ? 3 : column == 2 ? 4 : 2;
            const auto counts = CountsOf(table, column);
            EXPECT_EQ(counts.size(), levels) << runs << " runs, column " << column;
            const auto [least, most] = std::ranges::minmax_element(
                counts, {}, [](const auto& count) { return count.second; });
            EXPECT_LE(most->second - least->second, runs % levels == 0 ? 0 : 1)
                << runs << " runs, column " << column;
        }
    }
}

TEST(J2Design, LevelFactorsHoldLettersAndOthersCodedValues) {
    const auto factors = Mixed();
    const auto table = *Generate(factors, Request(factors, 12)).GetDesignMatrix();
    const auto keys = [&](int column) {
        std::set<float> found;
        for (const auto& [value, count] : CountsOf(table, column)) {
            found.insert(value);
        }
        return found;
    };
    EXPECT_THAT(keys(1), testing::ElementsAre(65, 66, 67));
    EXPECT_THAT(keys(2), testing::ElementsAre(65, 66, 67, 68));
    EXPECT_THAT(keys(3), testing::ElementsAre(-1, 1));
}

TEST(J2Design, LevelsOptionSpreadsContinuousFactorsEvenly) {
    const auto factors = TestFactors().Quantitative(10, 20).MultilevelOf(3);
    DesignOptions options = Request(factors, 15);
    FamilyOf(options).SetLevels(5);
    const auto counts = CountsOf(*Generate(factors, options).GetDesignMatrix(), 1);
    EXPECT_THAT(counts,
                testing::ElementsAre(testing::Pair(-1.0F, 3),
                                     testing::Pair(-0.5F, 3),
                                     testing::Pair(0.0F, 3),
                                     testing::Pair(0.5F, 3),
                                     testing::Pair(1.0F, 3)));
}

TEST(J2Design, FewerThanTwoLevelsAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    for (const int levels : {1, 0, -3}) {
        FamilyOf(options).SetLevels(levels);
        EXPECT_EQ(ExceptionText([&] { static_cast<void>(Generate(factors, options)); }),
                  "A factor of a reduced combinatorial design needs 2 levels or more, not " +
                      std::to_string(levels) + ".");
    }
}

TEST(J2Design, MoreThan255LevelsAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    FamilyOf(options).SetLevels(255);
    EXPECT_NO_THROW(static_cast<void>(Generate(factors, options)));
    for (const int levels : {256, std::numeric_limits<int>::max()}) {
        FamilyOf(options).SetLevels(levels);
        EXPECT_EQ(ExceptionText([&] { static_cast<void>(Generate(factors, options)); }),
                  "A continuous factor of a reduced combinatorial design has at most 255 levels, "
                  "not " +
                      std::to_string(levels) + ".");
    }
}

TEST(J2Design, LevelsThatNoFactorTakesAreNotLookedAt) {
    const auto factors = TestFactors().Qualitative(3).MultilevelOf(4);
    DesignOptions options = Request(factors, 12);
    for (const int levels : {-3, 0, 1, 1000}) {
        FamilyOf(options).SetLevels(levels);
        EXPECT_EQ(Generate(factors, options).GetDesignMatrix()->SizeRows(), 12) << levels;
    }
}

TEST(J2Design, TermsOfFactorsThatDoNotExistAreRefused) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    for (const int factor : {-1, 6, std::numeric_limits<int>::min(), 1'000'000}) {
        for (const auto& term : {std::vector{factor}, std::vector{0, factor}}) {
            FamilyOf(options).SetModel({{}, {0}, {1}, term});
            EXPECT_THROW(static_cast<void>(Generate(factors, options)), InvalidOperationException)
                << factor;
        }
    }
}

TEST(J2Design, MoreThan10000RunsAreRefusedBeforeTheSearch) {
    const auto factors = Mixed();
    for (const auto& [runs, range] :
         {std::pair{10'001U, 0}, {1'000'000U, 0}, {9'999U, 2}, {12U, 2'147'483'647}}) {
        DesignOptions options = Request(factors, runs);
        FamilyOf(options).SetRunRange(range);
        const TitleDisplay display;
        EXPECT_EQ(ExceptionText([&] { static_cast<void>(Generate(factors, options)); }),
                  "The search for a reduced combinatorial design would reach " +
                      std::to_string(static_cast<long long>(runs) + range) +
                      " runs. It may have at most 10000 runs.");
        EXPECT_THAT(display.Titles(), testing::IsEmpty());
    }
}

// The largest design is asked for first: the smaller ones would be found, and lost.
TEST(J2Design, ARunRangeBeyondAFinishedDesignIsRefusedBeforeTheSearch) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    options.SetReplicatedRuns(0);
    options.SetCenterPoints(0);
    options.SetReplicates(1'000'000 / 13 - 1);
    FamilyOf(options).SetRunRange(2);
    const TitleDisplay display;
    EXPECT_THAT(ExceptionText([&] { static_cast<void>(Generate(factors, options)); }),
                testing::HasSubstr("at most 1000000 runs"));
    EXPECT_THAT(display.Titles(), testing::IsEmpty());
}

TEST(J2Design, ANegativeRunRangeFindsNoDesign) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    for (const int range : {-1, std::numeric_limits<int>::min()}) {
        FamilyOf(options).SetRunRange(range);
        EXPECT_EQ(ExceptionText([&] { static_cast<void>(Generate(factors, options)); }),
                  "No design was found.");
    }
}

TEST(J2Design, OneFactorIsOneSortedColumn) {
    const auto factors = TestFactors().Qualitative(3);
    const auto table = *Generate(factors, Request(factors, 7)).GetDesignMatrix();
    EXPECT_THAT(ColumnsOf(table).front(), testing::ElementsAre(65, 65, 65, 66, 66, 67, 67));
}

// The factor of the most levels comes first, whatever its place; the second column is a cycle.
TEST(J2Design, TwoFactorsAreBlocksAndACycle) {
    const auto factors = TestFactors().Qualitative(2).MultilevelOf(3);
    const auto columns = ColumnsOf(*Generate(factors, Request(factors, 8)).GetDesignMatrix());
    EXPECT_THAT(columns[1], testing::ElementsAre(65, 65, 65, 66, 66, 66, 67, 67));
    EXPECT_THAT(columns[0], testing::ElementsAre(65, 66, 65, 66, 65, 66, 65, 66));
}

TEST(J2Design, AmongEqualLevelsTheLaterFactorComesFirst) {
    const auto factors = TestFactors().MultilevelOf(3).MultilevelOf(3);
    const auto columns = ColumnsOf(*Generate(factors, Request(factors, 9)).GetDesignMatrix());
    EXPECT_TRUE(std::ranges::is_sorted(columns[1]));
    EXPECT_THAT(columns[0], testing::ElementsAre(65, 66, 67, 65, 66, 67, 65, 66, 67));
}

TEST(J2Design, ValidatingGivesTheColumnsOfThePlainForm) {
    const ValidatingScope validating;
    const auto factors = Mixed();
    const auto columns = ColumnsOf(*Generate(factors, Request(factors, 24)).GetDesignMatrix());
    const auto literal =
        LiteralJ2::Generate(24, {4, 3, 2, 2, 2}, J2Design::miMaxIter, [](std::vector<int>&) {});
    // 4 levels: factor 1; 3 levels: factor 0; then factors 4, 3 and 2.
    const std::vector<std::size_t> order{1, 0, 4, 3, 2};
    for (std::size_t position = 0; position < order.size(); ++position) {
        std::vector<int> expected = literal.columns[position];
        for (int& level : expected) {
            level = position < 2 ? 65 + level : 2 * level - 1;
        }
        EXPECT_EQ(columns[order[position]], expected) << "factor " << order[position];
    }
}

TEST(J2Design, ValidatingRepeatsTheDesign) {
    const ValidatingScope validating;
    const auto factors = Mixed();
    DesignOptions options(Builder(), factors);
    FamilyOf(options).SetRepetitions(2);
    const auto design = Generate(factors, options);
    EXPECT_EQ(design.GetResults()[0].design, design.GetResults()[1].design);
    EXPECT_EQ(*Generate(factors, options).GetDesignMatrix(), *design.GetDesignMatrix());
}

TEST(J2Design, RepetitionsDifferOtherwise) {
    const auto factors = Mixed();
    const auto design = Generate(factors, Request(factors, 24, 6));
    std::set<std::vector<std::vector<int>>> distinct;
    for (const auto& result : design.GetResults()) {
        distinct.insert(ColumnsOf(result.design));
    }
    EXPECT_GT(distinct.size(), 1U);
}

TEST(J2Design, NeverFallsBelowTheLowestJ2AndOftenReachesIt) {
    // An orthogonal array of 36 runs has the columns 3 and 2^4, so the bound can be reached.
    const auto factors = TestFactors().Qualitative(3).Quantitatives(4);
    const auto design = Generate(factors, Request(factors, 36, 20));
    const double bound = LowestJ2(36, std::vector{3, 2, 2, 2, 2});
    int reached = 0;
    for (const auto& result : design.GetResults()) {
        const double j2 = LiteralJ2::J2OfColumns(ColumnsOf(result.design));
        EXPECT_GE(j2, bound);
        EXPECT_LE(j2, 1.05 * bound);
        reached += j2 == bound ? 1 : 0;
    }
    EXPECT_GT(reached, 0);
}

TEST(J2Design, AFactorWithoutAMainEffectHasNoValues) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    FamilyOf(options).SetModel({{}, {0}, {1}, {2}, {4}});
    const auto table = *Generate(factors, options).GetDesignMatrix();
    EXPECT_THAT(CountsOf(table, 4), testing::ElementsAre(testing::Pair(-99.0F, 12)));
    EXPECT_EQ(CountsOf(table, 3).size(), 2U);
}

TEST(J2Design, AModelWithoutMainEffectsHasNoColumns) {
    const auto factors = TestFactors().Quantitatives(2);
    auto family = std::make_shared<J2Options>();
    family->SetModel({{}, {0, 1}});
    family->SetRunRange(0);
    DesignOptions options;
    options.SetRuns(3);
    options.SetDesignSpecificOptions(family);
    const auto table = *Generate(factors, options).GetDesignMatrix();
    EXPECT_EQ(table, Table(3, 2, -99.0F));
}

TEST(J2Design, ALevelFactorWithoutAMainEffectIsAFaultOfTheModel) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    FamilyOf(options).SetModel({{}, {0}, {2}, {3}, {4}});
    EXPECT_THROW(static_cast<void>(Generate(factors, options)), InvalidOperationException);
}

// Blocks are no part of these designs: a request for them makes the same columns.
TEST(J2Design, BlocksAddNoColumn) {
    const ValidatingScope validating;
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 16);
    const Table once = *Generate(factors, options).GetDesignMatrix();
    options.SetBlocks(2);
    EXPECT_EQ(*Generate(factors, options).GetDesignMatrix(), once);
}

TEST(J2Design, ReplicatedRunsCopyRuns) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    options.SetReplicatedRuns(3);
    const Table table = *Generate(factors, options).GetDesignMatrix();
    ASSERT_EQ(table.SizeRows(), 15);
    const auto rows = RowsOf(table, 1, 12);
    for (const auto& row : RowsOf(table, 13, 15)) {
        EXPECT_THAT(rows, testing::Contains(row));
    }
}

TEST(J2Design, RunRangeKeepsTheTotal) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12, 2);
    options.SetReplicatedRuns(3);
    FamilyOf(options).SetRunRange(2);
    const auto design = Generate(factors, options);
    ASSERT_EQ(design.GetResults().size(), 10U);
    std::vector<int> replicated;
    for (const auto& result : design.GetResults()) {
        EXPECT_EQ(result.design.SizeRows(), 15);
        replicated.push_back(result.ReplicatedRuns);
    }
    EXPECT_THAT(replicated, testing::ElementsAre(5, 5, 4, 4, 3, 3, 2, 2, 1, 1));
}

TEST(J2Design, ARunRangeBeyondTheTotalKeepsTheReplicatedRuns) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    options.SetReplicatedRuns(1);
    FamilyOf(options).SetRunRange(2);
    std::vector<int> runs;
    const auto design = Generate(factors, options);
    for (const auto& result : design.GetResults()) {
        runs.push_back(result.design.SizeRows());
    }
    EXPECT_THAT(runs, testing::ElementsAre(13, 13, 13, 14, 15));
}

TEST(J2Design, NoRunsAreSkipped) {
    const auto factors = TestFactors().Qualitative(3).Quantitative();
    DesignOptions options = Request(factors, 2);
    FamilyOf(options).SetRunRange(2);
    std::vector<int> runs;
    const auto design = Generate(factors, options);
    for (const auto& result : design.GetResults()) {
        runs.push_back(result.design.SizeRows() - result.ReplicatedRuns);
    }
    EXPECT_THAT(runs, testing::ElementsAre(1, 2, 3, 4));
}

TEST(J2Design, ARunRangeBelowZeroRunsStartsAtOne) {
    const auto factors = TestFactors().Qualitative(3).Quantitative();
    DesignOptions options = Request(factors, 2);
    FamilyOf(options).SetRunRange(4);
    EXPECT_EQ(Generate(factors, options).GetResults().size(), 6U);
}

// --- Figures ----------------------------------------------------------------------------------

TEST(J2Design, FiguresAreThoseOfTheRuns) {
    const auto factors = TestFactors().MultilevelOf(3).Quantitatives(3);
    const auto design = Generate(factors, Request(factors, 18));
    Table runs = *design.GetDesignMatrix();
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        runs(row, 1, runs(row, 1) - 66);
    }
    Table candidates(24, 4);
    for (int row = 1; row <= 24; ++row) {
        candidates(row, 1, static_cast<float>((row - 1) % 3 - 1));
        for (int column = 2; column <= 4; ++column) {
            const int bit = (row - 1) / 3 >> (column - 2) & 1;
            candidates(row, column, static_cast<float>(2 * bit - 1));
        }
    }
    const auto expected =
        oracles::FiguresOf(oracles::ModelMatrix(runs, 4, oracles::InteractionTerms),
                           oracles::ModelMatrix(candidates, 4, oracles::InteractionTerms));
    const auto& figures = design.GetResults().front();
    constexpr double cFloatFigures = 1e-3;
    EXPECT_NEAR(figures.CondNo, static_cast<double>(expected.condition), cFloatFigures);
    EXPECT_NEAR(figures.GEff, static_cast<double>(expected.gEfficiency), 100 * cFloatFigures);
    EXPECT_NEAR(figures.LogDet, static_cast<double>(expected.logDeterminant), cFloatFigures);
    EXPECT_NEAR(
        figures.NormLogDet, static_cast<double>(expected.normLogDeterminant), cFloatFigures);
    EXPECT_GT(figures.IOptimality, 0);
}

TEST(J2Design, FiguresAreThoseOfDesignStatistics) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 14, 3);
    options.SetReplicatedRuns(3);
    const auto design = Generate(factors, options);
    const Table candidates =
        DOpt::GenerateCandidateset(nullptr, factors, options, false, nullptr, nullptr, 0);
    bool stop = false;
    for (const auto& result : design.GetResults()) {
        const auto expected = DesignStatistics::CalculateStatistics(
            factors, {{}, {0}, {1}, {2}, {3}, {4}}, result.design, &candidates, true, 1, stop);
        EXPECT_EQ(result.CondNo, expected.CondNo);
        EXPECT_EQ(result.GEff, expected.GEff);
        EXPECT_EQ(result.LogDet, expected.LogDet);
        EXPECT_EQ(result.NormLogDet, expected.NormLogDet);
        EXPECT_EQ(result.IOptimality, expected.IOptimality);
    }
}

TEST(J2Design, CountsItsCandidates) {
    const auto factors = Mixed();
    EXPECT_EQ(Generate(factors, Request(factors, 12)).GetNumData().ExtVert, 3 * 4 * 8);
}

// 8^10 candidates of 10 numbers each.
TEST(J2Design, TooManyCandidatesLeaveTheirFiguresWithoutAValue) {
    TestFactors factors;
    for (int i = 0; i < 10; ++i) {
        factors.MultilevelOf(8);
    }
    const auto design = Generate(factors, Request(factors, 40));
    const auto& figures = design.GetResults().front();
    EXPECT_EQ(figures.GEff, -99);
    EXPECT_EQ(figures.IOptimality, -99);
    EXPECT_NE(figures.LogDet, -99);
    EXPECT_EQ(design.GetNumData(), DOpt::NumData{});
}

TEST(J2Design, TheSelectedDesignIsTheBestByTheOptionsFigure) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 13, 8);
    FamilyOf(options).SetSelectDesignBy(EDesign::LogDeterminant);
    const auto design = Generate(factors, options);
    const auto best = std::ranges::max_element(
        design.GetResults(), {}, [](const auto& result) { return result.LogDet; });
    const auto index = static_cast<int>(best - design.GetResults().begin());
    EXPECT_EQ(design.GetSelectedIndex(), index);
    EXPECT_EQ(*design.GetDesignMatrix(), best->design);
}

// --- Selection --------------------------------------------------------------------------------

/// A design of given figures, read from a store.
class Given {
  public:
    Given& Result(double condition, double g, double logDet, double average) {
        DesignStatistics::Results figures;
        figures.CondNo = condition;
        figures.GEff = g;
        figures.LogDet = logDet;
        figures.IOptimality = average;
        figures.Save(*store_.OpenRoot()
                          ->OpenOrCreateSection("Design")
                          ->OpenOrCreateSection("J2Design")
                          ->OpenOrCreateSection("Result", ++count_));
        return *this;
    }
    [[nodiscard]] unsigned long long BestBy(EDesign::DOptimalSelectBy by) const {
        return J2Design(factors_, *store_.OpenRoot()).GetBestDesignIndex(by);
    }

  private:
    TestFactors factors_;
    ConfigurationStore store_;
    int count_ = 0;
};

TEST(J2Selection, TakesTheBestOfEveryFigure) {
    Given made;
    const Given& given = made.Result(3, 60, 5, 0.4).Result(2, 50, 9, 0.5).Result(4, 70, 7, 0.3);
    EXPECT_EQ(given.BestBy(EDesign::GEfficiency), 2U);
    EXPECT_EQ(given.BestBy(EDesign::ConditionNumber), 1U);
    EXPECT_EQ(given.BestBy(EDesign::LogDeterminant), 1U);
    EXPECT_EQ(given.BestBy(EDesign::IOptimality), 2U);
}

TEST(J2Selection, TheNormalizedDeterminantChoosesTheFirst) {
    EXPECT_EQ(
        Given().Result(3, 1, 1, 1).Result(2, 2, 2, 2).BestBy(EDesign::NormalizedLogDeterminant),
        0U);
}

TEST(J2Selection, TiesKeepTheEarlier) {
    EXPECT_EQ(Given().Result(2, 5, 1, 1).Result(2, 5, 1, 1).BestBy(EDesign::GEfficiency), 0U);
}

TEST(J2Selection, AnyFigureReplacesNone) {
    EXPECT_EQ(Given()
                  .Result(-99, -99, -99, -99)
                  .Result(2000, -200, -150, 500)
                  .BestBy(EDesign::ConditionNumber),
              1U);
    EXPECT_EQ(Given()
                  .Result(-99, -99, -99, -99)
                  .Result(2000, -200, -150, 500)
                  .BestBy(EDesign::LogDeterminant),
              1U);
}

TEST(J2Selection, NoFigureBeatsOneAbove99) {
    EXPECT_EQ(
        Given().Result(200, 1, 1, 100).Result(-99, 1, 1, -99).BestBy(EDesign::ConditionNumber), 1U);
    EXPECT_EQ(Given().Result(200, 1, 1, 100).Result(-99, 1, 1, -99).BestBy(EDesign::IOptimality),
              1U);
    EXPECT_EQ(Given().Result(98, 1, 1, 1).Result(-99, 1, 1, 1).BestBy(EDesign::ConditionNumber),
              0U);
}

TEST(J2Selection, NotANumberIsNeverComparedAway) {
    EXPECT_EQ(Given().Result(1, cNan, 1, 1).Result(1, 90, 1, 1).BestBy(EDesign::GEfficiency), 0U);
    EXPECT_EQ(Given().Result(1, 90, 1, 1).Result(1, cNan, 1, 1).BestBy(EDesign::GEfficiency), 0U);
}

TEST(J2Selection, NoResultsAreToldSo) {
    const TestFactors factors;
    ConfigurationStore store;
    store.OpenRoot()->OpenOrCreateSection("Design")->OpenOrCreateSection("J2Design");
    const J2Design design(factors, *store.OpenRoot());
    EXPECT_EQ(
        ExceptionText([&] { static_cast<void>(design.GetBestDesignIndex(EDesign::GEfficiency)); }),
        "No design was found.");
}

TEST(J2Selection, SelectDesignShowsAnotherResult) {
    const auto factors = Mixed();
    auto design = Generate(factors, Request(factors, 13, 4));
    const int other = (design.GetSelectedIndex() + 1) % 4;
    design.SelectDesign(other);
    EXPECT_EQ(design.GetSelectedIndex(), other);
    EXPECT_EQ(*design.GetDesignMatrix(),
              design.GetResults()[static_cast<std::size_t>(other)].design);
}

TEST(J2Selection, AnIndexWithoutAResultChangesNothing) {
    const auto factors = Mixed();
    auto design = Generate(factors, Request(factors, 13, 2));
    const int selected = design.GetSelectedIndex();
    const auto matrix = design.GetDesignMatrix();
    for (const int index : {-1, 2, 1000, selected}) {
        design.SelectDesign(index);
        EXPECT_EQ(design.GetSelectedIndex(), selected);
        EXPECT_EQ(design.GetDesignMatrix(), matrix);
    }
}

TEST(J2Selection, AMovedDesignTakesItsResultsAlong) {
    const auto factors = Mixed();
    auto design = Generate(factors, Request(factors, 13, 4));
    const auto* const results = design.GetResults().data();
    const auto matrix = design.GetDesignMatrix();
    const J2Design moved(std::move(design));
    EXPECT_EQ(moved.GetResults().data(), results);
    EXPECT_EQ(moved.GetResults().size(), 4U);
    EXPECT_EQ(moved.GetDesignMatrix(), matrix);
}

// --- Failure and stopping -----------------------------------------------------------------------

TEST(J2Design, OptionsOfAnotherFamilyAreAnInternalError) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12);
    options.SetDesignSpecificOptions(nullptr);
    try {
        static_cast<void>(Generate(factors, options));
        ADD_FAILURE() << "no exception";
    } catch (const NCInternalError& error) {
        EXPECT_STREQ(error.what(), "J2Design");
    }
}

TEST(J2Design, NoRepetitionsFindNoDesign) {
    const auto factors = Mixed();
    for (const int repetitions : {0, -5}) {
        EXPECT_EQ(ExceptionText([&] {
                      static_cast<void>(Generate(factors, Request(factors, 12, repetitions)));
                  }),
                  "No design was found.");
    }
}

TEST(J2Design, AStopOnEntryIsACancel) {
    const auto factors = Mixed();
    bool stop = true;
    EXPECT_THROW(static_cast<void>(Generate(factors, Request(factors, 12), &stop)),
                 CancelException);
}

TEST(J2Design, ABreakBeforeTheFirstDesignFindsNone) {
    const auto factors = Mixed();
    const SilentDisplay display(1);
    EXPECT_EQ(ExceptionText([&] { static_cast<void>(Generate(factors, Request(factors, 12))); }),
              "No design was found.");
}

TEST(J2Design, ABreakKeepsTheDesignsFoundBefore) {
    const auto factors = Mixed();
    // Somewhere in the middle of the search, each time later.
    std::set<std::size_t> kept;
    for (int breakAfter = 50; breakAfter <= 2000; breakAfter += 150) {
        const SilentDisplay display(breakAfter);
        try {
            const auto design = Generate(factors, Request(factors, 24, 30));
            kept.insert(design.GetResults().size());
            EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 24);
        } catch (const Exception& error) {
            EXPECT_STREQ(error.what(), "No design was found.");
        }
    }
    EXPECT_GT(kept.size(), 2U);
    EXPECT_LT(*kept.begin(), 30U);
}

/// Sets a stop flag when the display is asked for the so-manieth time.
class StoppingDisplay : public NCProgressDisplay {
  public:
    StoppingDisplay(bool& stop, int after) : stop_(stop), left_(after) {}
    void Begin(const std::string&, const std::string&, bool) override {}
    void Show(double, const std::string&) override {
        if (--left_ == 0) {
            stop_ = true;
        }
    }
    void Hide() override {}
    void End() override {}
    [[nodiscard]] bool IsBreakPressed() const override { return false; }

  private:
    bool& stop_;
    int left_;
};

TEST(J2Design, AStopWhileGeneratingKeepsTheDesignsFoundBefore) {
    const auto factors = Mixed();
    bool stop = false;
    NCProgress::SetDisplay(std::make_shared<StoppingDisplay>(stop, 600));
    const auto design = Generate(factors, Request(factors, 24, 100), &stop);
    NCProgress::SetDisplay(nullptr);
    EXPECT_TRUE(stop);
    EXPECT_LT(design.GetResults().size(), 100U);
    EXPECT_NE(design.GetDesignMatrix(), nullptr);
}

TEST(J2Design, ProgressHasItsTitle) {
    const auto factors = Mixed();
    const TitleDisplay display;
    static_cast<void>(Generate(factors, Request(factors, 12)));
    ASSERT_FALSE(display.Titles().empty());
    EXPECT_EQ(display.Titles().front(), "Generating reduced combinatorial...");
}

TEST(J2Design, ProgressRunsToTheEnd) {
    const auto factors = Mixed();
    const SilentDisplay display;
    static_cast<void>(Generate(factors, Request(factors, 12, 3)));
    EXPECT_DOUBLE_EQ(display.LargestShare(), 1.0);
}

// --- Store ------------------------------------------------------------------------------------

TEST(J2Store, ResultsAreReadBackWithoutTheirRuns) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12, 2);
    options.SetReplicatedRuns(2);
    FamilyOf(options).SetRunRange(1);
    const auto design = Generate(factors, options);
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    J2Design loaded(factors, *store.OpenRoot());
    ASSERT_EQ(loaded.GetResults().size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(loaded.GetResults()[i].GEff, design.GetResults()[i].GEff);
        EXPECT_EQ(loaded.GetResults()[i].ReplicatedRuns, design.GetResults()[i].ReplicatedRuns);
        EXPECT_EQ(loaded.GetResults()[i].design.SizeRows(), 0);
    }
    EXPECT_EQ(loaded.GetSelectedIndex(), design.GetSelectedIndex());
    EXPECT_EQ(loaded.GetNumData(), design.GetNumData());
    EXPECT_EQ(loaded.IsDesign(), EDesign::J2);
    EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
    loaded.SelectDesign((loaded.GetSelectedIndex() + 1) % 6);
    EXPECT_EQ(loaded.GetDesignMatrix()->SizeRows(), 0);
}

TEST(J2Store, KeysAreThoseOfTheFormat) {
    const auto factors = Mixed();
    DesignOptions options = Request(factors, 12, 2);
    options.SetReplicatedRuns(2);
    auto design = Generate(factors, options);
    design.SelectDesign(0);
    design.SelectDesign(1);
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    FamilyOf(options).Save(store.OpenRoot().get());
    const auto own = store.OpenRoot()->OpenSection("Design")->OpenSection("J2Design");
    ASSERT_NE(own, nullptr);
    ASSERT_EQ(own->SectionCount("Result"), 2);
    const auto number = [](const auto& section, const char* key) {
        int value = -1000;
        EXPECT_TRUE(section->ReadInt(key, &value)) << key;
        return value;
    };
    EXPECT_EQ(number(own->OpenSection("Result", 2), "ReplicatedRuns"), 2);
    EXPECT_EQ(number(own, "ExtVert"), 3 * 4 * 8);
    EXPECT_EQ(number(own, "NumEdges"), design.GetNumData().NumEdges);
    EXPECT_EQ(number(own, "NumHiDimCent"), design.GetNumData().NumHiDimCent);
    EXPECT_EQ(number(own, "SelectedDesign"), 1);
    EXPECT_EQ(number(own, "DesignType"), 37);
    const auto family = store.OpenRoot()->OpenSection("DesignSpecificOptions");
    ASSERT_NE(family, nullptr);
    EXPECT_EQ(number(family->OpenSection("J2Options"), "Levels"), 2);
}

TEST(J2Store, AnotherTypeIsReadBack) {
    const auto factors = Mixed();
    ConfigurationStore store;
    J2Design(EDesign::DefinitiveScreening, factors, Request(factors, 12), nullptr)
        .Save(store.OpenRoot().get());
    EXPECT_EQ(J2Design(factors, *store.OpenRoot()).IsDesign(), EDesign::DefinitiveScreening);
}

TEST(J2Store, LoadingLeavesNothingOfAnEarlierDesign) {
    const auto factors = Mixed();
    auto design = Generate(factors, Request(factors, 12, 3));
    design.SelectDesign(0);
    design.SelectDesign(2);
    ConfigurationStore store;
    store.OpenRoot()->OpenOrCreateSection("Design")->OpenOrCreateSection("J2Design");
    ASSERT_TRUE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetResults().size(), 0U);
    EXPECT_EQ(design.GetSelectedIndex(), 0);
    EXPECT_EQ(design.GetNumData(), DOpt::NumData());
    EXPECT_EQ(design.GetDesignMatrix(), nullptr);
}

TEST(J2Store, FewerResultsReplaceMore) {
    const auto factors = Mixed();
    ConfigurationStore store;
    Generate(factors, Request(factors, 12, 3)).Save(store.OpenRoot().get());
    Generate(factors, Request(factors, 12, 1)).Save(store.OpenRoot().get());
    EXPECT_EQ(J2Design(factors, *store.OpenRoot()).GetResults().size(), 1U);
}

TEST(J2Store, MissingKeysLeaveTheDefaults) {
    const TestFactors factors;
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("Design")
        ->OpenOrCreateSection("J2Design")
        ->OpenOrCreateSection("Result", 1);
    const J2Design loaded(factors, *store.OpenRoot());
    ASSERT_EQ(loaded.GetResults().size(), 1U);
    EXPECT_EQ(loaded.GetResults()[0].ReplicatedRuns, 3);
    EXPECT_EQ(loaded.GetResults()[0].CondNo, -99);
    EXPECT_EQ(loaded.IsDesign(), EDesign::J2);
}

TEST(J2Store, AnImpossibleTypeCountsAsMissing) {
    const TestFactors factors;
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("Design")
        ->OpenOrCreateSection("J2Design")
        ->WriteInt("DesignType", 123456);
    EXPECT_EQ(J2Design(factors, *store.OpenRoot()).IsDesign(), EDesign::J2);
}

TEST(J2Store, WithoutItsSectionNothingIsRead) {
    const auto factors = Mixed();
    auto design = Generate(factors, Request(factors, 12, 2));
    ConfigurationStore store;
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetResults().size(), 2U);
}

TEST(J2Store, LevelsAreReadBack) {
    J2Options options;
    options.SetLevels(5);
    options.SetRepetitions(4);
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    J2Options loaded;
    ASSERT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLevels(), 5);
    EXPECT_EQ(loaded.GetRepetitions(), 4);
}

TEST(J2Store, MissingLevelsAreTwo) {
    ConfigurationStore store;
    D_OptimalOptions().Save(store.OpenRoot().get());
    J2Options loaded;
    loaded.SetLevels(5);
    ASSERT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLevels(), 2);
}

TEST(J2Store, WithoutTheInheritedOptionsNothingIsRead) {
    const ConfigurationStore store;
    J2Options loaded;
    loaded.SetLevels(5);
    EXPECT_FALSE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetLevels(), 5);
}

TEST(J2Store, LevelsAreReadBackThroughTheFrame) {
    const auto factors = Mixed();
    DesignOptions options(Builder(), factors);
    FamilyOf(options).SetLevels(4);
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    DesignOptions loaded(Builder(), factors);
    ASSERT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(FamilyOf(loaded).GetLevels(), 4);
}

}  // namespace
