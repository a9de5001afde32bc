#include "host/Worksheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/DesignMaker.h"
#include "tests/host/HostTesting.h"

namespace {

using HostTesting::Quantitatives;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

struct Built {
    std::unique_ptr<Study> study;
    BuiltDesign design;
    std::vector<WorksheetRun> runs;
};

// Built and decoded, in standard order: run orders equal standard orders.
Built Build(const std::string& text, const DesignRequest& request) {
    Built built;
    built.study = std::make_unique<Study>(ReadStudy(text, "s.json"));
    built.design = MakeDesign(*built.study, request);
    const DesignForm form{built.design.design->IsDesignMatrixCoded(),
                          built.design.design->IsMixtureOnlyDesign(),
                          static_cast<int>(built.design.options.GetBlocks())};
    built.runs = DecodeRuns(*built.design.design->GetDesignMatrix(), built.study->factors, form);
    for (WorksheetRun& run : built.runs) {
        run.runOrder = run.standardOrder;
    }
    return built;
}

DesignRequest Ff2(long long centerPoints = 0) {
    DesignRequest request;
    request.design = "FF2";
    request.centerPoints = centerPoints;
    return request;
}

std::string Csv(const Built& built, bool coded) {
    return ToCsv(MakeWorksheetTable(built.runs, built.study->factors, coded));
}

StudyFactors FactorsOf(const std::string& factors) {
    return ReadStudy(R"({"factors":[)" + factors + "]}", "s.json").factors;
}

TEST(Worksheet, ShowsAFullFactorialInRealUnits) {
    EXPECT_EQ(Csv(Build(Quantitatives(3), Ff2(1)), false),
              "StdOrder,RunOrder,A,B,C\n"
              "1,1,10,10,10\n"
              "2,2,20,10,10\n"
              "3,3,10,20,10\n"
              "4,4,20,20,10\n"
              "5,5,10,10,20\n"
              "6,6,20,10,20\n"
              "7,7,10,20,20\n"
              "8,8,20,20,20\n"
              "9,9,15,15,15\n");
}

TEST(Worksheet, ShowsAFullFactorialCoded) {
    EXPECT_EQ(Csv(Build(Quantitatives(2), Ff2(1)), true),
              "StdOrder,RunOrder,A,B\n"
              "1,1,-1,-1\n"
              "2,2,1,-1\n"
              "3,3,-1,1\n"
              "4,4,1,1\n"
              "5,5,0,0\n");
}

TEST(Worksheet, NamesLevelsAndTakesSettings) {
    const Built built = Build(R"({"factors":[
        {"name":"Poison, dose","type":"Qualitative","levels":["I","II \"new\""]},
        {"name":"m","type":"Multilevel","settings":[0.1,250]}]})",
                              Ff2());
    EXPECT_EQ(Csv(built, false),
              "StdOrder,RunOrder,\"Poison, dose\",m\n"
              "1,1,I,0.1\n"
              "2,2,\"II \"\"new\"\"\",0.1\n"
              "3,3,I,250\n"
              "4,4,\"II \"\"new\"\"\",250\n");
    EXPECT_EQ(Csv(built, true),
              "StdOrder,RunOrder,\"Poison, dose\",m\n"
              "1,1,65,65\n"
              "2,2,66,65\n"
              "3,3,65,66\n"
              "4,4,66,66\n");
}

TEST(Worksheet, PutsTheCentreOfATransformedFactorInItsWorkingScale) {
    const Built built = Build(R"({"factors":[
        {"name":"a","type":"Quantitative","low":1,"high":100,"transform":"log10"},
        {"name":"b","type":"Quantitative","low":1,"high":100}]})",
                              Ff2(1));
    EXPECT_FLOAT_EQ(built.runs.back().values[0], 10.0F);
    EXPECT_FLOAT_EQ(built.runs.back().values[1], 50.5F);
}

TEST(Worksheet, ShowsTheEndsOfARangeAsTheyWereWritten) {
    // In float, ((100 - 0.1) * -1 + (0.1 + 100)) / 2 is not 0.1.
    const StudyFactors factors = FactorsOf(
        R"({"name":"a","type":"Quantitative","low":0.1,"high":100},
           {"name":"b","type":"Quantitative","low":0.1,"high":0.7,"transform":"ln"})");
    const auto runs = DecodeRuns({{-1, -1}, {1, 1}}, factors, {});
    EXPECT_THAT(runs[0].values, ElementsAre(0.1F, 0.1F));
    EXPECT_THAT(runs[1].values, ElementsAre(100.0F, 0.7F));
}

TEST(Worksheet, ShowsAnyOtherValueAsTheEngineConvertsIt) {
    const StudyFactors factors = FactorsOf(
        R"({"name":"a","type":"Quantitative","low":0.1,"high":100},
           {"name":"b","type":"Quantitative","low":0.1,"high":0.7,"transform":"ln"})");
    for (const float code : {-1.682F, -0.5F, 0.0F, 0.25F, 0.99F, 1.5F}) {
        const auto runs = DecodeRuns({{code, code}}, factors, {});
        EXPECT_EQ(runs[0].values[0], factors.FromCoded(0, code, false)) << code;
        EXPECT_EQ(runs[0].values[1], factors.FromCoded(1, code, false)) << code;
    }
}

