#include "frame/EDesign.h"

#include <array>
#include <string>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"

namespace {

struct DesignRow {
    EDesign::Type type;
    int number;
    const char* shortString;
    const char* displayName;
};

// Types that stand for one family each.
constexpr std::array<DesignRow, 35> cRows{{
    {EDesign::FF2, 1, "FF2", "Full Fac (2 levels)"},
    {EDesign::FF3, 2, "FF3", "Full Fac (3 levels)"},
    {EDesign::FFM, 3, "FFM", "Full Fac (Mixed)"},
    {EDesign::L9, 4, "L9", "L9 (3 levels)"},
    {EDesign::L18, 5, "L18", "L18 (3 levels)"},
    {EDesign::L27, 6, "L27", "L27 (3 levels)"},
    {EDesign::L36, 7, "L36", "L36 (3 levels)"},
    {EDesign::FFR_III, 8, "FFR_III", "Frac Fac Res III"},
    {EDesign::FFR_IV, 9, "FFR_IV", "Frac Fac Res IV"},
    {EDesign::FFR_V, 10, "FFR_V", "Frac Fac Res V+"},
    {EDesign::PB, 11, "PB", "Plackett Burman"},
    {EDesign::PB_SS, 12, "PB_SS", "Plackett Burman Super-Saturated"},
    {EDesign::BB, 13, "BB", "Box Behnken"},
    {EDesign::CCC, 14, "CCC", "CCC"},
    {EDesign::CCF, 15, "CCF", "CCF"},
    {EDesign::CCO, 16, "CCO", "CCO"},
    {EDesign::RCCF, 17, "RCCF", "Reduced CCF"},
    {EDesign::RCCC, 18, "RCCC", "Reduced CCC"},
    {EDesign::AxN, 19, "AxN", "Axial Normal"},
    {EDesign::AxE, 20, "AxE", "Axial Extended"},
    {EDesign::AxR, 21, "AxR", "Reduced Axial Normal"},
    {EDesign::SimM, 22, "SimM", "Modified Simplex Centroid"},
    {EDesign::SimF, 23, "SimF", "Modified Simplex Centroid w/Face"},
    {EDesign::SimSC, 24, "SimSC", "Special Cubic Simplex Centroid"},
    {EDesign::SimC, 25, "SimC", "Full Cubic Simplex Centroid"},
    {EDesign::DOpt, 26, "DOpt", "D-Optimal"},
    {EDesign::OnionDOpt, 27, "OnionDOpt", "Onion D-Optimal"},
    {EDesign::REDMUP, 30, "RED-MUP", "RED-MUP"},
    {EDesign::Doehlert, 31, "Doehlert", "Doehlert"},
    {EDesign::Levels, 32, "Levels", "Levels"},
    {EDesign::Custom, 33, "Custom", "Custom"},
    {EDesign::Stability, 36, "Stability", "Stability"},
    {EDesign::J2, 37, "J2", "Reduced Combinatorial"},
    {EDesign::GeneralizedSubset, 38, "Generalized Subset Designs", "Generalized Subset Designs"},
    {EDesign::DefinitiveScreening, 39, "Definitive Screening", "Definitive Screening"},
}};

bool IsRegistered(EDesign::Type type) {
    return AllDesigns::GetDesignBuilder(type, "") != nullptr;
}

TEST(EDesign, NumbersAreFixed) {
    for (const DesignRow& row : cRows) {
        EXPECT_EQ(row.type, row.number) << row.shortString;
    }
    EXPECT_EQ(EDesign::None, 0);
    EXPECT_EQ(EDesign::Rechtschaffner, 28);
    EXPECT_EQ(EDesign::Plugin, 34);
}

TEST(EDesign, SelectionNumbersAreFixed) {
    EXPECT_EQ(EDesign::GEfficiency, 1);
    EXPECT_EQ(EDesign::ConditionNumber, 2);
    EXPECT_EQ(EDesign::LogDeterminant, 3);
    EXPECT_EQ(EDesign::NormalizedLogDeterminant, 4);
    EXPECT_EQ(EDesign::IOptimality, 5);
}

TEST(EDesign, RegisteredTypesHaveTheirTexts) {
    int registered = 0;
    for (const DesignRow& row : cRows) {
        if (IsRegistered(row.type)) {
            EXPECT_EQ(EDesign::GetString(row.type, ""), row.displayName);
            EXPECT_EQ(EDesign::GetShortString(row.type, ""), row.shortString);
            ++registered;
        }
    }
    EXPECT_GE(registered, 4);
}

TEST(EDesign, RegisteredTypesAreReadFromBothTexts) {
    for (const DesignRow& row : cRows) {
        if (IsRegistered(row.type)) {
            EXPECT_EQ(EDesign::GetType(row.shortString), row.type);
            EXPECT_EQ(EDesign::GetType(row.displayName), row.type);
        }
    }
}

TEST(EDesign, TypesWithoutBuilderHaveEmptyTexts) {
    for (const int number : {0, 28, 29, 34, 35, 40}) {
        const auto type = static_cast<EDesign::Type>(number);
        EXPECT_EQ(EDesign::GetString(type, ""), "") << number;
        EXPECT_EQ(EDesign::GetShortString(type, ""), "") << number;
    }
}

TEST(EDesign, OtherDataHaveEmptyTexts) {
    EXPECT_EQ(EDesign::GetString(EDesign::FF2, "Screening"), "");
    EXPECT_EQ(EDesign::GetShortString(EDesign::FF2, "Screening"), "");
}

TEST(EDesign, CustomHasItsTextsWhateverTheData) {
    EXPECT_EQ(EDesign::GetString(EDesign::Custom, "file"), "Custom");
}

TEST(EDesign, PluginIsReadWithoutABuilder) {
    EXPECT_EQ(EDesign::GetType("Plugin"), EDesign::Plugin);
}

TEST(EDesign, TextsAreReadInTheirExactCaseOnly) {
    for (const std::string text : {"", "ff2", "FF2 ", "full fac (2 levels)", "plugin", "1"}) {
        EXPECT_EQ(EDesign::GetType(text), EDesign::None) << '"' << text << '"';
    }
}

TEST(EDesign, JsonIsTheShortString) {
    EXPECT_EQ(EDesign::ToJson(EDesign::FF2), json_value("FF2"));
    EXPECT_EQ(EDesign::ToJson(EDesign::Custom), json_value("Custom"));
}

TEST(EDesign, RegisteredTypesAreReadBackFromJson) {
    for (const DesignRow& row : cRows) {
        if (IsRegistered(row.type)) {
            EXPECT_EQ(EDesign::FromJson(EDesign::ToJson(row.type)), row.type);
        }
    }
}

TEST(EDesign, TypesWithoutJsonFormAreWrittenEmptyAndReadAsNone) {
    for (const int number : {0, 28, 29, 34, 35}) {
        const json_value json = EDesign::ToJson(static_cast<EDesign::Type>(number));
        EXPECT_EQ(json, json_value("")) << number;
        EXPECT_EQ(EDesign::FromJson(json), EDesign::None) << number;
    }
}

TEST(EDesign, DisplayNamesAreReadFromJsonToo) {
    EXPECT_EQ(EDesign::FromJson(json_value("Full Fac (Mixed)")), EDesign::FFM);
    EXPECT_EQ(EDesign::FromJson(json_value("Plugin")), EDesign::Plugin);
}

TEST(EDesign, JsonOfAnotherKindIsNone) {
    EXPECT_EQ(EDesign::FromJson(json_value(1)), EDesign::None);
    EXPECT_EQ(EDesign::FromJson(json_value()), EDesign::None);
}

// The types, from 0 to 39, for which a predicate holds.
std::vector<int> TypesWhere(bool (*predicate)(EDesign::Type)) {
    std::vector<int> types;
    for (int type = 0; type < 40; ++type) {
        if (predicate(static_cast<EDesign::Type>(type))) {
            types.push_back(type);
        }
    }
    return types;
}

TEST(EDesign, PredicatesHoldForTheirTypesOnly) {
    EXPECT_THAT(TypesWhere(EDesign::IsCCDesign), ::testing::ElementsAre(14, 15, 16));
    EXPECT_THAT(TypesWhere(EDesign::IsFractionalFactorial), ::testing::ElementsAre(8, 9, 10));
    EXPECT_THAT(TypesWhere(EDesign::IsJ2), ::testing::ElementsAre(37));
    EXPECT_THAT(TypesWhere(EDesign::IsStabilityDesign), ::testing::ElementsAre(36, 38));
}

}  // namespace
