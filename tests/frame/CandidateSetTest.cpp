#include "frame/CandidateSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/CandidatePicks.h"
#include "frame/Constraints.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<int> cTwoStarts{1, 4};
const std::vector<int> cTwoNumbers{3, 2};

NCDataMatrix<float> Counting(int rows, int columns) {
    NCDataMatrix<float> matrix(rows, columns);
    for (int row = 1; row <= rows; ++row) {
        for (int column = 1; column <= columns; ++column) {
            matrix(row, column, static_cast<float>(10 * row + column));
        }
    }
    return matrix;
}

CandidateSet Plain(int rows, int columns = 2) {
    CandidateSet set;
    set.SetCandidateSet(Counting(rows, columns), DOpt::NumData());
    return set;
}

/// Five rows: rows 1 to 3 are layer 1, rows 4 and 5 layer 2.
CandidateSet Layered() {
    CandidateSet set;
    set.SetCandidateSet(Counting(5, 2), DOpt::NumData(), &cTwoStarts, &cTwoNumbers);
    return set;
}

std::string MessageOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

/// A design that was picked from candidates, told what it picked.
class PickedDesign : public NCDesign, public CandidatePicks {
  public:
    PickedDesign(const Factors& factors, std::vector<std::vector<int>> picks, bool layered)
        : NCDesign(factors), picks_(std::move(picks)), layered_(layered) {}
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override {
        return std::make_shared<PickedDesign>(*this);
    }
    [[nodiscard]] bool IsLayered() const override { return layered_; }
    [[nodiscard]] int GetLayerCount() const override { return static_cast<int>(picks_.size()); }
    [[nodiscard]] const std::vector<int>& GetPickedRows(int layer) const override {
        return picks_.at(static_cast<std::size_t>(layer - 1));
    }
    [[nodiscard]] int GetInclusionRows(int /*layer*/) const override { return inclusions; }

    int inclusions = 0;

  private:
    std::vector<std::vector<int>> picks_;
    bool layered_;
};

class UnpickedDesign : public NCDesign {
  public:
    using NCDesign::NCDesign;
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override {
        return std::make_shared<UnpickedDesign>(*this);
    }
};

const TestFactors& SomeFactors() {
    static const TestFactors factors = TestFactors().Quantitatives(2);
    return factors;
}

std::shared_ptr<PickedDesign> PlainDesign(const std::vector<int>& rows) {
    return std::make_shared<PickedDesign>(
        SomeFactors(), std::vector<std::vector<int>>{rows}, false);
}

std::shared_ptr<PickedDesign> OnionDesign(const std::vector<std::vector<int>>& rows) {
    return std::make_shared<PickedDesign>(SomeFactors(), rows, true);
}

NCDOE::Constraints AtLeast(int factor, double bound) {
    return NCDOE::Constraints({{{{factor, 1.0}}, bound, true}});
}

}  // namespace

TEST(CandidateSet, ANewSetHasNothingCounted) {
    EXPECT_EQ(CandidateSet().GetNumData(), (DOpt::NumData{-99, -99, -99}));
}

TEST(CandidateSet, AssigningWithoutLayersKeepsTheOldLayers) {
    CandidateSet set = Layered();
    set.SetCandidateSet(Counting(5, 2), {1, 2, 3});
    EXPECT_EQ(set.GetStartPoints(), cTwoStarts);
    EXPECT_EQ(set.GetNumbers(), cTwoNumbers);
    EXPECT_EQ(set.GetNumData(), (DOpt::NumData{1, 2, 3}));
}

TEST(CandidateSet, AMiddleLayerEndsBeforeTheNext) {
    EXPECT_EQ(Layered().GetMatrix(1), (NCDataMatrix<float>{{11, 12}, {21, 22}, {31, 32}}));
}

