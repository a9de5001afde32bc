#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "host/Cli.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::HasSubstr;
using testing::StartsWith;

struct Answer {
    int code = 0;
    std::string out;
    std::string err;
};

// A study whose thirds are Latin squares, so that the search ends at once.
class SubsetCommands : public testing::Test {
  protected:
    SubsetCommands() {
        WriteFile(study_,
                  R"({"factors":[
                      {"name":"pH","type":"Multilevel","settings":[4,6,9]},
                      {"name":"Buffer","type":"Qualitative","levels":["P","Q","R"]},
                      {"name":"Light","type":"Qualitative","levels":["dark","day","lamp"]}]})");
    }

    Answer Ask(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin() + 1, study_);
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunCommandLine(arguments, out, err);
        return {code, out.str(), err.str()};
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string csv_ = folder_.File("plan.csv");
};

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST_F(SubsetCommands, StabilityPrintsThePlan) {
    const Answer answer =
        Ask({"stability", "--used", "1:1,3:1,3:2", "--times", "0,3,6.5", "--seconds", "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, StartsWith("Set  Time  Name"));
    EXPECT_THAT(answer.out, HasSubstr("c27-T0"));
    EXPECT_THAT(answer.out, HasSubstr("-T6.5"));
    EXPECT_THAT(answer.out, HasSubstr("C:2"));
    EXPECT_THAT(answer.err, HasSubstr("45 runs of 27 combinations at 3 points in time"));
    EXPECT_EQ(LinesOf(answer.out).size(), 2U + 45U);
}

TEST_F(SubsetCommands, StabilityWritesThePlan) {
    const Answer answer =
        Ask({"stability", "--used", "1:1,3:2", "--times", "0,3", "--seconds", "1", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const auto lines = LinesOf(ReadFile(csv_));
    ASSERT_EQ(lines.size(), 1U + 27U + 9U);
    EXPECT_EQ(lines[0], "Set,Time,Name,Combination,pH,Buffer,Light");
    EXPECT_EQ(lines[1], "A:1,0,c1-T0,c1,4,P,dark");
    EXPECT_EQ(lines[2], "A:1,0,c2-T0,c2,6,P,dark");
    EXPECT_THAT(lines[28], StartsWith("C:2,3,c"));
}

TEST_F(SubsetCommands, StabilityHasTheSetsOfTheFamily) {
    const Answer answer = Ask({"stability", "--seconds", "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("81 runs of 27 combinations at 5 points in time"));
}

TEST_F(SubsetCommands, StabilityNamesWhatIsWrong) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
        {{"--used", "1:1,3"}, "--used: \"3\" is no design set"},
        {{"--used", "3:4"}, "the index from 1 to the reduction"},
        {{"--used", "0:0"}, "the reduction must be 1 or more"},
        {{"--used", "1:1,"}, "--used: \"\" is no design set"},
        {{"--used", "1:1", "--times", "0,3"}, "there are 2 points in time for 1 design sets"},
        {{"--used", "1:1", "--times", "soon"}, "--times: \"soon\" is no number"},
        {{"--seconds", "-1"}, "--seconds: -1 must be"},
        {{"-o", study_}, "is the study itself"}};
    for (const auto& [arguments, text] : wrong) {
        std::vector<std::string> all{"stability"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Answer answer = Ask(all);
        EXPECT_EQ(answer.code, 2) << text;
        EXPECT_THAT(answer.err, HasSubstr(text));
        EXPECT_EQ(answer.out, "");
    }
}

TEST_F(SubsetCommands, FactorsThatAddUpHaveNoSubsets) {
    WriteFile(study_,
              R"({"factors":[{"name":"a","type":"Formulation","low":0,"high":1},
                             {"name":"b","type":"Formulation","low":0,"high":1}]})");
    EXPECT_EQ(Ask({"stability"}).code, 1);
    EXPECT_EQ(Ask({"subsets"}).code, 1);
}

TEST_F(SubsetCommands, SubsetsPrintsQualityAndRuns) {
    const Answer answer = Ask({"subsets", "--reduction", "3", "--seconds", "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const auto lines = LinesOf(answer.out);
    ASSERT_EQ(lines.size(), 2U + 3U + 1U + 2U + 27U);
    EXPECT_THAT(lines[0], StartsWith("Subset"));
    for (const std::size_t subset : {2U, 3U, 4U}) {
        EXPECT_THAT(lines[subset], HasSubstr("  9  yes     yes      yes  yes"));
    }
    EXPECT_THAT(answer.err, HasSubstr("27 runs in 3 subsets"));
}

TEST_F(SubsetCommands, SubsetsWritesItsRuns) {
    const Answer answer = Ask({"subsets", "--reduction", "3", "--seconds", "1", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const auto lines = LinesOf(ReadFile(csv_));
    ASSERT_EQ(lines.size(), 1U + 27U);
    EXPECT_EQ(lines[0], "Subset,Name,pH,Buffer,Light");
    EXPECT_THAT(lines[1], StartsWith("C:1,c1-C:1,"));
}

TEST_F(SubsetCommands, SubsetsBeyondTheLettersHaveNumbers) {
    const Answer answer = Ask({"subsets", "--reduction", "30"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr("30:1"));
}

TEST_F(SubsetCommands, SubsetsNeedsAPositiveReduction) {
    const Answer answer = Ask({"subsets", "--reduction", "0"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("--reduction: 0 must be a whole number from 1 to 1000000"));
}

TEST_F(SubsetCommands, MoreRunsThanFitAreRefused) {
    WriteFile(study_, Quantitatives(24));
    const Answer answer = Ask({"subsets", "--reduction", "2"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("at most 1000000 runs"));
}

TEST_F(SubsetCommands, ExhaustedMemoryIsAnError) {
    WriteFile(study_, Quantitatives(26));
    const Answer answer = Ask({"stability", "--used", "1000:1"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("the search was given up"));
}

TEST_F(SubsetCommands, CsvIsPrintedInsteadOfTheTable) {
    const Answer plan =
        Ask({"stability", "--used", "1:1,3:2", "--times", "0,3", "--seconds", "1", "--csv"});
    EXPECT_EQ(plan.code, 0) << plan.err;
    ASSERT_EQ(LinesOf(plan.out).size(), 1U + 27U + 9U);
    EXPECT_EQ(LinesOf(plan.out)[1], "A:1,0,c1-T0,c1,4,P,dark");
    const Answer subsets = Ask({"subsets", "--reduction", "3", "--seconds", "1", "--csv"});
    EXPECT_EQ(LinesOf(subsets.out)[0], "Subset,Name,pH,Buffer,Light");
    EXPECT_EQ(LinesOf(subsets.out).size(), 1U + 27U);
}

TEST_F(SubsetCommands, CentrePointsAndReplicatesOfAllSets) {
    const Answer answer = Ask({"stability",
                               "--used",
                               "1:1,3:1",
                               "--times",
                               "0,3",
                               "--csv",
                               "--center-points",
                               "2",
                               "--replicates",
                               "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const auto lines = LinesOf(answer.out);
    ASSERT_EQ(lines.size(), 1U + (2 * 27 + 2) + (2 * 9 + 2));
    // Centre points stand behind the copies: the middle level, and the first of a qualitative one.
    // Of level factors alone that is a combination which has its name already.
    EXPECT_EQ(lines[55], "A:1,0,c2-T0,c2,6,P,dark");
    EXPECT_EQ(lines[28], "A:1,0,c1-T0,c1,4,P,dark");
    EXPECT_EQ(lines.back(), "C:1,3,c2-T3,c2,6,P,dark");
}

TEST_F(SubsetCommands, CentrePointsOfSingleSets) {
    const Answer answer = Ask({"stability",
                               "--used",
                               "1:1,3:1,1:1",
                               "--csv",
                               "--center-points",
                               "1:1=1",
                               "--replicates",
                               "3:1=2"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    // A set that is used twice has them both times.
    EXPECT_EQ(LinesOf(answer.out).size(), 1U + 28U + 27U + 28U);
}

TEST_F(SubsetCommands, CentrePointsOfSubsetsRepeatOneOfTheirRuns) {
    const Answer answer = Ask({"subsets", "--reduction", "3", "--csv", "--center-points", "2"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const auto lines = LinesOf(answer.out);
    ASSERT_EQ(lines.size(), 1U + 3U * 11U);
    EXPECT_EQ(lines[10], lines[11]);
    EXPECT_THAT(lines[10], HasSubstr("rp-C:1"));
    EXPECT_EQ(std::count(lines.begin() + 1, lines.begin() + 12, lines[10]), 3);
}

TEST_F(SubsetCommands, EmptySubsetsTakeNoCentrePoints) {
    WriteFile(study_, Quantitatives(2));
    const Answer answer =
        Ask({"subsets", "--reduction", "5", "--csv", "--center-points", "1", "--seconds", "1"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    // Four combinations in five subsets: each has its run twice, the empty ones nothing.
    EXPECT_LE(LinesOf(answer.out).size(), 1U + 8U);
    EXPECT_GE(LinesOf(answer.out).size(), 1U + 5U);
}

TEST_F(SubsetCommands, CountsOfSetsNameWhatIsWrong) {
    const std::vector<std::pair<std::string, std::string>> wrong{
        {"x", "\"x\" must be a whole number from 0 to 1000000"},
        {"-1", "\"-1\" must be a whole number"},
        {"1.5", "\"1.5\" must be a whole number"},
        {"1000001", "\"1000001\" must be a whole number"},
        {"99999999999999999999", "must be a whole number"},
        {"2:1=1", "\"2:1\" is no set in use; there are 1:1 and 3:1."},
        {"=1", "\"\" is no set in use"},
        {"1:1=", "\"\" must be a whole number"},
        {"1:1=1,3:1", "\"3:1\" is no count of a set"},
        {"1:1=1,1:1=2", "the set \"1:1\" is told twice"}};
    for (const auto& [text, problem] : wrong) {
        for (const char* option : {"--center-points", "--replicates"}) {
            const Answer answer =
                Ask({"stability", "--used", "1:1,3:1", std::string(option) + "=" + text});
            EXPECT_EQ(answer.code, 2) << text;
            EXPECT_THAT(answer.err, HasSubstr(std::string(option) + ": "));
            EXPECT_THAT(answer.err, HasSubstr(problem));
            EXPECT_EQ(answer.out, "");
        }
    }
}

TEST_F(SubsetCommands, TooManyReplicatesAreRefusedBeforeTheyAreMade) {
    const Answer answer = Ask({"stability", "--used", "1:1", "--replicates", "1000000"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("more than 1000000 runs"));
}

// The study of the fixture with options of its design.
std::string WithOptions(const std::string& design, const std::string& options) {
    return R"({"factors":[{"name":"a","type":"Multilevel","settings":[1,2,3]},
                          {"name":"b","type":"Multilevel","settings":[1,2,3]},
                          {"name":"c","type":"Multilevel","settings":[1,2,3]}],
              "design":")" +
           design + R"(","options":{"designSpecificOptions":)" + options + "}}";
}

TEST_F(SubsetCommands, StudiesHoldTheSetsOfTheirDesign) {
    WriteFile(
        study_,
        WithOptions("Stability",
                    R"({"usedDesigns":[{"reduction":3,"index":2},{"reduction":1,"index":1}]})"));
    const Answer plan = Ask({"stability", "--csv"});
    EXPECT_EQ(plan.code, 0) << plan.err;
    EXPECT_THAT(LinesOf(plan.out)[1], StartsWith("C:2,0,"));
    EXPECT_EQ(LinesOf(plan.out).size(), 1U + 9U + 27U);
    // Options win over the study, and those of another design are not looked at.
    EXPECT_EQ(LinesOf(Ask({"stability", "--csv", "--used", "1:1"}).out).size(), 1U + 27U);
    EXPECT_THAT(Ask({"subsets", "--reduction", "3"}).err, HasSubstr("27 runs in 3 subsets"));
}

TEST_F(SubsetCommands, StudiesHoldTheReductionOfTheirDesign) {
    WriteFile(study_, WithOptions("Generalized Subset Designs", R"({"reduction":3})"));
    EXPECT_THAT(Ask({"subsets"}).err, HasSubstr("27 runs in 3 subsets"));
}

TEST_F(SubsetCommands, MalformedOptionsOfTheStudyAreNamed) {
    const std::string list =
        "Json parse error. Stability design option 'usedDesigns' is not correctly saved.";
    const std::vector<std::pair<std::string, std::string>> stability{
        {R"({"usedDesigns":3})", list},
        {R"({"usedDesigns":[3]})", list},
        {R"({"usedDesigns":[{"reduction":3}]})", list},
        {R"({"usedDesigns":[{"reduction":"3","index":1}]})", list},
        {R"({"usedDesigns":[{"reduction":0,"index":0}]})", "Reduction should be greater than 0."},
        {R"({"usedDesigns":[{"reduction":3,"index":4}]})",
         "The selected design should be between 1 and the reduction."},
        {R"({"usedDesigns":[{"reduction":3,"index":0}]})",
         "The selected design should be between 1 and the reduction."},
        {R"({"sets":[]})", "sets"}};
    for (const auto& [options, problem] : stability) {
        WriteFile(study_, WithOptions("Stability", options));
        const Answer answer = Ask({"stability"});
        EXPECT_EQ(answer.code, 2) << options;
        EXPECT_THAT(answer.err, HasSubstr(study_ + ": "));
        EXPECT_THAT(answer.err, HasSubstr(problem)) << options;
    }
    for (const auto& [options, problem] :
         {std::pair{R"({"reduction":0})", "Reduction should be greater than 0."},
          {R"({"reduction":-2})", "options.designSpecificOptions"},
          {R"({"reduction":"two"})", "options.designSpecificOptions"}}) {
        WriteFile(study_, WithOptions("Generalized Subset Designs", options));
        const Answer answer = Ask({"subsets"});
        EXPECT_EQ(answer.code, 2) << options;
        EXPECT_THAT(answer.err, HasSubstr(problem)) << options;
    }
}

TEST_F(SubsetCommands, TimeLimitsReachFromNoneToDays) {
    EXPECT_EQ(Ask({"subsets", "--reduction", "3", "--seconds", "0"}).code, 0);
    EXPECT_EQ(Ask({"subsets", "--reduction", "3", "--seconds", "604800"}).code, 0);
    const Answer years = Ask({"subsets", "--reduction", "3", "--seconds", "31622401"});
    EXPECT_EQ(years.code, 2);
    EXPECT_THAT(years.err, HasSubstr("--seconds: 31622401 must be"));
}

TEST_F(SubsetCommands, ExhaustedMemoryIsToldToTheUser) {
    std::vector<std::string> told;
    UserMessage::SetErrorReporter([&told](const std::string& text) { told.push_back(text); });
    WriteFile(study_, Quantitatives(26));
    const Answer answer = Ask({"stability", "--used", "1000:1"});
    UserMessage::SetErrorReporter({});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(told,
                testing::ElementsAre(
                    "Subset designs with reduction 1000 cannot be created with the current factor "
                    "setup. Out of memory, computations stopped."));
}

TEST_F(SubsetCommands, BuildTellsTheCommandToUse) {
    const Answer stability = Ask({"build", "--design", "Stability"});
    EXPECT_EQ(stability.code, 2);
    EXPECT_THAT(stability.err, HasSubstr("is made by the command stability"));
    EXPECT_THAT(Ask({"build", "--design", "Generalized Subset Designs"}).err,
                HasSubstr("is made by the command subsets"));
}

TEST_F(SubsetCommands, ConstraintsAreNotKept) {
    WriteFile(study_, Quantitatives(2, R"("constraints":[
        {"terms":[{"factor":"A","coefficient":1}],"bound":15,"relation":"<="}])"));
    for (const auto& [command, name] :
         {std::pair{"stability", "a stability design"}, {"subsets", "a division into subsets"}}) {
        const Answer answer = Ask({command});
        EXPECT_EQ(answer.code, 1) << command;
        EXPECT_THAT(answer.err,
                    HasSubstr(study_ + ": constraints: " + name +
                              " holds all combinations of levels and keeps to no constraints."));
    }
}

TEST_F(SubsetCommands, StabilityNeedsADesignSet) {
    WriteFile(study_,
              Quantitatives(2, R"("options":{"designSpecificOptions":{"usedDesigns":[]}})"));
    const Answer answer = Ask({"stability"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("usedDesigns: there is no design set"));
    EXPECT_EQ(Ask({"stability", "--used", "1:1"}).code, 0);
}

}  // namespace
