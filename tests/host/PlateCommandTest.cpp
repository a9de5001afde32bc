#include "host/PlateCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include "host/Cli.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* cMixed = R"({"factors":[
    {"name":"Dose","type":"Quantitative","low":1,"high":3,"unit":"mg"},
    {"name":"Buffer","type":"Qualitative","levels":["TRIS","HEPES, 2x","MOPS"]},
    {"name":"Salt","type":"Multilevel","settings":[0,100],"unit":"mmol/l"},
    {"name":"Time","type":"Quantitative","low":10,"high":30},
    {"name":"Temperature","type":"Quantitative","low":20,"high":40}]})";

struct Answer {
    int code = 0;
    std::string out;
    std::string err;
};

class PlateCommand : public testing::Test {
  protected:
    Answer Ask(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"plate", study_});
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunCommandLine(arguments, out, err);
        return {code, out.str(), err.str()};
    }
    // Lines of the run list, split at commas that stand in no quotes.
    std::vector<std::vector<std::string>> RunList() const {
        std::vector<std::vector<std::string>> lines;
        std::istringstream stream(ReadFile(csv_));
        for (std::string line; std::getline(stream, line);) {
            lines.push_back({""});
            bool quoted = false;
            for (const char letter : line) {
                if (letter == '"') {
                    quoted = !quoted;
                } else if (letter == ',' && !quoted) {
                    lines.back().push_back("");
                } else {
                    lines.back().back() += letter;
                }
            }
        }
        return lines;
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string csv_ = folder_.File("runs.csv");
};

TEST_F(PlateCommand, WritesEveryWellOfThePlate) {
    WriteFile(study_, Quantitatives(4));
    for (const auto& [size, last] :
         std::map<std::string, std::string>{{"96", "H12"}, {"384", "P24"}, {"1536", "AF48"}}) {
        const Answer answer = Ask({"--size", size, "-o", csv_});
        ASSERT_EQ(answer.code, 0) << answer.err;
        const auto lines = RunList();
        ASSERT_THAT(lines, SizeIs(std::stoul(size) + 1));
        EXPECT_THAT(lines[0], ElementsAre("Plate", "Well", "Name", "A", "B", "C", "D"));
        EXPECT_EQ(lines[1][1], "A1");
        EXPECT_EQ(lines[2][1], "B1");
        EXPECT_EQ(lines.back()[1], last);
        std::set<std::string> wells;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i][0], "1");
            wells.insert(lines[i][1]);
            for (std::size_t factor = 3; factor < 7; ++factor) {
                EXPECT_THAT((std::set<std::string>{"10", "15", "20"}),
                            testing::Contains(lines[i][factor]));
            }
        }
        EXPECT_EQ(wells.size(), std::stoul(size));
        EXPECT_THAT(answer.err, HasSubstr(size + " runs on 1 plate of " + size + " wells"));
    }
}

TEST_F(PlateCommand, SmallPlateIsTheDefault) {
    WriteFile(study_, Quantitatives(4));
    EXPECT_THAT(Ask({}).err, HasSubstr("96 runs on 1 plate of 96 wells"));
}

TEST_F(PlateCommand, TellsTheDesignsOfBothSides) {
    WriteFile(study_, Quantitatives(5));
    const Answer answer = Ask({});
    EXPECT_THAT(answer.err,
                HasSubstr("columns: FF2 of C, D and E, 8 runs and 4 centre points, interaction "
                          "model\n"));
    EXPECT_THAT(answer.err,
                HasSubstr("rows: FF2 of A and B, 4 runs and 4 centre points, interaction model\n"));
}