TEST(CandidateSet, TheLastLayerReachesTheEndOfTheMatrix) {
    CandidateSet set = Layered();
    set.ConcatRows(NCDataMatrix<float>{{0, 0}});
    EXPECT_EQ(set.GetMatrix(2), (NCDataMatrix<float>{{41, 42}, {51, 52}, {0, 0}}));
}

TEST(CandidateSet, AnUnknownLayerHasNoRows) {
    for (const int layer : {INT_MIN, -1, 0, 3, INT_MAX}) {
        EXPECT_EQ(Layered().GetMatrix(layer).SizeRows(), 0) << layer;
    }
}

TEST(CandidateSet, LayersOutsideTheMatrixHaveNoRows) {
    const std::vector<int> starts{INT_MIN, INT_MAX, INT_MIN};
    const std::vector<int> numbers{INT_MAX, INT_MAX, INT_MIN};
    CandidateSet set;
    set.SetCandidateSet(Counting(5, 2), {}, &starts, &numbers);
    EXPECT_EQ(set.GetMatrix(1).SizeRows(), 5);
    EXPECT_EQ(set.GetMatrix(2).SizeRows(), 0);
    EXPECT_EQ(set.GetLayer(3), 0);
}

TEST(CandidateSet, ACopyIsDeep) {
    const CandidateSet set = Plain(2);
    CandidateSet copy = set;
    copy.UpdateCandidateSet(1, 1, 7);
    EXPECT_EQ(set(1, 1), 11);
}

TEST(CandidateSet, ARowWithoutANameHasAnEmptyOne) {
    CandidateSet set = Plain(2);
    set.SetRowNames({"a", "b"});
    EXPECT_TRUE(set.HasRowNames());
    EXPECT_EQ(set.GetRowName(2), "b");
    EXPECT_EQ(set.GetRowName(0), "");
    EXPECT_EQ(set.GetRowName(3), "");
}

TEST(CandidateSet, APercentageIsMissingWithoutPercentages) {
    EXPECT_EQ(Plain(2).GetPercentage(1), -1.0F);
}

TEST(CandidateSet, APercentageIsMissingOutsideTheRows) {
    CandidateSet set = Plain(2);
    set.SetPercentages({40, 60});
    EXPECT_EQ(set.GetPercentage(2), 60.0F);
    EXPECT_EQ(set.GetPercentage(0), -1.0F);
    EXPECT_EQ(set.GetPercentage(3), -1.0F);
    EXPECT_EQ(set.GetPercentage(INT_MIN), -1.0F);
}

TEST(CandidateSet, ConcatenatingLayersDividesTheRows) {
    CandidateSet set;
    set.ConcatCandidateSet(0, Counting(3, 2));
    set.ConcatCandidateSet(1, Counting(2, 2));
    EXPECT_EQ(set.SizeRows(), 5);
    EXPECT_EQ(set.GetStartPoints(), cTwoStarts);
    EXPECT_EQ(set.GetNumbers(), cTwoNumbers);
}

TEST(CandidateSet, TheFirstLayerReplacesAllRows) {
    CandidateSet set = Layered();
    set.ConcatCandidateSet(0, Counting(4, 2));
    EXPECT_EQ(set.GetMatrix(), Counting(4, 2));
    EXPECT_THAT(set.GetNumbers(), ElementsAre(4, 2));
}

TEST(CandidateSet, AnOldLayerMovesToTheEnd) {
    CandidateSet set = Layered();
    set.ConcatCandidateSet(1, Counting(4, 2));
    EXPECT_EQ(set.SizeRows(), 9);
    EXPECT_THAT(set.GetStartPoints(), ElementsAre(1, 6));
    EXPECT_THAT(set.GetNumbers(), ElementsAre(3, 4));
}

TEST(CandidateSet, ALayerOfAnotherWidthIsRefusedAndTheSetStays) {
    CandidateSet set = Layered();
    EXPECT_THROW(set.ConcatCandidateSet(2, Counting(1, 3)), InvalidOperationException);
    EXPECT_EQ(set.SizeRows(), 5);
    EXPECT_EQ(set.GetStartPoints(), cTwoStarts);
}

