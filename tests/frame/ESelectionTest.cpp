#include "frame/ESelection.h"

#include <array>
#include <string>

namespace {

constexpr std::array cTexts{"--", "Low", "Recommended", "User"};

TEST(ESelection, NumbersAreFixed) {
    EXPECT_EQ(ESelection::None, 0);
    EXPECT_EQ(ESelection::Low, 1);
    EXPECT_EQ(ESelection::Recommended, 2);
    EXPECT_EQ(ESelection::User, 3);
}

TEST(ESelection, EveryNumberHasItsText) {
    for (std::size_t i = 0; i < cTexts.size(); ++i) {
        EXPECT_STREQ(ESelection::GetString(static_cast<ESelection::Type>(i)), cTexts[i]);
    }
}

TEST(ESelection, TextsAreReadBack) {
    for (std::size_t i = 0; i < cTexts.size(); ++i) {
        EXPECT_EQ(ESelection::GetType(cTexts[i]), static_cast<ESelection::Type>(i));
    }
}

TEST(ESelection, TextsInAnotherCaseAreNone) {
    for (const std::string text : {"low", "RECOMMENDED", "user", ""}) {
        EXPECT_EQ(ESelection::GetType(text), ESelection::None) << '"' << text << '"';
    }
}

}  // namespace
