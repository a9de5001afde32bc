#include "host/AliasesCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::WriteFile;
using testing::HasSubstr;
using testing::Not;

std::string Aliases(const std::string& study, const DesignRequest& request, bool json = false) {
    const TemporaryFolder folder;
    WriteFile(folder.File("s.json"), study);
    std::ostringstream out;
    std::ostringstream err;
    RunAliases({folder.File("s.json"), request, json}, out, err);
    return out.str();
}

DesignRequest Named(const std::string& design) {
    DesignRequest request;
    request.design = design;
    return request;
}

std::string Refusal(const std::string& study, const DesignRequest& request) {
    try {
        Aliases(study, request);
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(AliasesCommand, PrintsAHalfFractionOfThreeFactors) {
    EXPECT_EQ(Aliases(Quantitatives(3), Named("FFR_III")),
              "Design            FFR_III (Frac Fac Res III)\n"
              "Runs              4\n"
              "Resolution        III\n"
              "Word lengths      1 of 3\n"
              "Generators        C = AB\n"
              "Defining words    I = ABC\n"
              "\n"
              "Letter  Factor\n"
              "------  ------\n"
              "A       A\n"
              "B       B\n"
              "C       C\n"
              "\n"
              "Aliases up to two-factor interactions\n"
              "  A = BC\n"
              "  B = AC\n"
              "  C = AB\n");
}

// Box, Hunter and Hunter (1978), Statistics for Experimenters: the 2^(7-4) design has seven words
// of three letters, seven of four and one of seven, and each main effect has three aliases.
TEST(AliasesCommand, TellsTheSaturatedFractionOfSevenFactors) {
    const std::string text = Aliases(Quantitatives(7), Named("FFR_III"));
    EXPECT_THAT(text, HasSubstr("Word lengths      7 of 3, 7 of 4, 1 of 7\n"));
    EXPECT_THAT(text, HasSubstr("\n  A = BD = CE = FG\n"));
}

TEST(AliasesCommand, TellsSignsOfUserGenerators) {
    DesignRequest request = Named("FFR_V");
    request.generators = "E=-ABCD";
    const std::string text = Aliases(Quantitatives(5), request);
    EXPECT_THAT(text, HasSubstr("Generators        E = -ABCD\n"));
    EXPECT_THAT(text, HasSubstr("Defining words    I = -ABCDE\n"));
}

TEST(AliasesCommand, TellsWhatBlocksTakeAway) {
    DesignRequest request = Named("FFR_IV");
    request.runs = 16;
    request.blocks = 2;
    EXPECT_THAT(Aliases(Quantitatives(8), request),
                HasSubstr("\nLost to the 2 blocks: AF, BG, CH, DE\n"));
}

TEST(AliasesCommand, TellsWhenBlocksTakeNothing) {
    DesignRequest request = Named("FF2");
    request.blocks = 2;
    EXPECT_THAT(Aliases(Quantitatives(4), request),
                HasSubstr("The 2 blocks take no main effect and no two-factor interaction.\n"));
}

TEST(AliasesCommand, TellsThatAFullFactorialHasNoAliases) {
    const std::string text = Aliases(Quantitatives(3), Named("FF2"));
    EXPECT_THAT(text, HasSubstr("Resolution        full factorial: nothing is aliased\n"));
    EXPECT_THAT(text, Not(HasSubstr("Defining words")));
}

// Every main effect of the 12 runs is a third of an alias of each interaction of two other factors.
TEST(AliasesCommand, ListsPartialAliasesByTheirCoefficient) {
    const std::string text = Aliases(Quantitatives(11), Named("PB"));
    EXPECT_THAT(text, HasSubstr("Resolution        3.667 (generalised"));
    EXPECT_THAT(text, HasSubstr("\n  A   -0.3333 "));
    EXPECT_THAT(text, HasSubstr("\n      +0.3333 "));
}

TEST(AliasesCommand, SumsThePartialAliasesOfManyFactorsUp) {
    const std::string text = Aliases(Quantitatives(17), Named("PB"));
    EXPECT_THAT(text, HasSubstr("(counts only; --json lists them all)\n  A   "));
}

TEST(AliasesCommand, PrintsTheShortestOfManyDefiningWords) {
    EXPECT_THAT(Aliases(Quantitatives(13), Named("FFR_III")),
                HasSubstr("and 480 more (--json lists them all)\n"));
}

TEST(AliasesCommand, TellsCorrelatedMainEffectsOfASuperSaturatedDesign) {
    EXPECT_THAT(Aliases(Quantitatives(6), Named("PB_SS")), HasSubstr("\n  A = C = "));
}

TEST(AliasesCommand, LeavesStarAndCentrePointsOut) {
    const std::string study = Quantitatives(5, R"("objective":"optimization")");
    const std::string text = Aliases(study, Named("CCC"));
    EXPECT_THAT(text,
                HasSubstr("Runs              16; left out are 13 with a factor at its centre, such "
                          "as centre and star points\n"));
    EXPECT_THAT(text, HasSubstr("Defining words    I = ABCDE\n"));
}

TEST(AliasesCommand, LeavesTheMiddleLevelsOfAThreeLevelFactorialOut) {
    EXPECT_THAT(Aliases(Quantitatives(2, R"("objective":"optimization")"), Named("FF3")),
                HasSubstr("Runs              4; left out are 5 with a factor at its centre"));
}

TEST(AliasesCommand, LeavesReplicatesAndCentrePointsOut) {
    EXPECT_THAT(
        Aliases(Quantitatives(
                    3, R"("options":{"centerPoints":4,"replicatedDesigns":2,"replicatedRuns":1})"),
                Named("FF2")),
        HasSubstr("Runs              8\n"));
}

TEST(AliasesCommand, LooksAtTheFoldedDesign) {
    DesignRequest request = Named("PB");
    request.foldOver = true;
    EXPECT_THAT(Aliases(Quantitatives(7), request),
                HasSubstr("Runs              16\nResolution        IV\n"));
}

TEST(AliasesCommand, RefusesAFactorAtThreeLevelsByName) {
    EXPECT_EQ(Refusal(R"({"factors":[{"name":"Oven","type":"Qualitative","levels":["a","b","c"]},
                         {"name":"t","type":"Quantitative","low":0,"high":1}]})",
                      Named("FFM")),
              "aliases: the factor \"Oven\" has 3 levels; aliases are told for factors at two "
              "levels only.");
}

