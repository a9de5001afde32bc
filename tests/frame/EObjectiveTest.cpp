#include "frame/EObjective.h"

#include <array>
#include <string>

namespace {

struct ObjectiveRow {
    int number;
    const char* text;
    const char* json;
};

constexpr std::array<ObjectiveRow, 6> cRows{{
    {0, "--", ""},
    {1, "Screening", "screening"},
    {2, "Optimization (RSM)", "optimization"},
    {3, "Split Objective", ""},
    {4, "Robustness Verification", "robust_verification"},
    {5, "System Characterization", "system_characterization"},
}};

EObjective::Type Objective(int number) {
    return static_cast<EObjective::Type>(number);
}

TEST(EObjective, NumbersAreFixed) {
    EXPECT_EQ(EObjective::None, 0);
    EXPECT_EQ(EObjective::Screening, 1);
    EXPECT_EQ(EObjective::Optimization, 2);
    EXPECT_EQ(EObjective::SplitObjective, 3);
    EXPECT_EQ(EObjective::RobustnessVerification, 4);
    EXPECT_EQ(EObjective::SystemCharacterization, 5);
}

TEST(EObjective, EveryNumberHasItsText) {
    for (const ObjectiveRow& row : cRows) {
        EXPECT_STREQ(EObjective::GetString(Objective(row.number)), row.text);
    }
}

TEST(EObjective, UnknownNumberHasDashes) {
    EXPECT_STREQ(EObjective::GetString(Objective(6)), "--");
    EXPECT_STREQ(EObjective::GetString(Objective(7)), "--");
}

TEST(EObjective, TextsAreReadBack) {
    for (int i = 1; i <= 5; ++i) {
        EXPECT_EQ(EObjective::GetType(cRows[static_cast<std::size_t>(i)].text), i);
    }
}

TEST(EObjective, RsmIsAShortTextOfOptimization) {
    EXPECT_EQ(EObjective::GetType("RSM"), EObjective::Optimization);
}

TEST(EObjective, ScreeningIsReadRegardlessOfCase) {
    EXPECT_EQ(EObjective::GetType("screening"), EObjective::Screening);
    EXPECT_EQ(EObjective::GetType("SCREENING"), EObjective::Screening);
}

TEST(EObjective, OtherTextsAreReadInTheirExactCaseOnly) {
    for (const std::string text : {"rsm",
                                   "optimization (rsm)",
                                   "Optimization",
                                   "split objective",
                                   "robustness verification",
                                   "SYSTEM CHARACTERIZATION"}) {
        EXPECT_EQ(EObjective::GetType(text), EObjective::None) << text;
    }
}

TEST(EObjective, OtherTextsAreNone) {
    for (const std::string text : {"", "--", "Screening ", "1"}) {
        EXPECT_EQ(EObjective::GetType(text), EObjective::None) << '"' << text << '"';
    }
}

TEST(EObjective, EveryNumberHasItsJsonForm) {
    for (const ObjectiveRow& row : cRows) {
        EXPECT_EQ(EObjective::ToJson(Objective(row.number)), json_value(row.json)) << row.number;
    }
    EXPECT_EQ(EObjective::ToJson(Objective(6)), json_value(""));
}

TEST(EObjective, JsonFormsAreReadBackExceptSplitObjective) {
    for (const int number : {1, 2, 4, 5}) {
        EXPECT_EQ(EObjective::FromJson(EObjective::ToJson(Objective(number))), number);
    }
    EXPECT_EQ(EObjective::FromJson(EObjective::ToJson(EObjective::SplitObjective)),
              EObjective::None);
}

TEST(EObjective, JsonIsReadInItsExactCaseOnly) {
    for (const std::string text : {"Screening", "OPTIMIZATION", "Optimization (RSM)", "rsm"}) {
        EXPECT_EQ(EObjective::FromJson(json_value(text)), EObjective::None) << text;
    }
}

TEST(EObjective, JsonOfAnotherKindIsNone) {
    EXPECT_EQ(EObjective::FromJson(json_value(1)), EObjective::None);
    EXPECT_EQ(EObjective::FromJson(json_value()), EObjective::None);
}

}  // namespace
