#include "designs/rsm/BB.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "designs/rsm/BBTable.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const std::vector<int> cFactorCounts{3, 4, 5, 6, 7, 9, 10, 11, 12};

const DesignBuilder& Builder() {
    return *AllDesigns::GetDesignBuilder(EDesign::BB, "");
}

NCDataMatrix<float> Build(const Factors& factors, const DesignOptions& options) {
    const auto design = Builder().Build(factors, options);
    return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
}

NCDataMatrix<float> Build(int count, unsigned blocks, unsigned centerPoints) {
    const TestFactors factors = TestFactors().Quantitatives(count);
    DesignOptions options(Builder(), factors);
    options.SetBlocks(blocks);
    options.SetCenterPoints(centerPoints);
    return Build(factors, options);
}

bool IsValid(const Factors& factors) {
    return Builder().IsValid(factors, DesignOptions(Builder(), factors));
}

// The base rows as lists of the factors that vary together, counted from 1.
std::vector<std::vector<int>> GroupsOf(const BBTable::Plan& plan) {
    std::vector<std::vector<int>> groups;
    for (const auto row : plan.baseRows) {
        groups.emplace_back();
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (row[i] != '0') {
                groups.back().push_back(static_cast<int>(i) + 1);
            }
        }
    }
    return groups;
}

// What is wrong with the base rows: each must be as wide as there are factors and hold, from left
// to right, the letters of its kind once.
std::vector<std::string> TableFaults(const BBTable::Plan& plan) {
    std::vector<std::string> faults;
    const std::set<std::string> kinds{"AB", "CDE", "FGHI", "FGHIJ"};
    std::set<std::string> used;
    for (const auto row : plan.baseRows) {
        std::string letters(row);
        std::erase(letters, '0');
        used.insert(letters);
        if (row.size() != plan.factors || kinds.count(letters) == 0) {
            faults.emplace_back(row);
        }
    }
    if (used.size() != 1) {
        faults.emplace_back("letters of several kinds");
    }
    const std::size_t group =
        BBTable::cSigns[static_cast<std::size_t>(used.begin()->front() - BBTable::cFirstLetter)]
            .size();
    if (plan.runs != group * plan.baseRows.size()) {
        faults.emplace_back("run count");
    }
    return faults;
}

// Moments up to the fourth order that hold a factor an odd number of times and are not 0.
std::vector<std::vector<int>> OddMoments(const NCDataMatrix<float>& runs, int factors) {
    std::vector<std::vector<int>> odd;
    const auto check = [&](const std::vector<int>& columns) {
        const bool isOdd = std::any_of(columns.begin(), columns.end(), [&](int column) {
            return std::count(columns.begin(), columns.end(), column) % 2 == 1;
        });
        if (isOdd && oracles::Moment(runs, columns) != 0) {
            odd.push_back(columns);
        }
    };
    for (int i = 1; i <= factors; ++i) {
        check({i});
        for (int j = i; j <= factors; ++j) {
            check({i, j});
            for (int k = j; k <= factors; ++k) {
                check({i, j, k});
                for (int l = k; l <= factors; ++l) {
                    check({i, j, k, l});
                }
            }
        }
    }
    return odd;
}

std::map<float, NCDataMatrix<float>> SplitByLastColumn(const NCDataMatrix<float>& runs) {
    std::map<float, NCDataMatrix<float>> parts;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        NCDataMatrix<float>& part = parts[runs(row, runs.SizeColumns())];
        part.InsertRow(part.SizeRows() + 1, runs.GetRow(row));
    }
    return parts;
}

// Box and Behnken's conditions of orthogonal blocks: within every block the factors' sums and
// products are 0, and each factor's sum of squares is the block's share of its whole sum.
std::vector<std::string> BlockFaults(const NCDataMatrix<float>& runs) {
    std::vector<std::string> faults;
    const int factors = runs.SizeColumns() - 1;
    for (const auto& [letter, part] : SplitByLastColumn(runs)) {
        const std::string block(1, static_cast<char>(letter));
        const double share = static_cast<double>(part.SizeRows()) / runs.SizeRows();
        for (int i = 1; i <= factors; ++i) {
            if (oracles::Moment(part, {i}) != 0) {
                faults.push_back(block + ": sum of factor " + std::to_string(i));
            }
            if (oracles::Moment(part, {i, i}) != share * oracles::Moment(runs, {i, i})) {
                faults.push_back(block + ": squares of factor " + std::to_string(i));
            }
            for (int j = i + 1; j <= factors; ++j) {
                if (oracles::Moment(part, {i, j}) != 0) {
                    faults.push_back(block + ": product of factors " + std::to_string(i) + " and " +
                                     std::to_string(j));
                }
            }
        }
    }
    return faults;
}

