#include "designs/plate/REDMUPOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <set>

#include "designs/plate/RunOrders.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "tests/oracles/PlateOracle.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/PlateCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using PlateCases::cSizes;
using ::testing::AnyOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using SubDesign = REDMUPOptions::REDMUPSubDesign;

std::vector<unsigned> Sorted(std::vector<unsigned> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<unsigned> UpTo(unsigned count) {
    std::vector<unsigned> rows(count);
    std::iota(rows.begin(), rows.end(), 1U);
    return rows;
}

std::string FailureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

// Everything that a store keeps.
std::string StoreText(const REDMUPOptions& options) {
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    return store.ToText();
}

// --- Division and sizes -----------------------------------------------------------------------

TEST(REDMUPOptions, FourFactorsAreDividedIntoHalvesOfOneSmallPlate) {
    const REDMUPOptions options(TestFactors().Quantitatives(4));
    EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(0, 1));
    EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(2, 3));
    EXPECT_EQ(options.GetPlateSize(), 0);
    EXPECT_EQ(options.GetNumPlates(), 1);
    EXPECT_EQ(options.GetPlateFactorsUse(), 0);
    EXPECT_THAT(options.GetHorizontalDesign().runOrder, SizeIs(12));
    EXPECT_THAT(options.GetVerticalDesign().runOrder, SizeIs(8));
}

TEST(REDMUPOptions, OddFactorStandsInTheHorizontalGroup) {
    const REDMUPOptions options(TestFactors().Quantitatives(5));
    EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(0, 1));
    EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(2, 3, 4));
}

TEST(REDMUPOptions, FormulationFactorsStandInTheVerticalGroup) {
    const REDMUPOptions options(
        TestFactors().Formulation().Quantitative().Formulation().Quantitative().Formulation());
    EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(0, 2, 4));
    EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(1, 3));
}

TEST(REDMUPOptions, FormulationFactorsWithAFreeSumAreDividedLikeOthers) {
    for (const TestFactors& factors :
         {TestFactors().Formulation().Formulation().Quantitatives(2).WithFreeSum(),
          TestFactors().Formulation().Formulation().Quantitatives(2).WithFiller(true),
          TestFactors().Formulation().Formulation().Quantitatives(2).WithFiller(false)}) {
        const REDMUPOptions options(factors);
        EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(0, 1));
        EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(2, 3));
    }
}

TEST(REDMUPOptions, GroupWithoutFactorsHasNoDesign) {
    const REDMUPOptions one(TestFactors().Quantitatives(1));
    EXPECT_THAT(one.GetVerticalDesign().factors, IsEmpty());
    EXPECT_EQ(one.GetVerticalDesign().options, nullptr);
    EXPECT_THAT(one.GetVerticalDesign().runOrder, SizeIs(8));
    EXPECT_NE(one.GetHorizontalDesign().options, nullptr);
    const REDMUPOptions blend(PlateCases::Blend(3));
    EXPECT_THAT(blend.GetHorizontalDesign().factors, IsEmpty());
    EXPECT_EQ(blend.GetHorizontalDesign().options, nullptr);
    const REDMUPOptions none{TestFactors()};
    EXPECT_EQ(none.GetHorizontalDesign().options, nullptr);
    EXPECT_EQ(none.GetVerticalDesign().options, nullptr);
}

TEST(REDMUPOptions, PlatesHaveThreeFormats) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    const std::map<int, std::pair<unsigned, unsigned>> sides{
        {0, {12, 8}}, {1, {24, 16}}, {2, {48, 32}}};
    for (const auto size : cSizes) {
        options.SetPlateSize(size, TestFactors().Quantitatives(4), true);
        EXPECT_EQ(options.GetHorizontalSize(), sides.at(size).first);
        EXPECT_EQ(options.GetVerticalSize(), sides.at(size).second);
        EXPECT_EQ(options.GetPlateSize(), size);
    }
}

TEST(REDMUPOptions, UnknownFormatActsAsTheSmallPlate) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    for (const int size : {3, -1, 1000000}) {
        options.SetPlateSize(
            static_cast<REDMUPOptions::EPlateSize>(size), TestFactors().Quantitatives(4), true);
        EXPECT_EQ(options.GetHorizontalSize(), 12U);
        EXPECT_EQ(options.GetVerticalSize(), 8U);
        EXPECT_EQ(options.GetPlateSize(), size);
    }
}

