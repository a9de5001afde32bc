#include "designs/stability/StabilityDesign.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/SilentDisplay.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using Pairs = std::vector<std::pair<int, int>>;
using Used = StabilityDesignOptions::UsedReductions;
using Vector = NCDataVector<float>;

const DesignBuilder& Builder(EDesign::Type type) {
    return *AllDesigns::GetDesignBuilder(type, "");
}

DesignOptions StabilityRequest(const Factors& factors, const Used& used) {
    DesignOptions options(Builder(EDesign::Stability), factors);
    auto own = std::make_shared<StabilityDesignOptions>();
    own->SetUsedReduction(used);
    own->SetSecondsToWait(0);
    options.SetDesignSpecificOptions(own);
    return options;
}

DesignOptions SubsetRequest(const Factors& factors, unsigned long long reduction) {
    DesignOptions options(Builder(EDesign::GeneralizedSubset), factors);
    auto own = std::make_shared<GeneralizedSubsetDesignsDesignOptions>();
    own->SetReduction(reduction);
    own->SetSecondsToWait(0);
    options.SetDesignSpecificOptions(own);
    return options;
}

// Two factors of three levels in thirds: Latin squares of three runs, whatever is drawn.
class StabilityDesignTest : public ::testing::Test {
  protected:
    StabilityDesign MakeStability(const Used& used) const {
        return {EDesign::Stability, factors_, StabilityRequest(factors_, used)};
    }
    StabilityDesign MakeStability() const {
        return MakeStability({{1, 1}, {3, 1}, {3, 2}, {3, 3}, {1, 1}});
    }
    StabilityDesign MakeSubsets(unsigned long long reduction = 3) const {
        return {EDesign::GeneralizedSubset, factors_, SubsetRequest(factors_, reduction)};
    }

    const TestFactors factors_ = TestFactors().Multilevel({1, 2, 5}).Qualitative(3);
    const DesignOptions none_{};

  private:
    const ValidatingScope validating_{};
};

TEST_F(StabilityDesignTest, DefaultsHaveFourSubsetsAndUseTheFirstTwice) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetNumberOfReductions(), 2);
    EXPECT_EQ(design.GetReduction(1), 1);
    EXPECT_EQ(design.GetReduction(2), 3);
    EXPECT_EQ(design.GetUsedDesigns(), (Pairs{{1, 1}, {3, 1}, {3, 2}, {3, 3}, {1, 1}}));
    EXPECT_EQ(design.GetUniqueUsedDesignsets(), (Pairs{{1, 1}, {3, 1}, {3, 2}, {3, 3}}));
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 9 + 3 + 3 + 3 + 9);
}

TEST_F(StabilityDesignTest, ReductionsOutsideTheListAreNone) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetReduction(0), -1);
    EXPECT_EQ(design.GetReduction(3), -1);
}

TEST_F(StabilityDesignTest, FirstColumnIsTheLetterOfTheSetInUse) {
    const StabilityDesign design = MakeStability({{3, 2}, {3, 2}, {1, 1}});
    const auto column = design.GetDesignMatrix()->GetColumn(1);
    EXPECT_THAT(std::vector<float>(column.Values().begin(), column.Values().end()),
                ElementsAre(65, 65, 65, 66, 66, 66, 67, 67, 67, 67, 67, 67, 67, 67, 67));
}

TEST_F(StabilityDesignTest, SetsAreAssembledInTheirOrder) {
    const StabilityDesign design = MakeStability({{3, 2}, {3, 1}});
    NCDataMatrix<float> expected = *design.GetDesignMatrix(3, 2);
    expected.ConcatRows(*design.GetDesignMatrix(3, 1));
    NCDataMatrix<float> assembled = *design.GetDesignMatrix();
    assembled.RemoveColumns(1, 1);
    EXPECT_EQ(assembled, expected);
}

TEST_F(StabilityDesignTest, FullFactorialStandsInStandardOrderOfCodes) {
    const StabilityDesign design = MakeStability({{1, 1}});
    EXPECT_EQ(RowsOf(*design.GetDesignMatrix(1, 1)),
              (std::vector<std::vector<float>>{{65, 65},
                                               {66, 65},
                                               {67, 65},
                                               {65, 66},
                                               {66, 66},
                                               {67, 66},
                                               {65, 67},
                                               {66, 67},
                                               {67, 67}}));
}

