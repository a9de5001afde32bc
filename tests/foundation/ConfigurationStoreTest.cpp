#include "foundation/util/ConfigurationStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvFile.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

ConfigurationStore RoundTrip(const ConfigurationStore& store) {
    return ConfigurationStore::FromText(store.ToText(), "saved");
}

/// A store text with that root section.
std::string WithRoot(const std::string& root) {
    return R"({"format": "QORVA configuration", "version": 1, "root": )" + root + "}";
}

std::string WithValue(const std::string& value) {
    return WithRoot(R"({"sections": [{"name": "DesignOptions", "keys": {"Key": )" + value + "}}]}");
}

std::string ErrorOf(const std::string& text) {
    try {
        static_cast<void>(ConfigurationStore::FromText(text, "a.cfg"));
    } catch (const Exception& error) {
        return error.what();
    }
    return "no error";
}

/// One key of every kind, on three levels.
ConfigurationStore MakeFullStore() {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteBool("Bool", true);
    root->WriteInt("Int", -2147483647 - 1);
    root->WriteDouble("Double", 1.5);
    root->WriteKey("String", "\xC3\xA4; \"\n");
    root->WriteStringList("StringList", {"", "a;b", ""}, ';');
    const auto section = root->OpenOrCreateSection("Section", 2);
    section->WriteIntVector("IntVector", {1, -2, 2147483647});
    section->WriteFloatVector("FloatVector", {0.1F, -1e30F});
    section->OpenOrCreateSection("Deep")->WriteMatrix("Matrix", {{1, -1, 0.1F}, {2, 3, -99}});
    return store;
}

}  // namespace

TEST(ConfigurationStore, MissingKeyLeavesTheDestination) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    bool flag = true;
    int whole = 7;
    float narrow = 7;
    double wide = 7;
    std::string text = "7";
    Texts list{"7"};
    std::vector<int> wholes{7};
    std::vector<float> numbers{7};
    NCDataMatrix<float> matrix{{7}};
    EXPECT_FALSE(root->ReadBool("k", &flag) || root->ReadInt("k", &whole) ||
                 root->ReadFloat("k", &narrow) || root->ReadDouble("k", &wide) ||
                 root->ReadString("k", &text) || root->ReadIntVector("k", &wholes) ||
                 root->ReadFloatVector("k", &numbers) || root->ReadMatrix("k", &matrix));
    EXPECT_EQ(root->ReadStringList("k", &list, ';'), 0);
    EXPECT_TRUE(flag && whole == 7 && narrow == 7 && wide == 7 && text == "7");
    EXPECT_EQ(list, Texts{"7"});
    EXPECT_EQ(wholes, std::vector<int>{7});
    EXPECT_EQ(numbers, std::vector<float>{7});
    EXPECT_EQ(matrix(1, 1), 7);
}

TEST(ConfigurationStore, ValueOfAnotherKindLeavesTheDestination) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteKey("k", "1");
    int whole = 7;
    bool flag = true;
    EXPECT_FALSE(root->ReadInt("k", &whole));
    EXPECT_FALSE(root->ReadBool("k", &flag));
    root->WriteDouble("k", 2);
    EXPECT_FALSE(root->ReadInt("k", &whole));
    EXPECT_EQ(whole, 7);
    EXPECT_TRUE(flag);
}

TEST(ConfigurationStore, WriteReplacesAValueOfAnotherKind) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteKey("k", "text");
    root->WriteInt("k", 3);
    int whole = 0;
    std::string text;
    EXPECT_TRUE(root->ReadInt("k", &whole));
    EXPECT_FALSE(root->ReadString("k", &text));
}

TEST(ConfigurationStore, NumbersWiden) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteInt("i", 3);
    root->WriteDouble("d", static_cast<double>(0.1F));
    float narrow = 0;
    double wide = 0;
    EXPECT_TRUE(root->ReadDouble("i", &wide));
    EXPECT_EQ(wide, 3.0);
    EXPECT_TRUE(root->ReadFloat("i", &narrow));
    EXPECT_EQ(narrow, 3.0F);
    EXPECT_TRUE(root->ReadFloat("d", &narrow));
    EXPECT_EQ(narrow, 0.1F);
}

TEST(ConfigurationStore, DoubleBeyondAFloatIsNoFloat) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteDouble("d", 1e300);
    root->WriteDouble("inf", HUGE_VAL);
    float narrow = 7;
    EXPECT_FALSE(root->ReadFloat("d", &narrow));
    EXPECT_EQ(narrow, 7);
    EXPECT_TRUE(root->ReadFloat("inf", &narrow));
    EXPECT_EQ(narrow, HUGE_VALF);
}