TEST(REDMUPOptions, NewFormatWithoutSetupLeavesOrdersAndDesigns) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions options(factors);
    const auto before = options.GetHorizontalDesign().runOrder;
    options.SetPlateSize(REDMUPOptions::Wells384, factors, false);
    EXPECT_EQ(options.GetHorizontalSize(), 24U);
    EXPECT_EQ(options.GetVerticalSize(), 16U);
    EXPECT_EQ(options.GetHorizontalDesign().runOrder, before);
    EXPECT_THAT(options.GetVerticalDesign().runOrder, SizeIs(8));
}

TEST(REDMUPOptions, NewFormatWithSetupKeepsTheDivision) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    REDMUPOptions options(factors);
    options.GetHorizontalDesign().factors = {4, 0};
    options.GetVerticalDesign().factors = {3};
    options.SetPlateSize(REDMUPOptions::Wells384, factors, true);
    EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(4, 0));
    EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(3));
    EXPECT_EQ(Sorted(options.GetHorizontalDesign().runOrder), UpTo(24));
    EXPECT_EQ(Sorted(options.GetVerticalDesign().runOrder), UpTo(16));
    EXPECT_EQ(options.GetHorizontalDesign().options->GetMaxRuns(), 24U);
    EXPECT_EQ(options.GetVerticalDesign().options->GetMaxRuns(), 16U);
}

TEST(REDMUPOptions, NewFormatForFactorsThatDoNotFitChangesNothing) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    const std::string before = StoreText(options);
    EXPECT_EQ(FailureOf([&] {
                  options.SetPlateSize(
                      REDMUPOptions::Wells384, TestFactors().Quantitatives(3), true);
              }),
              "Incorrect block factor setup.");
    EXPECT_EQ(StoreText(options), before);
}

// A division afresh takes the place of a vertical group that is no longer there.
TEST(REDMUPOptions, NewDivisionReplacesAStaleGroup) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions options(TestFactors().Quantitatives(12));
    ASSERT_THAT(options.GetVerticalDesign().factors, SizeIs(6));
    options.GetHorizontalDesign().factors.clear();
    options.SetPlateSize(REDMUPOptions::Wells384, factors, true);
    EXPECT_THAT(options.GetVerticalDesign().factors, ElementsAre(0, 1));
    EXPECT_THAT(options.GetHorizontalDesign().factors, ElementsAre(2, 3));
    EXPECT_EQ(options.GetPlateSize(), REDMUPOptions::Wells384);
}

// One factor goes to the horizontal group, so that the vertical one stays.
TEST(REDMUPOptions, StaleGroupThatADivisionLeavesAloneChangesNothing) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.GetHorizontalDesign().factors.clear();
    const std::string before = StoreText(options);
    EXPECT_EQ(FailureOf([&] {
                  options.SetPlateSize(
                      REDMUPOptions::Wells384, TestFactors().Quantitatives(1), true);
              }),
              "Incorrect block factor setup.");
    EXPECT_EQ(StoreText(options), before);
}

TEST(REDMUPOptions, RowsAndColumnsOfThePlateAreRunNumbers) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    REDMUPOptions options(factors);
    EXPECT_THAT(options.GetVerticalDesignRows(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(options.GetHorizontalDesignRows(),
                ElementsAre(1, 9, 17, 25, 33, 41, 49, 57, 65, 73, 81, 89));
    options.SetPlateSize(REDMUPOptions::Wells1536, factors, true);
    EXPECT_THAT(options.GetHorizontalDesignRows(), SizeIs(48));
    EXPECT_EQ(options.GetHorizontalDesignRows().back(), 47 * 32 + 1);
    EXPECT_EQ(options.GetVerticalDesignRows().back(), 32);
}

TEST(REDMUPOptions, ColumnsOfTheGroupsCountFromOne) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    REDMUPOptions options(factors);
    options.GetHorizontalDesign().factors = {4, 0, 2};
    EXPECT_THAT(options.GetHorizontalDesignCols(), ElementsAre(5, 1, 3));
    EXPECT_THAT(options.GetVerticalDesignCols(), ElementsAre(1, 2));
}