TEST(Worksheet, AllowsARealValueThatEqualsTheMarkOfAMissingValue) {
    const Built built = Build(R"({"factors":[
        {"name":"a","type":"Quantitative","low":-100,"high":-98},
        {"name":"b","type":"Quantitative","low":0,"high":1}]})",
                              Ff2(1));
    EXPECT_EQ(built.runs.back().values[0], -99.0F);
}

TEST(Worksheet, GivesTheFillerWhatTheOthersLeave) {
    const Built built = Build(R"({"factors":[
        {"name":"a","type":"Formulation","low":0.1,"high":0.3},
        {"name":"Water","type":"Filler"},
        {"name":"b","type":"Formulation","low":0.2,"high":0.7}]})",
                              Ff2());
    EXPECT_EQ(Csv(built, false),
              "StdOrder,RunOrder,a,Water,b\n"
              "1,1,0.1,0.7,0.2\n"
              "2,2,0.3,0.5,0.2\n"
              "3,3,0.1,0.2,0.7\n"
              "4,4,0.3,0,0.7\n");
}

TEST(Worksheet, LeavesTheFillerOutOfCodedValues) {
    const Built built = Build(R"({"factors":[
        {"name":"a","type":"Formulation","low":0.1,"high":0.3},
        {"name":"Water","type":"Filler"},
        {"name":"b","type":"Formulation","low":0.2,"high":0.7}]})",
                              Ff2());
    EXPECT_THAT(Csv(built, true), testing::StartsWith("StdOrder,RunOrder,a,b\n1,1,-1,-1\n"));
}

TEST(Worksheet, CountsBlocksFromOne) {
    DesignRequest request = Ff2(0);
    request.blocks = 2;
    const Built built = Build(Quantitatives(3), request);
    const WorksheetTable table = MakeWorksheetTable(built.runs, built.study->factors, false);
    EXPECT_EQ(table.header.back(), "Block");
    int first = 0;
    for (const auto& line : table.lines) {
        ASSERT_THAT(line.back(), testing::AnyOf("1", "2"));
        first += line.back() == "1" ? 1 : 0;
    }
    EXPECT_EQ(first, 4);
}

TEST(Worksheet, RunsBlocksOneAfterTheOther) {
    DesignRequest request = Ff2(0);
    request.blocks = 4;
    Built built = Build(Quantitatives(4), request);
    const std::vector<int> order = MakeRunOrder(built.runs, 7);
    for (std::size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ((order[i] - 1) / 4 + 1, built.runs[i].block) << "row " << i + 1;
    }
}

TEST(Worksheet, ShufflesWithinBlocks) {
    DesignRequest request = Ff2(0);
    request.blocks = 2;
    const Built built = Build(Quantitatives(5), request);
    int ascending = 0;
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        const std::vector<int> order = MakeRunOrder(built.runs, seed);
        std::vector<int> first;
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (built.runs[i].block == 1) {
                first.push_back(order[i]);
            }
        }
        ascending += std::is_sorted(first.begin(), first.end()) ? 1 : 0;
    }
    EXPECT_EQ(ascending, 0) << "of 20 seeds";
}

TEST(Worksheet, OrdersRunsByAPermutation) {
    const Built built = Build(Quantitatives(4), Ff2(3));
    std::vector<int> order = MakeRunOrder(built.runs, 1974);
    std::sort(order.begin(), order.end());
    ASSERT_EQ(order.size(), 19U);
    for (std::size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ(order[i], static_cast<int>(i) + 1);
    }
}

TEST(Worksheet, OrdersRunsTheSameForTheSameSeed) {
    const Built built = Build(Quantitatives(4), Ff2(3));
    EXPECT_EQ(MakeRunOrder(built.runs, 42), MakeRunOrder(built.runs, 42));
    EXPECT_NE(MakeRunOrder(built.runs, 42), MakeRunOrder(built.runs, 43));
}

TEST(Worksheet, DrawsEveryFirstRunEquallyOften) {
    const Built built = Build(Quantitatives(2), Ff2(0));
    std::vector<int> firsts(4);
    constexpr int cSeeds = 4000;
    for (std::uint32_t seed = 0; seed < cSeeds; ++seed) {
        const std::vector<int> order = MakeRunOrder(built.runs, seed);
        ++firsts[static_cast<std::size_t>(std::find(order.begin(), order.end(), 1) -
                                          order.begin())];
    }
    // Five standard deviations of a binomial count, sqrt(4000 / 4 * 3 / 4) = 27.4.
    EXPECT_THAT(firsts, Each(testing::AllOf(testing::Gt(863), testing::Lt(1137))));
}