TEST(CandidateSet, ARowOfASetWithoutLayersHasLayerMinusOne) {
    EXPECT_EQ(Plain(2).GetLayer(1), -1);
}

TEST(CandidateSet, EveryRowHasTheLayerThatHoldsIt) {
    CandidateSet set = Layered();
    set.ConcatRows(NCDataMatrix<float>{{0, 0}});
    std::vector<int> layers;
    for (int row = 0; row <= 6; ++row) {
        layers.push_back(set.GetLayer(row));
    }
    EXPECT_THAT(layers, ElementsAre(0, 1, 1, 1, 2, 2, 0));
}

TEST(CandidateSet, ExperimentsAreCountedByLayer) {
    EXPECT_EQ(Layered().GetNumExperiments(1), 3);
    EXPECT_EQ(Layered().GetNumExperiments(2), 2);
    EXPECT_EQ(Layered().GetNumExperiments(3), 0);
}

TEST(CandidateSet, AnEmptySetHasNoExperiments) {
    EXPECT_EQ(CandidateSet().GetNumExperiments(-1), 0);
}

TEST(CandidateSet, AddedRowsAreMissing) {
    CandidateSet set = Plain(2);
    set.AddRows(2, 2);
    EXPECT_EQ(set.GetMatrix(), (NCDataMatrix<float>{{11, 12}, {-99, -99}, {-99, -99}, {21, 22}}));
}

TEST(CandidateSet, RowsCanBeAddedBehindTheLast) {
    CandidateSet set = Plain(1);
    set.AddRows(2, 1);
    EXPECT_EQ(set.GetMatrix(), (NCDataMatrix<float>{{11, 12}, {-99, -99}}));
}

TEST(CandidateSet, AddingNoRowsChangesNothing) {
    CandidateSet set = Plain(2);
    set.AddRows(1, 0);
    EXPECT_EQ(set.GetMatrix(), Counting(2, 2));
}

TEST(CandidateSet, RemovedRowsAreGone) {
    CandidateSet set = Plain(3);
    set.RemoveRows(1, 2);
    EXPECT_EQ(set.GetMatrix(), (NCDataMatrix<float>{{31, 32}}));
}

TEST(CandidateSet, EditingLeavesNamesPercentagesAndLayersAlone) {
    CandidateSet set = Layered();
    set.SetRowNames({"a", "b", "c", "d", "e"});
    set.SetPercentages({1, 2, 3, 4, 5});
    set.AddRows(1, 1);
    set.RemoveRows(2, 2);
    EXPECT_EQ(set.GetRowNames().size(), 5U);
    EXPECT_EQ(set.GetPercentage(5), 5.0F);
    EXPECT_EQ(set.GetNumbers(), cTwoNumbers);
}

TEST(CandidateSet, EditingOutsideTheRowsIsRefused) {
    CandidateSet set = Plain(2);
    EXPECT_THROW(set.AddRows(0, 1), InvalidOperationException);
    EXPECT_THROW(set.AddRows(4, 1), InvalidOperationException);
    EXPECT_THROW(set.AddRows(1, UINT_MAX), InvalidOperationException);
    EXPECT_THROW(set.RemoveRows(0, 1), InvalidOperationException);
    EXPECT_THROW(set.RemoveRows(2, 2), InvalidOperationException);
    EXPECT_THROW(set.RemoveRows(2, UINT_MAX), InvalidOperationException);
    EXPECT_THROW(set.UpdateCandidateSet(3, 1, 0), InvalidOperationException);
    EXPECT_THROW(set.UpdateCandidateSet(1, 3, 0), InvalidOperationException);
    EXPECT_EQ(set.GetMatrix(), Counting(2, 2));
}

TEST(CandidateSetReplicateRow, WithoutConstraintsItIsTheLastRow) {
    EXPECT_EQ(CandidateSet::FindReplicateRow(Counting(4, 2), nullptr), 4);
}