TEST(REDMUPOptions, PlateFactorsAreThoseInNeitherGroup) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    REDMUPOptions options(factors);
    EXPECT_THAT(options.GetPlateFactors(factors), IsEmpty());
    options.GetHorizontalDesign().factors = {4, 2};
    options.GetVerticalDesign().factors = {1};
    EXPECT_THAT(options.GetPlateFactors(factors), ElementsAre(0, 3, 5));
}

TEST(REDMUPOptions, CountsAndUseAreKept) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetNumPlates(REDMUPOptions::EightPlates);
    options.SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    EXPECT_EQ(options.GetNumPlates(), 8);
    EXPECT_EQ(options.GetPlateFactorsUse(), 1);
    options.SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(5));
    EXPECT_EQ(options.GetNumPlates(), 5);
}

// --- The choice of designs --------------------------------------------------------------------

// The design of a side is the one that a plain walk through all families finds.
TEST(REDMUPOptions, SetupTakesTheStrongestProposalThatFillsTheSide) {
    for (const PlateCases::FactorSet& set : PlateCases::FactorSets()) {
        REDMUPOptions options(set.factors);
        for (const auto size : cSizes) {
            SCOPED_TRACE(set.name + ", format " + std::to_string(size));
            options = REDMUPOptions(set.factors);
            options.SetPlateSize(size, set.factors, true);
            for (const SubDesign* side :
                 {&options.GetHorizontalDesign(), &options.GetVerticalDesign()}) {
                const bool horizontal = side == &options.GetHorizontalDesign();
                const auto wells = static_cast<unsigned>(horizontal ? options.GetHorizontalSize()
                                                                    : options.GetVerticalSize());
                const auto expected =
                    PlateOracle::ChooseSide(REDMUPFactors(side->factors, set.factors), wells);
                if (expected.shortString.empty()) {
                    continue;
                }
                ASSERT_NE(side->options, nullptr);
                EXPECT_EQ(EDesign::GetShortString(side->designType, side->designData),
                          expected.shortString);
                EXPECT_EQ(side->options->GetRuns(), expected.runs);
                EXPECT_EQ(side->options->GetCenterPoints(), expected.centerPoints);
                EXPECT_EQ(side->options->GetMaxRuns(), wells);
            }
        }
    }
}

// More factors than a full factorial has room for, up to more than some sides have wells.
TEST(REDMUPOptions, DesignsOfManyFactorsFillTheSideWithoutBlankCells) {
    int served = 0;
    for (const int count : {9, 12, 20, 33}) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        std::vector<unsigned long long> group(static_cast<std::size_t>(count));
        std::iota(group.begin(), group.end(), 0ULL);
        for (const int size : {8, 12, 16, 24, 32, 48}) {
            SCOPED_TRACE(std::to_string(count) + " factors on " + std::to_string(size));
            SubDesign side;
            side.Setup(static_cast<unsigned long long>(size), factors, group);
            if (!side.options) {
                continue;
            }
            const auto builder = AllDesigns::GetDesignBuilder(side.designType, side.designData);
            const auto design = builder->Build(factors, *side.options);
            ASSERT_NE(design, nullptr);
            const NCDataMatrix<float>& matrix = *design->GetDesignMatrix();
            EXPECT_EQ(matrix.SizeRows(), size);
            ASSERT_EQ(matrix.SizeColumns(), count);
            for (int run = 1; run <= matrix.SizeRows(); ++run) {
                EXPECT_THAT(built::RowOf(matrix, run), Each(AnyOf(-1, 0, 1))) << "run " << run;
            }
            ++served;
        }
    }
    EXPECT_GE(served, 10);
}

TEST(REDMUPOptions, TwoFactorsOnASideHaveAFullFactorialFilledWithCentrePoints) {
    const REDMUPOptions options(TestFactors().Quantitatives(4));
    EXPECT_EQ(options.GetVerticalDesign().designType, EDesign::FF2);
    EXPECT_EQ(options.GetVerticalDesign().options->GetRuns(), 4U);
    EXPECT_EQ(options.GetVerticalDesign().options->GetCenterPoints(), 4U);
    EXPECT_EQ(options.GetHorizontalDesign().options->GetCenterPoints(), 8U);
}

