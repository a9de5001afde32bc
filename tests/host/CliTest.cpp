#include "host/Cli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "host/TextTable.h"
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

Answer Ask(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunCommandLine(arguments, out, err);
    return {code, out.str(), err.str()};
}

class CliTest : public testing::Test {
  protected:
    CliTest() { WriteFile(study_, Quantitatives(3, R"("design":"FF2")")); }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
};

TEST_F(CliTest, ProposesATable) {
    const Answer answer = Ask({"propose", study_});
    EXPECT_EQ(answer.code, 0);
    EXPECT_THAT(answer.out, StartsWith("Priority  Design"));
    EXPECT_THAT(answer.out, HasSubstr("Full Fac (2 levels)"));
}

TEST_F(CliTest, ProposesJson) {
    const Answer answer = Ask({"propose", study_, "--json"});
    const json_value value = json_value::parse(answer.out);
    EXPECT_EQ(value.get_child("objective").get_string(), "screening");
    bool found = false;
    for (const json_value& proposal : value.get_child("proposals").get_array()) {
        if (proposal.get_child("design").get_string() == "FF2") {
            found = true;
            EXPECT_EQ(proposal.get_child("runs").get_integer(), 8);
            EXPECT_EQ(proposal.get_child("centerPoints").get_integer(), 3);
            EXPECT_EQ(proposal.get_child("model").get_string(), "interaction");
        }
    }
    EXPECT_TRUE(found) << answer.out;
}

TEST_F(CliTest, EndsWithOneWhenNothingIsValid) {
    WriteFile(study_, Quantitatives(1, R"("objective":"screening","model":"cubic")"));
    const Answer answer = Ask({"build", study_, "--design", "FF2"});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.out, IsEmpty());
    EXPECT_THAT(answer.err, HasSubstr("the design FF2 is not valid"));
}

TEST_F(CliTest, BuildsTheSameWorksheetFromTheSameSeed) {
    const Answer first = Ask({"build", study_, "--seed", "7"});
    EXPECT_EQ(first.code, 0);
    EXPECT_THAT(first.out, StartsWith("StdOrder,RunOrder,A,B,C\n"));
    EXPECT_EQ(Ask({"build", study_, "--seed", "7"}).out, first.out);
}

TEST_F(CliTest, SaysWhichSeedItDrew) {
    const Answer drawn = Ask({"build", study_});
    ASSERT_THAT(drawn.err, HasSubstr("seed "));
    const std::string seed = drawn.err.substr(drawn.err.find("seed ") + 5);
    EXPECT_EQ(Ask({"build", study_, "--seed", seed.substr(0, seed.size() - 1)}).out, drawn.out);
}

TEST_F(CliTest, TakesEveryOptionOfBuild) {
    const Answer answer = Ask({"build",
                               study_,
                               "--design",
                               "ff2",
                               "--runs",
                               "8",
                               "--blocks",
                               "2",
                               "--center-points",
                               "2",
                               "--replicates",
                               "1",
                               "--replicated-runs",
                               "1",
                               "--model",
                               "linear",
                               "--seed",
                               "4294967295",
                               "--coded",
                               "-o",
                               folder_.File("w.csv"),
                               "--project",
                               folder_.File("p.txt")});
    EXPECT_EQ(answer.code, 0) << answer.err;
    const std::string csv = ReadFile(folder_.File("w.csv"));
    EXPECT_THAT(csv, StartsWith("StdOrder,RunOrder,A,B,C,Block\n"));
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + (8 + 1 + 2) * 2);
    EXPECT_THAT(Ask({"show", folder_.File("p.txt")}).out, HasSubstr("Model            Linear\n"));
}

TEST_F(CliTest, EndsWithTwoOnBadUsage) {
    const std::vector<std::vector<std::string>> bad{{},
                                                    {"frobnicate"},
                                                    {"build"},
                                                    {"build", study_, "--frobnicate"},
                                                    {"build", study_, "--runs", "8.5"},
                                                    {"build", study_, "--runs", "many"},
                                                    {"build", study_, "--seed", "-1"},
                                                    {"build", study_, "--seed", "4294967296"},
                                                    {"build", study_, "-o"},
                                                    {"show"},
                                                    {"propose", study_, study_}};
    for (const auto& arguments : bad) {
        const Answer answer = Ask(arguments);
        EXPECT_EQ(answer.code, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(answer.out, IsEmpty()) << testing::PrintToString(arguments);
        EXPECT_FALSE(answer.err.empty()) << testing::PrintToString(arguments);
    }
}

TEST_F(CliTest, EndsWithTwoOnBadInput) {
    EXPECT_EQ(Ask({"build", folder_.File("none.json")}).code, 2);
    EXPECT_EQ(Ask({"propose", folder_.Path().string()}).code, 2);
    EXPECT_EQ(Ask({"show", study_}).code, 2);
    EXPECT_EQ(Ask({"build", study_, "--runs", "9"}).code, 2);
}

TEST_F(CliTest, HelpsEverywhere) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"--help"}, {"propose", "--help"}, {"build", "--help"}, {"show", "--help"}}) {
        const Answer answer = Ask(arguments);
        EXPECT_EQ(answer.code, 0);
        EXPECT_THAT(answer.out, HasSubstr("Usage: ncdoe"));
        EXPECT_THAT(answer.out, HasSubstr("Exit codes:"));
    }
}

