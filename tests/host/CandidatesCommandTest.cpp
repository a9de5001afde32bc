#include "host/CandidatesCommand.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <sstream>

#include "foundation/util/NCProgress.h"
#include "host/CandidateFile.h"
#include "host/Cli.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Answer {
    int code = 0;
    std::string out;
    std::string err;
};

class CandidatesCommand : public testing::Test {
  protected:
    ~CandidatesCommand() override { NCProgress::SetDisplay(nullptr); }

    Answer Ask(const std::string& study, std::vector<std::string> options = {}) {
        WriteFile(study_, study);
        options.insert(options.begin(), {"candidates", study_});
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunCommandLine(options, out, err);
        return {code, out.str(), err.str()};
    }
    json_value AskJson(const std::string& study, std::vector<std::string> options = {}) {
        options.emplace_back("--json");
        const Answer answer = Ask(study, std::move(options));
        EXPECT_EQ(answer.code, 0) << answer.err;
        return answer.code == 0 ? json_value::parse(answer.out) : json_value();
    }
    // The text that ends the checking of a file with exit code 2, without the name in front.
    std::string Fault(const std::string& study, const std::string& text) {
        WriteFile(file_, text);
        const Answer answer = Ask(study, {"--candidates", file_});
        EXPECT_EQ(answer.code, 2) << answer.out;
        EXPECT_THAT(answer.out, IsEmpty());
        EXPECT_THAT(answer.err, StartsWith(file_ + ": "));
        return answer.err.substr(std::min(answer.err.size(), file_.size() + 2));
    }
    // The first row of a file that the study does not allow, or "0".
    std::string Misfit(const std::string& study, const std::string& row) {
        const auto columns = std::count(row.begin(), row.end(), '\t');
        WriteFile(file_, fmt::format("1\n{}\n{}\n", columns, row));
        const std::string out = Ask(study, {"--candidates", file_}).out;
        const std::string label = "Rows outside the study        ";
        const std::size_t begin = out.find(label);
        return begin == std::string::npos ? out : out.substr(begin + label.size());
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string file_ = folder_.File("set.cand");
};

std::string Factors(const std::string& factors, const std::string& more = "") {
    return R"({"factors":[)" + factors + "]" + (more.empty() ? "" : "," + more) + "}";
}

std::string Share(const std::string& name, double low, double high) {
    return fmt::format(
        R"({{"name":"{}","type":"Formulation","low":{},"high":{}}})", name, low, high);
}

std::string AtMost(const std::string& factor, double bound) {
    return fmt::format(
        R"({{"terms":[{{"factor":"{}","coefficient":1}}],"bound":{},"relation":"<="}})",
        factor,
        bound);
}

std::string AtLeast(const std::string& factor, double bound) {
    return fmt::format(
        R"({{"terms":[{{"factor":"{}","coefficient":1}}],"bound":{},"relation":">="}})",
        factor,
        bound);
}

std::string Constraints(const std::string& constraints) {
    return R"("constraints":[)" + constraints + "]";
}

constexpr const char* cOven = R"({"name":"Oven","type":"Qualitative","levels":["a","b","c"]})";
constexpr const char* cSpeed = R"({"name":"Speed","type":"Multilevel","settings":[1,2,5]})";

// McLean and Anderson, "Extreme vertices design of mixture experiments", Technometrics 8 (1966):
// eight vertices; with its six faces the region has twelve edges.
const std::string cFlare =
    Factors(Share("Magnesium", 0.4, 0.6) + "," + Share("Sodium", 0.1, 0.5) + "," +
            Share("Strontium", 0.1, 0.5) + "," + Share("Binder", 0.03, 0.08));

TEST_F(CandidatesCommand, FlareExampleHasItsEightVertices) {
    const json_value value = AskJson(cFlare);
    EXPECT_EQ(value.get_child("mixtureModel").get_string(), "linear");
    EXPECT_EQ(value.get_child("extremeVertices").get_integer(), 8);
    EXPECT_EQ(value.get_child("rows").get_integer(), 9);
}

TEST_F(CandidatesCommand, FlareExampleHasTwelveEdges) {
    const json_value value =
        AskJson(cFlare, {"--mixture-model", "quadratic", "--no-potential-terms"});
    EXPECT_EQ(value.get_child("edgePoints").get_integer(), 12);
    EXPECT_EQ(value.get_child("higherDimensionalCentroids").get_integer(), 1);
    EXPECT_EQ(value.get_child("rows").get_integer(), 21);
}

TEST_F(CandidatesCommand, PotentialTermsTakeTwoPointsOfEveryEdge) {
    const json_value value = AskJson(cFlare, {"--mixture-model", "quadratic"});
    EXPECT_EQ(value.get_child("edgePoints").get_integer(), 24);
}

TEST_F(CandidatesCommand, PrintsTheCountsByKind) {
    const Answer answer =
        Ask(Quantitatives(2, R"("name":"Oven")"), {"--model", "quadratic", "--no-potential-terms"});
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.out,
              "Study                         Oven\n"
              "Process model                 Quadratic\n"
              "Extreme vertices              4\n"
              "Edge points                   4\n"
              "Higher-dimensional centroids  1\n"
              "Level combinations            1\n"
              "Rows                          9\n"
              "Columns                       2\n");
}

