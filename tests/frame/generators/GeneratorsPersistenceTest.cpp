#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/IniFileSection.h"
#include "frame/DesignOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

using Texts = std::vector<std::string>;
using testing::IsEmpty;

Generators With(int runs, const Texts& words) {
    Generators generators(runs);
    for (std::size_t i = 0; i < words.size(); ++i) {
        generators.SetGenerator(static_cast<int>(i) + 1,
                                generators.GetGeneratorWord(words[i].c_str()));
    }
    return generators;
}

/// Every index has a word, with and without a sign.
Generators Full() {
    Generators generators(2048);
    for (int index = 1; index <= 55; ++index) {
        generators.SetGenerator(index, static_cast<GeneratorWord>(index << 5 | (index & 1)));
    }
    return generators;
}

Texts WordsOf(const Generators& generators) {
    const json_value array = generators.ToJson();
    Texts texts;
    for (const json_value& element : array.get_array()) {
        texts.push_back(element.get_string());
    }
    return texts;
}

json_value ArrayOf(const Texts& texts) {
    json_value array = json_value::make_array();
    for (const std::string& text : texts) {
        array.push_back(text);
    }
    return array;
}

Generators FromJson(const json_value& value) {
    Generators generators = With(2048, {"a", "b", "c"});
    generators.FromJson(value);
    return generators;
}

/// Through the text form of a store.
Generators SavedAndLoaded(const Generators& original, const Generators& into) {
    ConfigurationStore store;
    original.Save(store.OpenRoot().get());
    const ConfigurationStore read = ConfigurationStore::FromText(store.ToText(), "saved");
    Generators loaded = into;
    const auto root = read.OpenRoot();
    EXPECT_TRUE(loaded.Load(root.get(), nullptr, {}));
    return loaded;
}

/// A store whose section holds a highest letter and a list.
ConfigurationStore StoreWith(int maxChar, const Texts& words) {
    ConfigurationStore store;
    const auto section = store.OpenRoot()->OpenOrCreateSection("Generators");
    section->WriteInt("Max", maxChar);
    section->WriteStringList("generators", words, ';');
    return store;
}

Generators LoadedFrom(const ConfigurationStore& store, Generators into) {
    const auto root = store.OpenRoot();
    EXPECT_TRUE(into.Load(root.get(), nullptr, {}));
    return into;
}

TEST(GeneratorsSave, WritesTheSmallestAndTheHighestLetterAsNumbers) {
    ConfigurationStore store;
    With(16, {"a"}).Save(store.OpenRoot().get());
    const auto section = store.OpenRoot()->OpenOrCreateSection("Generators");
    int value = 0;
    EXPECT_TRUE(section->ReadInt("Min", &value));
    EXPECT_EQ(value, 97);
    EXPECT_TRUE(section->ReadInt("Max", &value));
    EXPECT_EQ(value, 'd');
}

TEST(GeneratorsSave, WritesAll56WordsFromIndexZeroOn) {
    ConfigurationStore store;
    With(8, {"a", "", "-abc"}).Save(store.OpenRoot().get());
    Texts texts;
    const auto section = store.OpenRoot()->OpenOrCreateSection("Generators");
    EXPECT_EQ(section->ReadStringList("generators", &texts, ';'), 56);
    Texts expected(56);
    expected[1] = "a";
    expected[3] = "-abc";
    EXPECT_EQ(texts, expected);
}

TEST(GeneratorsSave, ReplacesWhatWasSavedBefore) {
    ConfigurationStore twice;
    Full().Save(twice.OpenRoot().get());
    With(8, {"a"}).Save(twice.OpenRoot().get());
    ConfigurationStore once;
    With(8, {"a"}).Save(once.OpenRoot().get());
    EXPECT_EQ(twice, once);
}

TEST(GeneratorsLoad, GivesBackWhatWasSaved) {
    const std::vector<Generators> originals{
        Generators(1), With(8, {"a", "-b", "", "ab"}), Full(), With(2048, {"abcdefghijk"})};
    for (const Generators& original : originals) {
        EXPECT_EQ(SavedAndLoaded(original, Generators(4)), original);
        EXPECT_EQ(SavedAndLoaded(original, Full()), original);
    }
}

TEST(GeneratorsLoad, WithoutASectionOfThatNameIsFalseAndChangesNothing) {
    ConfigurationStore store;
    store.OpenRoot()->OpenOrCreateSection("Other");
    Generators generators = Full();
    const auto root = store.OpenRoot();
    EXPECT_FALSE(generators.Load(root.get(), nullptr, {}));
    EXPECT_EQ(generators, Full());
}

TEST(GeneratorsLoad, DoesNotReadTheSmallestLetter) {
    ConfigurationStore store = StoreWith('c', {"", "a"});
    store.OpenRoot()->OpenOrCreateSection("Generators")->WriteInt("Min", 'z');
    EXPECT_EQ(LoadedFrom(store, Generators(1)), With(8, {"a"}));
}

