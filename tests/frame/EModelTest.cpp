#include "frame/EModel.h"

#include <array>
#include <string>

namespace {

struct ModelRow {
    const char* text;
    const char* json;
};

// By number.
constexpr std::array<ModelRow, 7> cRows{{
    {"--", "--"},
    {"Linear", "linear"},
    {"Interaction", "interaction"},
    {"Quadratic", "quadratic"},
    {"Special Cubic", "special cubic"},
    {"Cubic", "cubic"},
    {"Linear+Quadratic", "linear+quadratic"},
}};

EModel::Type Model(std::size_t number) {
    return static_cast<EModel::Type>(number);
}

TEST(EModel, NumbersAreFixed) {
    EXPECT_EQ(EModel::None, 0);
    EXPECT_EQ(EModel::Linear, 1);
    EXPECT_EQ(EModel::Interaction, 2);
    EXPECT_EQ(EModel::Quadratic, 3);
    EXPECT_EQ(EModel::SpecialCubic, 4);
    EXPECT_EQ(EModel::Cubic, 5);
    EXPECT_EQ(EModel::LinearQuadratic, 6);
}

TEST(EModel, EveryNumberHasItsText) {
    for (std::size_t i = 0; i < cRows.size(); ++i) {
        EXPECT_STREQ(EModel::GetString(Model(i)), cRows[i].text);
    }
}

TEST(EModel, UnknownNumberHasDashes) {
    EXPECT_STREQ(EModel::GetString(Model(7)), "--");
}

TEST(EModel, TextsAreReadRegardlessOfCase) {
    for (std::size_t i = 1; i < cRows.size(); ++i) {
        EXPECT_EQ(EModel::GetType(cRows[i].text), Model(i));
        EXPECT_EQ(EModel::GetType(cRows[i].json), Model(i));
    }
    EXPECT_EQ(EModel::GetType("LINEAR+QUADRATIC"), EModel::LinearQuadratic);
}

TEST(EModel, OtherTextsAreNone) {
    for (const std::string text : {"", "--", "SpecialCubic", "linear ", "Linear + Quadratic"}) {
        EXPECT_EQ(EModel::GetType(text), EModel::None) << '"' << text << '"';
    }
}

TEST(EModel, EveryNumberHasItsJsonForm) {
    for (std::size_t i = 0; i < cRows.size(); ++i) {
        EXPECT_EQ(EModel::ToJson(Model(i)), json_value(cRows[i].json));
    }
    EXPECT_EQ(EModel::ToJson(Model(7)), json_value("--"));
}

TEST(EModel, JsonFormsAreReadBack) {
    for (std::size_t i = 0; i < cRows.size(); ++i) {
        EXPECT_EQ(EModel::FromJson(EModel::ToJson(Model(i))), Model(i));
    }
}

TEST(EModel, JsonIsReadRegardlessOfCase) {
    EXPECT_EQ(EModel::FromJson(json_value("Special CUBIC")), EModel::SpecialCubic);
}

TEST(EModel, JsonOfAnotherKindIsNone) {
    EXPECT_EQ(EModel::FromJson(json_value(1)), EModel::None);
    EXPECT_EQ(EModel::FromJson(json_value()), EModel::None);
}

}  // namespace