TEST_F(StabilityDesignTest, QuantitativeFactorsStandAtTheirEnds) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const StabilityDesign design(EDesign::Stability, factors, StabilityRequest(factors, {{1, 1}}));
    EXPECT_EQ(
        RowsOf(*design.GetDesignMatrix()),
        (std::vector<std::vector<float>>{{65, -1, -1}, {65, 1, -1}, {65, -1, 1}, {65, 1, 1}}));
}

TEST_F(StabilityDesignTest, ThirdsHoldTheFullFactorial) {
    const StabilityDesign design = MakeStability();
    std::multiset<std::vector<float>> thirds;
    for (int index = 1; index <= 3; ++index) {
        for (const auto& row : RowsOf(*design.GetDesignMatrix(3, index))) {
            thirds.insert(row);
        }
    }
    const auto full = RowsOf(*design.GetDesignMatrix(1, 1));
    EXPECT_EQ(thirds, std::multiset<std::vector<float>>(full.begin(), full.end()));
}

TEST_F(StabilityDesignTest, SubsetsTellTheirQuality) {
    const StabilityDesign design = MakeStability();
    for (int index = 1; index <= 3; ++index) {
        const auto data = design.GetDesign(3, index);
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(data->GetReduction(), 3);
        EXPECT_EQ(data->GetIndex(), index);
        EXPECT_TRUE(data->GetQuality().Unique);
        EXPECT_TRUE(data->GetQuality().Balance);
        EXPECT_TRUE(data->GetQuality().NOA == data->GetQuality().OA || data->GetQuality().NOA);
        EXPECT_EQ(data->GetQuality().Iterations, 1);
        EXPECT_EQ(data->GetQuality().Distances.size(), 10U);
        EXPECT_GE(data->GetQuality().ConditionNumber, 1);
        EXPECT_EQ(data->GetReplicateRow(), 0);
    }
}

TEST_F(StabilityDesignTest, SubsetsTooSmallForTheModelHaveNoConditionNumber) {
    const TestFactors factors = TestFactors().Qualitative(4).Qualitative(4);
    const StabilityDesign design(EDesign::GeneralizedSubset, factors, SubsetRequest(factors, 4));
    EXPECT_EQ(design.GetDesign(4, 1)->GetQuality().ConditionNumber, -99);
}

TEST_F(StabilityDesignTest, LookUpsFindNothingOutside) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetDesign(2, 1), nullptr);
    EXPECT_EQ(design.GetDesign(3, 4), nullptr);
    EXPECT_EQ(design.GetDesign(3, 0), nullptr);
    EXPECT_EQ(design.GetDesign(3, -1), nullptr);
    EXPECT_EQ(design.GetDesignMatrix(2, 1), nullptr);
    EXPECT_EQ(design.GetDesignMatrix(3, 4), nullptr);
    EXPECT_EQ(design.GetDesignMatrix(3, -1), nullptr);
}

TEST_F(StabilityDesignTest, IndexZeroIsTheFirst) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetDesignMatrix(3, 0), design.GetDesignMatrix(3, 1));
}

TEST_F(StabilityDesignTest, AssembledMatrixHasNumbersOfItsOwn) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetDesignMatrix(-1, -1), design.GetDesignMatrix().get());
}

TEST_F(StabilityDesignTest, OtherSetsCanBeUsedAfterwards) {
    StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
    design.SpecifyUsedDesigns({{3, 1}, {7, 1}, {3, 3}});
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 6);
    // The set that was not generated keeps its letter.
    EXPECT_EQ((*design.GetDesignMatrix())(4, 1), 67);
    EXPECT_EQ(design.GetUniqueUsedDesignsets(), (Pairs{{3, 1}, {3, 3}}));
}

TEST_F(StabilityDesignTest, TooManyRunsAreRefusedAndNothingChanges) {
    StabilityDesign design = MakeStability({{1, 1}});
    const Pairs before = design.GetUsedDesigns();
    EXPECT_THROW(design.SpecifyUsedDesigns(Pairs(120000, {1, 1})), Exception);
    EXPECT_EQ(design.GetUsedDesigns(), before);
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 9);
}

