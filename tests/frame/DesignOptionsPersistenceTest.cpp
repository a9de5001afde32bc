#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/ProbeBuilder.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;

// Every scalar differs from its default.
DesignOptions Unusual() {
    ProbeBuilder builder;
    builder.type = EDesign::FFR_IV;
    DesignOptions options(builder, TestFactors().Quantitatives(3));
    options.SetBlocks(2);
    options.SetRuns(16);
    options.SetCenterPoints(5);
    options.SetReplicates(1);
    options.SetReplicatedRuns(4);
    options.SetMaxRuns(100);
    options.SetStarDistance(1.5F);
    options.SetObjective(EObjective::RobustnessVerification);
    options.SetModel(EModel::SpecialCubic);
    return options;
}

void ExpectSameScalars(const DesignOptions& a, const DesignOptions& b) {
    EXPECT_EQ(a.GetBlocks(), b.GetBlocks());
    EXPECT_EQ(a.GetRuns(), b.GetRuns());
    EXPECT_EQ(a.GetCenterPoints(), b.GetCenterPoints());
    EXPECT_EQ(a.GetReplicates(), b.GetReplicates());
    EXPECT_EQ(a.GetReplicatedRuns(), b.GetReplicatedRuns());
    EXPECT_EQ(a.GetMaxRuns(), b.GetMaxRuns());
    EXPECT_EQ(a.GetStarDistance(), b.GetStarDistance());
    EXPECT_EQ(a.GetObjective(), b.GetObjective());
    EXPECT_EQ(a.GetModel(), b.GetModel());
    EXPECT_EQ(a.GetCreatedFromDesign(), b.GetCreatedFromDesign());
}

class DesignOptionsPersistence : public ::testing::Test {
  protected:
    void Save(const DesignOptions& options) { options.Save(store.OpenRoot().get()); }
    bool Load(DesignOptions& options) { return options.Load(store.OpenRoot().get()); }
    std::unique_ptr<ConfigurationSection> Section() {
        return store.OpenRoot()->OpenOrCreateSection("DesignOptions");
    }

    ConfigurationStore store;
};

TEST_F(DesignOptionsPersistence, DefaultsAreReadBack) {
    Save(DesignOptions());
    DesignOptions loaded = Unusual();
    EXPECT_TRUE(Load(loaded));
    ExpectSameScalars(loaded, DesignOptions());
}

TEST_F(DesignOptionsPersistence, EveryFieldIsReadBack) {
    Save(Unusual());
    DesignOptions loaded;
    EXPECT_TRUE(Load(loaded));
    ExpectSameScalars(loaded, Unusual());
}

TEST_F(DesignOptionsPersistence, CountsStandAsIntegersUnderTheirKeys) {
    Save(Unusual());
    const std::vector<std::pair<const char*, int>> expected{{"Blocks", 2},
                                                            {"Runs", 16},
                                                            {"Centerpoints", 5},
                                                            {"Replicates", 1},
                                                            {"ReplicatedRuns", 4},
                                                            {"MaxRuns", 100},
                                                            {"CreatedByDesign", 9}};
    for (const auto& [key, number] : expected) {
        int value = -1;
        EXPECT_TRUE(Section()->ReadInt(key, &value)) << key;
        EXPECT_EQ(value, number) << key;
    }
}

TEST_F(DesignOptionsPersistence, StarDistanceIsWrittenAsDouble) {
    Save(Unusual());
    double distance = 0;
    EXPECT_TRUE(Section()->ReadDouble("StarDistance", &distance));
    EXPECT_EQ(distance, 1.5);
    int number = 0;
    EXPECT_FALSE(Section()->ReadInt("StarDistance", &number));
}

TEST_F(DesignOptionsPersistence, StarDistanceKeepsEveryBitOfTheFloat) {
    DesignOptions options;
    options.SetStarDistance(std::sqrt(2.0F));
    Save(options);
    DesignOptions loaded;
    EXPECT_TRUE(Load(loaded));
    EXPECT_EQ(loaded.GetStarDistance(), std::sqrt(2.0F));
}

