#include "host/IOptCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/Interrupt.h"
#include "host/SettingsGrid.h"
#include "tests/host/CommandTesting.h"
#include "tests/support/MatrixRows.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::HasSubstr;
using testing::StartsWith;
using Rows = std::vector<std::vector<float>>;

class IOptCommand : public ReactorStudy {
  protected:
    [[nodiscard]] Rows GridOf(const std::string& study, long long levels) const {
        return RowsOf(MakeSettingsGrid(ReadStudy(study, "s.json"), levels).points);
    }
    static std::string Line(const std::string& text, const std::string& begin) {
        for (const std::string& line : LinesOf(text)) {
            if (line.starts_with(begin)) {
                return line;
            }
        }
        return "no such line";
    }
};

// The four corners: n * 3/4 over the corners.
TEST_F(IOptCommand, FindsTheFactorialOfTwoFactors) {
    WriteFile(study_, Quantitatives(2));
    const Answer answer = AskStudy({"iopt", "--runs", "4", "--levels", "2", "--seed", "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, StartsWith("StdOrder,RunOrder,A,B\n"));
    EXPECT_THAT(Line(answer.err, "I-value"), testing::EndsWith(" 3"));
}

TEST_F(IOptCommand, SameSeedGivesTheSameDesign) {
    const std::vector<std::string> arguments{
        "iopt", "--runs", "14", "--seed", "7", "--starts", "2"};
    EXPECT_EQ(AskStudy(arguments).out, AskStudy(arguments).out);
}

TEST_F(IOptCommand, TellsTheSeedThatItDrew) {
    const Answer drawn = AskStudy({"iopt", "--runs", "9", "--starts", "1"});
    const std::string seed = drawn.err.substr(drawn.err.rfind(' ') + 1);
    EXPECT_EQ(
        AskStudy(
            {"iopt", "--runs", "9", "--starts", "1", "--seed", seed.substr(0, seed.size() - 1)})
            .out,
        drawn.out);
}

TEST_F(IOptCommand, WritesTheWorksheetThatEvaluateReads) {
    const Answer answer = AskStudy({"iopt",
                                    "--runs",
                                    "14",
                                    "--seed",
                                    "3",
                                    "--starts",
                                    "2",
                                    "--model",
                                    "quadratic",
                                    "-o",
                                    csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const Answer judged = AskStudy({"evaluate", "--worksheet", csv_, "--model", "quadratic"});
    EXPECT_EQ(Line(judged.out, "Condition number"), Line(answer.out, "Condition number"));
}

TEST_F(IOptCommand, ModelTermsOfTheStudyAreTaken) {
    WriteStudy(R"("options":{"modelTerms":"Temp^2"})");
    const Answer answer = AskStudy({"iopt", "--runs", "9", "--seed", "1", "-o", csv_});
    EXPECT_THAT(Line(answer.out, "Model"), testing::EndsWith("Temp^2"));
}

TEST_F(IOptCommand, ResponseSurfacesHaveAQuadraticModel) {
    WriteFile(study_, Quantitatives(2, R"("objective":"optimization")"));
    const Answer answer = AskStudy({"iopt", "--runs", "8", "--seed", "1", "-o", csv_});
    EXPECT_THAT(Line(answer.out, "Columns of the model"), testing::EndsWith(" 6"));
}

TEST_F(IOptCommand, GridHoldsAllLevels) {
    Rows grid = GridOf(R"({"factors":[{"name":"a","type":"Quantitative","low":1,"high":3},
                                      {"name":"b","type":"Qualitative","levels":["x","y"]}]})",
                       3);
    std::ranges::sort(grid);
    EXPECT_EQ(grid, (Rows{{1, -1}, {1, 1}, {2, -1}, {2, 1}, {3, -1}, {3, 1}}));
}

TEST_F(IOptCommand, GridStepsEvenlyInTheTransformedScale) {
    const Rows grid = GridOf(
        R"({"factors":[{"name":"a","type":"Quantitative","low":1,"high":100,"transform":"log10"}]})",
        3);
    ASSERT_EQ(grid.size(), 3U);
    EXPECT_FLOAT_EQ(grid[1][0], 10);
}

TEST_F(IOptCommand, GridOfAMixtureStartsAtTheLowSettings) {
    Rows grid = GridOf(R"({"factors":[{"name":"a","type":"Formulation","low":0.5,"high":1},
                                      {"name":"b","type":"Formulation","low":0,"high":0.5}]})",
                       3);
    std::ranges::sort(grid);
    EXPECT_EQ(grid, (Rows{{0.5F, 0.5F}, {0.75F, 0.25F}, {1, 0}}));
}