std::string BuildingError(EDesign::Type type,
                          const Factors& factors,
                          const DesignOptions& options) {
    try {
        const StabilityDesign design(type, factors, options);
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST_F(StabilityDesignTest, ReductionZeroIsRefused) {
    EXPECT_EQ(
        BuildingError(EDesign::Stability, factors_, StabilityRequest(factors_, {{1, 1}, {0, 1}})),
        "Reduction should be greater than 0.");
    EXPECT_EQ(BuildingError(EDesign::GeneralizedSubset, factors_, SubsetRequest(factors_, 0)),
              "Reduction should be greater than 0.");
}

TEST_F(StabilityDesignTest, IndexOutsideTheReductionIsRefused) {
    for (const unsigned long long index : {0ULL, 4ULL}) {
        EXPECT_EQ(
            BuildingError(EDesign::Stability, factors_, StabilityRequest(factors_, {{3, index}})),
            "The selected design should be between 1 and the reduction.");
    }
}

TEST_F(StabilityDesignTest, OptionsMustBeOfTheFamily) {
    EXPECT_EQ(BuildingError(EDesign::Stability, factors_, DesignOptions()), "Options are missing.");
}

TEST_F(StabilityDesignTest, MoreRunsThanADesignMayHaveAreRefusedBeforeTheSearch) {
    const TestFactors factors = TestFactors().Quantitatives(22);
    EXPECT_THAT(BuildingError(EDesign::Stability, factors, StabilityRequest(factors, {{1, 1}})),
                ::testing::HasSubstr("at most 1000000 runs"));
}

TEST_F(StabilityDesignTest, ReductionBeyondAllLevelsLeavesEmptySubsets) {
    const StabilityDesign design = MakeSubsets(20);
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 9);
    EXPECT_EQ(design.GetDesignMatrix()->SizeColumns(), 3);
    int empty = 0;
    for (int index = 1; index <= 20; ++index) {
        const auto data = design.GetDesign(20, index);
        ASSERT_NE(data, nullptr);
        if (data->GetDesignMatrix().SizeRows() == 0) {
            ++empty;
            EXPECT_EQ(data->GetReplicateRow(), 0);
            EXPECT_EQ(data->GetQuality().ConditionNumber, -99);
        }
    }
    EXPECT_GE(empty, 11);
}

TEST_F(StabilityDesignTest, BreakLeavesTheBuild) {
    const SilentDisplay display(1);
    EXPECT_THROW(
        static_cast<void>(
            Builder(EDesign::Stability).Build(factors_, StabilityRequest(factors_, {{3, 1}}))),
        CancelException);
    EXPECT_EQ(display.Title(), "Generating design...");
}

// --- Names ------------------------------------------------------------------------------------

TEST_F(StabilityDesignTest, CentreIsTheMiddleLevelTheFirstOrZero) {
    const TestFactors factors =
        TestFactors().Quantitative().MultilevelOf(4).MultilevelOf(5).Qualitative(3);
    const Vector centre = MakeStability().GetCenterpoint(factors);
    EXPECT_EQ(centre, (Vector{0, 66, 67, 65}));
}

TEST_F(StabilityDesignTest, CombinationsAreTheRunsOfTheFullFactorial) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
    EXPECT_EQ(design.GetCombination(Vector{65, 65}, factors_), "c1");
    EXPECT_EQ(design.GetCombination(Vector{67, 66}, factors_), "c6");
}

TEST_F(StabilityDesignTest, CombinationIsFoundBehindTheSetsLetter) {
    EXPECT_EQ(MakeStability().GetCombination(Vector{68, 67, 66}, factors_), "c6");
}

TEST_F(StabilityDesignTest, CombinationIsFoundWithinTheTolerance) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetCombination(Vector{67.01F, 65.99F}, factors_), "c6");
    EXPECT_EQ(design.GetCombination(Vector{67.02F, 66}, factors_), "");
}