TEST_F(DesignOptionsPersistence, ObjectiveAndModelAreWrittenAsTexts) {
    Save(Unusual());
    std::string text;
    EXPECT_TRUE(Section()->ReadString("Objective", &text));
    EXPECT_EQ(text, "Robustness Verification");
    EXPECT_TRUE(Section()->ReadString("Model", &text));
    EXPECT_EQ(text, "Special Cubic");
}

TEST_F(DesignOptionsPersistence, MissingSectionReturnsFalseAndChangesNothing) {
    DesignOptions options = Unusual();
    EXPECT_FALSE(Load(options));
    ExpectSameScalars(options, Unusual());
}

TEST_F(DesignOptionsPersistence, MissingKeysLeaveTheNumbersButResetTheTexts) {
    (void)Section();
    DesignOptions options = Unusual();
    EXPECT_TRUE(Load(options));
    DesignOptions expected = Unusual();
    expected.SetObjective(EObjective::None);
    expected.SetModel(EModel::None);
    ExpectSameScalars(options, expected);
}

TEST_F(DesignOptionsPersistence, UnknownTextsGiveNone) {
    Save(Unusual());
    Section()->WriteKey("Objective", "something");
    Section()->WriteKey("Model", "something");
    DesignOptions loaded;
    EXPECT_TRUE(Load(loaded));
    EXPECT_EQ(loaded.GetObjective(), EObjective::None);
    EXPECT_EQ(loaded.GetModel(), EModel::None);
}

TEST_F(DesignOptionsPersistence, NegativeCountIsToldAndChangesNothing) {
    Save(DesignOptions());
    Section()->WriteInt("MaxRuns", -1);
    DesignOptions options = Unusual();
    EXPECT_THROW(Load(options), Exception);
    ExpectSameScalars(options, Unusual());
}

Generators FourWords() {
    DesignOptions options;
    EXPECT_TRUE(options.SetGenerators(std::vector<std::vector<int>>{{1}, {2}, {3}, {1, 2, -3}}));
    return *options.GetGenerators();
}

TEST_F(DesignOptionsPersistence, GeneratorsAreReadBack) {
    DesignOptions options;
    const Generators generators = FourWords();
    options.SetGenerators(&generators);
    Save(options);
    EXPECT_NE(Section()->OpenSection("Generators"), nullptr);
    DesignOptions loaded;
    EXPECT_TRUE(Load(loaded));
    ASSERT_NE(loaded.GetGenerators(), nullptr);
    EXPECT_EQ(*loaded.GetGenerators(), generators);
}

TEST_F(DesignOptionsPersistence, SavingWithoutGeneratorsRemovesTheOldOnes) {
    DesignOptions options;
    const Generators generators = FourWords();
    options.SetGenerators(&generators);
    Save(options);
    Save(DesignOptions());
    EXPECT_EQ(Section()->OpenSection("Generators"), nullptr);
    EXPECT_TRUE(Load(options));
    EXPECT_EQ(options.GetGenerators(), nullptr);
}

// Family options with one number.
class NumberOptions : public DesignSpecificOptions {
  public:
    explicit NumberOptions(int number_) : number(number_) {}
    void Save(ConfigurationSection* section) const override {
        // Nothing of the creating family stands in front of the family's own keys.
        int created = 0;
        EXPECT_FALSE(section->ReadInt("CreatedByDesign", &created));
        section->WriteInt("Number", number);
    }
    bool Load(const ConfigurationSection* section) override {
        return section->ReadInt("Number", &number);
    }
    void FromJson(const json_value& value) override {
        number = static_cast<int>(value.get_child("number").get_integer());
    }
    json_value ToJson() const override {
        json_value value = json_value::make_object();
        value.put_child("number") = number;
        return value;
    }
    int number;
};

TEST_F(DesignOptionsPersistence, FamilyOptionsStandInAChildOfTheirOwn) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    Save(options);
    const auto specific = Section()->OpenSection("SpecificOptions");
    ASSERT_NE(specific, nullptr);
    int number = 0;
    EXPECT_TRUE(specific->ReadInt("Number", &number));
    EXPECT_EQ(number, 7);
}

