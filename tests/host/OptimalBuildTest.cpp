// The search for D-optimal designs from the command line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/DesignMaker.h"
#include "host/HostError.h"
#include "host/Project.h"
#include "tests/host/CommandTesting.h"
#include "tests/support/SilentDisplay.h"

namespace {

using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class OptimalBuild : public ReactorStudy {
  protected:
    OptimalBuild() { D_Optimal::SetValidating(); }

    // The first result that the table of an answer marks.
    static std::string Marked(const Answer& answer) {
        for (const std::string& line : LinesOf(answer.out + answer.err)) {
            if (line.starts_with("*")) {
                return line;
            }
        }
        return {};
    }
    static std::size_t ResultsIn(const std::string& text) {
        const auto lines = LinesOf(text);
        const auto rule = std::ranges::find_if(
            lines, [](const std::string& line) { return line.starts_with("-  ---"); });
        const auto end = std::find_if(rule, lines.end(), [](const std::string& line) {
            return line.empty() || line.starts_with("D-Optimal:");
        });
        return rule == lines.end() ? 0 : static_cast<std::size_t>(end - rule) - 1;
    }
    [[nodiscard]] const D_OptimalOptions& OptionsOf(const BuiltDesign& built) const {
        return dynamic_cast<const D_OptimalOptions&>(*built.options.GetDesignSpecificOptions());
    }
};

TEST_F(OptimalBuild, PrintsAllResultsAndMarksTheSelectedOne) {
    const Answer built = AskStudy({"build", "--repetitions", "2", "--run-range", "1", "-o", csv_});
    EXPECT_EQ(built.code, 0) << built.err;
    EXPECT_EQ(ResultsIn(built.out), 6U) << built.out;
    EXPECT_THAT(Marked(built), StartsWith("*"));
}

TEST_F(OptimalBuild, PrintsTheResultsBesideAWorksheetOnTheOutput) {
    const Answer answer = Build({});
    EXPECT_THAT(answer.out, StartsWith("StdOrder,RunOrder,Temp,Flow,Cat\n"));
    EXPECT_EQ(ResultsIn(answer.err), 1U) << answer.err;
}

TEST_F(OptimalBuild, HasTheRunsAskedFor) {
    const Answer answer = Build({"--runs", "11", "--center-points", "2"});
    EXPECT_EQ(LinesOf(answer.out).size(), 1U + 11U + 2U) << answer.err;
}

// Two of several equal optima are hardly ever found twice by chance.
TEST_F(OptimalBuild, RepeatsExactlyWhenValidating) {
    const std::vector<std::string> arguments{
        "build", "--validating", "--repetitions", "3", "--seed", "1"};
    const Answer first = AskStudy(arguments);
    const Answer again = AskStudy(arguments);
    EXPECT_EQ(again.out, first.out);
    EXPECT_EQ(again.err, first.err);
    EXPECT_TRUE(D_Optimal::GetValidating());
}

TEST_F(OptimalBuild, SelectsTheResultThatIsNamed) {
    const Answer answer =
        AskStudy({"build", "--repetitions", "2", "--run-range", "1", "--select", "5", "-o", csv_});
    EXPECT_THAT(Marked(answer), StartsWith("*       5    14 ")) << answer.out;
    // With three centre points.
    EXPECT_EQ(LinesOf(ReadFile(csv_)).size(), 1U + 14U + 3U);
}

TEST_F(OptimalBuild, SelectionBeyondTheResultsTellsThoseThereAre) {
    const Answer answer = Build({"--select", "2", "-o", csv_});
    EXPECT_EQ(answer.code, 2);
    EXPECT_EQ(answer.err, "--select: 2 is no result of the search; there are 1 to 1.\n");
    EXPECT_EQ(ReadFile(csv_), "");
}

TEST_F(OptimalBuild, SelectsByTheFigureThatIsNamed) {
    for (const auto& [name, figure] : {std::pair{"g-efficiency", EDesign::GEfficiency},
                                       std::pair{"Condition-Number", EDesign::ConditionNumber},
                                       std::pair{"log-determinant", EDesign::LogDeterminant},
                                       std::pair{"i-optimality", EDesign::IOptimality}}) {
        DesignRequest request;
        request.optimal.selectBy = name;
        const Study study = ReadStudyFile(study_);
        const BuiltDesign built = PrepareDesign(study, request);
        EXPECT_EQ(OptionsOf(built).GetSelectDesignBy(), figure) << name;
    }
}

TEST_F(OptimalBuild, HoldsItsInclusions) {
    WriteFile(csv_, "Cat,Temp,Flow\nB,163,7\nA,150,1\n");
    const Answer answer = Build({"--inclusions", csv_, "--runs", "11"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr(",163,7,B\n"));
    EXPECT_THAT(answer.out, HasSubstr(",150,1,A\n"));
    EXPECT_EQ(LinesOf(answer.out).size(), 1U + 11U + 3U);
}

TEST_F(OptimalBuild, InclusionsThatLeaveNoRoomAreRefused) {
    std::string runs = "Cat,Temp,Flow\n";
    for (int i = 0; i < 12; ++i) {
        runs += "B,160,7\n";
    }
    WriteFile(csv_, runs);
    const Answer answer = Build({"--inclusions", csv_, "--runs", "12"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("12 runs leave no room in a design of 12 runs"));
}

TEST_F(OptimalBuild, BadInclusionsAreNamedWithTheirPlace) {
    WriteFile(csv_, "Cat,Temp,Flow\nX,163,7\n");
    EXPECT_THAT(Build({"--inclusions", csv_}).err,
                HasSubstr("runs.csv: line 2, column \"Cat\": \"X\" is no level"));
}

TEST_F(OptimalBuild, InclusionsWithBlocksKeepTheirBlock) {
    WriteFile(csv_, "Cat,Temp,Flow,Block\nB,163,7,2\n");
    const Answer answer = Build({"--inclusions", csv_, "--runs", "12", "--blocks", "2"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr(",163,7,B,2\n"));
}

TEST_F(OptimalBuild, PicksFromItsCandidates) {
    const std::string candidates = folder_.File("set.cand");
    // The levels of Cat in coding columns; Temp takes no value but these.
    std::string rows;
    for (const char* level : {"-1\t-1", "1\t0", "0\t1"}) {
        for (const char* settings : {"151\t2", "151\t50", "179\t2", "179\t50"}) {
            rows += std::string(settings) + "\t" + level + "\t\n";
        }
    }
    WriteFile(candidates, "12\n4\n" + rows + "\n");
    const Answer answer =
        Build({"--candidates", candidates, "--center-points", "0", "--runs", "11"});
    ASSERT_EQ(answer.code, 0) << answer.err;
    for (const std::string& line : LinesOf(answer.out)) {
        EXPECT_THAT(line,
                    testing::AnyOf(HasSubstr("Temp"), HasSubstr(",151,"), HasSubstr(",179,")));
    }
}

TEST_F(OptimalBuild, CandidatesOutsideTheStudyAreRefused) {
    const std::string candidates = folder_.File("set.cand");
    WriteFile(candidates, "1\n4\n200\t2\t1\t0\t\n\n");
    const Answer answer = Build({"--candidates", candidates});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("1 of 1 candidates lie outside the study; row 1: \"Temp\""));
}

TEST_F(OptimalBuild, ModelTermsAreSearchedFor) {
    const Answer answer = Build({"--model-terms", "Temp*Flow, Temp^2", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, StartsWith("Model: Temp*Flow, Temp^2; potential terms: used."));
    // 7 columns and 3 degrees of freedom, 3 centre points.
    EXPECT_EQ(LinesOf(ReadFile(csv_)).size(), 1U + 7U + 3U + 3U);
}

TEST_F(OptimalBuild, ScreeningCandidatesCanTellSquaresThatAreAskedFor) {
    const Answer answer =
        Build({"--model-terms", "Temp^2, Flow^2", "--no-potential-terms", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
}

TEST_F(OptimalBuild, CandidatesCanTellCubesThatAreAskedFor) {
    const Answer answer =
        Build({"--model-terms", "Temp^2, Temp^3", "--no-potential-terms", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
}

TEST_F(OptimalBuild, ModelTermsOfTheStudyAreSearchedFor) {
    WriteStudy(R"("design":"DOpt","options":{"modelTerms":"Temp*Cat"})");
    EXPECT_THAT(Build({}).err, StartsWith("Model: Temp*Cat;"));
    EXPECT_THAT(Build({"--model-terms", "Temp*Flow"}).err, StartsWith("Model: Temp*Flow;"));
}

TEST_F(OptimalBuild, WrongModelTermsOfTheStudyAreNamedWithTheirPlace) {
    WriteStudy(R"("design":"DOpt","options":{"modelTerms":"Temp*Cut"})");
    EXPECT_THAT(Build({}).err, HasSubstr("study.json: options.modelTerms: \"Temp*Cut\" names"));
}

TEST_F(OptimalBuild, BlocksBelongToAModelOfTerms) {
    const Answer answer =
        Build({"--model-terms", "Temp*Flow", "--blocks", "2", "--runs", "12", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(ReadFile(csv_), HasSubstr(",Block\n"));
}

TEST_F(OptimalBuild, BalanceIsTold) {
    const Answer answer = Build({"--runs", "12", "--only-balanced", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr("Balanced on Cat"));
    EXPECT_THAT(Marked(answer), EndsWith("yes"));
}

TEST_F(OptimalBuild, UnevenRunsCannotBeBalanced) {
    const Answer answer = Build({"--runs", "13", "--only-balanced", "--balance-on", "Cat"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err,
                HasSubstr("A balanced D-Optimal design could not be generated. Try unchecking the "
                          "'Use balanced only' option."));
}

TEST_F(OptimalBuild, OnlyLevelsAreBalanced) {
    EXPECT_EQ(Build({"--balance-on", "Temp"}).err,
              "--balance-on: \"Temp\" is Quantitative; only the levels of a qualitative factor are "
              "balanced; allowed: \"Cat\".\n");
    EXPECT_THAT(Build({"--balance-on", "Dog"}).err,
                HasSubstr("\"Dog\" is no factor of the study; allowed: \"Cat\"."));
}

TEST_F(OptimalBuild, NoBalanceWithoutLevels) {
    WriteFile(study_, HostTesting::Quantitatives(3, R"("design":"DOpt")"));
    EXPECT_THAT(Build({"--only-balanced"}).err, HasSubstr("no qualitative factor to balance on"));
}

TEST_F(OptimalBuild, WrongCountsAndNamesAreRefused) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
        {{"--repetitions", "0"}, "--repetitions: 0 must be a whole number from 1 to 10000"},
        {{"--run-range", "-1"}, "--run-range: -1 must be a whole number from 0 to 1000"},
        {{"--select-by", "beauty"}, "--select-by: \"beauty\" is no figure to select by"},
        {{"--candidates", "missing.cand"}, "missing.cand"},
        {{"--inclusions", "missing.csv"}, "missing.csv"}};
    for (const auto& [arguments, text] : wrong) {
        std::vector<std::string> all{"build"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Answer answer = AskStudy(all);
        EXPECT_EQ(answer.code, 2) << text;
        EXPECT_THAT(answer.err, HasSubstr(text));
    }
}

TEST_F(OptimalBuild, OtherDesignsRefuseSearchOptions) {
    const Answer answer = Build({"--design", "FFM"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_EQ(answer.err,
              "--repetitions: the design FFM is not searched for; only DOpt and J2 are.\n");
    EXPECT_THAT(AskStudy({"build", "--design", "FFM", "--model-terms", "Temp^2"}).err,
                HasSubstr("--model-terms: the design FFM"));
}

TEST_F(OptimalBuild, NumbersOfTheStudyOutsideTheirRangeAreRefused) {
    for (const char* member : {R"("balanceOnFactor":0)",
                               R"("balanceOnFactor":99)",
                               R"("repetitions":0)",
                               R"("runSpan":-1)"}) {
        WriteStudy(std::string(R"("design":"DOpt","options":{"designSpecificOptions":{)") + member +
                   "}}");
        const Answer answer = AskStudy({"build"});
        EXPECT_EQ(answer.code, 2) << member;
        EXPECT_THAT(answer.err, HasSubstr("options.designSpecificOptions:")) << member;
    }
}

TEST_F(OptimalBuild, StoppedSearchSaysSoInTheWordsOfTheEngine) {
    const SilentDisplay stopping(1);
    const Answer answer = Build({"-o", csv_, "--project", project_});
    EXPECT_EQ(answer.code, 130);
    EXPECT_EQ(answer.err, "User break in computations, no design generated.\n");
}

TEST_F(OptimalBuild, StoppedSearchLeavesNoFile) {
    WriteFile(csv_, "old");
    const SilentDisplay stopping(3);
    const Answer answer = Build({"-o", csv_, "--project", project_});
    EXPECT_EQ(answer.code, 130) << answer.err;
    EXPECT_EQ(ReadFile(csv_), "old");
    EXPECT_EQ(ReadFile(project_), "");
}

TEST_F(OptimalBuild, ErrorsOfTheSearchReachTheUser) {
    // Two settings only: squares are constants, which the family's own model holds.
    WriteFile(study_, R"({"factors":[
        {"name":"a","type":"Multilevel","settings":[1,2]},
        {"name":"b","type":"Quantitative","low":1,"high":2}],
        "objective":"optimization","model":"quadratic","design":"DOpt"})");
    const Answer answer = AskStudy({"build"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err,
                HasSubstr("Matrix is singular. The current candidate set might not be rich enough "
                          "to support your model or the problem."));
}

// --- Projects ------------------------------------------------------------------------------------

class OptimalProject : public OptimalBuild {
  protected:
    OptimalProject() {
        const Answer answer = AskStudy({"build",
                                        "--repetitions",
                                        "2",
                                        "--run-range",
                                        "1",
                                        "--seed",
                                        "3",
                                        "--project",
                                        project_,
                                        "-o",
                                        csv_});
        EXPECT_EQ(answer.code, 0) << answer.err;
    }

    template <class Change>
    void ChangeStore(const Change& change) const {
        ConfigurationStore store = ConfigurationStore::LoadFromFile(project_);
        change(*store.OpenRoot());
        store.SaveToFile(project_);
    }
};

TEST_F(OptimalProject, KeepsAllResults) {
    EXPECT_EQ(ResultsIn(Ask({"show", project_}).out), 6U);
}

TEST_F(OptimalProject, SelectMakesAnotherResultTheDesign) {
    const Answer answer = Ask({"select", project_, "1", "-o", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_EQ(LinesOf(ReadFile(csv_)).size(), 1U + 12U + 3U);
    EXPECT_EQ(LoadProject(project_).matrix.SizeRows(), 12 + 3);
}

TEST_F(OptimalProject, SelectGivesTheRunsOfABuildWithThatResult) {
    const Answer built = AskStudy(
        {"build", "--repetitions", "2", "--run-range", "1", "--seed", "3", "--select", "2"});
    EXPECT_EQ(Ask({"select", project_, "2"}).out, built.out);
}

TEST_F(OptimalProject, SelectMaySaveElsewhere) {
    const std::string before = ReadFile(project_);
    const std::string other = folder_.File("other.txt");
    EXPECT_EQ(Ask({"select", project_, "1", "--project", other}).code, 0);
    EXPECT_EQ(ReadFile(project_), before);
    EXPECT_EQ(LoadProject(other).matrix.SizeRows(), 12 + 3);
}

TEST_F(OptimalProject, SelectRefusesANumberWithoutAResult) {
    const std::string before = ReadFile(project_);
    for (const char* number : {"0", "7", "-1"}) {
        const Answer answer = Ask({"select", project_, "--", number});
        EXPECT_EQ(answer.code, 2) << number;
        EXPECT_THAT(answer.err, HasSubstr("is no result of the search; there are 1 to 6"));
    }
    EXPECT_EQ(ReadFile(project_), before);
}

TEST_F(OptimalProject, SelectDoesNotWriteOverTheProject) {
    EXPECT_THAT(Ask({"select", project_, "1", "-o", project_}).err, HasSubstr("is the project"));
}

TEST_F(OptimalProject, SelectRefusesOtherDesigns) {
    ASSERT_EQ(AskStudy({"build", "--design", "FFM", "--project", project_}).code, 0);
    const Answer answer = Ask({"select", project_, "1"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("the design FFM has no results to select from"));
}

TEST_F(OptimalProject, ResultsThatPickImpossibleCandidatesAreRefused) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Design")
            ->OpenOrCreateSection("DOptimal")
            ->OpenOrCreateSection("Result", 1)
            ->WriteIntVector("CandidateSetRows", {1, 2000000000});
    });
    const Answer answer = Ask({"select", project_, "1"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("picks candidates that cannot be"));
}

TEST_F(OptimalProject, SelectionWithoutAResultIsRefused) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Design")
            ->OpenOrCreateSection("DOptimal")
            ->WriteInt("SelectedDesign", 17);
    });
    EXPECT_THAT(Ask({"show", project_}).err,
                HasSubstr("the selected result 18 is none of the 6 there are"));
}

TEST_F(OptimalProject, TermsOfUnknownFactorsAreRefused) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("DesignOptions")
            ->OpenOrCreateSection("SpecificOptions")
            ->OpenOrCreateSection("DesignSpecificOptions")
            ->OpenOrCreateSection("DOptimalOptions")
            ->OpenOrCreateSection("OptModels", 1)
            ->WriteIntVector("OptModel", {0, -7});
    });
    const Answer answer = Ask({"show", project_});
    EXPECT_EQ(answer.code, 2) << answer.out;
    EXPECT_THAT(answer.err, HasSubstr("the factor of a model term: -7 is out of range"));
}

TEST_F(OptimalBuild, WorksheetThatCannotBeWrittenLeavesTheProjectAlone) {
    const std::string nowhere = folder_.File("missing/runs.csv");
    EXPECT_EQ(Build({"-o", nowhere, "--project", project_}).code, 2);
    EXPECT_EQ(ReadFile(project_), "");
    const Answer built =
        AskStudy({"build", "-o", csv_, "--project", project_, "--repetitions", "3"});
    ASSERT_EQ(built.code, 0) << built.err;
    const std::string before = ReadFile(project_);
    ASSERT_NE(before, "");
    EXPECT_EQ(Ask({"select", project_, "3", "-o", nowhere}).code, 2);
    EXPECT_EQ(ReadFile(project_), before);
    EXPECT_EQ(Build({"-o", nowhere, "--project", project_, "--runs", "12"}).code, 2);
    EXPECT_EQ(ReadFile(project_), before);
}

}  // namespace