TEST_F(StabilityDesignTest, OtherRowsHaveNoName) {
    const StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetCombination(Vector{68, 65}, factors_), "");
    EXPECT_EQ(design.GetCombination(Vector{65}, factors_), "");
    EXPECT_EQ(design.GetCombination(Vector(), factors_), "");
}

TEST_F(StabilityDesignTest, NamesDoNotNeedTheFullFactorialInUse) {
    const StabilityDesign whole = MakeStability();
    const StabilityDesign part = MakeStability({{3, 2}});
    EXPECT_EQ(part.GetNumberOfCombinations(factors_), 9);
    for (const auto& row : RowsOf(*whole.GetDesignMatrix(1, 1))) {
        const Vector run{row[0], row[1]};
        EXPECT_EQ(part.GetCombination(run, factors_), whole.GetCombination(run, factors_));
    }
}

TEST_F(StabilityDesignTest, NamesAreListedByNumber) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const StabilityDesign design(EDesign::Stability, factors, StabilityRequest(factors, {{1, 1}}));
    const auto names = design.GetFormulationVector(factors);
    ASSERT_EQ(names.size(), 16U);
    EXPECT_EQ(names[1], "c2");
    EXPECT_EQ(names[9], "c10");
    EXPECT_EQ(StabilityDesign::GetFormulationString(10), "c10");
}

TEST_F(StabilityDesignTest, CentrePointsHaveANameOfTheirOwn) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    StabilityDesign design(
        EDesign::Stability, factors, StabilityRequest(factors, {{1, 1}, {2, 1}}));
    design.GetDesign(2, 1)->SetCenterPoints(2, factors, none_);
    design.SpecifyUsedDesigns(design.GetUsedDesigns());
    EXPECT_EQ(design.GetNumberOfCombinations(factors), 5);
    EXPECT_EQ(design.GetCombination(Vector{0, 0}, factors), "c5cp");
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, {0, 3}, factors);
    EXPECT_EQ(names.size(), 8U);
    EXPECT_EQ(names.back(), "c5cp-T3");
}

TEST_F(StabilityDesignTest, CentrePointsOfASubsetWaitForTheNextAssembly) {
    StabilityDesign design = MakeStability();
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
    design.GetDesign(3, 1)->SetCenterPoints(1, factors_, none_);
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 27);
    design.SpecifyUsedDesigns(design.GetUsedDesigns());
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 10);
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 28);
}

TEST_F(StabilityDesignTest, StabilityNamesTellThePointInTime) {
    const StabilityDesign design = MakeStability({{1, 1}, {3, 1}, {1, 1}});
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, {0, 4.5F}, factors_);
    ASSERT_EQ(names.size(), 21U);
    ASSERT_EQ(combinations.size(), 21U);
    EXPECT_EQ(names[0], "c1-T0");
    EXPECT_EQ(names[9], combinations[9] + "-T4.5");
    // A time that is missing is the number of the set, from 0.
    EXPECT_EQ(names[12], "c1-T2");
    EXPECT_EQ(combinations[20], "c9");
}

TEST_F(StabilityDesignTest, NamesAreAppended) {
    std::vector<std::string> names{"before"};
    std::vector<std::string> combinations;
    MakeStability({{1, 1}}).GetStabilityDesignNames(names, combinations, {}, factors_);
    EXPECT_EQ(names.size(), 10U);
    EXPECT_EQ(names.front(), "before");
}

TEST_F(StabilityDesignTest, SettingsAreTheNamesOfTheSets) {
    EXPECT_THAT(MakeStability({{3, 2}, {3, 1}}).GetSettingsVector(),
                ElementsAre("C:2", "C:2", "C:2", "C:1", "C:1", "C:1"));
}

TEST_F(StabilityDesignTest, DesignSetsAreTimesOrNumbers) {
    EXPECT_THAT(MakeStability({{3, 2}, {3, 1}}).GetDesignSetVector({6}),
                ElementsAre(6, 6, 6, 1, 1, 1));
}

TEST_F(StabilityDesignTest, SubsetNamesTellTheSubset) {
    const StabilityDesign design = MakeSubsets();
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, {}, factors_);
    EXPECT_THAT(names,
                ElementsAre("c1-C:1",
                            "c2-C:1",
                            "c3-C:1",
                            "c4-C:2",
                            "c5-C:2",
                            "c6-C:2",
                            "c7-C:3",
                            "c8-C:3",
                            "c9-C:3"));
}

