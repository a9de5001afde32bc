#include "host/EvaluateCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/DesignEvaluation.h"
#include "tests/host/CommandTesting.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::WriteFile;
using testing::Contains;
using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Evaluate : public ReactorStudy {
  protected:
    Evaluate() { D_Optimal::SetValidating(); }

    // Evaluates the study's design, or the worksheet when there is one.
    [[nodiscard]] DesignEvaluation Judge(JudgeRequest asked) const {
        asked.subject = study_;
        std::ostringstream notes;
        return EvaluateDesign(MakeJudgedDesign(asked, notes));
    }
    // The two-level factorial of three factors without centre points.
    [[nodiscard]] DesignEvaluation JudgeCube(const std::string& model) const {
        WriteFile(study_, Quantitatives(3, R"("design":"FF2","options":{"centerPoints":0})"));
        JudgeRequest asked;
        asked.request.model = model;
        return Judge(asked);
    }
    // The line of the figure that begins like this.
    static std::string Line(const Answer& answer, const std::string& begin) {
        for (const std::string& line : LinesOf(answer.out)) {
            if (line.starts_with(begin)) {
                return line.substr(line.find_last_of(' ') + 1);
            }
        }
        return "no such line";
    }
};

TEST_F(Evaluate, FiguresOfACubeAreThoseOfAnOrthogonalDesign) {
    const DesignStatistics::Results figures = JudgeCube("linear").figures;
    EXPECT_NEAR(figures.CondNo, 1, 1e-5);
    EXPECT_NEAR(figures.GEff, 100, 1e-3);
    EXPECT_NEAR(figures.LogDet, 4 * std::log10(8.0), 1e-5);
    EXPECT_NEAR(figures.NormLogDet, 0, 1e-5);
    // Over eight corners and a centre: (8 * 4/8 + 1/8) / 9, times 8 runs.
    EXPECT_NEAR(figures.IOptimality, 8 * 4.125 / 9, 1e-5);
}

TEST_F(Evaluate, LeveragesOfACubeAreColumnsByRuns) {
    EXPECT_THAT(JudgeCube("linear").leverages, Each(DoubleNear(4.0 / 8, 1e-9)));
}

TEST_F(Evaluate, LeveragesAddUpToTheColumns) {
    JudgeRequest asked;
    asked.request.optimal.repetitions = 1;
    const DesignEvaluation evaluation = Judge(asked);
    double sum = 0;
    for (const double leverage : evaluation.leverages) {
        sum += leverage;
    }
    EXPECT_NEAR(sum, static_cast<double>(evaluation.columns.size()), 1e-9);
}

TEST_F(Evaluate, CoefficientsOfACubeHaveTheVarianceOfAMean) {
    EXPECT_THAT(JudgeCube("interaction").variances, Each(DoubleNear(1.0 / 8, 1e-9)));
}

TEST_F(Evaluate, ColumnsOfACubeAreNotCorrelated) {
    for (const auto& pair : JudgeCube("interaction").correlations) {
        EXPECT_NEAR(pair.value, 0, 1e-9) << pair.first << ", " << pair.second;
    }
}

TEST_F(Evaluate, ColumnsAreNamedByFactorAndLevel) {
    JudgeRequest asked;
    asked.request.optimal.repetitions = 1;
    asked.request.optimal.modelTerms = "Temp^2, Temp*Cat";
    EXPECT_THAT(
        Judge(asked).columns,
        ElementsAre(
            "constant", "Temp", "Flow", "Cat=B", "Cat=C", "Temp^2", "Temp*Cat=B", "Temp*Cat=C"));
}