TEST_F(CliTest, TellsItsVersion) {
    EXPECT_THAT(Ask({"--version"}).out, testing::MatchesRegex("ncdoe [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CliTest, DoesNotWriteOverTheStudy) {
    const std::string before = ReadFile(study_);
    EXPECT_EQ(Ask({"build", study_, "-o", study_}).code, 2);
    EXPECT_EQ(Ask({"build", study_, "--project", folder_.File("./study.json")}).code, 2);
    EXPECT_EQ(ReadFile(study_), before);
}

TEST_F(CliTest, DoesNotWriteTwoResultsIntoOneFile) {
    const std::string path = folder_.File("both");
    EXPECT_EQ(Ask({"build", study_, "-o", path, "--project", path}).code, 2);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(CliTest, LeavesNoFileBehindAFailure) {
    const auto before = folder_.CountEntries();
    EXPECT_EQ(Ask({"build", study_, "--blocks", "3", "-o", folder_.File("w.csv")}).code, 2);
    EXPECT_EQ(folder_.CountEntries(), before);
}

TEST_F(CliTest, ReportsAFullDisk) {
    for (const char* option : {"-o", "--project"}) {
        const Answer answer = Ask({"build", study_, option, "/dev/full"});
        EXPECT_EQ(answer.code, 2) << option;
        EXPECT_THAT(answer.err, HasSubstr("/dev/full"));
    }
}

TEST_F(CliTest, LeavesTheOldFileInAFolderThatCannotBeWritten) {
    const std::string path = folder_.File("missing/w.csv");
    EXPECT_EQ(Ask({"build", study_, "-o", path}).code, 2);
}

// Runs the program itself through the shell.
Answer RunProgram(const std::string& arguments) {
    const std::string command = std::string(NCDOE_PROGRAM) + " " + arguments;
    Answer answer;
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::array<char, 4096> buffer{};
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        answer.out.append(buffer.data(), size);
    }
    const int status = ::pclose(pipe);
    answer.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return answer;
}

TEST_F(CliTest, AnswersTheShellWithItsExitCodes) {
    WriteFile(folder_.File("one.json"), Quantitatives(1, R"("design":"FF2")"));
    EXPECT_EQ(RunProgram("build " + study_ + " 2>/dev/null").code, 0);
    EXPECT_EQ(RunProgram("build " + folder_.File("one.json") + " 2>/dev/null").code, 1);
    EXPECT_EQ(RunProgram("build " + folder_.File("none.json") + " 2>/dev/null").code, 2);
}

TEST_F(CliTest, ReportsAnOutputThatIsFull) {
    const Answer answer = RunProgram("build " + study_ + " 2>&1 >/dev/full");
    EXPECT_EQ(answer.code, 2);
    EXPECT_EQ(answer.out, "The output cannot be written.\n");
}

TEST_F(CliTest, KeepsTheOutputFreeOfMessages) {
    const Answer answer = RunProgram("build " + study_ + " --seed 1 2>/dev/null");
    EXPECT_THAT(answer.out, StartsWith("StdOrder,"));
    EXPECT_EQ(std::count(answer.out.begin(), answer.out.end(), '\n'), 1 + 8 + 3);
}

TEST_F(CliTest, WritesNoTerminalCodesIntoAPipe) {
    EXPECT_THAT(RunProgram("build " + study_ + " 2>&1").out, testing::Not(HasSubstr("\x1b")));
}

TEST(TextTable, AlignsNumbersRightAndTextsLeft) {
    EXPECT_EQ(FormatTable({"n", "name"}, {{"1", "a"}, {"10", "grün"}, {"-2.5", "b"}}),
              "   n  name\n"
              "----  ----\n"
              "   1  a\n"
              "  10  grün\n"
              "-2.5  b\n");
}

}  // namespace