std::vector<int> BlockSizes(const NCDataMatrix<float>& runs) {
    std::vector<int> sizes;
    for (const auto& [letter, part] : SplitByLastColumn(runs)) {
        sizes.push_back(part.SizeRows());
    }
    return sizes;
}

const std::vector<std::pair<int, unsigned>> cBlockedDesigns{
    {4, 3}, {5, 2}, {6, 2}, {7, 2}, {9, 5}, {9, 10}, {10, 2}, {12, 2}};

}  // namespace

TEST(BoxBehnken, RunCountsAreThePublishedOnes) {
    // Box and Behnken (1960), table 1, without centre points.
    const std::map<int, unsigned> published{{1, 0},
                                            {2, 0},
                                            {3, 12},
                                            {4, 24},
                                            {5, 40},
                                            {6, 48},
                                            {7, 56},
                                            {8, 0},
                                            {9, 120},
                                            {10, 160},
                                            {11, 176},
                                            {12, 192},
                                            {13, 0}};
    for (const auto& [count, runs] : published) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        EXPECT_EQ(Builder().GetDefaultRuns(factors, EObjective::Optimization), runs) << count;
        EXPECT_THAT(Builder().GetLegalRuns(factors, DesignOptions()), ElementsAre(runs)) << count;
    }
}

TEST(BoxBehnken, MatrixHasTheRunsOfTheTable) {
    for (const int count : cFactorCounts) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const NCDataMatrix<float> runs = Build(count, 1, 0);
        EXPECT_EQ(static_cast<unsigned>(runs.SizeRows()),
                  Builder().GetDefaultRuns(factors, EObjective::Optimization));
        EXPECT_EQ(runs.SizeColumns(), count);
    }
}

TEST(BoxBehnken, ThreeFactorsRunThroughPairsOfSigns) {
    const std::vector<std::vector<float>> expected{{-1, -1, 0},
                                                   {1, -1, 0},
                                                   {-1, 1, 0},
                                                   {1, 1, 0},
                                                   {-1, 0, -1},
                                                   {1, 0, -1},
                                                   {-1, 0, 1},
                                                   {1, 0, 1},
                                                   {0, -1, -1},
                                                   {0, 1, -1},
                                                   {0, -1, 1},
                                                   {0, 1, 1}};
    EXPECT_EQ(RowsOf(Build(3, 1, 0)), expected);
}

TEST(BoxBehnken, GroupsOfThreeToSevenFactorsAreThePublishedOnes) {
    // Box and Behnken (1960), table 1; the order of four and five factors is that of the blocks.
    const std::map<unsigned, std::vector<std::vector<int>>> published{
        {3, {{1, 2}, {1, 3}, {2, 3}}},
        {4, {{1, 2}, {3, 4}, {1, 4}, {2, 3}, {1, 3}, {2, 4}}},
        {5, {{1, 2}, {3, 4}, {2, 5}, {1, 3}, {4, 5}, {2, 3}, {1, 4}, {3, 5}, {1, 5}, {2, 4}}},
        {6, {{1, 2, 4}, {2, 3, 5}, {3, 4, 6}, {1, 4, 5}, {2, 5, 6}, {1, 3, 6}}},
        {7, {{4, 5, 6}, {1, 6, 7}, {2, 5, 7}, {1, 2, 4}, {3, 4, 7}, {1, 3, 5}, {2, 3, 6}}}};
    for (const BBTable::Plan& plan : BBTable::cPlans) {
        const auto found = published.find(plan.factors);
        if (found != published.end()) {
            EXPECT_EQ(GroupsOf(plan), found->second) << plan.factors;
        }
    }
}