TEST_F(Evaluate, PrintsFiguresLeveragesVariancesAndCorrelations) {
    const Answer answer = AskStudy({"evaluate", "--repetitions", "1", "--run-range", "0"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    for (const char* text : {"Condition number",
                             "G-efficiency (percent)",
                             "Log10 determinant",
                             "Normalised log10 determinant",
                             "I-value",
                             "Leverage of each run (mean 0.3125",
                             "Variance of each coefficient, in units of sigma^2",
                             "Correlations of the columns: at least 0.3 in size"}) {
        EXPECT_THAT(answer.out, HasSubstr(text));
    }
}

TEST_F(Evaluate, FiguresOfASearchAreThoseOfItsTable) {
    ASSERT_EQ(Build({"--project", project_, "-o", csv_}).code, 0);
    const Answer shown = Ask({"show", project_});
    const Answer answer = Ask({"evaluate", project_});
    for (const char* figure : {"Condition number",
                               "G-efficiency",
                               "Log10 determinant",
                               "Normalised log10 determinant",
                               "I-value"}) {
        EXPECT_THAT(shown.out, HasSubstr(" " + Line(answer, figure) + "  ")) << figure;
    }
}

TEST_F(Evaluate, InclusionsStandAmongTheCandidates) {
    WriteFile(csv_, "Cat,Temp,Flow\nB,163,7\nA,150,1\n");
    ASSERT_EQ(Build({"--project", project_, "--inclusions", csv_}).code, 0);
    const Answer answer = Ask({"evaluate", project_});
    EXPECT_THAT(Ask({"show", project_}).out, HasSubstr("  " + Line(answer, "I-value") + "  "));
}

TEST_F(Evaluate, ModelThatTheRunsCannotTellIsSingular) {
    const DesignEvaluation evaluation = JudgeCube("interaction");
    EXPECT_THAT(evaluation.dependent, IsEmpty());
    ASSERT_EQ(AskStudy({"build", "--project", project_}).code, 0);
    const Answer answer = Ask({"evaluate", project_, "--model", "quadratic"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out,
                HasSubstr("The model is singular for this design: 8 runs tell 7 of 10 columns "
                          "apart. Combinations of the columns before them are A^2, B^2 and C^2."));
    EXPECT_EQ(Line(answer, "Condition number"), "-");
    EXPECT_THAT(answer.out, Not(HasSubstr("Leverage of each run")));
}

TEST_F(Evaluate, FewerRunsThanColumnsAreSingular) {
    WriteFile(study_, Quantitatives(3));
    WriteFile(csv_, "A,B,C\n10,10,10\n20,20,10\n20,10,20\n");
    EXPECT_THAT(AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"}).out,
                HasSubstr("3 runs tell 3 of 4 columns apart"));
}

TEST_F(Evaluate, AliasedColumnsAreFullyCorrelated) {
    WriteFile(study_, Quantitatives(3));
    WriteFile(csv_, "A,B,C\n10,10,20\n20,10,10\n10,20,10\n20,20,20\n");
    JudgeRequest asked;
    asked.worksheet = csv_;
    asked.request.optimal.modelTerms = "A*B";
    const DesignEvaluation evaluation = Judge(asked);
    EXPECT_THAT(evaluation.dependent, ElementsAre("A*B"));
    ASSERT_FALSE(evaluation.correlations.empty());
    const auto& first = evaluation.correlations.front();
    EXPECT_EQ(evaluation.columns[first.first] + "," + evaluation.columns[first.second], "C,A*B");
    EXPECT_NEAR(first.value, 1, 1e-9);
}

TEST_F(Evaluate, CorrelationLimitHidesTheOthers) {
    const std::vector<std::string> quick{"evaluate", "--repetitions", "1", "--run-range", "0"};
    auto strict = quick;
    strict.insert(strict.end(), {"--correlation-limit", "1"});
    EXPECT_THAT(AskStudy(strict).out, HasSubstr("at least 1 in size\nnone\n"));
    auto all = quick;
    all.emplace_back("--all-correlations");
    // Four columns that vary.
    const auto lines = LinesOf(AskStudy(all).out);
    const auto head = std::ranges::find(lines, "Correlations of the columns: all pairs");
    EXPECT_EQ(lines.end() - head, 3 + 6);
}

TEST_F(Evaluate, WrongLimitsAreRefused) {
    for (const char* limit : {"-0.1", "1.5", "nan"}) {
        const Answer answer = AskStudy({"evaluate", std::string("--correlation-limit=") + limit});
        EXPECT_EQ(answer.code, 2) << limit;
        EXPECT_THAT(answer.err, HasSubstr("must be from 0 to 1")) << limit;
    }
    EXPECT_EQ(AskStudy({"evaluate", "--correlation-limit", "0.5", "--all-correlations"}).code, 2);
}

TEST_F(Evaluate, WorksheetOfTheHostIsJudgedAsItsDesign) {
    ASSERT_EQ(Build({"-o", csv_, "--project", project_}).code, 0);
    const Answer worksheet = AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"});
    const Answer project = Ask({"evaluate", project_, "--model", "linear"});
    EXPECT_EQ(worksheet.code, 0) << worksheet.err;
    EXPECT_EQ(Line(worksheet, "Condition number"), Line(project, "Condition number"));
    EXPECT_EQ(Line(worksheet, "Log10 determinant"), Line(project, "Log10 determinant"));
}

TEST_F(Evaluate, EditedRunChangesTheFigures) {
    WriteFile(study_, Quantitatives(2));
    WriteFile(csv_, "A,B\n10,10\n20,10\n10,20\n20,20\n");
    const Answer before = AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"});
    EXPECT_EQ(Line(before, "Condition number"), "1");
    WriteFile(csv_, "A,B\n10,10\n20,10\n10,20\n15,15\n");
    EXPECT_NE(
        Line(AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"}), "Condition number"),
        "1");
}

TEST_F(Evaluate, WorksheetFaultsAreNamedWithTheirPlace) {
    WriteFile(csv_, "Temp,Flow,Cat\n150,1,A\n150,lots,A\n");
    const Answer answer = AskStudy({"evaluate", "--worksheet", csv_});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("line 3, column \"Flow\": \"lots\" is no number."));
}

TEST_F(Evaluate, WorksheetOfAProjectIsJudgedByItsModel) {
    ASSERT_EQ(Build({"-o", csv_, "--project", project_, "--model-terms", "Temp*Flow"}).code, 0);
    const Answer answer = Ask({"evaluate", project_, "--worksheet", csv_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_EQ(Line(answer, "Model"), "Temp*Flow");
}

TEST_F(Evaluate, ProjectIsJudgedByTheTermsThatItWasSearchedFor) {
    WriteStudy(R"("design":"DOpt","options":{"modelTerms":"Temp*Cat"})");
    ASSERT_EQ(Build({"--project", project_, "--model-terms", "Temp*Flow"}).code, 0);
    EXPECT_EQ(Line(Ask({"evaluate", project_}), "Model"), "Temp*Flow");
}

TEST_F(Evaluate, OtherDesignsAreJudgedByTheTermsOfTheStudy) {
    WriteStudy(R"("design":"FFM","options":{"modelTerms":"Temp*Cat"})");
    EXPECT_EQ(Line(AskStudy({"evaluate"}), "Model"), "Temp*Cat");
}

TEST_F(Evaluate, BlocksOfAWorksheetBelongToTheModel) {
    WriteFile(csv_,
              "Temp,Flow,Cat,Block\n150,1,A,1\n180,1,B,2\n150,100,C,1\n180,100,A,2\n"
              "150,1,B,2\n180,100,C,2\n165,10,A,1\n165,10,B,1\n");
    EXPECT_THAT(
        AskStudy({"evaluate", "--worksheet", csv_, "--blocks", "2", "--model", "linear"}).out,
        HasSubstr("\nBlock=2 "));
}

TEST_F(Evaluate, DesignsOfOtherFamiliesAreJudgedByAnyTerms) {
    const Answer answer = AskStudy({"evaluate", "--design", "FFM", "--model-terms", "Temp*Cat"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_EQ(Line(answer, "Model"), "Temp*Cat");
}

TEST_F(Evaluate, ProjectsAndWorksheetsTakeNoOptionsOfABuild) {
    ASSERT_EQ(Build({"-o", csv_, "--project", project_}).code, 0);
    EXPECT_EQ(Ask({"evaluate", project_, "--runs", "12"}).err,
              "--runs: a project holds its runs; no design is built.\n");
    EXPECT_EQ(AskStudy({"evaluate", "--worksheet", csv_, "--repetitions", "2"}).err,
              "--repetitions: a worksheet holds its runs; no design is built.\n");
}

TEST_F(Evaluate, UnknownModelIsNamed) {
    ASSERT_EQ(Build({"-o", csv_, "--project", project_}).code, 0);
    EXPECT_THAT(Ask({"evaluate", project_, "--model", "wavy"}).err,
                HasSubstr("--model: \"wavy\" is no model"));
}

TEST_F(Evaluate, SubjectThatIsNeitherStudyNorProjectIsRefused) {
    WriteFile(project_, "gibberish");
    EXPECT_EQ(Ask({"evaluate", project_}).code, 2);
    EXPECT_EQ(Ask({"evaluate", folder_.File("missing.json")}).code, 2);
}

TEST_F(Evaluate, InconsistentRegionLeavesTheFiguresThatNeedNoCandidates) {
    WriteFile(study_, Quantitatives(2, R"("constraints":[
        {"terms":[{"factor":"A","coefficient":1}],"bound":30,"relation":">="}])"));
    WriteFile(csv_, "A,B\n10,10\n20,10\n10,20\n20,20\n");
    const Answer answer = AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("The constraints are inconsistent."));
    EXPECT_EQ(Line(answer, "Condition number"), "1");
    EXPECT_EQ(Line(answer, "G-efficiency"), "-");
}

TEST_F(Evaluate, ValueOutsideATransformIsRefused) {
    WriteFile(csv_, "Temp,Flow,Cat\n150,1,A\n180,0,B\n");
    for (const char* command : {"evaluate", "power"}) {
        const Answer answer = AskStudy({command, "--worksheet", csv_});
        EXPECT_EQ(answer.code, 2) << command;
        EXPECT_THAT(answer.err, HasSubstr("\"0\" has no value under the factor's transform"));
    }
}

TEST_F(Evaluate, FiguresThatCannotBeComputedAreToldSo) {
    WriteFile(study_, Quantitatives(2));
    WriteFile(csv_, "A,B\n10,10\n20,10\n10,20\n20,20\n15,15\n1e25,20\n");
    const Answer answer = AskStudy({"evaluate", "--worksheet", csv_, "--model", "linear"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out,
                HasSubstr("\nA figure of the model cannot be computed for these runs. There are no "
                          "leverages and no variances.\n"));
    EXPECT_THAT(answer.out, Not(HasSubstr("is singular")));
}

TEST_F(Evaluate, BlendsAreJudgedOverTheEdgesOfTheMixture) {
    WriteFile(study_, R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":1},
        {"name":"b","type":"Formulation","low":0,"high":1},
        {"name":"c","type":"Formulation","low":0,"high":1}]})");
    WriteFile(csv_, "a,b,c\n1,0,0\n0,1,0\n0,0,1\n0.5,0.5,0\n0.5,0,0.5\n0,0.5,0.5\n0.4,0.3,0.3\n");
    JudgeRequest asked;
    asked.subject = study_;
    asked.worksheet = csv_;
    asked.request.optimal.modelTerms = "a*b, a*c, b*c";
    std::ostringstream notes;
    const NCDataMatrix<float> candidates = MakeJudgedDesign(asked, notes).candidates;
    bool hasEdge = false;
    for (int row = 1; row <= candidates.SizeRows(); ++row) {
        // A true blend of two components.
        hasEdge = hasEdge || (candidates(row, 1) > 0.1F && candidates(row, 2) > 0.1F &&
                              std::abs(candidates(row, 3)) < 1e-4F);
    }
    EXPECT_TRUE(hasEdge) << candidates.SizeRows() << " candidates";
}

TEST_F(Evaluate, CandidatesOutsideTheStudyAreRefused) {
    const std::string candidates = folder_.File("candidates.txt");
    const std::string wide = R"({"factors":[
        {"name":"A","type":"Quantitative","low":0,"high":50},
        {"name":"B","type":"Quantitative","low":10,"high":20}]})";
    WriteFile(study_, wide);
    ASSERT_EQ(AskStudy({"candidates", "-o", candidates}).code, 0);
    WriteFile(study_, Quantitatives(2));
    WriteFile(csv_, "A,B\n10,10\n20,10\n10,20\n20,20\n");
    const Answer answer = AskStudy({"evaluate", "--worksheet", csv_, "--candidates", candidates});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("candidates lie outside the study"));
}

TEST_F(Evaluate, NotesOfTheInclusionsAreTold) {
    WriteFile(csv_, "Cat,Temp,Flow,Yield\nB,163,7,3\n");
    const std::string note = csv_ + ": the columns \"Yield\" are no factors and are not used\n";
    EXPECT_THAT(Build({"--inclusions", csv_}).err, HasSubstr(note));
    for (const char* command : {"evaluate", "power"}) {
        EXPECT_THAT(
            AskStudy({command, "--repetitions", "1", "--run-range", "0", "--inclusions", csv_}).err,
            HasSubstr(note))
            << command;
    }
}

TEST_F(Evaluate, InclusionsOfAnotherWidthAreToldInsteadOfCandidates) {
    WriteFile(study_, Quantitatives(2, R"("design":"DOpt")"));
    WriteFile(csv_, "A,B\n12,12\n");
    ASSERT_EQ(Build({"--project", project_, "--inclusions", csv_}).code, 0);
    std::string text = HostTesting::ReadFile(project_);
    const std::size_t cells = text.find("\"12 12\"", text.find("\"Inclusions\""));
    ASSERT_NE(cells, std::string::npos);
    text.replace(cells, 7, "\"12 12 12\"");
    text[text.rfind('2', cells)] = '3';  // the number of columns
    WriteFile(project_, text);
    const Answer answer = Ask({"evaluate", project_});
    EXPECT_THAT(answer.err,
                HasSubstr("The inclusions file and the candidate set are not consistent. They "
                          "don't have the same variables."));
    EXPECT_EQ(Line(answer, "G-efficiency"), "-");
}

TEST_F(Evaluate, BlocksOfTheStudyAreNamedWhereTheyStand) {
    WriteStudy(R"("options":{"blocks":5000})");
    WriteFile(csv_, "Temp,Flow,Cat\n150,1,A\n");
    EXPECT_EQ(AskStudy({"evaluate", "--worksheet", csv_}).err,
              study_ + ": options.blocks: 5000 must be a whole number from 1 to 1000.\n");
    EXPECT_EQ(AskStudy({"evaluate", "--worksheet", csv_, "--blocks", "0"}).err,
              "--blocks: 0 must be a whole number from 1 to 1000.\n");
}

}  // namespace
