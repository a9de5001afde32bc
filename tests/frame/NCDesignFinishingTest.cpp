#include <string>
#include <utility>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/OpenDesign.h"
#include "tests/support/TestFactors.h"

namespace {

using Table = NCDataMatrix<float>;

DesignOptions Options(unsigned blocks, unsigned centerPoints = 0, unsigned replicates = 0) {
    DesignOptions options;
    options.SetBlocks(blocks);
    options.SetCenterPoints(centerPoints);
    options.SetReplicates(replicates);
    return options;
}

TEST(NCDesign, StartsWithoutAMatrix) {
    const TestFactors factors;
    const OpenDesign design(factors);
    EXPECT_EQ(design.GetDesignMatrix(), nullptr);
    EXPECT_EQ(&design.GetFactors(), &factors);
    EXPECT_FALSE(design.IsMixtureOnlyDesign());
    EXPECT_TRUE(design.NCDesign::IsDesignMatrixCoded());
    EXPECT_EQ(design.GetDesignCoding(1, 1), 0);
}

TEST(NCDesign, SetMatrixIsACopyThatReplacesTheOldOne) {
    const TestFactors factors;
    OpenDesign design(factors, {{1}});
    const auto old = design.GetDesignMatrix();
    Table table{{2, 3}};
    design.SetDesignMatrix(table);
    table(1, 1, 9);
    EXPECT_EQ(design.Matrix(), (Table{{2, 3}}));
    EXPECT_EQ(*old, (Table{{1}}));
}

TEST(NCDesign, ClearingEmptiesTheHandle) {
    const TestFactors factors;
    OpenDesign design(factors, {{1}});
    const auto old = design.GetDesignMatrix();
    design.ClearDesignMatrix();
    EXPECT_EQ(design.GetDesignMatrix(), nullptr);
    EXPECT_EQ(*old, (Table{{1}}));
}

TEST(NCDesign, ClonesShareFactorsAndMatrix) {
    const TestFactors factors;
    const OpenDesign design(factors, {{1}});
    const auto clone = design.Clone();
    EXPECT_EQ(&clone->GetFactors(), &factors);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
}

TEST(NCDesign, ChangesInPlaceDoNotReachAClone) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, {{-1}, {1}});
    const auto clone = design.Clone();
    design.AddReplicates(1);
    design.AddCenterPoints(1, factors, Options(1));
    design.AddCCRuns(1.5F, 1);
    EXPECT_EQ(*clone->GetDesignMatrix(), (Table{{-1}, {1}}));
}

TEST(NCDesign, RecodingDoesNotReachAClone) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(2);
    OpenDesign design(factors, {{-1, -1}, {1, 1}});
    const auto clone = design.Clone();
    design.AdjustQualitativeFactors(factors);
    design.AdjustMultilevelFactors(factors);
    EXPECT_EQ(*clone->GetDesignMatrix(), (Table{{-1, -1}, {1, 1}}));
}

TEST(NCDesign, SaveMakesAnEmptySectionThatLoadFindsAndRemoveRemoves) {
    const TestFactors factors;
    OpenDesign design(factors, {{1}});
    ConfigurationStore store;
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    design.Save(store.OpenRoot().get());
    ConfigurationStore expected;
    expected.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_EQ(store, expected);
    EXPECT_TRUE(design.Load(store.OpenRoot().get()));
    design.Remove(store.OpenRoot().get());
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
}

TEST(NCDesign, RemovingWhatIsNotThereDoesNothing) {
    const TestFactors factors;
    ConfigurationStore store;
    OpenDesign(factors).Remove(store.OpenRoot().get());
    EXPECT_EQ(store, ConfigurationStore());
}

Table Finished(const Factors& factors, const Table& table, const DesignOptions& options) {
    OpenDesign design(factors);
    design.SetDesignMatrixAddAndAdjust(table, factors, options);
    return design.Matrix();
}

TEST(Finishing, CentrePointsComeBeforeReplicates) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table core = NCDesign::MakeFFDesignTable(factors, 8, false, false);
    Table once = core;
    once.ConcatRows(Table(2, 3, 0));
    Table twice = once;
    twice.ConcatRows(once);
    EXPECT_EQ(Finished(factors, core, Options(1, 2, 1)), twice);
}

TEST(Finishing, LevelsAreRecodedBeforeCentrePointsAreAdded) {
    const TestFactors factors = TestFactors().Qualitative(3).MultilevelOf(3).Quantitative();
    EXPECT_EQ(Finished(factors, {{-1, -1, -1}, {0, 0, 0}, {1, 1, 1}}, Options(1, 1)),
              (Table{{65, 65, -1}, {66, 66, 0}, {67, 67, 1}, {65, 66, 0}}));
}

