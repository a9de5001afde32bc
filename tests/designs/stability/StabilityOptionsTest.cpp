#include "designs/stability/StabilityOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"

namespace {

using Used = StabilityDesignOptions::UsedReductions;

const Used cDefault{{1, 1}, {3, 1}, {3, 2}, {3, 3}, {1, 1}};

TEST(StabilityDesignOptions, BeginWithTheFullFactorialAroundItsThirds) {
    const StabilityDesignOptions options;
    EXPECT_EQ(options.GetUsedReduction(), cDefault);
    EXPECT_EQ(options.GetSecondsToWait(), 45U);
    EXPECT_TRUE(options.GetPreferBalanced());
}

TEST(GeneralizedSubsetOptions, BeginWithHalves) {
    EXPECT_EQ(GeneralizedSubsetDesignsDesignOptions().GetReduction(), 2U);
}

TEST(StabilityDesignOptions, AreReadBackFromAStore) {
    StabilityDesignOptions options;
    options.SetSecondsToWait(7);
    options.SetPreferBalanced(false);
    options.SetUsedReduction({{4, 2}, {1, 1}});
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    StabilityDesignOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetSecondsToWait(), 7U);
    EXPECT_FALSE(loaded.GetPreferBalanced());
    EXPECT_EQ(loaded.GetUsedReduction(), (Used{{4, 2}, {1, 1}}));
}

TEST(StabilityDesignOptions, StandUnderTheirKeys) {
    ConfigurationStore store;
    StabilityDesignOptions().Save(store.OpenRoot().get());
    const auto section = store.OpenRoot()->OpenSection("DesignSpecificOptions");
    ASSERT_NE(section, nullptr);
    int seconds = 0;
    bool balance = false;
    EXPECT_TRUE(section->OpenSection("StabilityBaseOptions")->ReadInt("SecondsToWait", &seconds));
    EXPECT_TRUE(section->OpenSection("StabilityBaseOptions")->ReadBool("PreferBalance", &balance));
    EXPECT_EQ(seconds, 45);
    std::vector<std::string> used;
    section->OpenSection("StabilityDesignOptions")->ReadStringList("UsedDesigns", &used, ';');
    EXPECT_THAT(used, ::testing::ElementsAre("1,1", "3,1", "3,2", "3,3", "1,1"));
}

TEST(GeneralizedSubsetOptions, StandUnderTheirKeys) {
    ConfigurationStore store;
    GeneralizedSubsetDesignsDesignOptions options;
    options.SetReduction(6);
    options.Save(store.OpenRoot().get());
    int reduction = 0;
    EXPECT_TRUE(store.OpenRoot()
                    ->OpenSection("DesignSpecificOptions")
                    ->OpenSection("GeneralizedSubsetOptions")
                    ->ReadInt("Reduction", &reduction));
    EXPECT_EQ(reduction, 6);
    GeneralizedSubsetDesignsDesignOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetReduction(), 6U);
}

TEST(StabilityDesignOptions, KeepTheirListWhenTheStoredOneIsDamaged) {
    for (const std::string damaged : {"3,x", "3", "", "3,1,2", " 3,1", "-3,1"}) {
        ConfigurationStore store;
        StabilityDesignOptions().Save(store.OpenRoot().get());
        store.OpenRoot()
            ->OpenOrCreateSection("DesignSpecificOptions")
            ->OpenOrCreateSection("StabilityDesignOptions")
            ->WriteStringList("UsedDesigns", {"2,1", damaged}, ';');
        StabilityDesignOptions loaded;
        EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
        EXPECT_EQ(loaded.GetUsedReduction(), cDefault) << damaged;
    }
}

TEST(StabilityDesignOptions, AreNotInAnEmptyStore) {
    const ConfigurationStore store;
    StabilityDesignOptions options;
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    EXPECT_EQ(options.GetUsedReduction(), cDefault);
}