TEST_F(CandidatesCommand, TakesTheModelOfTheStudy) {
    const json_value value = AskJson(Quantitatives(2, R"("model":"quadratic")"));
    EXPECT_EQ(value.get_child("processModel").get_string(), "quadratic");
    EXPECT_FALSE(value.has_child("mixtureModel"));
    EXPECT_EQ(value.get_child("edgePoints").get_integer(), 8);
}

TEST_F(CandidatesCommand, AnInteractionModelLeavesTheMixtureLinear) {
    const json_value value =
        AskJson(Factors(Share("x", 0, 1) + "," + Share("y", 0, 1) + "," + Share("z", 0, 1) +
                        R"(,{"name":"t","type":"Quantitative","low":0,"high":1})"),
                {"--model", "interaction"});
    EXPECT_EQ(value.get_child("processModel").get_string(), "interaction");
    EXPECT_EQ(value.get_child("mixtureModel").get_string(), "linear");
}

TEST_F(CandidatesCommand, AFreeMixtureOfThreeHasItsPureComponentsAndCentroid) {
    const Answer answer = Ask(
        Factors(Share("x", 0, 1) + "," + Share("y", 0, 1) + "," + Share("z", 0, 1)), {"-o", file_});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(ReadFile(file_),
                EndsWith("\n4\n3\n"
                         "1\t0\t0\t\n"
                         "0\t1\t0\t\n"
                         "0\t0\t1\t\n"
                         "0.333333\t0.333333\t0.333333\t\n"
                         "\n0\t3\t1\n"));
}

TEST_F(CandidatesCommand, LevelsAloneGiveTheirCombinations) {
    const json_value value = AskJson(Factors(std::string(cOven) + "," + cSpeed));
    EXPECT_EQ(value.get_child("levelCombinations").get_integer(), 9);
    EXPECT_EQ(value.get_child("rows").get_integer(), 9);
    EXPECT_EQ(value.get_child("columns").get_integer(), 3);
    EXPECT_FALSE(value.has_child("processModel"));
}

TEST_F(CandidatesCommand, LevelsAndBlocksMultiplyTheRows) {
    const json_value value = AskJson(
        Factors(std::string(cOven) + R"(,{"name":"t","type":"Quantitative","low":0,"high":1})",
                R"("options":{"blocks":2})"));
    EXPECT_EQ(value.get_child("levelCombinations").get_integer(), 6);
    EXPECT_EQ(value.get_child("rows").get_integer(), 6 * 3);
    EXPECT_EQ(value.get_child("columns").get_integer(), 2 + 1 + 1);
}

TEST_F(CandidatesCommand, AFillerLeavesABoxToTheOthers) {
    const json_value value = AskJson(Factors(Share("x", 0.1, 0.3) + "," + Share("y", 0.1, 0.4) +
                                             R"(,{"name":"w","type":"Filler"})"));
    EXPECT_EQ(value.get_child("extremeVertices").get_integer(), 4);
    EXPECT_FALSE(value.has_child("mixtureModel"));
}