TEST(GeneratorsLoad, ReadsTheHighestLetterWhateverTheWords) {
    EXPECT_EQ(LoadedFrom(StoreWith('f', {"", "k"}), Generators(1)).GetMaxChar(), 'f');
}

TEST(GeneratorsLoad, HighestLetterIsKeptAmongTheCharacters) {
    EXPECT_EQ(LoadedFrom(StoreWith(1000, {}), Generators(1)).GetMaxChar(), 'z');
    EXPECT_EQ(LoadedFrom(StoreWith(-1000, {}), Generators(1)).GetMaxChar(), '\0');
}

TEST(GeneratorsLoad, FirstTextBelongsToIndexZero) {
    const Generators generators = LoadedFrom(StoreWith('c', {"ab", "a", "b"}), Generators(1));
    EXPECT_EQ(WordsOf(generators), (Texts{"a", "b"}));
}

TEST(GeneratorsLoad, WordOfIndexZeroIsKeptForSaving) {
    ConfigurationStore store;
    LoadedFrom(StoreWith('c', {"ab", "a"}), Generators(1)).Save(store.OpenRoot().get());
    Texts texts;
    store.OpenRoot()->OpenOrCreateSection("Generators")->ReadStringList("generators", &texts, ';');
    EXPECT_EQ(texts.at(0), "ab");
}

TEST(GeneratorsLoad, EmptyTextsClearTheirWords) {
    const Generators generators = LoadedFrom(StoreWith('c', {"", "", "b"}), With(8, {"a", "a"}));
    EXPECT_EQ(WordsOf(generators), (Texts{"", "b"}));
}

TEST(GeneratorsLoad, MoreThan56TextsAreCutOff) {
    const Generators generators = LoadedFrom(StoreWith('c', Texts(80, "a")), Generators(1));
    EXPECT_EQ(WordsOf(generators), Texts(55, "a"));
}

TEST(GeneratorsLoad, SectionWithoutKeysKeepsTheObject) {
    ConfigurationStore store;
    store.OpenRoot()->OpenOrCreateSection("Generators");
    EXPECT_EQ(LoadedFrom(store, Full()), Full());
}

TEST(GeneratorsRemove, RemovesTheSectionOnly) {
    ConfigurationStore store;
    store.OpenRoot()->WriteInt("Other", 1);
    const ConfigurationStore before = ConfigurationStore::FromText(store.ToText(), "before");
    Full().Save(store.OpenRoot().get());
    ASSERT_NE(store, before);
    Generators::Remove(store.OpenRoot().get());
    EXPECT_EQ(store, before);
}

TEST(GeneratorsRemove, WithoutASectionChangesNothing) {
    ConfigurationStore store;
    Generators::Remove(store.OpenRoot().get());
    EXPECT_EQ(store, ConfigurationStore());
}

TEST(GeneratorsOlderForm, WordsComeInTheOrderOfTheKeyNames) {
    const auto ini = IniFileSection::FromText("[Generators]\nX1=a\nX2=b\nX3=-AB\n", "old.ini");
    Generators generators(8);
    EXPECT_TRUE(generators.Load(nullptr, &ini, {"X2", "X1", "X3"}));
    EXPECT_EQ(WordsOf(generators), (Texts{"b", "a", "-ab"}));
    EXPECT_EQ(generators.GetMaxChar(), 'c');
}

TEST(GeneratorsOlderForm, FirstValueBelongsToIndexOne) {
    const auto ini = IniFileSection::FromText("[Generators]\nX1=abc\n", "old.ini");
    Generators generators(8);
    generators.ReadFromFile({"X1"}, &ini);
    EXPECT_EQ(generators.GetGenerator(TestFactors(), 1, ""), generators.GetGeneratorWord("abc"));
}

TEST(GeneratorsOlderForm, UnknownKeyLeavesAHole) {
    const auto ini = IniFileSection::FromText("[Generators]\nX1=a\nX3=b\n", "old.ini");
    Generators generators(8);
    EXPECT_TRUE(generators.Load(nullptr, &ini, {"X1", "X2", "X3"}));
    EXPECT_EQ(WordsOf(generators), (Texts{"a", "", "b"}));
}

TEST(GeneratorsOlderForm, WithoutAFileIsFalse) {
    Generators generators = Full();
    EXPECT_FALSE(generators.Load(nullptr, nullptr, {"X1"}));
    EXPECT_EQ(generators, Full());
}

TEST(GeneratorsOlderForm, WithoutASectionOrItsKeysIsFalse) {
    for (const char* text : {"", "X1=a\n", "[Other]\nX1=a\n", "[Generators]\n"}) {
        const auto ini = IniFileSection::FromText(text, "old.ini");
        Generators generators = Full();
        EXPECT_FALSE(generators.Load(nullptr, &ini, {"X1"})) << text;
        EXPECT_EQ(generators, Full()) << text;
    }
}

TEST(GeneratorsOlderForm, TheStoreGoesFirst) {
    const auto ini = IniFileSection::FromText("[Generators]\nX1=a\n", "old.ini");
    ConfigurationStore store;
    Generators generators(8);
    const auto root = store.OpenRoot();
    EXPECT_FALSE(generators.Load(root.get(), &ini, {"X1"}));
    EXPECT_THAT(WordsOf(generators), IsEmpty());
}