TEST_F(StabilityDesignTest, ReplicateRowIsARunOfTheSubset) {
    const StabilityDesign design = MakeSubsets();
    for (int index = 1; index <= 3; ++index) {
        EXPECT_GE(design.GetDesign(3, index)->GetReplicateRow(), 1);
        EXPECT_LE(design.GetDesign(3, index)->GetReplicateRow(), 3);
    }
}

TEST_F(StabilityDesignTest, ReplicatedRunOfASubsetIsNamed) {
    StabilityDesign design = MakeSubsets();
    design.GetDesign(3, 2)->SetReplicateRow(2);
    EXPECT_THAT(design.GetFormulationVector(factors_), ::testing::Contains("c5"));
    design.GetDesign(3, 2)->SetCenterPoints(2, factors_, none_);
    design.SpecifyUsedDesigns(design.GetUsedDesigns());
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, {}, factors_);
    ASSERT_EQ(names.size(), 11U);
    EXPECT_EQ(combinations[4], "c5rp");
    EXPECT_EQ(names[6], "c5rp-C:2");
    EXPECT_EQ(names[7], "c5rp-C:2");
    EXPECT_EQ(combinations[8], "c7");
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
}

TEST_F(StabilityDesignTest, RunKnownFromAnotherSetKeepsItsName) {
    StabilityDesign design = MakeSubsets();
    design.GetDesign(3, 2)->SetReplicateRow(1);
    design.GetDesign(3, 2)->SetCenterPoints(1, factors_, none_);
    design.SpecifyUsedDesigns({{3, 1}, {3, 2}, {3, 2}});
    EXPECT_THAT(design.GetFormulationVector(factors_),
                ElementsAre("c1", "c2", "c3", "c4rp", "c5", "c6"));
}

TEST_F(StabilityDesignTest, KnownRunBecomesAReplicateUnderItsName) {
    StabilityDesign design = MakeSubsets();
    design.GenerateDesigns(1, 0, true, factors_, nullptr);
    design.GetDesign(1, 1)->SetReplicateRow(0);
    const auto subset = design.GetDesign(3, 1);
    subset->SetReplicateRow(1);
    subset->SetCenterPoints(1, factors_, none_);
    design.SpecifyUsedDesigns({{1, 1}, {3, 1}});
    const Vector run = subset->GetDesignMatrix().GetRow(1);
    EXPECT_THAT(design.GetCombination(run, factors_), ::testing::EndsWith("rp"));
    EXPECT_EQ(design.GetNumberOfCombinations(factors_), 9);
}

// --- Whole designs ----------------------------------------------------------------------------

TEST_F(StabilityDesignTest, IsReadBackFromAStore) {
    StabilityDesign design = MakeStability({{3, 2}, {1, 1}});
    design.GetDesign(3, 2)->SetReplicates(1, factors_, none_);
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    const StabilityDesign loaded(EDesign::Stability, factors_, *store.OpenRoot());
    EXPECT_EQ(*loaded.GetDesignMatrix(), *design.GetDesignMatrix());
    EXPECT_EQ(loaded.GetUsedDesigns(), design.GetUsedDesigns());
    EXPECT_EQ(loaded.GetNumberOfReductions(), 2);
    EXPECT_EQ(*loaded.GetDesignMatrix(3, 2), *design.GetDesignMatrix(3, 2));
    EXPECT_EQ(loaded.GetDesign(3, 2)->GetReplicates(), 1);
    ConfigurationStore again;
    loaded.Save(again.OpenRoot().get());
    EXPECT_TRUE(store == again);
}

