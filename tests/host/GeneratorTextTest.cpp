#include "host/GeneratorText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/DesignMaker.h"
#include "tests/host/HostTesting.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadingError;
using testing::HasSubstr;

std::vector<std::string> WordsOf(const std::string& text, int factorCount) {
    std::vector<std::string> words;
    const json_value list = GeneratorText::Read(text, factorCount, "here").ToJson();
    for (const json_value& word : list.get_array()) {
        words.push_back(word.get_string());
    }
    return words;
}

std::string ReadError(const std::string& text, int factorCount) {
    try {
        static_cast<void>(GeneratorText::Read(text, factorCount, "here"));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

DesignRequest With(const std::string& design, const std::string& generators) {
    DesignRequest request;
    request.design = design;
    request.generators = generators;
    return request;
}

BuiltDesign Make(const std::string& text, const DesignRequest& request) {
    // The built design borrows the study's factors, which the tests do not look at any more.
    const Study study = ReadStudy(text, "s.json");
    return MakeDesign(study, request);
}

std::string MakeError(const std::string& text, const DesignRequest& request) {
    try {
        static_cast<void>(Make(text, request));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(GeneratorText, MakesEveryFactorWithoutAWordABaseFactor) {
    EXPECT_THAT(WordsOf("E=ABCD", 5), testing::ElementsAre("a", "b", "c", "d", "abcd"));
}

TEST(GeneratorText, RefusesBlanksInAWord) {
    EXPECT_THAT(ReadError("D=A BC", 4), HasSubstr(R"(has " ", which is no factor)"));
}

TEST(GeneratorText, ReadsBlocksAndSigns) {
    EXPECT_THAT(WordsOf(" b=-ac , block1 = acd,BLOCK2=CE", 5),
                testing::ElementsAre("a", "-ab", "b", "c", "d", "abc", "bd"));
}

TEST(GeneratorText, ReadsTheJsonForm) {
    EXPECT_THAT(WordsOf(R"(["a","B","-ab"])", 3), testing::ElementsAre("a", "b", "-ab"));
}

TEST(GeneratorText, NamesWhatIsWrongInADefinition) {
    EXPECT_EQ(ReadError("  ", 5), "here: no generators are given.");
    EXPECT_EQ(ReadError("E", 5),
              R"(here: "E" must be a definition such as "E=ABCD" or "Block1=ABC".)");
    EXPECT_EQ(ReadError("E=ABC,E=ABD", 5),
              R"(here: "E=ABD" defines a word that is defined already.)");
    EXPECT_EQ(ReadError("E=", 5),
              R"(here: "E=" must have a product of at least two factors on its right side.)");
    EXPECT_EQ(ReadError("E=-", 5),
              R"(here: "E=-" must have a product of at least two factors on its right side.)");
    EXPECT_EQ(ReadError("E=A", 5),
              R"(here: "E=A" must have a product of at least two factors on its right side.)");
    EXPECT_EQ(ReadError("E=ABA", 5), R"(here: "E=ABA" has the factor A twice.)");
    EXPECT_EQ(ReadError("E=AIB", 5),
              R"(here: "E=AIB" has "I", which is no factor; the factors are A to E, without I.)");
    EXPECT_EQ(ReadError("Z=AB", 5),
              R"(here: "Z=AB" has "Z", which is no factor; the factors are A to E, without I.)");
    EXPECT_EQ(ReadError("Block4=AB", 5),
              R"(here: "Block4=AB" must begin with one factor's letter or with Block1, Block2 or )"
              "Block3.");
    EXPECT_EQ(ReadError("D=ABC,", 4),
              R"(here: "" must be a definition such as "E=ABCD" or "Block1=ABC".)");
}

// E is ABCD, so BCE is BC times ABCD, in which B and C cancel.
TEST(GeneratorText, ReplacesGeneratedFactorsByTheirWords) {
    EXPECT_THAT(WordsOf("E=ABCD,F=BCE", 6), testing::ElementsAre("a", "b", "c", "d", "abcd", "ad"));
    EXPECT_THAT(WordsOf("F=BCE,E=ABCD", 6), testing::ElementsAre("a", "b", "c", "d", "abcd", "ad"));
}

TEST(GeneratorText, CarriesTheSignsOfReplacedFactors) {
    EXPECT_EQ(WordsOf("E=-ABCD,F=BCE", 6).back(), "-ad");
    EXPECT_EQ(WordsOf("E=-ABCD,F=-BCE", 6).back(), "ad");
}

TEST(GeneratorText, RefusesAFactorThatIsDefinedByItself) {
    EXPECT_EQ(ReadError("E=AE", 5), R"(here: "E=AE" defines a factor by itself.)");
    EXPECT_THAT(ReadError("E=AF,F=BE", 6), HasSubstr("defines a factor by itself"));
}

TEST(GeneratorText, RefusesAWordInWhichTheFactorsCancel) {
    EXPECT_EQ(ReadError("E=ABC,F=ABE", 6), R"(here: "F=ABE" comes out as the factor C alone.)");
    EXPECT_THAT(ReadError("E=AB,F=AB,G=EF", 7), HasSubstr("comes out as no factor at all"));
}

TEST(GeneratorText, RefusesAGapInTheBlocks) {
    EXPECT_EQ(ReadError("Block2=AB", 4),
              "here: Block1 is missing; blocks are numbered from 1 without a gap.");
}

TEST(GeneratorText, RefusesTooManyBaseFactors) {
    EXPECT_EQ(ReadError("N=AB", 13),
              "here: 12 of the 13 factors are left as base factors; at most 11 may be.");
}

TEST(GeneratorText, RefusesJsonThatIsNoListOfWords) {
    EXPECT_EQ(ReadError("[]", 3), "here: generators must be an array of 1 to 48 words.");
    EXPECT_THAT(ReadError(R"(["a","b","a b"])", 3), HasSubstr(R"(here: "a b" must be a word)"));
    EXPECT_THAT(ReadError(R"(["a","b",3])", 3), HasSubstr("here: 3 must be a word"));
    EXPECT_THAT(ReadError(R"(["a","b","l"])", 3), HasSubstr(R"("l" must be a word)"));
    EXPECT_THAT(ReadError(R"(["a")", 3), HasSubstr("here"));
}

TEST(GeneratorText, TellsTheGeneratedFactors) {
    const Study study = ReadStudy(Quantitatives(5), "s.json");
    const std::string text = "B=-AC, Block1=ACD, Block2=CE";
    EXPECT_EQ(GeneratorText::TextOf(GeneratorText::Read(text, 5, "here"), study.factors), text);
}

TEST(UserGenerators, MakeTheColumnsTheyTell) {
    const BuiltDesign built = Make(Quantitatives(5), With("FFR_V", "B=-ACD"));
    const auto matrix = built.design->GetDesignMatrix();
    ASSERT_EQ(matrix->SizeRows(), 16 + 3);
    for (int row = 1; row <= 16; ++row) {
        EXPECT_EQ((*matrix)(row, 2), -(*matrix)(row, 1) * (*matrix)(row, 3) * (*matrix)(row, 4))
            << "row " << row;
    }
}

TEST(UserGenerators, ChooseRunsAndBlocks) {
    const BuiltDesign built = Make(Quantitatives(6), With("FFR_IV", "E=ABC,F=BCD,Block1=ABD"));
    EXPECT_EQ(built.options.GetRuns(), 16U);
    EXPECT_EQ(built.options.GetBlocks(), 2U);
    const auto matrix = built.design->GetDesignMatrix();
    for (int row = 1; row <= 16; ++row) {
        const float product = (*matrix)(row, 1) * (*matrix)(row, 2) * (*matrix)(row, 4);
        EXPECT_EQ((*matrix)(row, 7), product > 0 ? 66 : 65) << "row " << row;
    }
}

TEST(UserGenerators, ServeTheFactorialOfACompositeDesign) {
    const BuiltDesign built =
        Make(Quantitatives(5, R"("objective":"optimization")"), With("CCF", "E=-ABCD"));
    const auto matrix = built.design->GetDesignMatrix();
    EXPECT_EQ(built.options.GetRuns(), 26U);
    for (int row = 1; row <= 16; ++row) {
        EXPECT_EQ((*matrix)(row, 5),
                  -(*matrix)(row, 1) * (*matrix)(row, 2) * (*matrix)(row, 3) * (*matrix)(row, 4))
            << "row " << row;
    }
}

TEST(UserGenerators, AreTakenFromTheStudyAsTextAndAsJson) {
    const auto last = [](const std::string& generators) {
        const BuiltDesign built = Make(
            Quantitatives(5, R"("design":"FFR_V","options":{"generators":)" + generators + "}"),
            {});
        return (*built.design->GetDesignMatrix())(1, 5);
    };
    EXPECT_EQ(last(R"("E=ABCD")"), 1);
    EXPECT_EQ(last(R"("E=-ABCD")"), -1);
    EXPECT_EQ(last(R"(["a","b","c","d","-abcd"])"), -1);
}

TEST(UserGenerators, OfTheRequestWinOverTheStudys) {
    const std::string study =
        Quantitatives(5, R"("options":{"generators":["a","b","c","d","-abcd"]})");
    EXPECT_EQ((*Make(study, With("FFR_V", "E=ABCD")).design->GetDesignMatrix())(1, 5), 1);
}

TEST(UserGenerators, MustMakeALegalRunCount) {
    EXPECT_EQ(MakeError(Quantitatives(5), With("FFR_V", "D=AB,E=AC")),
              "--generators: FFR_V cannot have 8 runs; allowed: 16.");
}

TEST(UserGenerators, AreRefusedByFamiliesWithoutThem) {
    EXPECT_EQ(
        MakeError(Quantitatives(4), With("FF2", "D=ABC")),
        "--generators: the design FF2 takes no generators; those that do are FFR_III, FFR_IV, "
        "FFR_V, CCC, CCF and CCO.");
}

TEST(UserGenerators, MustDiffer) {
    EXPECT_EQ(MakeError(Quantitatives(6), With("FFR_IV", "E=ABC,F=-ABC")),
              "--generators: E and F have the same word and could not be told apart.");
}

TEST(UserGenerators, MustBeEnoughForTheBlocks) {
    DesignRequest request = With("FFR_IV", "E=ABC,F=BCD");
    request.blocks = 2;
    EXPECT_THAT(MakeError(Quantitatives(6), request),
                HasSubstr("--generators: 0 block words make 1 blocks; the design has 2."));
}

TEST(UserGenerators, MustNotGiveAFactorToTheBlocks) {
    EXPECT_EQ(MakeError(Quantitatives(6), With("FFR_IV", "E=ABC,F=BCD,Block1=AB,Block2=AC")), "")
        << "BC is no factor";
    EXPECT_EQ(MakeError(Quantitatives(6), With("FFR_IV", "E=ABC,F=BCD,Block1=AB,Block2=ABD")),
              "--generators: the factor D would be lost to the blocks: its word is the product of "
              "Block1, Block2.");
}

TEST(UserGenerators, OfTheJsonFormAreCheckedByTheEngine) {
    EXPECT_EQ(MakeError(Quantitatives(5), With("FFR_V", R"(["a","b","c","abd","abcd"])")),
              "--generators: Invalid generator definitions:\nMissing base generator:  d");
    EXPECT_EQ(MakeError(Quantitatives(5), With("FFR_V", R"(["a","b","c","d"])")),
              "--generators: the factor E has no word; each of the 5 factors needs one.");
}

TEST(UserGenerators, OfTheStudyAreNamedByTheirPlace) {
    EXPECT_EQ(
        MakeError(Quantitatives(5, R"("design":"FFR_V","options":{"generators":"E=ABX"})"), {}),
        R"(s.json: options.generators: "E=ABX" has "X", which is no factor; the factors are A )"
        "to E, without I.");
    EXPECT_THAT(ReadingError(Quantitatives(5, R"("options":{"generators":7})")),
                HasSubstr("options.generators: 7 must be an array of words or a text"));
}

TEST(UserGenerators, MakeLevelFactors) {
    const BuiltDesign built =
        Make(R"({"factors":[{"name":"a","type":"Quantitative","low":0,"high":1},
                            {"name":"b","type":"Quantitative","low":0,"high":1},
                            {"name":"c","type":"Qualitative","levels":["x","y"]}]})",
             With("FFR_III", "C=-AB"));
    const auto matrix = built.design->GetDesignMatrix();
    for (int row = 1; row <= 4; ++row) {
        EXPECT_EQ((*matrix)(row, 3), (*matrix)(row, 1) * (*matrix)(row, 2) > 0 ? 65 : 66);
    }
}

}  // namespace