TEST_F(DesignOptionsPersistence, FamilyOptionsAreLoadedIntoThePresentObject) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    Save(options);
    const auto present = std::make_shared<NumberOptions>(0);
    DesignOptions loaded;
    loaded.SetDesignSpecificOptions(present);
    EXPECT_TRUE(Load(loaded));
    EXPECT_EQ(present->number, 7);
    EXPECT_EQ(loaded.GetDesignSpecificOptions(), present.get());
}

TEST_F(DesignOptionsPersistence, WithoutAnObjectTheFamilysSectionIsNotRead) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    Save(options);
    DesignOptions loaded;
    EXPECT_TRUE(Load(loaded));
    EXPECT_EQ(loaded.GetDesignSpecificOptions(), nullptr);
}

TEST_F(DesignOptionsPersistence, MissingFamilySectionIsSkipped) {
    Save(DesignOptions());
    const auto present = std::make_shared<NumberOptions>(3);
    DesignOptions loaded;
    loaded.SetDesignSpecificOptions(present);
    EXPECT_TRUE(Load(loaded));
    EXPECT_EQ(present->number, 3);
}

TEST_F(DesignOptionsPersistence, SavingWithoutFamilyOptionsRemovesTheOldOnes) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    Save(options);
    Save(DesignOptions());
    EXPECT_EQ(Section()->OpenSection("SpecificOptions"), nullptr);
}

TEST_F(DesignOptionsPersistence, CreatingFamilyIsWrittenLast) {
    // Seen by NumberOptions::Save, which finds no such key yet.
    DesignOptions options = Unusual();
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    Save(options);
    int created = 0;
    EXPECT_TRUE(Section()->ReadInt("CreatedByDesign", &created));
    EXPECT_EQ(created, 9);
}

std::vector<std::string> KeysOf(const json_value& value) {
    std::vector<std::string> keys;
    for (unsigned long long i = 0; i < value.get_length(); ++i) {
        keys.push_back(value.get_child_name(i));
    }
    return keys;
}

TEST(DesignOptionsJson, KeysStandInOrder) {
    EXPECT_THAT(KeysOf(DesignOptions().ToJson()),
                ElementsAre("blocks",
                            "runs",
                            "centerPoints",
                            "replicatedDesigns",
                            "replicatedRuns",
                            "maxRuns",
                            "starDistance"));
}

TEST(DesignOptionsJson, GeneratorsAndFamilyOptionsComeLast) {
    DesignOptions options;
    const Generators generators = FourWords();
    options.SetGenerators(&generators);
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    const json_value json = options.ToJson();
    ASSERT_EQ(json.get_length(), 9U);
    EXPECT_EQ(json.get_child_name(7), "generators");
    EXPECT_EQ(json.get_child_name(8), "designSpecificOptions");
    EXPECT_EQ(json.get_child("generators"), generators.ToJson());
    EXPECT_EQ(json.get_child("designSpecificOptions").get_child("number"), json_value(7));
}

TEST(DesignOptionsJson, ValuesHaveTheirKinds) {
    EXPECT_EQ(Unusual().ToJson().to_text(),
              R"({"blocks":2,"runs":16,"centerPoints":5,"replicatedDesigns":1,)"
              R"("replicatedRuns":4,"maxRuns":100,"starDistance":1.5})");
}

TEST(DesignOptionsJson, NumbersAreReadBackAndTheRestStays) {
    DesignOptions read;
    read.SetObjective(EObjective::SystemCharacterization);
    read.SetModel(EModel::Cubic);
    read.FromJson(Unusual().ToJson());
    DesignOptions expected = Unusual();
    EXPECT_EQ(read.GetBlocks(), 2U);
    EXPECT_EQ(read.GetRuns(), 16U);
    EXPECT_EQ(read.GetCenterPoints(), 5U);
    EXPECT_EQ(read.GetReplicates(), 1U);
    EXPECT_EQ(read.GetReplicatedRuns(), 4U);
    EXPECT_EQ(read.GetMaxRuns(), 100U);
    EXPECT_EQ(read.GetStarDistance(), 1.5F);
    EXPECT_EQ(read.GetObjective(), EObjective::SystemCharacterization);
    EXPECT_EQ(read.GetModel(), EModel::Cubic);
    EXPECT_EQ(read.GetCreatedFromDesign(), EDesign::None);
}