TEST_F(StabilityDesignTest, StandsUnderItsKeys) {
    ConfigurationStore store;
    MakeStability({{3, 2}, {1, 1}}).Save(store.OpenRoot().get());
    const auto design = store.OpenRoot()->OpenSection("Design");
    ASSERT_NE(design, nullptr);
    EXPECT_NE(design->OpenSection("FMatrix"), nullptr);
    const auto own = design->OpenSection("StabilityDesign");
    ASSERT_NE(own, nullptr);
    std::vector<std::string> used;
    own->ReadStringList("UsedDesigns", &used, ';');
    EXPECT_THAT(used, ElementsAre("3,2", "1,1"));
    EXPECT_EQ(own->SectionCount("Reductions"), 2);
    int reduction = 0;
    EXPECT_TRUE(own->OpenSection("Reductions", 2)->ReadInt("Reduction", &reduction));
    EXPECT_EQ(reduction, 3);
    EXPECT_EQ(own->OpenSection("Reductions", 2)->SectionCount("GFFDesigns"), 3);
}

TEST_F(StabilityDesignTest, ASecondSaveReplacesTheFirst) {
    StabilityDesign design = MakeStability();
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    MakeStability({{1, 1}}).Save(store.OpenRoot().get());
    EXPECT_EQ(store.OpenRoot()
                  ->OpenSection("Design")
                  ->OpenSection("StabilityDesign")
                  ->SectionCount("Reductions"),
              1);
}

TEST_F(StabilityDesignTest, ADamagedStoreIsReadAsFarAsItGoes) {
    ConfigurationStore store;
    const auto own =
        store.OpenRoot()->OpenOrCreateSection("Design")->OpenOrCreateSection("StabilityDesign");
    own->WriteStringList("UsedDesigns", {"1,1", "x", "2"}, ';');
    own->OpenOrCreateSection("Reductions", 1)->WriteInt("Reduction", -4);
    own->OpenOrCreateSection("Reductions", 2)->WriteInt("Reduction", 2);
    own->OpenOrCreateSection("Reductions", 2)->OpenOrCreateSection("GFFDesigns", 1);
    const StabilityDesign design(EDesign::Stability, factors_, *store.OpenRoot());
    EXPECT_EQ(design.GetUsedDesigns(), (Pairs{{1, 1}}));
    EXPECT_EQ(design.GetNumberOfReductions(), 1);
    EXPECT_EQ(design.GetDesignMatrix(), nullptr);
    std::vector<std::string> names;
    design.GetStabilityDesignNames(names, names, {}, factors_);
    EXPECT_TRUE(names.empty());
}

TEST_F(StabilityDesignTest, CloneHasSubsetsOfItsOwn) {
    const StabilityDesign design = MakeStability();
    const auto clone = std::dynamic_pointer_cast<StabilityDesign>(design.Clone());
    ASSERT_NE(clone, nullptr);
    clone->GetDesign(3, 1)->SetReplicates(1, factors_, none_);
    EXPECT_EQ(design.GetDesignMatrix(3, 1)->SizeRows(), 3);
    EXPECT_EQ(clone->GetDesignMatrix(3, 1)->SizeRows(), 6);
    EXPECT_EQ(clone->GetUsedDesigns(), design.GetUsedDesigns());
}

TEST_F(StabilityDesignTest, AdjustingGivesZerosAMeaning) {
    StabilityDesign design = MakeStability({{3, 1}});
    NCDataMatrix<float> matrix = *design.GetDesignMatrix();
    matrix.ConcatRows(NCDataMatrix<float>{{65, 0, 0}});
    design.SetDesignMatrix(matrix);
    design.GetDesign(3, 1)->GetDesignMatrixChange()(1, 1, 0);
    design.AdjustCenterPoints(factors_, none_);
    EXPECT_EQ(RowsOf(*design.GetDesignMatrix()).back(), (std::vector<float>{65, 66, 65}));
    EXPECT_EQ((*design.GetDesignMatrix(3, 1))(1, 1), 66);
}

TEST_F(StabilityDesignTest, TypeIsKept) {
    EXPECT_EQ(MakeStability({{1, 1}}).IsDesign(), EDesign::Stability);
    EXPECT_EQ(MakeSubsets().IsDesign(), EDesign::GeneralizedSubset);
}

// --- Builder ----------------------------------------------------------------------------------