TEST(REDMUPOptions, SetupKeepsTheDesignWhereNoneFits) {
    const TestFactors factors = TestFactors().Quantitatives(20);
    SubDesign side;
    side.Setup(12, factors, {0, 1, 2});
    ASSERT_NE(side.options, nullptr);
    const DesignOptions* before = side.options.get();
    const std::vector<unsigned long long> all{0,  1,  2,  3,  4,  5,  6,  7,  8,  9,
                                              10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    side.Setup(3, factors, all);
    EXPECT_EQ(side.options.get(), before);
    EXPECT_EQ(side.designType, EDesign::FF2);
    EXPECT_EQ(side.factors, all);
    EXPECT_EQ(Sorted(side.runOrder), UpTo(3));
}

TEST(REDMUPOptions, SetupWithoutAListKeepsTheGroup) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    SubDesign side;
    side.Setup(12, factors, {5, 1});
    side.Setup(24, factors, {});
    EXPECT_THAT(side.factors, ElementsAre(5, 1));
    EXPECT_EQ(side.options->GetMaxRuns(), 24U);
}

TEST(REDMUPOptions, SetupWithABadListChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    SubDesign side;
    side.Setup(8, factors, {0, 1});
    const auto order = side.runOrder;
    for (const std::vector<unsigned long long>& bad :
         {std::vector<unsigned long long>{0, 0}, std::vector<unsigned long long>{3}}) {
        EXPECT_EQ(FailureOf([&] { side.Setup(12, factors, bad); }),
                  "Incorrect block factor setup.");
        EXPECT_THAT(side.factors, ElementsAre(0, 1));
        EXPECT_EQ(side.runOrder, order);
    }
}

TEST(REDMUPOptions, ViewOfTheGroupIsARedmupView) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    SubDesign side;
    side.factors = {2, 0};
    const auto view = side.GetREDMUPFactors(factors);
    EXPECT_NE(dynamic_cast<const REDMUPFactors*>(view.get()), nullptr);
    EXPECT_EQ(view->GetFactorType(0), CEType::Qualitative);
    side.factors = {7};
    EXPECT_THROW((void)side.GetREDMUPFactors(factors), Exception);
}

// --- Designs of one's own ---------------------------------------------------------------------

class ChosenDesign : public ::testing::Test {
  protected:
    bool SetVertical(EDesign::Type type,
                     unsigned runs,
                     unsigned replicates = 0,
                     EModel::Type model = EModel::Interaction,
                     const std::vector<unsigned long long>& group = {0, 1, 2},
                     const std::string& data = "") {
        return options_.SetVerticalDesign(factors_, group, type, data, runs, replicates, model);
    }

    const TestFactors factors_ = TestFactors().Quantitatives(6);
    REDMUPOptions options_{factors_};
};

TEST_F(ChosenDesign, IsFilledUpWithCentrePoints) {
    EXPECT_TRUE(
        options_.SetHorizontalDesign(factors_, {3, 4, 5}, EDesign::FF2, "", 8, 0, EModel::Linear));
    const SubDesign& side = options_.GetHorizontalDesign();
    EXPECT_THAT(side.factors, ElementsAre(3, 4, 5));
    EXPECT_EQ(side.designType, EDesign::FF2);
    EXPECT_EQ(side.designData, "");
    EXPECT_EQ(side.options->GetRuns(), 8U);
    EXPECT_EQ(side.options->GetCenterPoints(), 4U);
    EXPECT_EQ(side.options->GetModel(), EModel::Linear);
    EXPECT_EQ(side.options->GetMaxRuns(), 12U);
}

TEST_F(ChosenDesign, KeepsTheRunOrder) {
    const auto order = options_.GetVerticalDesign().runOrder;
    EXPECT_TRUE(SetVertical(EDesign::FF2, 4, 0, EModel::Interaction, {0, 1}));
    EXPECT_EQ(options_.GetVerticalDesign().runOrder, order);
    EXPECT_EQ(options_.GetVerticalDesign().options->GetCenterPoints(), 4U);
}

TEST_F(ChosenDesign, IsFoundByItsData) {
    EXPECT_TRUE(options_.SetHorizontalDesign(
        factors_, {0, 1, 2}, EDesign::Rechtschaffner, "Screening", 7, 0, EModel::Interaction));
    EXPECT_EQ(options_.GetHorizontalDesign().designData, "Screening");
}