TEST(ConfigurationStore, StringListKeepsEmptyItemsAndSeparators) {
    ConfigurationStore store;
    store.OpenRoot()->WriteStringList("k", {"", "a;b", "", ""}, ';');
    Texts list;
    EXPECT_EQ(RoundTrip(store).OpenRoot()->ReadStringList("k", &list, ';'), 4);
    EXPECT_EQ(list, (Texts{"", "a;b", "", ""}));
}

TEST(ConfigurationStore, EmptyStringListIsRead) {
    ConfigurationStore store;
    store.OpenRoot()->WriteStringList("k", {}, ';');
    Texts list{"old"};
    EXPECT_EQ(store.OpenRoot()->ReadStringList("k", &list, ';'), 0);
    EXPECT_TRUE(list.empty());
}

TEST(ConfigurationStore, PlainStringIsSplitIntoAList) {
    ConfigurationStore store;
    store.OpenRoot()->WriteKey("k", ";a;b");
    Texts list;
    EXPECT_EQ(store.OpenRoot()->ReadStringList("k", &list, ';'), 3);
    EXPECT_EQ(list, (Texts{"", "a", "b"}));
}

TEST(ConfigurationStore, SectionsOfOneNameAreNumberedFromOne) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->OpenOrCreateSection("Layer", 3)->WriteInt("n", 3);
    EXPECT_EQ(root->SectionCount("Layer"), 3);
    EXPECT_EQ(root->SectionCount("Other"), 0);
    int n = 0;
    EXPECT_TRUE(root->OpenSection("Layer", 3)->ReadInt("n", &n));
    EXPECT_FALSE(root->OpenSection("Layer")->ReadInt("n", &n));
    EXPECT_EQ(root->OpenSection("Layer", 0), nullptr);
    EXPECT_EQ(root->OpenSection("Layer", 4), nullptr);
    EXPECT_EQ(root->OpenSection("Other"), nullptr);
}

TEST(ConfigurationStore, OpeningAnExistingSectionMakesNone) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->OpenOrCreateSection("Layer", 2);
    root->OpenOrCreateSection("Layer");
    EXPECT_EQ(root->SectionCount("Layer"), 2);
}

TEST(ConfigurationStore, AbsurdSectionNumbersAreRefused) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    for (const int index : {0, -1, 100001, std::numeric_limits<int>::max()}) {
        EXPECT_THROW(root->OpenOrCreateSection("Layer", index), InvalidOperationException) << index;
    }
    EXPECT_EQ(root->SectionCount("Layer"), 0);
}

TEST(ConfigurationStore, DeepestNestingIsSavedAndLoaded) {
    ConfigurationStore store;
    auto section = store.OpenRoot();
    for (int depth = 1; depth <= 64; ++depth) {
        section = section->OpenOrCreateSection("S");
    }
    section->WriteMatrix("Matrix", {{1, 2}});
    section->WriteStringList("List", {"a"}, ';');
    EXPECT_EQ(RoundTrip(store), store);
    EXPECT_THROW(section->OpenOrCreateSection("S"), InvalidOperationException);
}

TEST(ConfigurationStore, RemoveSectionRemovesAllOfThatName) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->OpenOrCreateSection("A", 2);
    root->OpenOrCreateSection("B");
    root->RemoveSection("A");
    root->RemoveSection("A");
    EXPECT_EQ(root->SectionCount("A"), 0);
    EXPECT_EQ(root->SectionCount("B"), 1);
}

TEST(ConfigurationStore, RemoveThisRemovesOneSectionAndTheOthersMoveUp) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    for (int i = 1; i <= 3; ++i) {
        root->OpenOrCreateSection("Layer", i)->WriteInt("n", i);
    }
    root->OpenOrCreateSection("Layer", 2)->RemoveThis();
    EXPECT_EQ(root->SectionCount("Layer"), 2);
    int n = 0;
    EXPECT_TRUE(root->OpenSection("Layer", 2)->ReadInt("n", &n));
    EXPECT_EQ(n, 3);
}

TEST(ConfigurationStore, OtherHandlesOfARemovedSectionStayUsable) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    const auto section = root->OpenOrCreateSection("A");
    const auto other = root->OpenOrCreateSection("A");
    const auto child = other->OpenOrCreateSection("B");
    section->RemoveThis();
    other->WriteInt("n", 1);
    child->WriteInt("n", 1);
    other->RemoveThis();
    child->RemoveThis();
    EXPECT_EQ(store, ConfigurationStore());
}

TEST(ConfigurationStore, HandlesMayOutliveTheStore) {
    std::unique_ptr<ConfigurationSection> section;
    {
        ConfigurationStore store;
        section = store.OpenRoot()->OpenOrCreateSection("A");
    }
    section->WriteInt("n", 1);
    int n = 0;
    EXPECT_TRUE(section->ReadInt("n", &n));
    section->RemoveThis();
}