// The triangle below x + y = 1 of a square, whatever stands in front of it.
TEST_F(CandidatesCommand, ConstraintsByNameHoldBehindAQualitativeFactor) {
    const std::string study = Factors(
        std::string(cOven) + R"(,{"name":"x","type":"Quantitative","low":0,"high":1},)" +
            R"({"name":"y","type":"Quantitative","low":0,"high":1})",
        Constraints(R"({"terms":[{"factor":"y","coefficient":1},{"factor":"x","coefficient":1}],)"
                    R"("bound":1,"relation":"<="})"));
    const json_value value = AskJson(study, {"-o", file_});
    EXPECT_EQ(value.get_child("extremeVertices").get_integer(), 3 * 3);
    const Study read = ReadStudyFile(study_);
    CandidateSet set;
    ASSERT_TRUE(set.ReadCandidateSet(file_, -1, nullptr));
    for (int row = 1; row <= set.SizeRows(); ++row) {
        EXPECT_EQ(MisfitOf(set.RowSpan(row), read), "") << "row " << row;
        EXPECT_LE(set(row, 3) + set(row, 4), 1.0F + 1e-6F) << "row " << row;
    }
}

TEST_F(CandidatesCommand, AWrittenSetIsReadAsItWas) {
    const std::string study = Quantitatives(2, Constraints(AtMost("A", 17)));
    const Answer made = Ask(study, {"-o", file_});
    EXPECT_EQ(made.code, 0);
    EXPECT_THAT(made.err, EndsWith(": 5 candidates\n"));
    EXPECT_THAT(ReadFile(file_),
                EndsWith("\n5\n2\n10\t10\t\n10\t20\t\n17\t10\t\n17\t20\t\n13.5\t15\t\n"
                         "\n0\t4\t1\n"));
    const Answer read = Ask(study, {"--candidates", file_});
    EXPECT_EQ(read.code, 0);
    EXPECT_EQ(read.out,
              "Study                         " + study_ +
                  "\n"
                  "Extreme vertices              4\n"
                  "Edge points                   0\n"
                  "Higher-dimensional centroids  1\n"
                  "Level combinations            1\n"
                  "Rows                          5\n"
                  "Columns                       2\n"
                  "Rows outside the study        0\n");
}

TEST_F(CandidatesCommand, AFileCutAnywhereIsNeverTakenForAnother) {
    const std::string study = Quantitatives(2);
    ASSERT_EQ(Ask(study, {"-o", file_}).code, 0);
    const Study read = ReadStudyFile(study_);
    const std::string whole = ReadFile(file_);
    const CandidateFile expected = ReadCandidateFile(file_, read);
    const std::size_t rowsEnd = whole.find("\n\n") + 1;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        WriteFile(file_, whole.substr(0, length));
        try {
            const CandidateFile got = ReadCandidateFile(file_, read);
            // Only the counts may be missing, as in files that never had them.
            EXPECT_TRUE(length == rowsEnd || length == rowsEnd + 1) << length;
            EXPECT_EQ(got.set.GetMatrix(), expected.set.GetMatrix()) << length;
            EXPECT_EQ(got.set.GetNumData(), DOpt::NumData()) << length;
        } catch (const Exception& exception) {
            EXPECT_THAT(exception.what(), StartsWith(file_ + ": this is no candidate set file: "))
                << length;
        }
    }
}

TEST_F(CandidatesCommand, CountsThatAFileLacksAreToldSo) {
    WriteFile(file_, "1\n2\n10\t20\t\n");
    EXPECT_THAT(Ask(Quantitatives(2), {"--candidates", file_}).out,
                HasSubstr("Extreme vertices              not counted\n"));
    EXPECT_EQ(
        AskJson(Quantitatives(2), {"--candidates", file_}).get_child("extremeVertices").to_text(),
        "null");
}

TEST_F(CandidatesCommand, AnotherColumnCountIsRefused) {
    EXPECT_EQ(
        Fault(Factors(std::string(cOven) + "," + cSpeed), "1\n2\n1\t1\t\n"),
        "the candidate set has 2 columns, the study " + study_ +
            " has 3: one a factor, levels - 1 for a qualitative factor and for the blocks.\n");
}