TEST_F(ChosenDesign, IsRefusedWithNothingChanged) {
    const std::string before = StoreText(options_);
    const auto refused = [&](bool answer) { return !answer && StoreText(options_) == before; };
    EXPECT_TRUE(refused(SetVertical(EDesign::None, 8))) << "no type";
    EXPECT_TRUE(refused(SetVertical(EDesign::Reserved29, 8))) << "no builder";
    EXPECT_TRUE(refused(SetVertical(EDesign::FF2, 8, 0, EModel::Interaction, {0, 1, 2}, "x")))
        << "other data";
    EXPECT_TRUE(refused(SetVertical(EDesign::FF2, 9))) << "more runs than positions";
    EXPECT_TRUE(refused(SetVertical(EDesign::FF2, 8, 0, EModel::Quadratic))) << "model";
    EXPECT_TRUE(refused(SetVertical(EDesign::FF2, 8, 0, EModel::Interaction, {0}))) << "factors";
    EXPECT_TRUE(refused(SetVertical(EDesign::CCF, 8))) << "no room for centre points";
    EXPECT_TRUE(refused(SetVertical(EDesign::DOpt, 8))) << "not for plates";
}

TEST_F(ChosenDesign, IsRefusedWithAnyReplicates) {
    const std::string before = StoreText(options_);
    for (const unsigned replicates : {1U, 2U, 3U, 7U, 8U, 4294967295U}) {
        for (const unsigned runs : {0U, 1U, 2U, 4U, 8U}) {
            EXPECT_FALSE(SetVertical(EDesign::FF2, runs, replicates, EModel::Interaction, {0, 1}))
                << runs << " runs, " << replicates << " replicates";
        }
    }
    EXPECT_EQ(StoreText(options_), before);
}

TEST_F(ChosenDesign, NeedsEveryRunWhereNoCentrePointsAreAllowed) {
    // A plate within a plate: the only family that allows no centre points at all.
    EXPECT_FALSE(SetVertical(EDesign::REDMUP, 4));
}

TEST_F(ChosenDesign, OfABadGroupThrowsWithNothingChanged) {
    const std::string before = StoreText(options_);
    EXPECT_EQ(FailureOf([&] {
                  (void)SetVertical(EDesign::FF2, 4, 0, EModel::Interaction, {0, 6});
              }),
              "Incorrect block factor setup.");
    EXPECT_EQ(StoreText(options_), before);
}

TEST_F(ChosenDesign, FollowsTheRunOrdersSizeNotThePlates) {
    options_.SetPlateSize(REDMUPOptions::Wells384, factors_, false);
    EXPECT_FALSE(SetVertical(EDesign::FF2, 16, 0, EModel::Interaction, {0, 1, 2, 3}));
    options_.RandomizeRunOrder();
    EXPECT_TRUE(SetVertical(EDesign::FF2, 16, 0, EModel::Interaction, {0, 1, 2, 3}));
}

// --- Run orders and names ---------------------------------------------------------------------

TEST(REDMUPRunOrders, HoldEachRowOnce) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetPlateSize(REDMUPOptions::Wells1536, TestFactors().Quantitatives(4), false);
    options.RandomizeRunOrder();
    EXPECT_EQ(Sorted(options.GetHorizontalDesign().runOrder), UpTo(48));
    EXPECT_EQ(Sorted(options.GetVerticalDesign().runOrder), UpTo(32));
}

TEST(REDMUPRunOrders, DifferFromTimeToTime) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    std::set<std::vector<unsigned>> orders;
    for (int i = 0; i < 5; ++i) {
        options.RandomizeRunOrder();
        orders.insert(options.GetHorizontalDesign().runOrder);
    }
    // Two equal ones of 12! have a chance of 2e-8.
    EXPECT_EQ(orders.size(), 5U);
}

TEST(REDMUPRunOrders, AreTheSameInValidatingMode) {
    const ValidatingScope validating;
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.RandomizeRunOrder();
    const auto horizontal = options.GetHorizontalDesign().runOrder;
    const auto vertical = options.GetVerticalDesign().runOrder;
    options.RandomizeRunOrder();
    EXPECT_EQ(options.GetHorizontalDesign().runOrder, horizontal);
    EXPECT_EQ(options.GetVerticalDesign().runOrder, vertical);
    const REDMUPOptions other(TestFactors().Quantitatives(4));
    EXPECT_EQ(other.GetHorizontalDesign().runOrder, horizontal);
}