TEST(Finishing, BlockColumnIsRecodedWithoutAnyLevelFactor) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    EXPECT_EQ(Finished(factors, {{-1, -1}, {1, 1}}, Options(2)), (Table{{-1, 65}, {1, 66}}));
}

TEST(Finishing, LastColumnWithoutBlocksIsRecodedOnlyBesideAQualitativeFactor) {
    const TestFactors plain = TestFactors().Quantitatives(1);
    EXPECT_EQ(Finished(plain, {{-1, -1}}, Options(1)), (Table{{-1, -1}}));
    const TestFactors qualitative = TestFactors().Qualitative(2);
    EXPECT_EQ(Finished(qualitative, {{-1, -1}}, Options(1)), (Table{{65, 65}}));
}

TEST(Finishing, ReplicatesRepeatReplicatedRunsToo) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    DesignOptions options = Options(1, 1, 1);
    options.SetReplicatedRuns(2);
    const Table finished = Finished(factors, {{-1}, {1}}, options);
    ASSERT_EQ(finished.SizeRows(), 10);
    for (int row = 1; row <= 5; ++row) {
        EXPECT_EQ(finished(row + 5, 1), finished(row, 1)) << row;
    }
    EXPECT_EQ(finished(5, 1), 0);
}

TEST(Finishing, StepsGoThroughTheOverrides) {
    class Recording : public OpenDesign {
      public:
        using OpenDesign::OpenDesign;
        void SetDesignMatrix(const Table& matrix) override {
            steps.emplace_back("set");
            NCDesign::SetDesignMatrix(matrix);
        }
        void AddCenterPoints(int count, const Factors&, const DesignOptions&) override {
            steps.push_back("centre points " + std::to_string(count));
        }
        void AddReplicates(unsigned count) override {
            steps.push_back("replicates " + std::to_string(count));
        }
        std::vector<std::string> steps;
    };
    const TestFactors factors = TestFactors().Quantitatives(1);
    Recording design(factors);
    design.SetDesignMatrixAddAndAdjust({{-1}, {1}}, factors, Options(1, 2, 3));
    EXPECT_THAT(design.steps, ::testing::ElementsAre("set", "centre points 2", "replicates 3"));
}

TEST(Finishing, DesignBeyondAMillionRunsIsToldBeforeAnythingIsMade) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, {{1}});
    EXPECT_THROW(
        design.SetDesignMatrixAddAndAdjust({{-1}, {1}}, factors, Options(1, 0, 4294967295U)),
        Exception);
    EXPECT_THROW(design.SetDesignMatrixAddAndAdjust({{-1}}, factors, Options(1, 4294967295U)),
                 Exception);
    EXPECT_EQ(design.Matrix(), (Table{{1}}));
}

TEST(AdjustQualitativeFactors, RecodesTwoAndThreeLevels) {
    const TestFactors factors = TestFactors().Qualitative(2).Qualitative(3);
    OpenDesign design(factors, {{-1, -1}, {1, 0}, {1, 1}});
    design.AdjustQualitativeFactors(factors);
    EXPECT_EQ(design.Matrix(), (Table{{65, 65}, {66, 66}, {66, 67}}));
}

TEST(AdjustQualitativeFactors, LeavesOtherValuesAndLevelCounts) {
    const TestFactors factors = TestFactors().Qualitative(2).Qualitative(3).Qualitative(4);
    const Table table{{0, 0.5F, -1}, {65, 67, 0}, {-99, -99, 1}};
    OpenDesign design(factors, table);
    design.AdjustQualitativeFactors(factors);
    EXPECT_EQ(design.Matrix(), table);
}

TEST(AdjustQualitativeFactors, LeavesOtherTypes) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(2).Formulation();
    const Table table{{-1, -1, -1}, {1, 1, 1}};
    OpenDesign design(factors, table);
    design.AdjustQualitativeFactors(factors);
    EXPECT_EQ(design.Matrix(), table);
}

TEST(AdjustQualitativeFactors, RecodesTheBlockColumnAsTwoLevels) {
    const TestFactors factors = TestFactors().Quantitative();
    OpenDesign design(factors, {{-1, -1}, {1, 1}, {0, 0}});
    design.AdjustQualitativeFactors(factors);
    EXPECT_EQ(design.Matrix(), (Table{{-1, 65}, {1, 66}, {0, 0}}));
}

