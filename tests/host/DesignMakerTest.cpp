#include "host/DesignMaker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/HostError.h"
#include "tests/host/HostTesting.h"

namespace {

using HostTesting::Quantitatives;
using testing::HasSubstr;
using testing::StartsWith;

DesignRequest Named(const std::string& design) {
    DesignRequest request;
    request.design = design;
    return request;
}

// Options and matrix size of what is built.
struct Outcome {
    DesignOptions options;
    std::string design;
    int rows = 0;
    int columns = 0;
};

Outcome Make(const std::string& text, const DesignRequest& request) {
    const Study study = ReadStudy(text, "s.json");
    const BuiltDesign built = MakeDesign(study, request);
    const auto matrix = built.design->GetDesignMatrix();
    return {
        built.options, built.builder->GetShortString(), matrix->SizeRows(), matrix->SizeColumns()};
}

std::string BadInput(const std::string& text, const DesignRequest& request) {
    try {
        static_cast<void>(Make(text, request));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

std::string NoValid(const std::string& text, const DesignRequest& request) {
    try {
        static_cast<void>(Make(text, request));
    } catch (const NoValidDesign& reason) {
        return reason.what();
    }
    return {};
}

TEST(DesignMaker, BuildsTheNamedDesign) {
    EXPECT_EQ(Make(Quantitatives(3), Named("full fac (2 levels)")).design, "FF2");
}

TEST(DesignMaker, BuildsTheStudysDesignUnlessAnotherIsNamed) {
    const std::string study =
        Quantitatives(3, R"("design":"FF3","objective":"optimization","model":"quadratic")");
    EXPECT_EQ(Make(study, {}).design, "FF3");
    EXPECT_THAT(NoValid(study, Named("FF2")),
                StartsWith("s.json: the design FF2 is not valid for this study."));
}

TEST(DesignMaker, BuildsAFullFactorialWithDefaultCentrePoints) {
    const Outcome outcome = Make(Quantitatives(3), Named("FF2"));
    EXPECT_EQ(outcome.rows, 8 + 3);
    EXPECT_EQ(outcome.columns, 3);
}

TEST(DesignMaker, TakesCountsFromTheStudy) {
    const Outcome outcome =
        Make(Quantitatives(
                 3, R"("options":{"centerPoints":2,"blocks":2,"replicatedDesigns":1,"runs":8})"),
             Named("FF2"));
    EXPECT_EQ(outcome.options.GetBlocks(), 2U);
    EXPECT_EQ(outcome.rows, (8 + 2) * 2);
    EXPECT_EQ(outcome.columns, 4);
}

TEST(DesignMaker, TakesCountsOfTheRequestOverThoseOfTheStudy) {
    DesignRequest request = Named("FF2");
    request.centerPoints = 0;
    request.replicates = 2;
    request.blocks = 1;
    const Outcome outcome =
        Make(Quantitatives(3, R"("options":{"centerPoints":2,"blocks":2,"replicatedDesigns":1})"),
             request);
    EXPECT_EQ(outcome.rows, 8 * 3);
    EXPECT_EQ(outcome.columns, 3);
}

TEST(DesignMaker, JudgesTheRunLimitByTheCentrePointsOfTheRequest) {
    DesignRequest request = Named("FF2");
    request.centerPoints = 0;
    EXPECT_EQ(Make(Quantitatives(3, R"("options":{"centerPoints":5,"maxRuns":8})"), request).rows,
              8);
}

TEST(DesignMaker, RepeatsAsManyRunsAsAsked) {
    DesignRequest request = Named("FF2");
    request.centerPoints = 0;
    request.replicatedRuns = 3;
    EXPECT_EQ(Make(Quantitatives(3), request).rows, 8 + 3);
}

TEST(DesignMaker, TakesTheModelOfTheRequest) {
    DesignRequest request = Named("FF2");
    request.model = "Linear";
    EXPECT_EQ(Make(Quantitatives(3), request).options.GetModel(), EModel::Linear);
}

TEST(DesignMaker, NamesTheLegalRuns) {
    DesignRequest request = Named("FF2");
    request.runs = 12;
    EXPECT_EQ(BadInput(Quantitatives(3), request), "--runs: FF2 cannot have 12 runs; allowed: 8.");
}

TEST(DesignMaker, NamesTheStudysMemberWithIllegalRuns) {
    EXPECT_EQ(BadInput(Quantitatives(3, R"("options":{"runs":12})"), Named("FF2")),
              "s.json: options.runs: FF2 cannot have 12 runs; allowed: 8.");
}

TEST(DesignMaker, NamesTheLegalBlocks) {
    DesignRequest request = Named("FF2");
    request.blocks = 3;
    EXPECT_EQ(BadInput(Quantitatives(4), request),
              "--blocks: FF2 cannot have 3 blocks; allowed: 1, 2 and 4.");
}

TEST(DesignMaker, RefusesCountsOutOfRange) {
    DesignRequest request = Named("FF2");
    request.replicates = -1;
    EXPECT_EQ(BadInput(Quantitatives(3), request),
              "--replicates: -1 must be a whole number from 0 to 1000000.");
}

TEST(DesignMaker, RefusesMoreThanAMillionRuns) {
    DesignRequest request = Named("FF2");
    request.replicates = 1'000'000;
    EXPECT_EQ(BadInput(Quantitatives(2, R"("options":{"centerPoints":0})"), request),
              "s.json: the design would have 4000004 runs with its centre points and replicates; "
              "allowed are 1000000.");
}

TEST(DesignMaker, RefusesAnUnknownDesign) {
    EXPECT_THAT(BadInput(Quantitatives(3), Named("FF9")),
                StartsWith("--design: \"FF9\" is no design; known are FF2, FF3"));
}

TEST(DesignMaker, RefusesAnUnknownModel) {
    DesignRequest request = Named("FF2");
    request.model = "lienar";
    EXPECT_THAT(BadInput(Quantitatives(3), request),
                StartsWith("--model: \"lienar\" is no model; allowed are linear"));
}

TEST(DesignMaker, RefusesOptionsThatTheFamilyDoesNotHave) {
    EXPECT_EQ(
        BadInput(Quantitatives(3, R"("options":{"designSpecificOptions":{"a":1}})"), Named("FF2")),
        "s.json: options.designSpecificOptions: the design \"FF2\" has no options of its "
        "own.");
}

TEST(DesignMaker, SaysWhyANamedDesignIsNotValid) {
    EXPECT_EQ(NoValid(Quantitatives(11), Named("FF2")),
              "s.json: the design FF2 is not valid for this study.\n"
              "  factor count: 11 is too many; there is FF2 for 10");
}

TEST(DesignMaker, KeepsTheRunLimitForFamiliesThatDoNotLookAtIt) {
    EXPECT_THAT(NoValid(R"({"factors":[
                    {"name":"p","type":"Qualitative","levels":["1","2","3"]},
                    {"name":"t","type":"Qualitative","levels":["1","2","3","4"]}],
                    "options":{"maxRuns":11,"centerPoints":0}})",
                        Named("FFM")),
                HasSubstr("run limit: no design fits into 11 runs"));
}

}  // namespace