TEST(CandidateSetReplicateRow, ConstrainedRowsArePassedOver) {
    const NCDataMatrix<float> rows{{1}, {5}, {1}, {1}};
    const NCDOE::Constraints constraints = AtLeast(0, 3);
    EXPECT_EQ(CandidateSet::FindReplicateRow(rows, &constraints), 2);
}

TEST(CandidateSetReplicateRow, WithAllRowsConstrainedItIsTheFirst) {
    const NCDataMatrix<float> rows{{1}, {1}, {1}};
    const NCDOE::Constraints constraints = AtLeast(0, 3);
    EXPECT_EQ(CandidateSet::FindReplicateRow(rows, &constraints), 1);
}

TEST(CandidateSetReplicateRow, AnEmptyMatrixHasNone) {
    const NCDOE::Constraints constraints = AtLeast(0, 3);
    EXPECT_EQ(CandidateSet::FindReplicateRow(NCDataMatrix<float>(), &constraints), 0);
    EXPECT_EQ(CandidateSet::FindReplicateRow(NCDataMatrix<float>(), &constraints, SomeFactors()),
              0);
}

TEST(CandidateSetReplicateRow, AnExpandedFactorDoesNotShiftTheConstrainedOne) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative(0, 10);
    // Columns 1 and 2 are the Qualitative factor, column 3 is factor 1.
    const NCDataMatrix<float> rows{{0, 0, 5}, {1, 9, 5}, {0, 9, 1}};
    const NCDOE::Constraints constraints = AtLeast(1, 3);
    EXPECT_EQ(CandidateSet::FindReplicateRow(rows, &constraints, factors), 2);
}

TEST(CandidateSetReplicateRow, RowsReduceToTheFirstColumnOfEveryFactor) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(4).Quantitative();
    EXPECT_EQ(CandidateSet::ReduceToFactors(Counting(2, 5), factors),
              (NCDataMatrix<float>{{11, 12, 15}, {21, 22, 25}}));
    EXPECT_THROW(static_cast<void>(CandidateSet::ReduceToFactors(Counting(2, 4), factors)),
                 InvalidOperationException);
}

TEST(CandidateSetUses, ARowIsUsedWhereTheDesignPickedIt) {
    const auto design = PlainDesign({1, 3, 3, 2});
    EXPECT_THAT(Plain(4).GetAllDesignRuns(3, design, DesignOptions()), ElementsAre(2, 3));
    EXPECT_EQ(Plain(4).GetDesignRun(3, design), 2);
    EXPECT_EQ(Plain(4).GetDesignRunName(3, design, DesignOptions()), "2, 3");
}

TEST(CandidateSetUses, ARowThatWasNotPickedIsNotUsed) {
    const auto design = PlainDesign({1, 3});
    for (const int row : {-1, 0, 2, 5}) {
        EXPECT_THAT(Plain(4).GetAllDesignRuns(row, design, DesignOptions()), IsEmpty()) << row;
        EXPECT_EQ(Plain(4).GetDesignRun(row, design), 0) << row;
        EXPECT_EQ(Plain(4).GetDesignRunName(row, design, DesignOptions()), "") << row;
    }
}

TEST(CandidateSetUses, OtherDesignsUseNoRows) {
    const auto other = std::make_shared<UnpickedDesign>(SomeFactors());
    EXPECT_THAT(Plain(4).GetAllDesignRuns(1, other, DesignOptions()), IsEmpty());
    EXPECT_THAT(Plain(4).GetAllDesignRuns(1, nullptr, DesignOptions()), IsEmpty());
}