TEST_F(CandidatesCommand, AFileThatIsNotThereIsNamed) {
    const Answer answer = Ask(Quantitatives(2), {"--candidates", folder_.File("none.cand")});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("none.cand"));
}

TEST_F(CandidatesCommand, TheFirstFaultyLineIsTold) {
    const std::string study = Quantitatives(2);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "it is empty"},
        {"/ comment\n", "it ends behind line 1; missing are the number of rows"},
        {"/ comment\n0\n2\n",
         "line 2 must hold the number of rows, which is at least 1; it is \"0\""},
        {"3x\n2\n", "line 1 must hold the number of rows, which is at least 1; it is \"3x\""},
        {"3\n", "it ends behind line 1; missing are the number of columns"},
        {"3\n-2\n", "line 2 must hold the number of columns, which is at least 1; it is \"-2\""},
        {"3\n2", "line 2 is cut short; missing are the number of columns"},
        {"3\n2\n1\t2\t3\t4\t5\t\n", "line 3 has 5 values for 2 columns"},
        {"3\n2\n1\t2\t\n1\t2\t\n", "it ends behind line 4; missing are 1 of 3 rows"},
        {"3\n2\n1\t2\t\n1\t2", "line 4 is cut short; missing are 2 of 3 rows"},
        {"2\n2\n1\t2\t\n1\t\n", "line 4 has 1 fields, the first row has 2"},
        {"3\n2\n1\t2\t\n\n0\t1\t0\n", "line 4 is empty, but 3 rows are told and only 1 found"},
        {"1\n2\n1\t2\t\n1\t2\t\n",
         "behind its 1 rows it must have an empty line, three counts and nothing more"},
        {"1\n2\n1\t2\t\n\n0\t1\n",
         "behind its 1 rows it must have an empty line, three counts and nothing more"}};
    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(Fault(study, text), "this is no candidate set file: " + fault + ".\n") << text;
    }
}

TEST_F(CandidatesCommand, ARowOutsideARangeIsTold) {
    EXPECT_EQ(Misfit(Quantitatives(2), "10\t21\t"),
              "1; row 1: \"B\" is 21; allowed are 10 to 20\n");
}

TEST_F(CandidatesCommand, SixDigitsOfALimitAreInsideIt) {
    const std::string study =
        Factors(R"({"name":"x","type":"Quantitative","low":0.12345678,"high":1234.5678})");
    EXPECT_EQ(Misfit(study, "0.123457\t"), "0\n");
    EXPECT_EQ(Misfit(study, "1234.57\t"), "0\n");
    EXPECT_THAT(Misfit(study, "1234.7\t"), StartsWith("1; "));
}

TEST_F(CandidatesCommand, ABrokenConstraintIsToldByItsNumber) {
    EXPECT_EQ(
        Misfit(Quantitatives(2, Constraints(AtMost("A", 19) + "," + AtLeast("B", 15))), "19\t14\t"),
        "1; row 1: constraint 2 is broken\n");
}

TEST_F(CandidatesCommand, CellsThatAreNoNumbersAreMissing) {
    EXPECT_EQ(Misfit(Quantitatives(2), "10\tx\t"), "1; row 1: a value is missing\n");
}

TEST_F(CandidatesCommand, SettingsAndLevelsMustBeThoseOfTheStudy) {
    EXPECT_EQ(Misfit(Factors(cSpeed), "2\t"), "0\n");
    EXPECT_EQ(Misfit(Factors(cSpeed), "3\t"),
              "1; row 1: \"Speed\" is 3, which is none of its settings\n");
    EXPECT_EQ(Misfit(Factors(cOven), "-1\t-1\t"), "0\n");
    EXPECT_EQ(Misfit(Factors(cOven), "1\t1\t"),
              "1; row 1: the columns of \"Oven\" are those of no level\n");
}

TEST_F(CandidatesCommand, BlockColumnsMustBeThoseOfABlock) {
    const std::string study = Quantitatives(1, R"("options":{"blocks":3})");
    EXPECT_EQ(Misfit(study, "10\t-1\t-1\t"), "0\n");
    EXPECT_EQ(Misfit(study, "10\t0\t0\t"),
              "1; row 1: the columns of the block are those of no block\n");
}