// Factors of the columns are constant down a column, those of the rows along a row.
TEST_F(PlateCommand, GroupsRunAlongTheirSides) {
    WriteFile(study_, cMixed);
    const Answer answer =
        Ask({"--horizontal", "Dose,Buffer", "--vertical", " Salt , Time,Temperature", "-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    const auto lines = RunList();
    ASSERT_THAT(lines, SizeIs(97));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const auto& column = lines[1 + (i - 1) / 8 * 8];
        const auto& row = lines[1 + (i - 1) % 8];
        EXPECT_EQ(lines[i][3], column[3]);
        EXPECT_EQ(lines[i][4], column[4]);
        EXPECT_EQ(lines[i][5], row[5]);
        EXPECT_EQ(lines[i][6], row[6]);
        EXPECT_EQ(lines[i][7], row[7]);
    }
    std::set<std::string> buffers;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        buffers.insert(lines[i][4]);
    }
    EXPECT_EQ(buffers, (std::set<std::string>{"TRIS", "HEPES, 2x", "MOPS"}));
}

TEST_F(PlateCommand, OneSideNamedLeavesTheOthersToTheOther) {
    WriteFile(study_, Quantitatives(4));
    EXPECT_THAT(Ask({"--horizontal", "A"}).err, HasSubstr("of B, C and D"));
    EXPECT_THAT(Ask({"--vertical", "D"}).err, HasSubstr("of A, B and C"));
}