TEST(AdjustMultilevelFactors, RecodesTwoAndThreeLevels) {
    const TestFactors factors = TestFactors().MultilevelOf(2).MultilevelOf(3);
    OpenDesign design(factors, {{-1, -1}, {1, 0}, {0, 1}});
    design.AdjustMultilevelFactors(factors);
    EXPECT_EQ(design.Matrix(), (Table{{65, 65}, {66, 66}, {0, 67}}));
}

TEST(AdjustMultilevelFactors, LeavesOtherTypesCountsAndTheBlockColumn) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(4).Quantitative();
    const Table table{{-1, -1, -1, -1}, {1, 1, 1, 1}};
    OpenDesign design(factors, table);
    design.AdjustMultilevelFactors(factors);
    EXPECT_EQ(design.Matrix(), table);
}

TEST(AdjustMultilevelFactors, TableNarrowerThanTheFactorsIsRecodedAsFarAsItReaches) {
    const TestFactors factors = TestFactors().MultilevelOf(2).MultilevelOf(2);
    OpenDesign design(factors, {{-1}, {1}});
    design.AdjustMultilevelFactors(factors);
    EXPECT_EQ(design.Matrix(), (Table{{65}, {66}}));
}

TEST(AdjustCenterPoints, MultilevelFactorsTakeTheMiddleLevelRoundedUp) {
    const std::vector<std::pair<unsigned, float>> expected{
        {2, 65}, {3, 66}, {4, 66}, {5, 67}, {6, 67}};
    for (const auto& [levels, code] : expected) {
        const TestFactors factors = TestFactors().MultilevelOf(levels);
        Table matrix{{65}, {0}};
        NCDesign::AdjustCenterPoints(matrix, factors, Options(1));
        EXPECT_EQ(matrix, (Table{{65}, {code}})) << levels;
    }
}

TEST(AdjustCenterPoints, QualitativeFactorsTakeTheFirstLevel) {
    const TestFactors factors = TestFactors().Qualitative(5);
    Table matrix{{67}, {0}};
    NCDesign::AdjustCenterPoints(matrix, factors, Options(1));
    EXPECT_EQ(matrix, (Table{{67}, {65}}));
}

TEST(AdjustCenterPoints, ContinuousFactorsStayAtZero) {
    const TestFactors factors = TestFactors().Quantitative().Formulation();
    Table matrix{{0, 0}};
    NCDesign::AdjustCenterPoints(matrix, factors, Options(1));
    EXPECT_EQ(matrix, (Table{{0, 0}}));
}

TEST(AdjustCenterPoints, CentrePointsRotateThroughTheBlocks) {
    const TestFactors factors = TestFactors().Qualitative(2);
    Table matrix{{65, 65}, {66, 66}, {0, 0}, {0, 0}, {0, 0}};
    NCDesign::AdjustCenterPoints(matrix, factors, Options(2));
    EXPECT_EQ(matrix, (Table{{65, 65}, {66, 66}, {65, 65}, {65, 66}, {65, 65}}));
}

TEST(AdjustCenterPoints, RotationGoesByRowsWithoutABlock) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    Table matrix{{1, 0}, {1, 66}, {1, 0}, {1, 0}, {1, 0}};
    NCDesign::AdjustCenterPoints(matrix, factors, Options(3));
    EXPECT_EQ(matrix, (Table{{1, 65}, {1, 66}, {1, 66}, {1, 67}, {1, 65}}));
}

TEST(AdjustCenterPoints, LastColumnWithoutBlocksCountsAsQualitative) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    Table matrix{{0, 0}};
    NCDesign::AdjustCenterPoints(matrix, factors, Options(1));
    EXPECT_EQ(matrix, (Table{{0, 65}}));
}

TEST(AdjustCenterPoints, WithoutAMatrixNothingHappens) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors);
    design.AdjustCenterPoints(factors, Options(1));
    design.AdjustQualitativeFactors(factors);
    design.AdjustMultilevelFactors(factors);
    design.AddReplicatedRuns(factors, Options(1));
    EXPECT_EQ(design.GetDesignMatrix(), nullptr);
}

TEST(AddCenterPoints, AppendsRowsWithMeaningfulLevels) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(4).Qualitative(3);
    OpenDesign design(factors, {{1, 68, 67}});
    design.AddCenterPoints(2, factors, Options(1));
    EXPECT_EQ(design.Matrix(), (Table{{1, 68, 67}, {0, 66, 65}, {0, 66, 65}}));
    EXPECT_THAT(design.Matrix(), HasCentrePointRows(2, factors));
}