TEST_F(CandidatesCommand, SharesMustAddUp) {
    const std::string study =
        Factors(Share("x", 0, 1) + "," + Share("y", 0, 1) + "," + Share("z", 0, 1));
    EXPECT_EQ(Misfit(study, "0.333333\t0.333333\t0.333333\t"), "0\n");
    EXPECT_EQ(Misfit(study, "0.3\t0.3\t0.3\t"),
              "1; row 1: the formulation factors add up to 0.9 instead of 1\n");
}

TEST_F(CandidatesCommand, EveryRowOutsideIsCounted) {
    WriteFile(file_, "3\n2\n9\t10\t\n10\t10\t\n10\t99\t\n");
    const json_value value = AskJson(Quantitatives(2), {"--candidates", file_});
    EXPECT_EQ(value.get_child("rowsOutside").get_integer(), 2);
    EXPECT_EQ(value.get_child("firstRowOutside").get_string(),
              "row 1: \"A\" is 9; allowed are 10 to 20");
}

struct Refused {
    std::string study;
    std::vector<std::string> options;
    std::string message;  // the whole error output
};

TEST_F(CandidatesCommand, ImpossibleRequestsEndWithTheEnginesText) {
    const std::string inconsistent =
        "The candidate set could not be generated: The constraints are inconsistent.\n";
    const std::string tooMany =
        "The candidate set could not be generated: Too many vertices were generated for the "
        "candidate set. Please reduce problem complexity.\n";
    const std::string overLimit =
        "The candidate set could not be generated: The candidate set will exceed the limit of "
        "runs.\n";
    std::string levels;
    for (int i = 0; i < 32; ++i) {
        levels += fmt::format(
            R"({}{{"name":"m{}","type":"Multilevel","settings":[1,2]}})", i > 0 ? "," : "", i);
    }
    const std::vector<Refused> cases{
        {Quantitatives(2, Constraints(AtMost("A", 5))), {}, inconsistent},
        {Quantitatives(2, Constraints(AtMost("A", 13) + "," + AtLeast("A", 14))), {}, inconsistent},
        // An equality leaves a line, which has no inside.
        {Quantitatives(2, Constraints(AtMost("A", 15) + "," + AtLeast("A", 15))), {}, inconsistent},
        {Factors(levels), {}, tooMany},
        {Quantitatives(2), {"--limit", "9"}, overLimit},
        {cFlare, {"--limit", "35"}, overLimit}};
    for (const Refused& refused : cases) {
        const Answer answer = Ask(refused.study, refused.options);
        EXPECT_EQ(answer.code, 2) << refused.study;
        EXPECT_THAT(answer.out, IsEmpty()) << refused.study;
        EXPECT_THAT(answer.err, EndsWith(refused.message)) << refused.study;
    }
}

TEST_F(CandidatesCommand, ALimitThatIsReachedIsKept) {
    EXPECT_EQ(Ask(Quantitatives(2), {"--limit", "10"}).code, 0);
    EXPECT_EQ(Ask(cFlare, {"--limit", "36"}).code, 0);
}

TEST_F(CandidatesCommand, AFactorWithoutARangeIsRefusedByTheStudy) {
    const Answer answer = Ask(Factors(R"({"name":"x","type":"Quantitative","low":3,"high":3})"));
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("factors[0]"));
}

TEST_F(CandidatesCommand, AMixtureThatLeavesNoRoomIsRefusedByTheStudy) {
    const Answer answer = Ask(Factors(Share("x", 0.5, 0.9) + "," + Share("y", 0.5, 0.9)));
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err,
                HasSubstr("The sum of the low settings of the formulation factors is too large"));
}

// 200 tangents of a circle, five times each: every one of them is a side of the region once.
TEST_F(CandidatesCommand, AThousandConstraintsAreTaken) {
    std::string constraints;
    for (int i = 0; i < 1000; ++i) {
        const double angle = 2 * 3.14159265358979 * i / 200;
        constraints += fmt::format(
            R"({}{{"terms":[{{"factor":"A","coefficient":{}}},{{"factor":"B","coefficient":{}}}],)"
            R"("bound":{},"relation":"<="}})",
            i > 0 ? "," : "",
            std::cos(angle),
            std::sin(angle),
            15 * (std::cos(angle) + std::sin(angle)) + 5);
    }
    const json_value value = AskJson(Quantitatives(2, Constraints(constraints)));
    EXPECT_EQ(value.get_child("extremeVertices").get_integer(), 200);
}

