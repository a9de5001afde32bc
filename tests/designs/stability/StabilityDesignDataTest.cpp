#include "designs/stability/StabilityDesignData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "frame/DesignOptions.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using Matrix = NCDataMatrix<float>;
using ::testing::Pair;

const TestFactors cFactors = TestFactors().Quantitative().MultilevelOf(2);
const Matrix cRuns{{-1, 65}, {1, 65}, {-1, 66}, {1, 66}};
const Matrix cTwice{{-1, 65}, {1, 65}, {-1, 66}, {1, 66}, {-1, 65}, {1, 65}, {-1, 66}, {1, 66}};

StabilityDesignData MakeData() {
    return {2, 1, StabilityDesignQuality(true, false, 12, false, true, {0, 4, 2}, 1.5F), cRuns};
}

void SetReplicates(StabilityDesignData& data, int count) {
    data.SetReplicates(count, cFactors, DesignOptions());
}

void SetCenterPoints(StabilityDesignData& data, int count) {
    data.SetCenterPoints(count, cFactors, DesignOptions());
}

TEST(StabilityDesignData, TwoReplicatesOfFourRunsMakeTwelve) {
    StabilityDesignData data = MakeData();
    SetReplicates(data, 2);
    EXPECT_EQ(data.GetDesignMatrix().SizeRows(), 12);
    SetReplicates(data, 0);
    EXPECT_EQ(data.GetDesignMatrix(), cRuns);
}

TEST(StabilityDesignData, ReplicatesStandBeforeCentrePoints) {
    StabilityDesignData data = MakeData();
    SetCenterPoints(data, 2);
    SetReplicates(data, 1);
    Matrix expected = cTwice;
    expected.ConcatRows(Matrix{{0, 65}, {0, 65}});
    EXPECT_EQ(data.GetDesignMatrix(), expected);
    EXPECT_EQ(data.GetBaseRuns(), 4);
}

TEST(StabilityDesignData, CentrePointsAreReplaced) {
    StabilityDesignData data = MakeData();
    SetReplicates(data, 1);
    SetCenterPoints(data, 3);
    SetCenterPoints(data, 1);
    Matrix expected = cTwice;
    expected.ConcatRows(Matrix{{0, 65}});
    EXPECT_EQ(data.GetDesignMatrix(), expected);
    EXPECT_EQ(data.GetCenterPoints(), 1);
    EXPECT_EQ(data.GetReplicates(), 1);
}

TEST(StabilityDesignData, ReplicateRowStandsInForTheCentre) {
    StabilityDesignData data = MakeData();
    data.SetReplicateRow(3);
    SetCenterPoints(data, 2);
    EXPECT_EQ(RowsOf(data.GetDesignMatrix(), 5, 6),
              (std::vector<std::vector<float>>{{-1, 66}, {-1, 66}}));
}

TEST(StabilityDesignData, NegativeCountsAreNone) {
    StabilityDesignData data = MakeData();
    SetReplicates(data, -1);
    SetCenterPoints(data, -2);
    EXPECT_EQ(data.GetDesignMatrix(), cRuns);
}

TEST(StabilityDesignData, WithoutRunsThereIsNothingToReplicate) {
    StabilityDesignData data(5, 2, StabilityDesignQuality(), Matrix(0, 2));
    data.SetReplicateRow(1);
    SetReplicates(data, 2);
    EXPECT_EQ(data.GetDesignMatrix().SizeRows(), 0);
    SetCenterPoints(data, 1);
    EXPECT_EQ(data.GetDesignMatrix(), (Matrix{{0, 65}}));
}

TEST(StabilityDesignData, IsReadBackFromAStore) {
    StabilityDesignData data = MakeData();
    data.SetReplicateRow(2);
    SetReplicates(data, 1);
    SetCenterPoints(data, 2);
    ConfigurationStore store;
    data.Save(store.OpenRoot().get());
    StabilityDesignData loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetDesignMatrix(), data.GetDesignMatrix());
    EXPECT_EQ(loaded.GetReduction(), 2);
    EXPECT_EQ(loaded.GetIndex(), 1);
    EXPECT_EQ(loaded.GetReplicates(), 1);
    EXPECT_EQ(loaded.GetCenterPoints(), 2);
    EXPECT_EQ(loaded.GetReplicateRow(), 2);
    EXPECT_TRUE(loaded.GetQuality().Unique);
    EXPECT_EQ(loaded.GetQuality().Iterations, 12);
    EXPECT_FALSE(loaded.GetQuality().Balance);
    EXPECT_FALSE(loaded.GetQuality().OA);
    EXPECT_TRUE(loaded.GetQuality().NOA);
    EXPECT_THAT(loaded.GetQuality().Distances, ::testing::ElementsAre(0, 4, 2));
    EXPECT_EQ(loaded.GetQuality().ConditionNumber, 1.5F);
}