TEST(REDMUPRunOrders, OfValidatingModeHaveAFixedSeed) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions options(factors);
    options.SetPlateSize(REDMUPOptions::Wells96, factors, true);
    std::mt19937 engine(1974);
    EXPECT_EQ(options.GetHorizontalDesign().runOrder, RunOrders::Draw(12, engine));
    EXPECT_EQ(options.GetVerticalDesign().runOrder, RunOrders::Draw(8, engine));
}

// One generator serves both sides, the horizontal one first: side by side they are not alike.
TEST(REDMUPRunOrders, OfBothSidesComeFromOneGenerator) {
    const ValidatingScope validating;
    REDMUPOptions options(TestFactors().Quantitatives(4));
    SubDesign alone;
    alone.Setup(12, TestFactors().Quantitatives(4), {0, 1});
    EXPECT_EQ(options.GetHorizontalDesign().runOrder, alone.runOrder);
    alone.Setup(8, TestFactors().Quantitatives(4), {0, 1});
    EXPECT_NE(options.GetVerticalDesign().runOrder, alone.runOrder);
}

TEST(REDMUPRunOrders, PositionsCanBeSet) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetHorizontalDesignIndex(11, 3);
    options.SetVerticalDesignIndex(0, 77);
    EXPECT_EQ(options.GetHorizontalDesign().runOrder[11], 3U);
    EXPECT_EQ(options.GetVerticalDesign().runOrder[0], 77U);
}

TEST(REDMUPNames, OfOnePlateWalkDownItsColumns) {
    const auto names = REDMUPOptions(TestFactors().Quantitatives(4)).GetDefaultExperimentNames();
    ASSERT_THAT(names, SizeIs(96));
    EXPECT_EQ(names[0], "A_1");
    EXPECT_EQ(names[1], "B_1");
    EXPECT_EQ(names[7], "H_1");
    EXPECT_EQ(names[8], "A_2");
    EXPECT_EQ(names[95], "H_12");
}

TEST(REDMUPNames, OfSeveralPlatesTellThePlate) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetNumPlates(REDMUPOptions::TwoPlates);
    const auto names = options.GetDefaultExperimentNames();
    ASSERT_THAT(names, SizeIs(192));
    EXPECT_EQ(names[0], "P1_A_1");
    EXPECT_EQ(names[95], "P1_H_12");
    EXPECT_EQ(names[96], "P2_A_1");
    EXPECT_EQ(names[191], "P2_H_12");
}

TEST(REDMUPNames, OfTheLargePlateReachAF) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetPlateSize(REDMUPOptions::Wells1536, TestFactors().Quantitatives(4), false);
    const auto names = options.GetDefaultExperimentNames();
    ASSERT_THAT(names, SizeIs(1536));
    EXPECT_EQ(names[25], "Z_1");
    EXPECT_EQ(names[26], "AA_1");
    EXPECT_EQ(names[27], "AB_1");
    EXPECT_EQ(names[31], "AF_1");
    EXPECT_EQ(names[1535], "AF_48");
}

TEST(REDMUPNames, AreEachGivenOnce) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetPlateSize(REDMUPOptions::Wells1536, TestFactors().Quantitatives(4), false);
    options.SetNumPlates(REDMUPOptions::EightPlates);
    const auto names = options.GetDefaultExperimentNames();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 8U * 1536);
}

TEST(REDMUPNames, OfMorePlatesThanADesignMayHaveAreRefused) {
    REDMUPOptions options(TestFactors().Quantitatives(4));
    options.SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(10417));
    EXPECT_EQ(FailureOf([&] { (void)options.GetDefaultExperimentNames(); }),
              "10417 plates of 96 wells have more runs than a design may have: 1000000.");
    options.SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(0));
    EXPECT_THAT(options.GetDefaultExperimentNames(), IsEmpty());
}

// --- Persistence ------------------------------------------------------------------------------

REDMUPOptions ChangedOptions(const Factors& factors) {
    REDMUPOptions options(factors);
    options.SetPlateSize(REDMUPOptions::Wells384, factors, true);
    options.SetNumPlates(REDMUPOptions::TwoPlates);
    options.SetPlateFactorsUse(REDMUPOptions::WithPlateColumn);
    EXPECT_TRUE(
        options.SetHorizontalDesign(factors, {4, 2}, EDesign::FF2, "", 4, 0, EModel::Linear));
    EXPECT_TRUE(options.SetVerticalDesign(
        factors, {0, 1, 3}, EDesign::Rechtschaffner, "Screening", 7, 0, EModel::Interaction));
    return options;
}