TEST(GeneratorsOlderForm, MoreKeysThanWordsAreCutOff) {
    const auto ini = IniFileSection::FromText("[Generators]\nX1=a\n", "old.ini");
    Generators generators(8);
    EXPECT_TRUE(generators.Load(nullptr, &ini, Texts(100, "X1")));
    EXPECT_EQ(WordsOf(generators), Texts(55, "a"));
}

TEST(GeneratorsJson, NoWordsAreAnEmptyArray) {
    const json_value value = Generators(64).ToJson();
    EXPECT_TRUE(value.is_array());
    EXPECT_EQ(value.get_length(), 0U);
}

TEST(GeneratorsJson, ArrayEndsAtTheLastWordAndKeepsHoles) {
    EXPECT_EQ(With(8, {"a", "", "-abc", ""}).ToJson(), ArrayOf({"a", "", "-abc"}));
}

TEST(GeneratorsJson, All55WordsAreWritten) {
    EXPECT_EQ(Full().ToJson().get_length(), 55U);
}

TEST(GeneratorsJson, ThreeFactorsOfFourRunsComeBackValid) {
    const Generators generators = FromJson(ArrayOf({"a", "b", "-ab"}));
    EXPECT_EQ(generators, With(4, {"a", "b", "-ab"}));
    EXPECT_EQ(generators.GetMaxChar(), 'b');
    std::string message;
    EXPECT_TRUE(
        generators.IsValid(TestFactors().Quantitatives(3), DesignOptions(), false, message));
}

TEST(GeneratorsJson, HighestLetterIsTheHighestUsed) {
    EXPECT_EQ(FromJson(ArrayOf({"ad", "g", "b"})).GetMaxChar(), 'g');
    EXPECT_EQ(FromJson(ArrayOf({"-"})).GetMaxChar(), 'a');
    EXPECT_EQ(FromJson(ArrayOf({})).GetMaxChar(), 'a');
}

TEST(GeneratorsJson, HighestLetterIsTakenFromTheTextAsItStands) {
    EXPECT_EQ(FromJson(ArrayOf({"az"})).GetMaxChar(), 'z');
    EXPECT_EQ(FromJson(ArrayOf({"AD"})).GetMaxChar(), 'a');
}

TEST(GeneratorsJson, AnythingButAnArrayResetsTheHighestLetterOnly) {
    for (const json_value& value :
         {json_value(), json_value("abc"), json_value(3), json_value::make_object()}) {
        const Generators generators = FromJson(value);
        EXPECT_EQ(generators.GetMaxChar(), 'a') << value.to_text();
        EXPECT_EQ(WordsOf(generators), (Texts{"a", "b", "c"})) << value.to_text();
    }
}

TEST(GeneratorsJson, ArrayReplacesAllWords) {
    EXPECT_EQ(WordsOf(FromJson(ArrayOf({"ab"}))), Texts{"ab"});
    EXPECT_THAT(WordsOf(FromJson(json_value::make_array())), IsEmpty());
}

TEST(GeneratorsJson, ElementsThatAreNoTextLeaveHoles) {
    const json_value array = json_value::parse(R"(["a", 7, null, ["b"], "b"])");
    EXPECT_EQ(WordsOf(FromJson(array)), (Texts{"a", "", "", "", "b"}));
}

TEST(GeneratorsJson, MoreThan55ElementsAreCutOff) {
    EXPECT_EQ(WordsOf(FromJson(ArrayOf(Texts(70, "ab")))), Texts(55, "ab"));
}

TEST(GeneratorsJson, RoundTripKeepsTheWords) {
    for (const Generators& original : {With(8, {"a", "-b", "", "ab"}), Full()}) {
        EXPECT_EQ(WordsOf(FromJson(json_value::parse(original.ToJson().to_text()))),
                  WordsOf(original));
    }
}

TEST(GeneratorsOfOptions, ComeBackFromTheStore) {
    const Generators generators = With(8, {"a", "b", "c", "-abc"});
    DesignOptions options;
    options.SetGenerators(&generators);
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    DesignOptions loaded;
    const auto root = store.OpenRoot();
    ASSERT_TRUE(loaded.Load(root.get()));
    ASSERT_NE(loaded.GetGenerators(), nullptr);
    EXPECT_EQ(*loaded.GetGenerators(), generators);
}

TEST(GeneratorsOfOptions, NoneAreLoadedWhereNoneWereSaved) {
    const Generators generators = With(8, {"a"});
    DesignOptions options;
    options.SetGenerators(&generators);
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    options.SetGenerators(static_cast<const Generators*>(nullptr));
    options.Save(store.OpenRoot().get());
    DesignOptions loaded;
    loaded.SetGenerators(&generators);
    const auto root = store.OpenRoot();
    ASSERT_TRUE(loaded.Load(root.get()));
    EXPECT_EQ(loaded.GetGenerators(), nullptr);
}

}  // namespace