TEST(BoxBehnken, BaseRowsHoldTheLettersOfOneKind) {
    for (const BBTable::Plan& plan : BBTable::cPlans) {
        EXPECT_THAT(TableFaults(plan), IsEmpty()) << plan.factors;
    }
}

TEST(BoxBehnken, BaseRowCheckObjectsToAChangedLetter) {
    std::array<std::string_view, 3> rows = BBTable::cRows3;
    rows[1] = "A0A";
    EXPECT_THAT(TableFaults({3, 12, rows}), ElementsAre("A0A", "letters of several kinds"));
}

TEST(BoxBehnken, SignVectorsOfOneKindFormAFactorial) {
    // J is the product of F to I, and stands outside the full factorial of its kind.
    for (const std::string letters : {"AB", "CDE", "FGHI"}) {
        std::set<std::string> combinations;
        for (std::size_t run = 0; run < (1U << letters.size()); ++run) {
            std::string signs;
            for (const char letter : letters) {
                signs += BBTable::cSigns[static_cast<std::size_t>(letter - 'A')].at(run);
            }
            combinations.insert(signs);
        }
        EXPECT_EQ(combinations.size(), 1U << letters.size()) << letters;
    }
}

TEST(BoxBehnken, LastSignVectorIsTheProductOfFour) {
    for (std::size_t run = 0; run < 16; ++run) {
        int minus = 0;
        for (const char letter : {'F', 'G', 'H', 'I', 'J'}) {
            minus += BBTable::cSigns[static_cast<std::size_t>(letter - 'A')].at(run) == '-' ? 1 : 0;
        }
        EXPECT_EQ(minus % 2, 0) << run;
    }
}

TEST(BoxBehnken, EverySumOfSquaresIsTheSame) {
    const std::map<int, double> expected{
        {3, 8}, {4, 12}, {5, 16}, {6, 24}, {7, 24}, {9, 40}, {10, 64}, {11, 80}, {12, 64}};
    for (const auto& [count, squares] : expected) {
        const NCDataMatrix<float> runs = Build(count, 1, 0);
        for (int factor = 1; factor <= count; ++factor) {
            EXPECT_EQ(oracles::Moment(runs, {factor, factor}), squares)
                << count << " factors, factor " << factor;
        }
    }
}

TEST(BoxBehnken, FactorsMeetEquallyOftenInBalancedPlans) {
    // Runs in which two factors vary together: the plan's group size by the pair count of the
    // balanced incomplete block design behind it.
    const std::map<int, double> expected{{3, 4}, {4, 4}, {5, 4}, {7, 8}, {11, 32}};
    for (const auto& [count, together] : expected) {
        const NCDataMatrix<float> runs = Build(count, 1, 0);
        for (int i = 1; i < count; ++i) {
            for (int j = i + 1; j <= count; ++j) {
                EXPECT_EQ(oracles::Moment(runs, {i, i, j, j}), together) << i << ' ' << j;
            }
        }
    }
}

TEST(BoxBehnken, FactorsMeetOnceOrTwiceInPartlyBalancedPlans) {
    const std::map<int, double> groups{{6, 8}, {9, 8}, {10, 16}, {12, 16}};
    for (const auto& [count, group] : groups) {
        const NCDataMatrix<float> runs = Build(count, 1, 0);
        for (int i = 1; i < count; ++i) {
            for (int j = i + 1; j <= count; ++j) {
                EXPECT_THAT(oracles::Moment(runs, {i, i, j, j}), testing::AnyOf(group, 2 * group))
                    << count << " factors: " << i << ' ' << j;
            }
        }
    }
}

TEST(BoxBehnken, OddMomentsVanish) {
    for (const int count : cFactorCounts) {
        EXPECT_THAT(OddMoments(Build(count, 1, 0), count), IsEmpty()) << count;
    }
}

TEST(BoxBehnken, MomentCheckObjectsToOneFlippedCell) {
    for (const int count : cFactorCounts) {
        EXPECT_THAT(OddMoments(WithFlippedCell(Build(count, 1, 0), 5, 1), count), Not(IsEmpty()))
            << count;
    }
}

TEST(BoxBehnken, QuadraticModelIsEstimableWithACenterPoint) {
    for (const int count : cFactorCounts) {
        const auto model = oracles::ModelMatrix(Build(count, 1, 1), count, oracles::QuadraticTerms);
        EXPECT_EQ(oracles::Rank(model), model[0].size()) << count;
    }
}