TEST_F(PlateCommand, GridShowsTheWells) {
    WriteFile(study_, cMixed);
    const Answer answer =
        Ask({"--horizontal", "Buffer,Dose", "--vertical", "Salt,Time,Temperature", "-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    const auto lines = RunList();
    for (const std::string title :
         {"Dose [mg]\n", "Buffer\n", "Salt [mmol/l]\n", "Time\n", "Temperature\n"}) {
        EXPECT_THAT(answer.out, HasSubstr(title));
    }
    // The line of row C in the grid of the last factor against column by column of the list.
    const std::string grid = answer.out.substr(answer.out.find("Temperature\n"));
    std::istringstream row(grid.substr(grid.find("\nC ") + 1));
    std::string cell;
    row >> cell;
    EXPECT_EQ(cell, "C");
    for (std::size_t column = 0; column < 12; ++column) {
        row >> cell;
        EXPECT_EQ(cell, lines[1 + column * 8 + 2][7]) << column;
    }
}

TEST_F(PlateCommand, PlateFactorsAreConstantOnAPlate) {
    WriteFile(study_, cMixed);
    const Answer answer =
        Ask({"--horizontal", "Buffer,Dose", "--vertical", "Time", "--plates", "4", "-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    const auto lines = RunList();
    ASSERT_THAT(lines, SizeIs(4 * 96 + 1));
    std::map<std::string, std::set<std::pair<std::string, std::string>>> settings;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        settings[lines[i][0]].insert({lines[i][5], lines[i][7]});
    }
    EXPECT_THAT(settings["1"], ElementsAre(std::pair{"0", "20"}));
    EXPECT_THAT(settings["2"], ElementsAre(std::pair{"100", "20"}));
    EXPECT_THAT(settings["3"], ElementsAre(std::pair{"0", "40"}));
    EXPECT_THAT(settings["4"], ElementsAre(std::pair{"100", "40"}));
    EXPECT_EQ(lines[1][2], "P1_A_1");
    EXPECT_EQ(lines.back()[2], "P4_H_12");
    EXPECT_THAT(answer.out, HasSubstr("Buffer, every plate\n"));
    EXPECT_THAT(answer.out, HasSubstr("Plate  Salt  Temperature\n"));
    EXPECT_THAT(answer.out, Not(HasSubstr("Salt [mmol/l]")));
}

TEST_F(PlateCommand, PlateLetterIsAColumnOnDemand) {
    WriteFile(study_, Quantitatives(4));
    const Answer answer = Ask({"--plates", "2", "--plate-factors", "yes", "-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    const auto lines = RunList();
    ASSERT_THAT(lines, SizeIs(193));
    EXPECT_EQ(lines[0].back(), "PlateLetter");
    EXPECT_EQ(lines[96].back(), "A");
    EXPECT_EQ(lines[97].back(), "B");
    EXPECT_THAT(answer.out, HasSubstr("Plate  PlateLetter\n"));
    EXPECT_EQ(Ask({"--plates", "2", "--plate-factors", "no", "-o", csv_}).code, 0);
    EXPECT_EQ(RunList()[0].back(), "D");
}

TEST_F(PlateCommand, PlatesBeyondZHaveNumbers) {
    WriteFile(study_, Quantitatives(4));
    EXPECT_EQ(Ask({"--plates", "28", "--plate-factors", "yes", "-o", csv_}).code, 0);
    const auto lines = RunList();
    EXPECT_EQ(lines[26 * 96].back(), "Z");
    EXPECT_EQ(lines.back().back(), "28");
}

TEST_F(PlateCommand, NamedDesignsFillTheSides) {
    WriteFile(study_, Quantitatives(8));
    const Answer answer = Ask({"--size",
                               "384",
                               "--horizontal",
                               "A,B,C,D,E",
                               "--horizontal-design",
                               "Plackett Burman",
                               "--vertical-design",
                               "ff2"});
    ASSERT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("columns: PB of A, B, C, D and E, 8 runs and 16 centre"));
    EXPECT_THAT(answer.err, HasSubstr("rows: FF2 of F, G and H, 8 runs and 8 centre points"));
}

TEST_F(PlateCommand, QuadraticDesignsCanBeNamed) {
    WriteFile(study_, Quantitatives(4));
    const Answer answer = Ask({"--horizontal-design", "CCF"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err,
                HasSubstr("columns: CCF of C and D, 8 runs and 4 centre points, quadratic model"));
}

// A qualitative factor of so many levels in the rows, and A in the columns.
std::string WithALoneQualitative(int levels) {
    std::string names;
    for (int level = 1; level <= levels; ++level) {
        names += (level > 1 ? ",\"L" : "\"L") + std::to_string(level) + '"';
    }
    return R"({"factors":[{"name":"Buffer","type":"Qualitative","levels":[)" + names +
           R"(]},{"name":"A","type":"Quantitative","low":0,"high":1}]})";
}

// The lines of the error output are counted against the wells of the first column.
TEST_F(PlateCommand, RepeatedLevelsAreToldWithWhatFillsTheSide) {
    const std::map<int, std::pair<std::string, std::vector<int>>> cases{
        {2, {"Levels Quad. of Buffer, 8 runs (4 of each level), linear model\n", {4, 4}}},
        {3,
         {"Levels Duplicate of Buffer, 8 runs (2 of each level and one more of the first 2), "
          "linear model\n",
          {3, 3, 2}}},
        {4,
         {"Levels Duplicate of Buffer, 8 runs (2 of each level), linear model\n", {2, 2, 2, 2}}}};
    for (const auto& [levels, expected] : cases) {
        WriteFile(study_, WithALoneQualitative(levels));
        const Answer answer = Ask({"-o", csv_});
        ASSERT_EQ(answer.code, 0) << answer.err;
        EXPECT_THAT(answer.err, HasSubstr("rows: " + expected.first));
        EXPECT_THAT(answer.err, Not(HasSubstr("has no centre")));
        const auto lines = RunList();
        std::map<std::string, int> counts;
        for (std::size_t well = 1; well <= 8; ++well) {
            ++counts[lines[well][3]];
        }
        for (std::size_t level = 0; level < expected.second.size(); ++level) {
            EXPECT_EQ(counts["L" + std::to_string(level + 1)], expected.second[level]) << level;
        }
    }
}

TEST_F(PlateCommand, NamedRepeatedLevelsAreToldAlike) {
    WriteFile(study_, WithALoneQualitative(3));
    EXPECT_THAT(Ask({"--vertical-design", "Levels Duplicate"}).err,
                HasSubstr("8 runs (2 of each level and one more of the first 2), linear model\n"));
}

// 5 levels go once into 8 rows.
TEST_F(PlateCommand, CentrePointsOfALoneQualitativeFactorAreItsFirstLevel) {
    WriteFile(study_, WithALoneQualitative(5));
    const Answer answer = Ask({"-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err,
                HasSubstr("rows: Levels of Buffer, 5 runs and 3 centre points, linear model\n"
                          "rows: Buffer has no centre; all centre points are its first level, "
                          "\"L1\".\n"));
    const auto lines = RunList();
    EXPECT_EQ(
        std::count_if(
            lines.begin() + 1, lines.begin() + 9, [](const auto& line) { return line[3] == "L1"; }),
        4);
    WriteFile(study_, cMixed);
    EXPECT_THAT(Ask({}).err, Not(HasSubstr("has no centre")));
}

// 3 formulation factors in the rows, by a mixture design: every well's blend is whole and within
// the limits, whose corners are reached, on a simplex that stands upright and on one upside down.
TEST_F(PlateCommand, BlendsAddUpInEveryWell) {
    for (const auto& [low, high] :
         std::map<std::string, std::string>{{"0.2", "0.6"}, {"0", "0.5"}}) {
        const std::string limits = R"("type":"Formulation","low":)" + low + R"(,"high":)" + high;
        WriteFile(study_,
                  R"({"factors":[{"name":"Oil",)" + limits +
                      R"(},{"name":"pH","type":"Quantitative","low":4,"high":8},{"name":"Wax",)" +
                      limits + R"(},{"name":"Water",)" + limits + "}]}");
        const Answer answer = Ask({"-o", csv_});
        ASSERT_EQ(answer.code, 0) << answer.err;
        const auto lines = RunList();
        ASSERT_THAT(lines, SizeIs(97));
        std::set<std::string> oils;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            double whole = 0;
            for (const std::size_t column : {3U, 5U, 6U}) {
                const double share = std::stod(lines[i][column]);
                whole += share;
                EXPECT_GE(share, std::stod(low) - 1e-6);
                EXPECT_LE(share, std::stod(high) + 1e-6);
            }
            EXPECT_NEAR(whole, 1.0, 1e-5);
            oils.insert(lines[i][3]);
        }
        EXPECT_EQ(oils.count(low), 1U);
        EXPECT_EQ(oils.count(high), 1U);
    }
}

TEST_F(PlateCommand, FillerTakesWhatIsLeftInEveryWell) {
    WriteFile(study_,
              R"({"factors":[
                  {"name":"Salt","type":"Formulation","low":0,"high":0.2},
                  {"name":"Water","type":"Filler"},
                  {"name":"Sugar","type":"Formulation","low":0.1,"high":0.3},
                  {"name":"pH","type":"Quantitative","low":4,"high":8}]})");
    const Answer answer = Ask({"-o", csv_});
    ASSERT_EQ(answer.code, 0) << answer.err;
    const auto lines = RunList();
    EXPECT_EQ(lines[0][4], "Water");
    for (std::size_t i = 1; i < lines.size(); ++i) {
        EXPECT_NEAR(
            std::stod(lines[i][3]) + std::stod(lines[i][4]) + std::stod(lines[i][5]), 1.0, 1e-5);
    }
}

// In programs of their own: the switch is the process's.
TEST_F(PlateCommand, ValidatingRepeatsThePositions) {
    WriteFile(study_, Quantitatives(6));
    std::set<std::string> lists;
    for (int i = 0; i < 2; ++i) {
        const std::string command = std::string(NCDOE_PROGRAM) + " plate " + study_ +
                                    " --size 1536 --validating -o " + csv_ + " >" +
                                    folder_.File("out") + " 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0);
        lists.insert(ReadFile(csv_));
    }
    EXPECT_EQ(lists.size(), 1U);
    EXPECT_THAT(*lists.begin(), HasSubstr("AF48"));
}

TEST_F(PlateCommand, PositionsAreRandomOtherwise) {
    WriteFile(study_, Quantitatives(6));
    EXPECT_NE(Ask({"--size", "1536"}).out, Ask({"--size", "1536"}).out);
}

TEST_F(PlateCommand, TellsWhatItDoesNotUse) {
    WriteFile(study_, Quantitatives(4, R"("model":"linear")"));
    EXPECT_THAT(Ask({}).err, HasSubstr("model and options of the study are not used"));
    WriteFile(study_, Quantitatives(4));
    EXPECT_THAT(Ask({}).err, Not(HasSubstr("not used")));
}

// --- What is wrong ----------------------------------------------------------------------------

TEST_F(PlateCommand, NamesWhatIsWrong) {
    WriteFile(study_, Quantitatives(6));
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
        {{"--size", "100"}, "--size: there is no plate of 100 wells; allowed are 96, 384 and 1536"},
        {{"--size", "-96"}, "--size: there is no plate of -96 wells"},
        {{"--plates", "0"}, "--plates: 0 must be a whole number from 1 to 10416"},
        {{"--plates", "652", "--size", "1536"}, "from 1 to 651"},
        {{"--horizontal", "X"}, "--horizontal: \"X\" is no factor of the study; its factors are"},
        {{"--horizontal", ""}, "--horizontal: \"\" is no factor"},
        {{"--vertical", "A,,B"}, "--vertical: \"\" is no factor"},
        {{"--vertical", "A,B,A"}, "--vertical: the factor \"A\" is named twice"},
        {{"--horizontal", "A,B", "--vertical", "B,C"},
         "--vertical: the factor \"B\" stands in --horizontal, too"},
        {{"--horizontal", "A,B", "--vertical", "C,D"},
         "--plates: \"E\" and \"F\" would have no value on a single plate; ask for 4 plates"},
        {{"--horizontal", "A,B", "--vertical", "C,D", "--plates", "2"},
         "--plates: 2 plates cannot hold all combinations of \"E\" and \"F\"; wanted are 4"},
        {{"--plate-factors", "perhaps"}, "--plate-factors: \"perhaps\" must be yes or no"},
        {{"--plate-factors", "yes"}, "--plate-factors: a single plate has no letter"},
        {{"--horizontal-design", "Nonsense"}, "--horizontal-design: \"Nonsense\" is no design"},
        {{"-o", study_}, "is the study itself"},
        {{"--size", "many"}, "--size"}};
    for (const auto& [arguments, text] : wrong) {
        const Answer answer = Ask(arguments);
        EXPECT_EQ(answer.code, 2) << text;
        EXPECT_THAT(answer.err, HasSubstr(text));
        EXPECT_THAT(answer.out, IsEmpty());
    }
    EXPECT_THAT(ReadFile(study_), StartsWith("{\"factors\""));
}

TEST_F(PlateCommand, PlateFactorsOfThreeLevelsAreRefused) {
    WriteFile(study_, cMixed);
    const Answer answer = Ask({"--horizontal",
                               "Dose,Salt",
                               "--vertical",
                               "Time,Temperature",
                               "--plates",
                               "2",
                               "-o",
                               csv_});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("Plate factors should be quantitative or have 2 settings."));
    EXPECT_THAT(ReadFile(csv_), IsEmpty());
}

TEST_F(PlateCommand, FormulationFactorsOnBothSidesAreRefused) {
    std::string blend = R"({"factors":[)";
    for (const std::string name : {"a", "b", "c", "d", "e", "f"}) {
        blend += R"({"name":")" + name + R"(","type":"Formulation","low":0,"high":1},)";
    }
    WriteFile(study_, blend + R"({"name":"x","type":"Quantitative","low":0,"high":1}]})");
    const Answer whole = Ask({"--horizontal", "a,b,c", "--vertical", "d,e,f", "--plates", "2"});
    EXPECT_EQ(whole.code, 2);
    EXPECT_THAT(whole.err,
                HasSubstr(study_ + ": All formulation factors should be in the same block."));
    // Already half a blend beside a process factor has no design.
    const Answer mixed = Ask({"--horizontal", "a,x", "--vertical", "b,c,d,e,f"});
    EXPECT_EQ(mixed.code, 1);
    EXPECT_THAT(mixed.err,
                HasSubstr("no design fills 12 columns of a plate with \"a\" and \"x\"; try other "
                          "groups (--horizontal, --vertical) or another --size."));
}

TEST_F(PlateCommand, SidesWithoutADesignAreNoValidDesign) {
    WriteFile(study_, Quantitatives(24));
    const Answer answer = Ask({"--horizontal", "A"});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.err, HasSubstr("no design fills 8 rows of a plate with"));
    EXPECT_THAT(answer.err, HasSubstr("try other groups"));
}