TEST(REDMUPStore, OptionsComeBackAlike) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    const REDMUPOptions saved = ChangedOptions(factors);
    const ConfigurationStore store = ConfigurationStore::FromText(StoreText(saved), "test");
    REDMUPOptions loaded(factors);
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(StoreText(loaded), StoreText(saved));
    EXPECT_EQ(loaded.GetPlateSize(), REDMUPOptions::Wells384);
    EXPECT_EQ(loaded.GetNumPlates(), 2);
    EXPECT_EQ(loaded.GetPlateFactorsUse(), 1);
    EXPECT_EQ(loaded.GetHorizontalDesign().runOrder, saved.GetHorizontalDesign().runOrder);
    EXPECT_THAT(loaded.GetHorizontalDesign().factors, ElementsAre(4, 2));
    EXPECT_EQ(loaded.GetVerticalDesign().designType, EDesign::Rechtschaffner);
    EXPECT_EQ(loaded.GetVerticalDesign().designData, "Screening");
    EXPECT_EQ(loaded.GetVerticalDesign().options->GetRuns(), 7U);
    EXPECT_EQ(loaded.GetVerticalDesign().options->GetModel(), EModel::Interaction);
}

TEST(REDMUPStore, KeysAreFixed) {
    ConfigurationStore store;
    ChangedOptions(TestFactors().Quantitatives(6)).Save(store.OpenRoot().get());
    const auto own =
        store.OpenRoot()->OpenSection("DesignSpecificOptions")->OpenSection("RedmupOptions");
    ASSERT_NE(own, nullptr);
    int number = -1;
    EXPECT_TRUE(own->ReadInt("PlateSize", &number));
    EXPECT_EQ(number, 1);
    EXPECT_TRUE(own->ReadInt("PlateFactor", &number));
    EXPECT_EQ(number, 1);
    EXPECT_TRUE(own->ReadInt("NumPlates", &number));
    EXPECT_EQ(number, 2);
    ASSERT_NE(own->OpenSection("VerticalDesign"), nullptr);
    const auto side = own->OpenSection("HorizontalDesign");
    ASSERT_NE(side, nullptr);
    std::vector<int> numbers;
    EXPECT_TRUE(side->ReadIntVector("Factors", &numbers));
    EXPECT_THAT(numbers, ElementsAre(4, 2));
    EXPECT_TRUE(side->ReadIntVector("RunOrder", &numbers));
    EXPECT_THAT(numbers, SizeIs(24));
    EXPECT_TRUE(side->ReadInt("SubDesign", &number));
    EXPECT_EQ(number, 1);
    std::string data = "?";
    EXPECT_TRUE(side->ReadString("SubDesignData", &data));
    EXPECT_EQ(data, "");
    ASSERT_NE(side->OpenSection("SubDesignOptions"), nullptr);
    EXPECT_NE(side->OpenSection("SubDesignOptions")->OpenSection("DesignOptions"), nullptr);
}

TEST(REDMUPStore, SideWithoutADesignHasNoOptions) {
    const TestFactors one = TestFactors().Quantitatives(1);
    ConfigurationStore store;
    // Saved over a design that was there before.
    REDMUPOptions(TestFactors().Quantitatives(2)).Save(store.OpenRoot().get());
    REDMUPOptions(one).Save(store.OpenRoot().get());
    REDMUPOptions loaded(TestFactors().Quantitatives(2));
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetVerticalDesign().options, nullptr);
    EXPECT_THAT(loaded.GetVerticalDesign().factors, IsEmpty());
    EXPECT_NE(loaded.GetHorizontalDesign().options, nullptr);
}

TEST(REDMUPStore, MissingSectionsAreNotedWithNothingChanged) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions loaded(factors);
    const std::string before = StoreText(loaded);
    ConfigurationStore store;
    const auto refused = [&] {
        return !loaded.Load(store.OpenRoot().get()) && StoreText(loaded) == before;
    };
    EXPECT_TRUE(refused());
    store.OpenRoot()->OpenOrCreateSection("DesignSpecificOptions");
    EXPECT_TRUE(refused());
    REDMUPOptions(factors).Save(store.OpenRoot().get());
    const auto own = store.OpenRoot()
                         ->OpenOrCreateSection("DesignSpecificOptions")
                         ->OpenOrCreateSection("RedmupOptions");
    own->RemoveSection("VerticalDesign");
    EXPECT_TRUE(refused());
    REDMUPOptions(factors).Save(store.OpenRoot().get());
    own->RemoveSection("HorizontalDesign");
    EXPECT_TRUE(refused());
}

