#include "host/RunsFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/HostTesting.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::WriteFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Rows = std::vector<std::vector<float>>;

class RunsFileTest : public testing::Test {
  protected:
    [[nodiscard]] RunsFile Read(const std::string& text, int blocks = 1) const {
        WriteFile(path_, text);
        return ReadRunsFile(path_, study_, blocks);
    }

    // The message behind the file's name.
    [[nodiscard]] std::string ErrorOf(const std::string& text, int blocks = 1) const {
        try {
            static_cast<void>(Read(text, blocks));
        } catch (const Exception& exception) {
            const std::string what = exception.what();
            EXPECT_EQ(what.substr(0, path_.size()), path_);
            return what.substr(path_.size() + 2);
        }
        return {};
    }

    TemporaryFolder folder_;
    std::string path_ = folder_.File("runs.csv");
    Study study_ = ReadStudy(R"({"factors":[
        {"name":"Temp","type":"Quantitative","low":150,"high":180},
        {"name":"Cat","type":"Qualitative","levels":["A","B","C"]},
        {"name":"Stir","type":"Multilevel","settings":[100,200,400]}]})",
                             "s.json");
};

TEST_F(RunsFileTest, ColumnsMayStandInAnyOrder) {
    EXPECT_EQ(RowsOf(Read("Stir,Cat,Temp\n200,A,150\n400,C,165.5\n").matrix),
              (Rows{{150, -1, -1, 200}, {165.5F, 0, 1, 400}}));
}

TEST_F(RunsFileTest, BlocksBecomeCodingColumns) {
    EXPECT_EQ(RowsOf(Read("Temp,Cat,Stir,Block\n150,B,100,2\n150,B,100,1\n", 2).matrix),
              (Rows{{150, 1, 0, 100, 1}, {150, 1, 0, 100, -1}}));
}

TEST_F(RunsFileTest, WorksheetsOfSpreadsheetsAreRead) {
    const RunsFile file =
        Read("\xEF\xBB\xBFStdOrder,RunOrder,\"Temp\",Cat,Stir\r\n1,2, 150 ,\"A\",100\r\n\r\n");
    EXPECT_EQ(RowsOf(file.matrix), (Rows{{150, -1, -1, 100}}));
    EXPECT_THAT(file.notes, IsEmpty());
}

TEST_F(RunsFileTest, LinesAreCountedThroughQuotesAndGaps) {
    const RunsFile file = Read("Note,Temp,Cat,Stir\n\"two\nlines\",150,A,100\n\n,150,A,100\n");
    EXPECT_THAT(file.lines, ElementsAre(2, 5));
}

TEST_F(RunsFileTest, OtherColumnsAreNoted) {
    EXPECT_THAT(Read("Temp,Cat,Stir,Yield,Note\n150,A,100,3,x\n").notes,
                ElementsAre("the columns \"Yield\" and \"Note\" are no factors and are not used"));
}

TEST_F(RunsFileTest, RunsOutsideTheRangeAreNoted) {
    EXPECT_THAT(Read("Temp,Cat,Stir\n150,A,100\n190,A,100\n").notes,
                ElementsAre("1 of 2 runs lie outside the study, the first in line 3: \"Temp\" is "
                            "190; allowed are 150 to 180"));
}

TEST_F(RunsFileTest, MissingColumnIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Stir\n150,100\n"),
              "line 1: there is no column \"Cat\"; the columns are \"Temp\" and \"Stir\".");
}

TEST_F(RunsFileTest, MissingBlockColumnIsNamed) {
    EXPECT_THAT(ErrorOf("Temp,Cat,Stir\n150,A,100\n", 2), HasSubstr("no column \"Block\""));
}

TEST_F(RunsFileTest, ColumnThatStandsTwiceIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir,Temp\n1,A,100,2\n"),
              "line 1: the column \"Temp\" stands there twice.");
}

TEST_F(RunsFileTest, NoNumberIsNamedWithItsPlace) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,A,100\nwarm,A,100\n"),
              "line 3, column \"Temp\": \"warm\" is no number.");
}

TEST_F(RunsFileTest, NumbersOutsideTheFiniteOnesAreRefused) {
    for (const char* text : {"nan", "inf", "-inf", "1e99", "-99", "0x10", "1,5", "15 0"}) {
        EXPECT_THAT(ErrorOf("Cat,Stir,Temp\nA,100," + std::string(text) + "\n"),
                    HasSubstr("line 2"))
            << text;
    }
}

TEST_F(RunsFileTest, MissingValueIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n,A,100\n"),
              "line 2, column \"Temp\": the value is missing; is no number.");
}

TEST_F(RunsFileTest, UnknownLevelIsNamedWithTheKnownOnes) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,D,100\n"),
              "line 2, column \"Cat\": \"D\" is no level; allowed are \"A\", \"B\" and \"C\".");
}

TEST_F(RunsFileTest, UnknownSettingIsNamedWithTheKnownOnes) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,A,300\n"),
              "line 2, column \"Stir\": \"300\" is no setting; allowed are 100, 200 and 400.");
}

TEST_F(RunsFileTest, UnknownBlockIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir,Block\n150,A,100,3\n", 2),
              "line 2, column \"Block\": \"3\" is no block; allowed are 1 to 2.");
}

TEST_F(RunsFileTest, LineOfAnotherLengthIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,A\n"), "line 2: there are 2 values for 3 columns.");
}

TEST_F(RunsFileTest, FileWithoutRunsIsRefused) {
    EXPECT_THAT(ErrorOf("Temp,Cat,Stir\n"), HasSubstr("there are no runs"));
    EXPECT_THAT(ErrorOf(""), HasSubstr("there are no runs"));
}

TEST_F(RunsFileTest, OpenQuotesAreNamedWithTheirLine) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,\"A,100\n"), "line 2: the quotes do not end.");
}

TEST_F(RunsFileTest, TextBehindQuotesIsNamed) {
    EXPECT_EQ(ErrorOf("Temp,Cat,Stir\n150,\"A\"x,100\n"),
              "line 2: text stands behind the closing quotes of \"A\".");
}

TEST_F(RunsFileTest, SharesHaveToAddUp) {
    study_ = ReadStudy(R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":1},
        {"name":"b","type":"Formulation","low":0,"high":1},
        {"name":"c","type":"Formulation","low":0,"high":1}]})",
                       "s.json");
    EXPECT_EQ(ErrorOf("a,b,c\n0.2,0.3,0.5\n0.2,0.3,0.6\n"),
              "line 3: the formulation factors add up to 1.1 instead of 1.");
}

TEST_F(RunsFileTest, FillerColumnIsPassedOver) {
    study_ = ReadStudy(R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":0.4},
        {"name":"Water","type":"Filler"}]})",
                       "s.json");
    const RunsFile file = Read("Water,a\n0.8,0.2\n");
    EXPECT_EQ(RowsOf(file.matrix), (Rows{{0.2F}}));
    EXPECT_THAT(file.notes, IsEmpty());
}

TEST_F(RunsFileTest, ValueWithoutAnImageIsNamed) {
    study_ = ReadStudy(R"({"factors":[
        {"name":"Flow","type":"Quantitative","low":1,"high":100,"transform":"log10"},
        {"name":"Temp","type":"Quantitative","low":150,"high":180}]})",
                       "s.json");
    EXPECT_EQ(ErrorOf("Flow,Temp\n1,150\n0,150\n"),
              "line 3, column \"Flow\": \"0\" has no value under the factor's transform.");
    EXPECT_EQ(RowsOf(Read("Flow,Temp\n0.5,0\n").matrix), (Rows{{0.5F, 0}}));
}

}  // namespace