TEST_F(PlateCommand, DesignThatDoesNotFillItsSideIsNoValidDesign) {
    WriteFile(study_, Quantitatives(4));
    const Answer answer = Ask({"--vertical-design", "L9"});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.err,
                HasSubstr("--vertical-design: L9 cannot fill 8 rows with \"A\" and \"B\"; allowed: "
                          "FF2, "));
    EXPECT_EQ(Ask({"--vertical-design", "DOpt"}).code, 1);
    EXPECT_EQ(Ask({"--vertical-design", "RED-MUP"}).code, 1);
}

// Its runs are candidates in real units.
TEST_F(PlateCommand, DesignInLayersIsNotOfferedForASide) {
    WriteFile(study_, Quantitatives(4));
    const Answer answer = Ask({"--size", "384", "--vertical-design", "OnionDOpt"});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.err,
                HasSubstr("--vertical-design: OnionDOpt cannot fill 16 rows with \"A\" and \"B\"; "
                          "allowed: FF2, "));
    EXPECT_EQ(answer.err.rfind("OnionDOpt"), answer.err.find("OnionDOpt")) << answer.err;
}

TEST_F(PlateCommand, NamesOfItsOwnColumnsAreRefused) {
    for (const std::string name : {"Plate", "Well", "Name", "PlateLetter"}) {
        for (
            const std::string rest :
            {R"("type":"Quantitative","low":0,"high":1},{"name":"B",)",
             R"("type":"Filler"},{"name":"B","type":"Formulation","low":0,"high":0.2},{"name":"C",)"}) {
            WriteFile(
                study_,
                R"({"factors":[{"name":"A","type":"Quantitative","low":0,"high":1},{"name":")" +
                    name + "\"," + rest + R"("type":"Quantitative","low":0,"high":1}]})");
            const Answer answer = Ask({"--plates", "2", "--plate-factors", "yes", "-o", csv_});
            EXPECT_EQ(answer.code, 2) << name;
            EXPECT_THAT(answer.err,
                        HasSubstr(study_ + ": the factor \"" + name +
                                  "\" has the name of another column in the list of wells"));
            EXPECT_THAT(answer.out, IsEmpty());
            EXPECT_THAT(ReadFile(csv_), IsEmpty());
        }
    }
}