TEST(REDMUPStore, MissingKeysLeaveDefaults) {
    ConfigurationStore store;
    const auto own = store.OpenRoot()
                         ->OpenOrCreateSection("DesignSpecificOptions")
                         ->OpenOrCreateSection("RedmupOptions");
    own->OpenOrCreateSection("HorizontalDesign");
    own->OpenOrCreateSection("VerticalDesign");
    REDMUPOptions loaded(TestFactors().Quantitatives(4));
    loaded.SetNumPlates(REDMUPOptions::FourPlates);
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetNumPlates(), 4);
    EXPECT_THAT(loaded.GetHorizontalDesign().factors, IsEmpty());
    EXPECT_THAT(loaded.GetHorizontalDesign().runOrder, IsEmpty());
    EXPECT_EQ(loaded.GetHorizontalDesign().designType, EDesign::None);
    EXPECT_EQ(loaded.GetHorizontalDesign().options, nullptr);
}

TEST(REDMUPStore, DamagedNumbersAreNoFactorsAndNoFamily) {
    ConfigurationStore store;
    const REDMUPOptions options(TestFactors().Quantitatives(4));
    const auto section = store.OpenRoot()->OpenOrCreateSection("Side");
    options.CreateSubSectionRedmupSubDesign(section.get(), options.GetHorizontalDesign());
    section->WriteIntVector("Factors", {-1, 2});
    section->WriteInt("SubDesign", 1000);
    SubDesign side;
    EXPECT_TRUE(options.LoadSubSectionRedmupSubDesign(section.get(), side));
    EXPECT_EQ(side.designType, EDesign::None);
    EXPECT_THROW((void)side.GetREDMUPFactors(TestFactors().Quantitatives(4)), Exception);
}

TEST(REDMUPStore, DamagedSideOptionsThrowWithNothingChanged) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    ConfigurationStore store;
    REDMUPOptions(factors).Save(store.OpenRoot().get());
    store.OpenRoot()
        ->OpenOrCreateSection("DesignSpecificOptions")
        ->OpenOrCreateSection("RedmupOptions")
        ->OpenOrCreateSection("VerticalDesign")
        ->OpenOrCreateSection("SubDesignOptions")
        ->OpenOrCreateSection("DesignOptions")
        ->WriteInt("Runs", -4);
    REDMUPOptions loaded(factors);
    const std::string before = StoreText(loaded);
    EXPECT_THROW((void)loaded.Load(store.OpenRoot().get()), Exception);
    EXPECT_EQ(StoreText(loaded), before);
}

TEST(REDMUPStore, NoSectionIsNoSide) {
    SubDesign side;
    side.factors = {3};
    EXPECT_FALSE(
        REDMUPOptions(TestFactors().Quantitatives(2)).LoadSubSectionRedmupSubDesign(nullptr, side));
    EXPECT_THAT(side.factors, ElementsAre(3));
}

TEST(REDMUPOptions, HaveNoJsonForm) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    REDMUPOptions options(factors);
    EXPECT_EQ(FailureOf([&] { (void)options.ToJson(); }),
              "This design does not support being saved as json.");
    EXPECT_EQ(FailureOf([&] { (void)PlateCases::Options(factors).ToJson(); }),
              "This design does not support being saved as json.");
    const std::string before = StoreText(options);
    options.FromJson(json_value::parse(R"({"plateSize": 2})"));
    EXPECT_EQ(StoreText(options), before);
}

TEST(REDMUPOptions, AreRemovedFromAStore) {
    ConfigurationStore store;
    const REDMUPOptions options(TestFactors().Quantitatives(4));
    options.Save(store.OpenRoot().get());
    options.Remove(store.OpenRoot().get());
    EXPECT_FALSE(REDMUPOptions(TestFactors().Quantitatives(4)).Load(store.OpenRoot().get()));
}

}  // namespace