TEST(ConfigurationStore, RemovingTheRootRemovesItsContent) {
    ConfigurationStore store = MakeFullStore();
    store.OpenRoot()->RemoveThis();
    EXPECT_EQ(store, ConfigurationStore());
}

TEST(ConfigurationStore, EveryKindSurvivesTheText) {
    const ConfigurationStore store = MakeFullStore();
    EXPECT_EQ(RoundTrip(store), store);
    EXPECT_FALSE(store == ConfigurationStore());
}

TEST(ConfigurationStore, EmptyValuesSurviveTheText) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteKey("", "");
    root->WriteIntVector("i", {});
    root->WriteFloatVector("f", {});
    root->WriteStringList("s", {""}, ';');
    root->WriteMatrix("m", NCDataMatrix<float>());
    root->WriteMatrix("n", NCDataMatrix<float>(0, 5));
    root->WriteMatrix("o", NCDataMatrix<float>(5, 0));
    root->OpenOrCreateSection("");
    EXPECT_EQ(RoundTrip(store), store);
}

TEST(ConfigurationStore, NumbersThatAreNotFiniteSurviveTheText) {
    const float nan = std::nanf("");
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->WriteDouble("nan", -std::nan(""));
    root->WriteDouble("inf", HUGE_VAL);
    root->WriteDouble("-inf", -HUGE_VAL);
    root->WriteDouble("-0", -0.0);
    root->WriteFloatVector("f", {nan, -nan, HUGE_VALF, -HUGE_VALF, -0.0F});
    root->WriteMatrix("m", {{nan, -HUGE_VALF}});
    EXPECT_EQ(RoundTrip(store), store);
}

TEST(ConfigurationStore, RandomFloatsSurviveTheText) {
    std::mt19937 engine(4);
    std::vector<float> numbers(20000);
    for (float& number : numbers) {
        number = std::bit_cast<float>(static_cast<std::uint32_t>(engine()));
    }
    ConfigurationStore store;
    store.OpenRoot()->WriteFloatVector("f", numbers);
    EXPECT_EQ(RoundTrip(store), store) << "seed 4";
}

TEST(ConfigurationStore, EqualityTellsKindsAndZerosApart) {
    const auto with = [](const auto& write) {
        ConfigurationStore store;
        write(*store.OpenRoot());
        return store;
    };
    const auto whole = with([](ConfigurationSection& s) { s.WriteInt("k", 0); });
    const auto zero = with([](ConfigurationSection& s) { s.WriteDouble("k", 0.0); });
    const auto minus = with([](ConfigurationSection& s) { s.WriteDouble("k", -0.0); });
    EXPECT_FALSE(whole == zero);
    EXPECT_FALSE(zero == minus);
}

TEST(ConfigurationStore, ReferenceTextIsRead) {
    const ConfigurationStore store =
        ConfigurationStore::FromText(WithRoot(R"({"keys": {"Blocks": {"int": 1}},
                     "sections": [{"name": "A", "keys": {"M": {"matrix": [2, 1, "1 -0.5"]}}}]})"),
                                     "reference");
    int blocks = 0;
    EXPECT_TRUE(store.OpenRoot()->ReadInt("Blocks", &blocks));
    EXPECT_EQ(blocks, 1);
    NCDataMatrix<float> matrix;
    ASSERT_TRUE(store.OpenRoot()->OpenSection("A")->ReadMatrix("M", &matrix));
    EXPECT_EQ(matrix, (NCDataMatrix<float>{{1}, {-0.5F}}));
}

TEST(ConfigurationStore, ValuesThatDoNotFitTheirKindAreRefusedAtTheirPlace) {
    for (const char* const value : {R"({"int": 1.0})",
                                    R"({"int": 2147483648})",
                                    R"({"int": "1"})",
                                    R"({"bool": 1})",
                                    R"({"double": "1.5"})",
                                    R"({"double": "-nan"})",
                                    R"({"double": null})",
                                    R"({"string": 1})",
                                    R"({"stringList": "a"})",
                                    R"({"stringList": [1]})",
                                    R"({"intVector": [1]})",
                                    R"({"intVector": "1.5"})",
                                    R"({"intVector": "2147483648"})",
                                    R"({"floatVector": "1  2"})",
                                    R"({"floatVector": "1 "})",
                                    R"({"floatVector": " 1"})",
                                    R"({"floatVector": "1e60"})",
                                    R"({"floatVector": "1,2"})",
                                    R"({"matrix": "1"})",
                                    R"({"matrix": [1, 1]})",
                                    R"({"matrix": [2, 1, "1"]})",
                                    R"({"matrix": [1, 1, "1 2"]})",
                                    R"({"matrix": [-1, -1, "1"]})",
                                    R"({"matrix": [1.0, 1, "1"]})",
                                    R"({"matrix": [2147483647, 2147483647, "1"]})",
                                    R"({"matrix": [4294967296, 0, ""]})",
                                    R"({"matrix": [1, 1, "x"]})",
                                    R"({"Int": 1})",
                                    R"({})",
                                    R"({"int": 1, "bool": true})",
                                    "1",
                                    "[]"}) {
        EXPECT_THAT(ErrorOf(WithValue(value)), HasSubstr("a.cfg, at /DesignOptions/Key: "))
            << value;
    }
}