TEST(Worksheet, SortsLinesByRunOrder) {
    Built built = Build(Quantitatives(2), Ff2(0));
    const std::vector<int> order{3, 1, 4, 2};
    for (std::size_t i = 0; i < order.size(); ++i) {
        built.runs[i].runOrder = order[i];
    }
    EXPECT_EQ(Csv(built, true), "StdOrder,RunOrder,A,B\n2,1,1,-1\n4,2,1,1\n1,3,-1,-1\n3,4,-1,1\n");
}

TEST(Worksheet, WritesTheFewestDigitsThatReadBackTheSame) {
    const StudyFactors factors = FactorsOf(
        R"({"name":"a","type":"Quantitative","low":0.1,"high":0.7},
           {"name":"b","type":"Quantitative","low":1e-20,"high":123456792})");
    const auto runs = DecodeRuns({{-1, -1}, {1, 1}, {0.31415927F, 0}}, factors, {});
    const WorksheetTable table = MakeWorksheetTable(runs, factors, false);
    for (std::size_t run = 0; run < runs.size(); ++run) {
        for (std::size_t factor = 0; factor < 2; ++factor) {
            EXPECT_EQ(std::stof(table.lines[run][factor + 2]), runs[run].values[factor]);
        }
    }
    EXPECT_THAT(table.lines[0], ElementsAre("1", "0", "0.1", "1e-20"));
}

TEST(Worksheet, ReadsRealValuesWithExpandedLevelsAndBlocks) {
    const StudyFactors factors = FactorsOf(
        R"({"name":"q","type":"Qualitative","levels":["x","y","z"]},
           {"name":"a","type":"Quantitative","low":10,"high":20},
           {"name":"m","type":"Multilevel","settings":[1,5,7]})");
    const DesignForm form{false, false, 3};
    const auto runs = DecodeRuns({{-1, -1, 10, 7, -1, -1}, {0, 1, 17.5F, 5, 1, 0}}, factors, form);
    EXPECT_THAT(runs[0].values, ElementsAre(0, 10, 7));
    EXPECT_THAT(runs[0].codes, ElementsAre(65, -1, 67));
    EXPECT_EQ(runs[0].block, 1);
    EXPECT_THAT(runs[1].values, ElementsAre(2, 17.5F, 5));
    EXPECT_THAT(runs[1].codes, ElementsAre(67, 0.5F, 66));
    EXPECT_EQ(runs[1].block, 2);
}

TEST(Worksheet, CodesARealValueInTheWorkingScale) {
    const StudyFactors factors =
        FactorsOf(R"({"name":"a","type":"Quantitative","low":1,"high":100,"transform":"log10"})");
    EXPECT_FLOAT_EQ(DecodeRuns({{10}}, factors, {false, false, 1})[0].codes[0], 0.0F);
}

// The error that decoding raises, or an empty text.
std::string DecodingError(const NCDataMatrix<float>& matrix,
                          const StudyFactors& factors,
                          const DesignForm& form) {
    try {
        static_cast<void>(DecodeRuns(matrix, factors, form));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(Worksheet, NamesRunAndColumnOfALevelThatIsNone) {
    const StudyFactors factors =
        FactorsOf(R"({"name":"q","type":"Qualitative","levels":["x","y"]})");
    EXPECT_EQ(DecodingError({{65}, {67}}, factors, {}),
              "Run 2 of the design has no meaning in column \"q\": 67.");
    EXPECT_EQ(DecodingError({{64}}, factors, {}),
              "Run 1 of the design has no meaning in column \"q\": 64.");
    EXPECT_EQ(DecodingError({{0.5F}}, factors, {false, false, 1}),
              "Run 1 of the design has no meaning in column \"q\": 0.5.");
}

TEST(Worksheet, NamesAStarPointOutsideTheTransform) {
    // The square root scale runs from 0 to 3; 0 - 1.5 has no square.
    const StudyFactors factors = FactorsOf(
        R"({"name":"a","type":"Quantitative","low":0,"high":9,
            "transform":{"kind":"power","exponent":0.5}})");
    EXPECT_EQ(DecodingError({{-2}}, factors, {}),
              "Run 1 of the design has no meaning in column \"a\": -2.");
}

TEST(Worksheet, RefusesACellWithoutValue) {
    const StudyFactors factors =
        FactorsOf(R"({"name":"a","type":"Quantitative","low":0,"high":9})");
    EXPECT_EQ(DecodingError({{-99}}, factors, {}),
              "Run 1 of the design has no meaning in column \"a\": -99.");
}

TEST(Worksheet, RefusesAMatrixOfAnotherWidth) {
    const StudyFactors factors =
        FactorsOf(R"({"name":"a","type":"Quantitative","low":0,"high":9})");
    EXPECT_EQ(DecodingError({{1, 1}}, factors, {}),
              "The design has 2 columns; its factors and blocks need 1.");
}

TEST(Worksheet, QuotesTextsWithLineEnds) {
    EXPECT_EQ(ToCsv({{"a", "b\nc"}, {{"1", "\""}}}), "a,\"b\nc\"\n1,\"\"\"\"\n");
}

}  // namespace