TEST_F(PlateCommand, PlateLetterIsAFreeNameWhereThereIsNoSuchColumn) {
    WriteFile(study_,
              R"({"factors":[{"name":"PlateLetter","type":"Quantitative","low":0,"high":1},
                             {"name":"plate","type":"Quantitative","low":0,"high":1}]})");
    ASSERT_EQ(Ask({"-o", csv_}).code, 0);
    EXPECT_THAT(RunList()[0], ElementsAre("Plate", "Well", "Name", "PlateLetter", "plate"));
}

TEST_F(PlateCommand, EachSideNeedsAFactor) {
    WriteFile(study_, Quantitatives(1));
    EXPECT_EQ(Ask({}).code, 1);
    EXPECT_THAT(Ask({}).err, HasSubstr("no factor is left for the rows of the plate"));
    WriteFile(study_, Quantitatives(3));
    EXPECT_THAT(Ask({"--vertical", "A,B,C"}).err,
                HasSubstr("no factor is left for the columns of the plate"));
    WriteFile(study_,
              R"({"factors":[{"name":"a","type":"Formulation","low":0,"high":1},
                             {"name":"b","type":"Formulation","low":0,"high":1}]})");
    EXPECT_EQ(Ask({}).code, 1);
}

TEST_F(PlateCommand, ConstraintsAreNotKept) {
    WriteFile(study_,
              Quantitatives(4,
                            R"("constraints":[{"terms":[{"factor":"A","coefficient":1}],)"
                            R"("bound":15,"relation":"<="}])"));
    const Answer answer = Ask({});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.err, HasSubstr("keep to no constraints"));
}

TEST_F(PlateCommand, OtherCommandsTellTheCommandToUse) {
    WriteFile(study_, Quantitatives(4, R"("design":"RED-MUP")"));
    for (const std::string command : {"build", "aliases"}) {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(RunCommandLine({command, study_}, out, err), 2);
        EXPECT_THAT(err.str(), HasSubstr("is made by the command plate"));
    }
}

}  // namespace