TEST(AliasesCommand, RefusesADesignWithoutTwoLevelRuns) {
    EXPECT_EQ(Refusal(Quantitatives(4, R"("objective":"optimization")"), Named("BB")),
              "aliases: no run of the design BB holds all factors at low or high; aliases are told "
              "for two-level designs.");
}

TEST(AliasesCommand, TakesLevelFactorsAtTwoLevels) {
    EXPECT_THAT(Aliases(R"({"factors":[{"name":"Oven","type":"Qualitative","levels":["a","b"]},
                           {"name":"t","type":"Quantitative","low":0,"high":1},
                           {"name":"p","type":"Multilevel","settings":[1,2]}]})",
                        Named("FFR_III")),
                HasSubstr("Defining words    I = ABC\n"));
}

TEST(AliasesCommand, PrintsJsonWithFactorNames) {
    const json_value value = json_value::parse(
        Aliases(Quantitatives(5, R"("options":{"centerPoints":3})"), Named("FFR_V"), true));
    EXPECT_EQ(value.get_child("design").get_string(), "FFR_V");
    EXPECT_EQ(value.get_child("runs").get_integer(), 16);
    EXPECT_TRUE(value.get_child("isRegular").get_bool());
    EXPECT_EQ(value.get_child("resolution").get_float(), 5);
    EXPECT_EQ(value.get_child("wordLengthPattern").to_text(), "[0.0,0.0,0.0,0.0,1.0]");
    EXPECT_EQ(value.get_child("definingWords").to_text(),
              R"([{"factors":["A","B","C","D","E"],"sign":1}])");
    EXPECT_EQ(value.get_child("aliasSets").get_length(), 0U);
}

TEST(AliasesCommand, HasNoNumberForTheResolutionOfAFullFactorialInJson) {
    const json_value value = json_value::parse(Aliases(Quantitatives(3), Named("FF2"), true));
    EXPECT_EQ(value.get_child("resolution").to_text(), "null");
}

TEST(AliasesCommand, ListsAllPartialAliasesInJson) {
    const json_value value = json_value::parse(Aliases(Quantitatives(11), Named("PB"), true));
    // 11 main effects, each with the interactions of the 10 other factors.
    EXPECT_EQ(value.get_child("partialAliases").get_length(), 11U * 45U);
}

}  // namespace