TEST(StabilityDesignBuilder, AnswersTheSameForAllFactors) {
    for (const EDesign::Type type : {EDesign::Stability, EDesign::GeneralizedSubset}) {
        const DesignBuilder& builder = Builder(type);
        const TestFactors factors = TestFactors().Quantitatives(3);
        EXPECT_EQ(builder.GetDefaultRuns(factors, EObjective::Screening), 0U);
        EXPECT_THAT(builder.GetLegalRuns(factors, DesignOptions()), ElementsAre(0U));
        EXPECT_EQ(builder.GetMinimumCenterPoints(), 0U);
        EXPECT_EQ(builder.GetPriority(factors), 0);
        EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Optimization), EModel::Linear);
        EXPECT_EQ(builder.IsDesign(), type);
    }
}

TEST(StabilityDesignBuilder, IsValidForProcessFactorsOnly) {
    for (const EDesign::Type type : {EDesign::Stability, EDesign::GeneralizedSubset}) {
        const auto isValid = [type](const TestFactors& factors) {
            return Builder(type).IsValid(factors, DesignOptions(Builder(type), factors));
        };
        EXPECT_TRUE(isValid(TestFactors().Quantitative()));
        EXPECT_TRUE(isValid(TestFactors().Qualitative(3).MultilevelOf(5)));
        EXPECT_FALSE(isValid(TestFactors().Formulation().Formulation()));
        EXPECT_FALSE(isValid(TestFactors()));
    }
}

TEST(StabilityDesignBuilder, IsValidForLegalPairsOnly) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const auto isValid = [&](const Used& used) {
        return Builder(EDesign::Stability).IsValid(factors, StabilityRequest(factors, used));
    };
    EXPECT_TRUE(isValid({{1, 1}, {9, 9}}));
    EXPECT_FALSE(isValid({{1, 1}, {0, 1}}));
    EXPECT_FALSE(isValid({{3, 0}}));
    EXPECT_FALSE(isValid({{3, 4}}));
}

TEST(StabilityDesignBuilder, IsNotValidForReductionZeroOrOtherOptions) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_FALSE(Builder(EDesign::GeneralizedSubset).IsValid(factors, SubsetRequest(factors, 0)));
    EXPECT_FALSE(Builder(EDesign::Stability).IsValid(factors, DesignOptions()));
}

TEST(StabilityDesignBuilder, FailuresGiveAnEmptyHandle) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(Builder(EDesign::GeneralizedSubset).Build(factors, SubsetRequest(factors, 0)),
              nullptr);
    // Valid, but of too many runs.
    const TestFactors many = TestFactors().Quantitatives(22);
    EXPECT_EQ(Builder(EDesign::Stability).Build(many, StabilityRequest(many, {{1, 1}})), nullptr);
}

TEST(StabilityDesignBuilder, WithoutSetsThereAreNoRuns) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const auto design = Builder(EDesign::Stability).Build(factors, StabilityRequest(factors, {}));
    ASSERT_NE(design, nullptr);
    EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), 0);
}

TEST(StabilityDesignBuilder, MakesTheOptionsOfItsType) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_NE(dynamic_cast<StabilityDesignOptions*>(
                  Builder(EDesign::Stability)
                      .GetDefaultDesignSpecificOptions(factors, DesignOptions())
                      .get()),
              nullptr);
    EXPECT_NE(dynamic_cast<GeneralizedSubsetDesignsDesignOptions*>(
                  Builder(EDesign::GeneralizedSubset)
                      .GetDefaultDesignSpecificOptions(factors, DesignOptions())
                      .get()),
              nullptr);
}

TEST_F(StabilityDesignTest, RunsThatAreTooManyAreTold) {
    const TestFactors factors = TestFactors().Quantitatives(22);
    try {
        const StabilityDesign design(
            EDesign::Stability, factors, StabilityRequest(factors, {{1, 1}}));
        FAIL();
    } catch (const Exception& exception) {
        EXPECT_STREQ(exception.what(),
                     "The design sets would have 4194304 runs. They may have at most 1000000 runs "
                     "in all.");
    }
}

TEST_F(StabilityDesignTest, UniqueSetsStandByReductionAndIndex) {
    const StabilityDesign design = MakeStability({{3, 3}, {1, 1}, {3, 1}, {3, 3}, {1, 1}});
    EXPECT_EQ(design.GetUniqueUsedDesignsets(), (Pairs{{1, 1}, {3, 1}, {3, 3}}));
}

}  // namespace