TEST(StabilityDesignData, ASecondSaveReplacesTheFirst) {
    ConfigurationStore store;
    StabilityDesignData data = MakeData();
    SetReplicates(data, 2);
    data.Save(store.OpenRoot().get());
    SetReplicates(data, 0);
    data.Save(store.OpenRoot().get());
    ConfigurationStore once;
    data.Save(once.OpenRoot().get());
    EXPECT_TRUE(store == once);
}

TEST(StabilityDesignData, StandsUnderItsKeys) {
    ConfigurationStore store;
    MakeData().Save(store.OpenRoot().get());
    const auto root = store.OpenRoot();
    int rows = 0;
    EXPECT_TRUE(root->OpenSection("Design")->OpenSection("FMatrix")->ReadInt("NRows", &rows));
    EXPECT_EQ(rows, 4);
    const auto own = root->OpenSection("GFF");
    ASSERT_NE(own, nullptr);
    for (const char* key : {"Reduction", "Index", "Replicates", "Centerpoints", "ReplicateRow"}) {
        int value = 0;
        EXPECT_TRUE(own->ReadInt(key, &value)) << key;
    }
    const auto quality = own->OpenSection("GFFQuality");
    ASSERT_NE(quality, nullptr);
    float number = 0;
    EXPECT_TRUE(quality->ReadFloat("ConditionNumber", &number));
    EXPECT_EQ(number, 1.5F);
}

TEST(StabilityDesignData, WithoutAMatrixTheOwnOneIsCleared) {
    ConfigurationStore store;
    StabilityDesignData data = MakeData();
    EXPECT_FALSE(data.Load(store.OpenRoot().get()));
    EXPECT_TRUE(data.GetDesignMatrix().IsEmpty());
    store.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_TRUE(data.Load(store.OpenRoot().get()));
}

TEST(StabilityDesignData, StoredCountsAreCutToTheRuns) {
    ConfigurationStore store;
    MakeData().Save(store.OpenRoot().get());
    const auto own = store.OpenRoot()->OpenOrCreateSection("GFF");
    for (const int count : {-7, 3, 1000000, std::numeric_limits<int>::max()}) {
        own->WriteInt("Centerpoints", count);
        own->WriteInt("Replicates", count);
        own->WriteInt("ReplicateRow", count);
        StabilityDesignData loaded;
        EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
        SetCenterPoints(loaded, 1);
        SetReplicates(loaded, 0);
        EXPECT_GE(loaded.GetBaseRuns(), 0) << count;
        EXPECT_LE(loaded.GetBaseRuns(), 4) << count;
    }
}

TEST(StabilityDesignData, AnInfiniteConditionNumberIsReadBack) {
    const StabilityDesignQuality quality(
        true, true, 1, true, true, {}, std::numeric_limits<float>::infinity());
    ConfigurationStore store;
    quality.Save(store.OpenRoot().get());
    StabilityDesignQuality loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.ConditionNumber, quality.ConditionNumber);
}

TEST(StabilityDesignQuality, BeginsWithoutFigures) {
    const StabilityDesignQuality quality;
    EXPECT_EQ(quality.Iterations, -1);
    EXPECT_EQ(quality.ConditionNumber, -99.0F);
    EXPECT_TRUE(quality.Distances.empty());
}

TEST(DesignsetName, IsALetterAndTheIndex) {
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(3, 2), "C:2");
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(1, 1), "A:1");
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(25, 25), "Y:25");
    EXPECT_EQ(MakeData().GetDesignsetName(), "B:1");
}

TEST(DesignsetName, IsEmptyOutsideTheLetters) {
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(26, 1), "");
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(0, 1), "");
    EXPECT_EQ(StabilityDesignData::GetDesignsetName(-1, 1), "");
}

TEST(DesignsetName, IsReadBack) {
    for (int reduction = 1; reduction <= 25; ++reduction) {
        EXPECT_THAT(StabilityDesignData::GetDesignSetPair(
                        StabilityDesignData::GetDesignsetName(reduction, reduction)),
                    Pair(reduction, reduction));
    }
}

TEST(DesignsetName, LetterAAloneIsTheFullFactorial) {
    EXPECT_THAT(StabilityDesignData::GetDesignSetPair("A"), Pair(1, 1));
}

TEST(DesignsetName, IndexMayHaveASign) {
    EXPECT_THAT(StabilityDesignData::GetDesignSetPair("C:+2"), Pair(3, 2));
    EXPECT_THAT(StabilityDesignData::GetDesignSetPair("C:-2"), Pair(3, -2));
}

TEST(DesignsetName, OtherTextsAreNoSet) {
    for (const std::string text : {"Z:1",
                                   "",
                                   ":",
                                   "B",
                                   "C:",
                                   ":1",
                                   "C:x",
                                   "C:1x",
                                   "C: 1",
                                   "CC:1",
                                   "C:1:2",
                                   "c:1",
                                   "@:1",
                                   "C:99999999999",
                                   "C:+-1",
                                   "C:++1"}) {
        EXPECT_THAT(StabilityDesignData::GetDesignSetPair(text), Pair(0, 0)) << text;
    }
}

}  // namespace