TEST(CandidateSetUses, InclusionsAreNoCandidateRows) {
    const auto design = PlainDesign({1, 2, 3, 5});
    design->inclusions = 2;
    EXPECT_THAT(Plain(4).GetAllDesignRuns(1, design, DesignOptions()), ElementsAre(3));
    EXPECT_THAT(Plain(4).GetAllDesignRuns(3, design, DesignOptions()), ElementsAre(4));
    EXPECT_THAT(Plain(4).GetAllDesignRuns(2, design, DesignOptions()), IsEmpty());
}

TEST(CandidateSetUses, DoubledCandidatesAreTheOriginals) {
    const auto design = PlainDesign({1, 5, 8, 13});
    design->inclusions = 0;
    EXPECT_THAT(Plain(4).GetAllDesignRuns(1, design, DesignOptions()), ElementsAre(1, 2, 4));
    EXPECT_THAT(Plain(4).GetAllDesignRuns(4, design, DesignOptions()), ElementsAre(3));
}

TEST(CandidateSetUses, RowsOfALaterLayerAreUsedInLaterRuns) {
    const auto design = OnionDesign({{1, 2}, {2, 1, 2}});
    EXPECT_THAT(Layered().GetAllDesignRuns(1, design, DesignOptions()), ElementsAre(1));
    EXPECT_THAT(Layered().GetAllDesignRuns(4, design, DesignOptions()), ElementsAre(4));
    EXPECT_THAT(Layered().GetAllDesignRuns(5, design, DesignOptions()), ElementsAre(3, 5));
}

TEST(CandidateSetUses, ALayeredDesignUsesNoRowsOfASetWithoutLayers) {
    const auto design = OnionDesign({{1, 2}, {2, 1, 2}});
    EXPECT_THAT(Plain(5).GetAllDesignRuns(1, design, DesignOptions()), IsEmpty());
}

TEST(CandidateSetUses, ADesignWithFewerLayersUsesNoRowsOfTheOthers) {
    const auto design = OnionDesign({{1, 2}});
    EXPECT_THAT(Layered().GetAllDesignRuns(4, design, DesignOptions()), IsEmpty());
}

TEST(CandidateSetUses, UsedNamesFollowTheRuns) {
    CandidateSet set = Plain(3);
    set.SetRowNames({"a", "b", "c"});
    const auto design = PlainDesign({1, 4, 3});
    design->inclusions = 1;
    EXPECT_THAT(set.GetUsedScoreNames(*design), ElementsAre("", "c", "b"));
}

TEST(CandidateSetUses, UsedNamesOfLayersFollowOneAnother) {
    CandidateSet set = Layered();
    set.SetRowNames({"a", "b", "c", "d", "e"});
    EXPECT_THAT(set.GetUsedScoreNames(*OnionDesign({{3, 1}, {2, 1}})),
                ElementsAre("c", "a", "e", "d"));
}

TEST(CandidateSetUses, NamesAreUsedOnlyWhereThereAreNamesAndPicks) {
    CandidateSet set = Plain(3);
    EXPECT_THAT(set.GetUsedScoreNames(*PlainDesign({1})), IsEmpty());
    set.SetRowNames({"a", "b", "c"});
    EXPECT_THAT(set.GetUsedScoreNames(UnpickedDesign(SomeFactors())), IsEmpty());
}

TEST(CandidateSetStore, EveryFieldComesBack) {
    CandidateSet set = Layered();
    set.SetNumData({4, 4, 1});
    set.SetRowNames({"a", "", "c;d", "/", "e"});
    set.SetPercentages({1, 2, 3, 4.5F, 5});
    ConfigurationStore store;
    set.Save(store.OpenRoot().get());
    CandidateSet loaded;
    loaded.Load(store.OpenRoot().get());
    EXPECT_EQ(loaded.GetMatrix(), set.GetMatrix());
    EXPECT_EQ(loaded.GetNumData(), set.GetNumData());
    EXPECT_EQ(loaded.GetRowNames(), set.GetRowNames());
    EXPECT_EQ(loaded.GetPercentages(), set.GetPercentages());
    EXPECT_EQ(loaded.GetStartPoints(), cTwoStarts);
    EXPECT_EQ(loaded.GetNumbers(), cTwoNumbers);
}