TEST(DesignOptionsJson, MissingMembersTakeTheirDefaults) {
    DesignOptions options = Unusual();
    options.FromJson(json_value::parse(R"({"runs": 4, "centerPoints": 2})"));
    EXPECT_EQ(options.GetBlocks(), 1U);
    EXPECT_EQ(options.GetRuns(), 4U);
    EXPECT_EQ(options.GetCenterPoints(), 2U);
    EXPECT_EQ(options.GetReplicates(), 0U);
    EXPECT_EQ(options.GetReplicatedRuns(), 0U);
    EXPECT_EQ(options.GetMaxRuns(), 12000U);
    EXPECT_EQ(options.GetStarDistance(), -99.0F);
}

TEST(DesignOptionsJson, MembersOfAnotherKindTakeTheirDefaults) {
    DesignOptions options = Unusual();
    options.FromJson(json_value::parse(
        R"({"blocks": "2", "runs": 4, "centerPoints": 2, "replicatedDesigns": 1.5,
            "replicatedRuns": null, "maxRuns": [7], "starDistance": "1.5"})"));
    EXPECT_EQ(options.GetBlocks(), 1U);
    EXPECT_EQ(options.GetReplicates(), 0U);
    EXPECT_EQ(options.GetReplicatedRuns(), 0U);
    EXPECT_EQ(options.GetMaxRuns(), 12000U);
    EXPECT_EQ(options.GetStarDistance(), -99.0F);
}

TEST(DesignOptionsJson, IntegerStarDistanceIsANumber) {
    DesignOptions options;
    options.FromJson(json_value::parse(R"({"runs": 4, "centerPoints": 2, "starDistance": 2})"));
    EXPECT_EQ(options.GetStarDistance(), 2.0F);
}

TEST(DesignOptionsJson, RunsAndCentrePointsAreRequired) {
    for (const char* text : {R"({"centerPoints": 2})",
                             R"({"runs": 4})",
                             R"({"runs": "4", "centerPoints": 2})",
                             R"({"runs": 4, "centerPoints": 2.0})",
                             R"({"runs": -4, "centerPoints": 2})"}) {
        DesignOptions options = Unusual();
        EXPECT_THROW(options.FromJson(json_value::parse(text)), Exception) << text;
        ExpectSameScalars(options, Unusual());
    }
}

TEST(DesignOptionsJson, ValueThatIsNoObjectChangesNothing) {
    for (const json_value& value : {json_value(), json_value(3), json_value::make_array()}) {
        DesignOptions options = Unusual();
        options.FromJson(value);
        ExpectSameScalars(options, Unusual());
    }
}

TEST(DesignOptionsJson, GeneratorsAreReadBack) {
    DesignOptions options;
    const Generators generators = FourWords();
    options.SetGenerators(&generators);
    DesignOptions read;
    read.FromJson(options.ToJson());
    ASSERT_NE(read.GetGenerators(), nullptr);
    EXPECT_EQ(*read.GetGenerators(), generators);
}

TEST(DesignOptionsJson, GeneratorsStayWithoutTheirMember) {
    DesignOptions options;
    const Generators generators = FourWords();
    options.SetGenerators(&generators);
    options.FromJson(DesignOptions().ToJson());
    ASSERT_NE(options.GetGenerators(), nullptr);
    EXPECT_EQ(*options.GetGenerators(), generators);
}

TEST(DesignOptionsJson, FamilyOptionsAreReadIntoThePresentObject) {
    DesignOptions options;
    options.SetDesignSpecificOptions(std::make_shared<NumberOptions>(7));
    const auto present = std::make_shared<NumberOptions>(0);
    DesignOptions read;
    read.SetDesignSpecificOptions(present);
    read.FromJson(options.ToJson());
    EXPECT_EQ(present->number, 7);
}

TEST(DesignOptionsJson, FamilyOptionsThatAreNoObjectAreSkipped) {
    const auto present = std::make_shared<NumberOptions>(3);
    DesignOptions read;
    read.SetDesignSpecificOptions(present);
    read.FromJson(
        json_value::parse(R"({"runs": 4, "centerPoints": 2, "designSpecificOptions": 7})"));
    EXPECT_EQ(present->number, 3);
}

}  // namespace
