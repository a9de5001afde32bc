#include "host/ModelTermsText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/HostTesting.h"

namespace {

using ModelTermsText::Terms;
using testing::HasSubstr;

const Study& Reactor() {
    static const Study study = ReadStudy(R"({"factors":[
        {"name":"Temp","type":"Quantitative","low":150,"high":180},
        {"name":"Stir, fast","type":"Quantitative","low":1,"high":2},
        {"name":"Cat","type":"Qualitative","levels":["A","B","C"]},
        {"name":"Steps","type":"Multilevel","settings":[1,2]}]})",
                                         "s.json");
    return study;
}

Terms TermsOf(const std::string& text, int blocks = 1) {
    Terms terms = ModelTermsText::Read(text, Reactor(), blocks, "--model-terms");
    // The constant and the four main effects.
    terms.erase(terms.begin(), terms.begin() + 5);
    return terms;
}

std::string ErrorOf(const std::string& text) {
    try {
        static_cast<void>(TermsOf(text));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(ModelTermsText, ConstantAndMainEffectsBelongToEveryModel) {
    EXPECT_EQ(ModelTermsText::Read("", Reactor(), 1, ""), (Terms{{}, {0}, {1}, {2}, {3}}));
}

TEST(ModelTermsText, BlocksBelongToTheModelOfABlockedDesign) {
    EXPECT_EQ(TermsOf("Temp^2", 2), (Terms{{4}, {0, 0}}));
}

TEST(ModelTermsText, ReadsProductsAndPowers) {
    EXPECT_EQ(TermsOf("Temp*Cat, Temp^2 ,Cat * Temp^2,Temp^3"),
              (Terms{{0, 2}, {0, 0}, {0, 0, 2}, {0, 0, 0}}));
}

TEST(ModelTermsText, QuotedNamesMayHoldSeparators) {
    EXPECT_EQ(TermsOf(R"("Stir, fast"^2, Temp*"Stir, fast")"), (Terms{{1, 1}, {0, 1}}));
}

TEST(ModelTermsText, TermsStandOnce) {
    EXPECT_EQ(TermsOf("Temp*Cat, Cat*Temp, Temp, Temp*Temp, Temp^2"), (Terms{{0, 2}, {0, 0}}));
}

TEST(ModelTermsText, MissingFactorIsNamedWithThoseThereAre) {
    EXPECT_EQ(ErrorOf("Temp*Presure"),
              "--model-terms: \"Temp*Presure\" names \"Presure\", which is no factor of the study; "
              "its factors are \"Temp\", \"Stir, fast\", \"Cat\" and \"Steps\".");
}

TEST(ModelTermsText, SquareOfAQualitativeFactorIsRefusedWithTheReason) {
    EXPECT_THAT(ErrorOf("Temp^2, Cat^2"),
                HasSubstr("\"Cat^2\" is a power of \"Cat\", which is qualitative"));
}

TEST(ModelTermsText, ProductOfAQualitativeFactorWithItselfIsRefused) {
    EXPECT_THAT(ErrorOf("Cat*Temp*Cat"), HasSubstr("is qualitative"));
}

TEST(ModelTermsText, SquareOfTwoSettingsIsRefused) {
    EXPECT_THAT(ErrorOf("Steps^2"), HasSubstr("\"Steps\", which has 2 settings only"));
}

TEST(ModelTermsText, MoreThanThreeFactorsAreRefused) {
    EXPECT_THAT(ErrorOf("Temp^3*Cat"), HasSubstr("is a product of 4 factors; allowed are 3"));
}

TEST(ModelTermsText, OtherPowersAreRefused) {
    for (const char* text : {"Temp^4", "Temp^0", "Temp^", "Temp^x", "Temp^-1", "Temp^1.5"}) {
        EXPECT_THAT(ErrorOf(text), HasSubstr("a power that is none of 1, 2 and 3")) << text;
    }
}

TEST(ModelTermsText, MissingNamesAreRefused) {
    for (const char* text : {",", "Temp,,Cat", "Temp*", "*Temp", "^2", "Temp, "}) {
        EXPECT_THAT(ErrorOf(text), HasSubstr("name of a factor is missing")) << text;
    }
    EXPECT_THAT(ErrorOf("Temp,"), HasSubstr("a term is missing behind the last comma"));
}

TEST(ModelTermsText, OpenQuotesAreRefused) {
    EXPECT_THAT(ErrorOf("\"Temp"), HasSubstr("has quotes that do not end"));
}

TEST(ModelTermsText, TextBehindATermIsRefused) {
    EXPECT_THAT(ErrorOf("\"Temp\" Cat"), HasSubstr("is no term"));
}

TEST(ModelTermsText, TheFillerIsNoFactorOfAModel) {
    const Study study = ReadStudy(R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":0.5},
        {"name":"b","type":"Formulation","low":0,"high":0.5},
        {"name":"Water","type":"Filler"}]})",
                                  "s.json");
    try {
        static_cast<void>(ModelTermsText::Read("a*Water", study, 1, "x"));
        FAIL();
    } catch (const Exception& exception) {
        EXPECT_THAT(exception.what(), HasSubstr("\"Water\", the filler"));
    }
}

TEST(ModelTermsText, WritesTerms) {
    const StudyFactors& factors = Reactor().factors;
    EXPECT_EQ(ModelTermsText::TextOf(std::vector<int>{0, 0, 2}, factors), "Temp^2*Cat");
    EXPECT_EQ(ModelTermsText::TextOf(std::vector<int>{}, factors), "constant");
    EXPECT_EQ(ModelTermsText::TextOf(std::vector<int>{4}, factors), "block");
    EXPECT_EQ(ModelTermsText::TextOf(Terms{{}, {0}, {0, 2}, {0, 0}}, factors), "Temp*Cat, Temp^2");
    EXPECT_EQ(ModelTermsText::TextOf(Terms{{}, {0}}, factors), "main effects");
}

TEST(ModelTermsText, WritesWhatItReads) {
    const Study study = ReadStudy(R"({"factors":[
        {"name":"Stir, fast","type":"Quantitative","low":1,"high":2},
        {"name":"a*b^2","type":"Quantitative","low":1,"high":2},
        {"name":"the \"old\" one","type":"Quantitative","low":1,"high":2}]})",
                                  "s.json");
    const Terms terms{{}, {0}, {1}, {2}, {0, 1}, {1, 2, 2}};
    const std::string text = ModelTermsText::TextOf(terms, study.factors);
    EXPECT_EQ(text, R"("Stir, fast"*"a*b^2", "a*b^2"*"the ""old"" one"^2)");
    EXPECT_EQ(ModelTermsText::Read(text, study, 1, "x"), terms);
}

}  // namespace