TEST(ConfigurationStore, BrokenSectionsAreRefusedAtTheirPlace) {
    EXPECT_THAT(ErrorOf(WithRoot("1")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"other": 1})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"name": "root"})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"keys": []})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"sections": {}})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"sections": [{"keys": {}}]})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"sections": [{"name": 1}]})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"sections": [1]})")), HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(WithRoot(R"({"sections": [{"name": "A"}, {"name": "A", "keys": 1}]})")),
                HasSubstr("a.cfg, at /A[2]: "));
}

TEST(ConfigurationStore, SectionsNestedTooDeeplyAreRefused) {
    std::string section = "{\"name\": \"S\"}";
    for (int i = 0; i < 64; ++i) {
        section = "{\"name\": \"S\", \"sections\": [" + section + "]}";
    }
    EXPECT_THAT(ErrorOf(WithRoot("{\"sections\": [" + section + "]}")),
                HasSubstr("the sections nest too deeply"));
}

TEST(ConfigurationStore, OtherFormatsAndVersionsAreRefused) {
    EXPECT_EQ(ErrorOf("{}"), "a.cfg is not a configuration file.");
    EXPECT_EQ(ErrorOf("[]"), "a.cfg is not a configuration file.");
    EXPECT_EQ(ErrorOf(R"({"format": "other", "version": 1, "root": {}})"),
              "a.cfg is not a configuration file.");
    for (const char* const version : {"2", "1.0", "\"1\""}) {
        EXPECT_EQ(ErrorOf(R"({"format": "QORVA configuration", "version": )" +
                          std::string(version) + R"(, "root": {}})"),
                  "a.cfg is a configuration file of another version than 1.")
            << version;
    }
    EXPECT_THAT(ErrorOf(R"({"format": "QORVA configuration", "version": 1})"),
                HasSubstr("a.cfg, at /: "));
    EXPECT_THAT(ErrorOf(R"({"format": "QORVA configuration", "version": 1, "root": {}, "x": 1})"),
                HasSubstr("a.cfg, at /: "));
}

TEST(ConfigurationStore, EveryTruncationIsRefused) {
    const std::string text = MakeFullStore().ToText();
    for (std::size_t length = 0; length + 2 < text.size(); ++length) {
        ASSERT_THAT(ErrorOf(text.substr(0, length)), HasSubstr("a.cfg, line ")) << length;
    }
}

TEST(ConfigurationStore, SavedFileIsLoaded) {
    const TemporaryFolder folder;
    const ConfigurationStore store = MakeFullStore();
    store.SaveToFile(folder.File("a.cfg"));
    EXPECT_EQ(ConfigurationStore::LoadFromFile(folder.File("a.cfg")), store);
}

TEST(ConfigurationStore, FailedSaveNamesTheFileAndLeavesTheOldOne) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.cfg");
    MakeFullStore().SaveToFile(path);
    ConfigurationStore broken;
    broken.OpenRoot()->WriteKey("k", "\xFF is not UTF-8");
    try {
        broken.SaveToFile(path);
        ADD_FAILURE() << "saved";
    } catch (const Exception& error) {
        EXPECT_THAT(error.what(), AllOf(HasSubstr(path), HasSubstr("UTF-8")));
    }
    EXPECT_EQ(ConfigurationStore::LoadFromFile(path), MakeFullStore());
    EXPECT_EQ(folder.CountEntries(), 1);
}

TEST(ConfigurationStore, LoadErrorsNameTheFile) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a.cfg"), "{");
    for (const std::string& path : {folder.File("a.cfg"), folder.File("missing.cfg")}) {
        try {
            static_cast<void>(ConfigurationStore::LoadFromFile(path));
            ADD_FAILURE() << "loaded " << path;
        } catch (const Exception& error) {
            EXPECT_THAT(error.what(), HasSubstr(path));
        }
    }
}

TEST(ConfigurationStore, MovedStoreKeepsItsContent) {
    ConfigurationStore store = MakeFullStore();
    const ConfigurationStore moved = std::move(store);
    EXPECT_EQ(moved, MakeFullStore());
}

TEST(ConfigurationStore, LargeMatrixIsSavedAndLoadedQuickly) {
    ConfigurationStore store;
    store.OpenRoot()->WriteMatrix("m", NCDataMatrix<float>(10000, 10, 0.1F));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RoundTrip(store), store);
    // Tens of milliseconds; quadratic work would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}