TEST(AddCenterPoints, DesignInRealUnitsGetsRowsOfZero) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(4);
    OpenDesign design(factors, {{1, 68}});
    design.coded = false;
    design.AddCenterPoints(1, factors, Options(1));
    EXPECT_EQ(design.Matrix(), (Table{{1, 68}, {0, 0}}));
}

TEST(AddCenterPoints, NoneAppendNothing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    OpenDesign design(factors, {{1, -1}});
    design.AddCenterPoints(0, factors, Options(1));
    EXPECT_EQ(design.Matrix(), (Table{{1, -1}}));
}

TEST(AddReplicates, RepeatsTheWholeDesignInSequence) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, {{1}, {2}});
    design.AddReplicates(2);
    EXPECT_EQ(design.Matrix(), (Table{{1}, {2}, {1}, {2}, {1}, {2}}));
}

TEST(AddReplicates, MoreRunsThanADesignMayHaveAreRefusedAndChangeNothing) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, {{1}, {2}});
    for (const unsigned count : {500'000U, 2'147'483'647U, 4'294'967'295U}) {
        EXPECT_THROW(design.AddReplicates(count), Exception) << count;
        EXPECT_EQ(design.Matrix(), (Table{{1}, {2}})) << count;
    }
}

TEST(AddReplicates, NoneChangeNothing) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, {{1}, {2}});
    design.AddReplicates(0);
    EXPECT_EQ(design.Matrix(), (Table{{1}, {2}}));
}

TEST(AddCCRuns, AppendsAPairOnEachAxisMinusFirst) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    OpenDesign design(factors, {{1, 1, 1}});
    design.AddCCRuns(1.5F, 1);
    EXPECT_EQ(design.Matrix(),
              (Table{{1, 1, 1},
                     {-1.5F, 0, 0},
                     {1.5F, 0, 0},
                     {0, -1.5F, 0},
                     {0, 1.5F, 0},
                     {0, 0, -1.5F},
                     {0, 0, 1.5F}}));
}

TEST(AddCCRuns, StarRunsFormTheLastBlock) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    OpenDesign design(factors, {{1, 1, 1, 65}});
    design.AddCCRuns(1.5F, 2);
    ASSERT_EQ(design.Matrix().SizeRows(), 7);
    for (int row = 2; row <= 7; ++row) {
        EXPECT_EQ(design.Matrix()(row, 4), 66) << row;
    }
    design.AddCCRuns(2, 5);
    EXPECT_EQ(design.Matrix()(8, 4), 69);
    EXPECT_EQ(design.Matrix()(8, 1), -2);
}

TEST(MakeLDesignTable, CodesBecomeTheLevelsOfTheColumnsType) {
    const TestFactors factors =
        TestFactors().Quantitative().Formulation().Qualitative(3).MultilevelOf(4);
    OpenDesign design(factors);
    design.coding = [](int row, int) { return row; };
    EXPECT_EQ(design.MakeLDesignTable(factors, 3),
              (Table{{-1, -1, 65, 65}, {0, 0, 66, 66}, {1, 1, 67, 67}}));
}

TEST(MakeLDesignTable, TwoLevelColumnsUseTheOuterCodesOnly) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(2);
    OpenDesign design(factors);
    design.coding = [](int row, int) { return row; };
    EXPECT_EQ(design.MakeLDesignTable(factors, 3), (Table{{65, 65}, {0, 0}, {66, 66}}));
}

TEST(MakeLDesignTable, RowsAndColumnsOfTheCodingCountFromOne) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    OpenDesign design(factors);
    std::vector<std::pair<int, int>> asked;
    design.coding = [&asked](int row, int column) {
        asked.emplace_back(row, column);
        return 1;
    };
    (void)design.MakeLDesignTable(factors, 2);
    EXPECT_THAT(asked,
                ::testing::UnorderedElementsAre(
                    std::pair(1, 1), std::pair(1, 2), std::pair(2, 1), std::pair(2, 2)));
}

TEST(MakeLDesignTable, OtherTypesAndMissingCodesStayBlank) {
    const TestFactors factors = TestFactors().Quantitative().Other(CEType::Time, {}, 3);
    OpenDesign design(factors);
    EXPECT_EQ(design.MakeLDesignTable(factors, 1), (Table{{-99, -99}}));
    design.coding = [](int, int) { return 2; };
    EXPECT_EQ(design.MakeLDesignTable(factors, 1), (Table{{0, -99}}));
}

}  // namespace