TEST_F(CandidatesCommand, MoreConstraintsThanAStudyMayHaveAreRefused) {
    std::string constraints = AtMost("A", 15);
    for (int i = 0; i < 1000; ++i) {
        constraints += "," + AtMost("A", 15);
    }
    const Answer answer = Ask(Quantitatives(2, Constraints(constraints)));
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("constraints"));
}

// Stops at one given question.
class Impatient : public NCProgressDisplay {
  public:
    explicit Impatient(int patience) : patience_(patience) {}
    void Begin(const std::string& /*title*/,
               const std::string& /*text*/,
               bool /*cancellable*/) override {}
    void Show(double /*share*/, const std::string& /*text*/) override {}
    void Hide() override {}
    void End() override {}
    bool IsBreakPressed() const override { return ++asked_ > patience_; }
    int Asked() const { return asked_; }

  private:
    int patience_;
    mutable int asked_ = 0;
};

TEST_F(CandidatesCommand, AStopAtAnyQuestionLeavesTheOldFile) {
    const std::string study = Factors(
        std::string(cOven) + "," + Share("x", 0.1, 0.6) + "," + Share("y", 0.1, 0.6) + "," +
            Share("z", 0.1, 0.6) + R"(,{"name":"t","type":"Quantitative","low":0,"high":1})",
        Constraints(AtMost("t", 0.8) + "," + AtMost("x", 0.5)) + R"(,"model":"quadratic")");
    const auto count = std::make_shared<Impatient>(1 << 30);
    NCProgress::SetDisplay(count);
    ASSERT_EQ(Ask(study, {"-o", file_}).code, 0);
    ASSERT_GT(count->Asked(), 10);
    WriteFile(file_, "old");
    for (int patience = 0; patience < count->Asked(); ++patience) {
        NCProgress::SetDisplay(std::make_shared<Impatient>(patience));
        const Answer answer = Ask(study, {"-o", file_});
        EXPECT_EQ(answer.code, 130) << patience;
        EXPECT_THAT(answer.err, EndsWith("Stopped.\n")) << patience;
        EXPECT_THAT(answer.out, IsEmpty()) << patience;
        EXPECT_EQ(ReadFile(file_), "old") << patience;
    }
}

TEST_F(CandidatesCommand, OptionsThatCannotBeAreRefused) {
    WriteFile(file_, "1\n2\n10\t10\t\n");
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"--model", "wild"}, "--model: \"wild\" is no model"},
        {{"--mixture-model", "interaction"},
         "--mixture-model: \"interaction\" is no mixture model"},
        {{"--mixture-model", "linear"}, "--mixture-model: the study has no formulation factors"},
        {{"--limit", "0"}, "--limit: 0 must be a whole number from 1 to 80000000."},
        {{"--limit", "-1"}, "--limit: -1 must be"},
        {{"--limit", "80000001"}, "--limit: 80000001 must be"},
        {{"-o", study_}, "-o: " + study_ + " is the study itself"},
        {{"--candidates", file_, "--limit", "10"}, "--candidates: a file is only checked;"},
        {{"--candidates", file_, "-o", file_ + "2"}, "--candidates: a file is only checked;"}};
    for (const auto& [options, message] : cases) {
        const Answer answer = Ask(Quantitatives(2), options);
        EXPECT_EQ(answer.code, 2) << message;
        EXPECT_THAT(answer.err, StartsWith(message));
    }
    EXPECT_FALSE(std::filesystem::exists(file_ + "2"));
}

TEST_F(CandidatesCommand, AFileThatCannotBeWrittenIsNamed) {
    const std::string nowhere = folder_.File("none/set.cand");
    const Answer answer = Ask(Quantitatives(2), {"-o", nowhere});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr(nowhere));
}

}  // namespace
