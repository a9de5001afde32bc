#include "frame/CEType.h"

#include <array>
#include <string>
#include <utility>

namespace {

TEST(CEType, NumbersAreFixed) {
    EXPECT_EQ(CEType::NotDefined, 0);
    EXPECT_EQ(CEType::Quantitative, 1);
    EXPECT_EQ(CEType::Multilevel, 2);
    EXPECT_EQ(CEType::Qualitative, 3);
    EXPECT_EQ(CEType::Formulation, 4);
    EXPECT_EQ(CEType::Filler, 5);
    EXPECT_EQ(CEType::Time, 6);
}

TEST(CEType, EveryNumberHasItsText) {
    constexpr std::array cTexts{
        "NotDefined", "Quantitative", "Multilevel", "Qualitative", "Formulation", "Filler", "Time"};
    for (std::size_t i = 0; i < cTexts.size(); ++i) {
        EXPECT_STREQ(CEType::GetString(static_cast<CEType::EType>(i)), cTexts[i]) << i;
    }
}

TEST(CEType, NumbersOutsideTheTypesAreNotDefined) {
    // The largest number that the enumeration can hold.
    EXPECT_STREQ(CEType::GetString(static_cast<CEType::EType>(7)), "NotDefined");
}

TEST(CEType, TextsAreReadRegardlessOfCase) {
    const std::array<std::pair<std::string, int>, 7> cTexts{{{"quantitative", 1},
                                                             {"MULTILEVEL", 2},
                                                             {"qUALITATIVE", 3},
                                                             {"Formulation", 4},
                                                             {"mixture", 4},
                                                             {"FILLER", 5},
                                                             {"time", 6}}};
    for (const auto& [text, type] : cTexts) {
        EXPECT_EQ(CEType::GetEnum(text), type) << text;
    }
}

TEST(CEType, MixtureIsAnotherWordForFormulation) {
    EXPECT_EQ(CEType::GetEnum("MIXTURE"), CEType::Formulation);
}

TEST(CEType, OtherTextsAreNotDefined) {
    for (const std::string text : {"", "NotDefined", "Quantitativ", "Quantitative ", "1"}) {
        EXPECT_EQ(CEType::GetEnum(text), CEType::NotDefined) << '"' << text << '"';
    }
}

}  // namespace