TEST(StabilityDesignOptions, HaveTheirJsonForm) {
    StabilityDesignOptions options;
    options.SetUsedReduction({{2, 1}});
    EXPECT_EQ(options.ToJson().to_text(),
              R"({"secondsToWait":45,"preferBalanced":true,)"
              R"("usedDesigns":[{"reduction":2,"index":1}]})");
}

TEST(GeneralizedSubsetOptions, HaveTheirJsonForm) {
    EXPECT_EQ(GeneralizedSubsetDesignsDesignOptions().ToJson().to_text(),
              R"({"secondsToWait":45,"preferBalanced":true,"reduction":2})");
}

TEST(StabilityDesignOptions, AreReadFromJson) {
    StabilityDesignOptions options;
    options.FromJson(json_value::parse(
        R"({"usedDesigns":[{"reduction":5,"index":4}],"preferBalanced":false,"secondsToWait":0})"));
    EXPECT_EQ(options.GetUsedReduction(), (Used{{5, 4}}));
    EXPECT_FALSE(options.GetPreferBalanced());
    EXPECT_EQ(options.GetSecondsToWait(), 0U);
}

TEST(StabilityDesignOptions, KeepWhatJsonDoesNotName) {
    StabilityDesignOptions options;
    options.FromJson(json_value::parse("{}"));
    EXPECT_EQ(options.GetUsedReduction(), cDefault);
    EXPECT_EQ(options.GetSecondsToWait(), 45U);
}

std::string ReadingError(DesignSpecificOptions& options, const std::string& text) {
    try {
        options.FromJson(json_value::parse(text));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(StabilityDesignOptions, RefuseAMalformedList) {
    for (const std::string list : {R"("1,1")",
                                   R"([1])",
                                   R"([{"reduction":1}])",
                                   R"([{"index":1}])",
                                   R"([{"reduction":"1","index":1}])",
                                   R"([{"reduction":1.5,"index":1}])",
                                   R"([{"reduction":-1,"index":1}])",
                                   R"({"reduction":1,"index":1})",
                                   "null"}) {
        StabilityDesignOptions options;
        EXPECT_EQ(ReadingError(options, R"({"secondsToWait":1,"usedDesigns":)" + list + "}"),
                  "Json parse error. Stability design option 'usedDesigns' is not correctly saved.")
            << list;
        EXPECT_EQ(options.GetUsedReduction(), cDefault) << list;
        EXPECT_EQ(options.GetSecondsToWait(), 45U) << list;
    }
}

TEST(StabilityDesignOptions, RefuseOtherKindsAndChangeNothing) {
    for (const std::string text : {R"({"usedDesigns":[],"secondsToWait":-1})",
                                   R"({"usedDesigns":[],"secondsToWait":"long"})",
                                   R"({"usedDesigns":[],"secondsToWait":5,"preferBalanced":1})"}) {
        StabilityDesignOptions options;
        EXPECT_NE(ReadingError(options, text), "") << text;
        EXPECT_EQ(options.GetUsedReduction(), cDefault) << text;
        EXPECT_EQ(options.GetSecondsToWait(), 45U) << text;
    }
}

TEST(GeneralizedSubsetOptions, RefuseANegativeReduction) {
    GeneralizedSubsetDesignsDesignOptions options;
    EXPECT_NE(ReadingError(options, R"({"reduction":-2})"), "");
    EXPECT_EQ(options.GetReduction(), 2U);
}

TEST(GeneralizedSubsetOptions, StoreNumbersBeyondAnIntAsTheLargest) {
    GeneralizedSubsetDesignsDesignOptions options;
    options.SetReduction(std::numeric_limits<unsigned long long>::max());
    options.SetSecondsToWait(std::numeric_limits<unsigned long long>::max());
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    options.Load(store.OpenRoot().get());
    EXPECT_EQ(options.GetReduction(), 2147483647U);
    EXPECT_EQ(options.GetSecondsToWait(), 2147483647U);
}

}  // namespace