TEST(BoxBehnken, SquaresAreNotEstimableWithoutACenterPoint) {
    // All runs lie on one sphere, so the squares add up to a constant.
    for (const int count : cFactorCounts) {
        const auto model = oracles::ModelMatrix(Build(count, 1, 0), count, oracles::QuadraticTerms);
        EXPECT_EQ(oracles::Rank(model), model[0].size() - 1) << count;
    }
}

TEST(BoxBehnken, RunsAreDifferentButForNineFactors) {
    for (const int count : cFactorCounts) {
        const auto rows = RowsOf(Build(count, 1, 0));
        const std::set<std::vector<float>> different(rows.begin(), rows.end());
        EXPECT_EQ(rows.size() - different.size(), count == 9 ? 24U : 0U) << count;
    }
}

TEST(BoxBehnken, LegalBlocksFollowTheFactorCount) {
    const std::map<int, std::vector<int>> expected{{3, {1}},
                                                   {4, {1, 3}},
                                                   {5, {1, 2}},
                                                   {6, {1, 2}},
                                                   {7, {1, 2}},
                                                   {8, {1}},
                                                   {9, {1, 5, 10}},
                                                   {10, {1, 2}},
                                                   {11, {1}},
                                                   {12, {1, 2}},
                                                   {13, {1}}};
    for (const auto& [count, blocks] : expected) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const DesignOptions options(Builder(), factors);
        EXPECT_EQ(Builder().GetLegalBlocks(factors, options, false), blocks) << count;
        EXPECT_THAT(Builder().GetLegalBlocks(factors, options, true), ElementsAre(1)) << count;
    }
}

TEST(BoxBehnken, LegalBlocksAreOrthogonal) {
    for (const auto& [count, blocks] : cBlockedDesigns) {
        EXPECT_THAT(BlockFaults(Build(count, blocks, 0)), IsEmpty()) << count << ' ' << blocks;
    }
}

TEST(BoxBehnken, LegalBlocksAreOfOneSize) {
    for (const auto& [count, blocks] : cBlockedDesigns) {
        const NCDataMatrix<float> runs = Build(count, blocks, 0);
        EXPECT_EQ(BlockSizes(runs),
                  std::vector<int>(blocks, runs.SizeRows() / static_cast<int>(blocks)));
    }
}

TEST(BoxBehnken, BlockCheckObjectsToTwoExchangedRuns) {
    for (const auto& [count, blocks] : cBlockedDesigns) {
        NCDataMatrix<float> runs = Build(count, blocks, 0);
        int other = 2;
        while (runs(other, count + 1) == runs(1, count + 1)) {
            ++other;
        }
        const float letter = runs(1, count + 1);
        runs(1, count + 1, runs(other, count + 1));
        runs(other, count + 1, letter);
        EXPECT_THAT(BlockFaults(runs), Not(IsEmpty())) << count << ' ' << blocks;
    }
}

TEST(BoxBehnken, BlocksOfFourFactorsAreStretchesOfEightRuns) {
    const NCDataMatrix<float> runs = Build(4, 3, 0);
    for (int row = 1; row <= 24; ++row) {
        EXPECT_EQ(runs(row, 5), 65.0F + static_cast<float>((row - 1) / 8)) << row;
    }
}

TEST(BoxBehnken, FiveBlocksOfNineFactorsAreStretchesOf24Runs) {
    const NCDataMatrix<float> runs = Build(9, 5, 0);
    for (int row = 1; row <= 120; ++row) {
        EXPECT_EQ(runs(row, 10), 65.0F + static_cast<float>((row - 1) / 24)) << row;
    }
}

TEST(BoxBehnken, TenBlocksOfNineFactorsSplitTheFiveByTheSign) {
    const NCDataMatrix<float> ten = Build(9, 10, 0);
    for (int row = 1; row <= 120; ++row) {
        double product = 1;
        for (int factor = 1; factor <= 9; ++factor) {
            product *= ten(row, factor) != 0 ? static_cast<double>(ten(row, factor)) : 1.0;
        }
        const int first = 2 * ((row - 1) / 24);
        EXPECT_EQ(ten(row, 10), 65.0F + static_cast<float>(product > 0 ? first : first + 1)) << row;
    }
}