TEST(CandidateSetStore, AnEmptySetWritesNothing) {
    ConfigurationStore store;
    CandidateSet().Save(store.OpenRoot().get());
    EXPECT_EQ(store, ConfigurationStore());
}

TEST(CandidateSetStore, ASetStaysWhenNothingIsStored) {
    CandidateSet set = Layered();
    set.Load(ConfigurationStore().OpenRoot().get());
    EXPECT_EQ(set.GetMatrix(), Counting(5, 2));
    EXPECT_EQ(set.GetStartPoints(), cTwoStarts);
}

TEST(CandidateSetStore, StoredRowsDoNotMixWithOldNamesAndLayers) {
    ConfigurationStore store;
    Plain(2).Save(store.OpenRoot().get());
    CandidateSet set = Layered();
    set.SetRowNames({"a", "b", "c", "d", "e"});
    set.Load(store.OpenRoot().get());
    EXPECT_EQ(set.GetMatrix(), Counting(2, 2));
    EXPECT_FALSE(set.HasRowNames());
    EXPECT_FALSE(set.HasLayers());
}

TEST(CandidateSetJson, RowsComeBack) {
    CandidateSet set;
    set.SetCandidateSet({{0.1F, -99}, {1e30F, 3}}, {});
    CandidateSet read;
    read.FromJson(json_value::parse(set.ToJson().to_text()));
    EXPECT_EQ(read.GetMatrix(), set.GetMatrix());
}

TEST(CandidateSetJson, TheFormIsAnArrayOfRows) {
    CandidateSet set;
    set.SetCandidateSet({{1, 2}, {3, 4}}, {});
    EXPECT_EQ(set.ToJson(), json_value::parse(R"({"data": [[1.0, 2.0], [3.0, 4.0]]})"));
}

TEST(CandidateSetJson, AnEmptySetHasNoRows) {
    EXPECT_EQ(CandidateSet().ToJson(), json_value::parse(R"({"data": []})"));
}

TEST(CandidateSetJson, LayersHaveNoForm) {
    EXPECT_EQ(MessageOf([] { static_cast<void>(Layered().ToJson()); }),
              "Saving Onion designs as json is not supported.");
}

TEST(CandidateSetJson, AnIllFormedSetIsRefusedAndTheOldOneStays) {
    for (const char* text : {R"({"data": [[1, 2], [3]]})",
                             R"({"data": [[1, 2], [3, 4, 5]]})",
                             R"({"data": [[1, 2], "3"]})",
                             R"({"data": [[1, "2"]]})",
                             R"({"data": [[1, null]]})",
                             R"({"data": [[1e39]]})",
                             R"({"data": [[], []]})",
                             R"({"data": 3})"}) {
        CandidateSet set = Layered();
        EXPECT_EQ(MessageOf([&] { set.FromJson(json_value::parse(text)); }),
                  "Parse error. The Candidate set is ill-formed.")
            << text;
        EXPECT_EQ(set.GetMatrix(), Counting(5, 2)) << text;
    }
}

TEST(CandidateSetJson, AValueWithoutRowsChangesNothing) {
    for (const char* text : {"3", "[]", "{}", R"({"data": []})"}) {
        CandidateSet set = Plain(2);
        set.FromJson(json_value::parse(text));
        EXPECT_EQ(set.GetMatrix(), Counting(2, 2)) << text;
    }
}

TEST(CandidateSetJson, NewRowsHaveNoOldNamesAndLayers) {
    CandidateSet set = Layered();
    set.SetRowNames({"a", "b", "c", "d", "e"});
    set.FromJson(json_value::parse(R"({"data": [[1]]})"));
    EXPECT_EQ(set.SizeRows(), 1);
    EXPECT_FALSE(set.HasRowNames());
    EXPECT_FALSE(set.HasLayers());
}