TEST_F(IOptCommand, GridLeavesOutWhatBreaksAConstraint) {
    const std::string constraint = R"("constraints":[{"terms":[{"factor":"A","coefficient":1},
        {"factor":"B","coefficient":1}],"bound":30,"relation":"<="}])";
    EXPECT_EQ(GridOf(Quantitatives(2, constraint), 3).size(), 6U);
}

TEST_F(IOptCommand, GridLeavesOutSharesAboveTheirLimit) {
    const std::string study = R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":0.5},
        {"name":"b","type":"Formulation","low":0,"high":1},
        {"name":"c","type":"Formulation","low":0,"high":1}]})";
    // Of the six blends of halves all but a alone.
    EXPECT_EQ(GridOf(study, 3).size(), 5U);
}

TEST_F(IOptCommand, WrongNumbersAreRefused) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
        {{"--runs", "0"}, "--runs: 0 must be a whole number from 1"},
        {{"--runs", "4"}, "--runs: 4 are too few; the model has 5 columns"},
        {{"--runs", "76"}, "--runs: 76 are more than the grid has points, 75"},
        {{"--runs", "9", "--levels", "1"}, "--levels: 1 must be a whole number from 2"},
        {{"--runs", "9", "--levels", "1000"}, "allowed are 200000"},
        {{"--runs", "9", "--starts", "0"}, "--starts: 0 must be a whole number from 1"},
        {{"--runs", "9", "--model", "wavy"}, "--model: \"wavy\" is no model"},
        {{"--runs", "9", "--model-terms", "Cat^2"}, "which is qualitative"},
        {{"--runs", "9", "-o", study_}, "is the study itself"}};
    for (const auto& [arguments, text] : wrong) {
        std::vector<std::string> all{"iopt"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Answer answer = AskStudy(all);
        EXPECT_EQ(answer.code, 2) << text;
        EXPECT_THAT(answer.err, HasSubstr(text));
        EXPECT_EQ(answer.out, "");
    }
}

TEST_F(IOptCommand, GridThatCannotTellTheModelIsRefused) {
    EXPECT_THAT(
        AskStudy({"iopt", "--runs", "9", "--levels", "2", "--model-terms", "Temp^2"}).err,
        HasSubstr("the 12 points of the grid tell only 5 of the 6 columns of the model apart"));
}

TEST_F(IOptCommand, EmptyGridIsRefused) {
    WriteFile(study_, Quantitatives(2, R"("constraints":[{"terms":[{"factor":"A","coefficient":1}],
                                 "bound":9,"relation":"<="}])"));
    EXPECT_THAT(AskStudy({"iopt", "--runs", "5"}).err,
                HasSubstr("none of the 25 points of the grid keeps"));
}

TEST_F(IOptCommand, BlocksAreRefused) {
    WriteStudy(R"("options":{"blocks":2})");
    EXPECT_THAT(AskStudy({"iopt", "--runs", "9"}).err, HasSubstr("designs without blocks"));
}

TEST_F(IOptCommand, StopLeavesTheWorksheetAsItWas) {
    WriteFile(csv_, "old");
    Interrupt::Set(true);
    const Answer answer = AskStudy({"iopt", "--runs", "9", "-o", csv_});
    Interrupt::Set(false);
    EXPECT_EQ(answer.code, 130);
    EXPECT_EQ(ReadFile(csv_), "old");
}

TEST_F(IOptCommand, RunsBeyondTheLimitOfTheStudyAreRefused) {
    WriteFile(study_, Quantitatives(2, R"("options":{"maxRuns":6})"));
    EXPECT_EQ(AskStudy({"iopt", "--runs", "7", "--starts", "1"}).err,
              "--runs: 7 are more than the run limit of the study, 6.\n");
    EXPECT_EQ(AskStudy({"iopt", "--runs", "6", "--starts", "1"}).code, 0);
}

TEST_F(IOptCommand, OptionsWithoutAMeaningAreNoted) {
    WriteFile(study_, Quantitatives(2, R"("options":{"centerPoints":3,"runs":9,"maxRuns":20})"));
    EXPECT_THAT(
        AskStudy({"iopt", "--runs", "4", "--starts", "1"}).err,
        HasSubstr(study_ + ": iopt does not use the options \"centerPoints\" and \"runs\".\n"));
}

}  // namespace