TEST(BoxBehnken, SixFactorsPutAPositiveProductIntoTheFirstBlock) {
    const NCDataMatrix<float> runs = Build(6, 2, 0);
    // Run 1 has three low factors, run 2 two.
    EXPECT_EQ(runs(1, 7), 66.0F);
    EXPECT_EQ(runs(2, 7), 65.0F);
}

TEST(BoxBehnken, MoreBlocksThanRunsFormOne) {
    EXPECT_THAT(BlockSizes(Build(3, 13, 0)), ElementsAre(12));
    EXPECT_THAT(BlockSizes(Build(3, std::numeric_limits<unsigned>::max(), 0)), ElementsAre(12));
}

TEST(BoxBehnken, CenterPointsRotateThroughTheBlocks) {
    const std::vector<std::vector<float>> expected{
        {0, 0, 0, 0, 65}, {0, 0, 0, 0, 66}, {0, 0, 0, 0, 67}, {0, 0, 0, 0, 65}};
    EXPECT_EQ(RowsOf(Build(4, 3, 4), 25, 28), expected);
}

TEST(BoxBehnken, ReplicatesRepeatTheWholeDesign) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    const NCDataMatrix<float> runs = Build(factors, options);
    ASSERT_EQ(runs.SizeRows(), 2 * (12 + 2 + 3));
    EXPECT_EQ(RowsOf(runs, 1, 17), RowsOf(runs, 18, 34));
}

TEST(BoxBehnken, TooManyReplicatesAreRefused) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    options.SetReplicates(1'000'000);
    EXPECT_THROW(Build(factors, options), Exception);
}

TEST(BoxBehnken, DefaultsAreOptimizationOfTheQuadraticModel) {
    const DesignOptions options(Builder(), TestFactors().Quantitatives(3));
    EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
    EXPECT_EQ(options.GetModel(), EModel::Quadratic);
    EXPECT_EQ(options.GetRuns(), 12U);
    EXPECT_EQ(options.GetCenterPoints(), 3U);
}

TEST(BoxBehnken, IsValidForTheFactorCountsOfTheTableOnly) {
    for (int count = 1; count <= 14; ++count) {
        const bool expected = std::count(cFactorCounts.begin(), cFactorCounts.end(), count) > 0;
        EXPECT_EQ(IsValid(TestFactors().Quantitatives(count)), expected) << count;
    }
}

TEST(BoxBehnken, NeedsRoomForOneCenterPoint) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    options.SetMaxRuns(12);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    options.SetMaxRuns(13);
    EXPECT_TRUE(Builder().IsValid(factors, options));
}

TEST(BoxBehnken, RefusesOtherObjectivesAndModels) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    options.SetObjective(EObjective::SystemCharacterization);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    options.SetObjective(EObjective::Screening);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    options.SetObjective(EObjective::Optimization);
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(BoxBehnken, RefusesLevelFactorsAndMixtures) {
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(2).Qualitative(3)));
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(2).MultilevelOf(3)));
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(2).Formulation()));
}

TEST(BoxBehnken, TakesFormulationFactorsWhoseSumIsFree) {
    EXPECT_TRUE(IsValid(TestFactors().Quantitatives(2).Formulation().WithFiller(true)));
    EXPECT_FALSE(IsValid(TestFactors().Quantitatives(2).Formulation().WithFiller(false)));
}

TEST(BoxBehnken, RefusesConstraints) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    const auto specific = std::make_shared<DesignSpecificOptions>();
    options.SetDesignSpecificOptions(specific);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    specific->SetConstraints(
        NCDOE::Constraints({NCDOE::Constraint{{{0, 1.0}, {1, 1.0}}, 1.0, false}}), factors);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(BoxBehnken, InvalidRequestBuildsNothing) {
    const TestFactors factors = TestFactors().Quantitatives(8);
    EXPECT_EQ(Builder().Build(factors, DesignOptions(Builder(), factors)), nullptr);
}

TEST(BoxBehnken, CloneSharesTheMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const auto design = Builder().Build(factors, DesignOptions(Builder(), factors));
    const auto clone = design->Clone();
    EXPECT_NE(dynamic_cast<const BB*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design->GetDesignMatrix());
}
