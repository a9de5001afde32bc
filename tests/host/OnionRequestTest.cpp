// Designs in layers from the command line.

#include "host/OnionRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "foundation/util/ConfigurationStore.h"
#include "host/CandidateTable.h"
#include "host/Cli.h"
#include "host/DesignMaker.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::WriteFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* cOnion = R"("design":"OnionDOpt","model":"linear")";

/// 49 candidates of two factors from 10 to 20, with their number as name, a score that falls with
/// the first factor, and the ring of the grid as layer.
std::string Table() {
    std::string text = "Name,B,A,Ring,Fall\n";
    int number = 0;
    for (int i = -3; i <= 3; ++i) {
        for (int j = -3; j <= 3; ++j) {
            const int ring = std::max({std::abs(i), std::abs(j), 1});
            text += "N" + std::to_string(++number) + "," + std::to_string(15.0 + 1.5 * j) + "," +
                    std::to_string(15.0 + 1.5 * i) + "," + std::to_string(ring) + "," +
                    std::to_string(-i) + "\n";
        }
    }
    return text;
}

struct Answer {
    int code = 0;
    std::string out;
    std::string err;
};

class OnionCommand : public testing::Test {
  protected:
    OnionCommand() {
        // The library's own switch, for which there is no way back; other tests do without it.
        D_Optimal::SetValidating();
        WriteFile(study_, Quantitatives(2, cOnion));
        WriteFile(table_, Table());
    }

    Answer Build(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"build", study_, "--seed", "1"});
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunCommandLine(arguments, out, err);
        return {code, out.str(), err.str()};
    }
    /// The refusal of a request that must not go through.
    std::string Refused(const std::vector<std::string>& arguments) const {
        const Answer answer = Build(arguments);
        EXPECT_EQ(answer.code, 2) << answer.err;
        EXPECT_EQ(answer.out, "");
        return answer.err;
    }

    Study study() const { return ReadStudyFile(study_); }
    CandidateTable Read(const CandidateColumnNames& columns = {}) const {
        return ReadCandidateTable(table_, columns, study());
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string table_ = folder_.File("table.csv");
};

std::vector<int> RunsOf(const BuiltDesign& built) {
    std::vector<int> runs;
    for (const auto& layer : dynamic_cast<const OnionDesign&>(*built.design).GetResults()) {
        runs.push_back(static_cast<int>(layer->GetResults()
                                            .at(static_cast<std::size_t>(layer->GetSelectedIndex()))
                                            .rows.size()));
    }
    return runs;
}

// --- The table --------------------------------------------------------------------------------

TEST_F(OnionCommand, TableColumnsAreFoundByName) {
    const CandidateTable table = Read({"Ring", "Fall"});
    ASSERT_EQ(table.rows.SizeRows(), 49);
    // In the order of the study, not of the file.
    EXPECT_EQ(table.rows(2, 1), 10.5F);
    EXPECT_EQ(table.rows(2, 2), 12.0F);
    EXPECT_EQ(table.names.at(1), "N2");
    EXPECT_EQ(table.layers.at(1), 3);
    EXPECT_EQ(table.scores.at(1), 3);
    EXPECT_THAT(table.notes, IsEmpty());
}

TEST_F(OnionCommand, CandidatesThatBreakAConstraintAreLeftOutWithANote) {
    WriteFile(study_,
              Quantitatives(2,
                            std::string(cOnion) +
                                R"(,"constraints":[{"terms":[{"factor":"A","coefficient":1},
                                    {"factor":"B","coefficient":1}],"bound":30,"relation":"<="}])"));
    const CandidateTable table = Read({"Ring", ""});
    EXPECT_EQ(table.rows.SizeRows(), 28);  // 7 of the 49 lie on the bound
    EXPECT_EQ(table.names.size(), 28U);
    EXPECT_EQ(table.layers.size(), 28U);
    ASSERT_EQ(table.notes.size(), 1U);
    EXPECT_THAT(table.notes[0], HasSubstr("21 of 49 candidates break a constraint"));
    for (int row = 1; row <= table.rows.SizeRows(); ++row) {
        EXPECT_LE(table.rows(row, 1) + table.rows(row, 2), 30.0F);
    }
}

TEST_F(OnionCommand, ConstrainedRunsKeepTheConstraints) {
    WriteFile(study_,
              Quantitatives(2,
                            std::string(cOnion) +
                                R"(,"constraints":[{"terms":[{"factor":"A","coefficient":1},
                                    {"factor":"B","coefficient":1}],"bound":30,"relation":"<="}])"));
    DesignRequest request;
    request.optimal.candidates = table_;
    const Study asked = study();
    const BuiltDesign built = MakeDesign(asked, request);
    // 28 acceptable candidates beside the one for all layers: 28 / 6 - 1 layers.
    EXPECT_EQ(RunsOf(built).size(), 3U);
    const auto& runs = *built.design->GetDesignMatrix();
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        EXPECT_LE(runs(row, 1) + runs(row, 2), 30.0F) << "row " << row;
    }
}

TEST_F(OnionCommand, TooFewAcceptableCandidatesAreToldWithTheNumberThatIsNeeded) {
    WriteFile(study_,
              Quantitatives(2,
                            std::string(cOnion) +
                                R"(,"constraints":[{"terms":[{"factor":"A","coefficient":1}],
                                    "bound":13,"relation":"<="}])"));
    // 14 candidates; 2 factors need 6 for each of 3 layers of 3 terms.
    EXPECT_THAT(Refused({"--candidates", table_}),
                HasSubstr("14 candidates that keep the constraints are too few for layers of a "
                          "model with 3 terms; at least 18 are needed."));
}

// No number of candidates would do.
TEST_F(OnionCommand, CandidatesUnderConstraintsNeedAModelOfTheFamily) {
    const Study read = study();
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::OnionDOpt, "");
    DesignOptions options(
        *builder, read.factors, EObjective::SplitObjective, EModel::None, EModel::None, 12000);
    options.GetDesignSpecificOptions()->SetConstraints(
        NCDOE::Constraints({{{{0, 1.0}}, 13.0, true}}), read.factors);
    try {
        (void)ApplyOnionRequest({}, table_, read, *builder, options);
        ADD_FAILURE() << "no exception";
    } catch (const Exception& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("candidates under constraints are divided for a linear, interaction "
                              "or quadratic model; the model is "));
    }
}

TEST_F(OnionCommand, CandidatesOutsideTheRangesAreRefused) {
    WriteFile(table_, "A,B\n12,13\n14,21\n");
    EXPECT_THAT(Refused({"--candidates", table_}), HasSubstr("candidate 2: \"B\" is 21"));
}

TEST_F(OnionCommand, TablesWithWrongColumnsAreRefused) {
    EXPECT_THAT(Refused({"--candidates", table_, "--layer-column", "Shell"}),
                HasSubstr("--layer-column: " + table_ + " has no column \"Shell\""));
    EXPECT_THAT(Refused({"--candidates", table_, "--score-column", "Name"}),
                HasSubstr("line 2, column \"Name\": \"N1\" is no score"));
    EXPECT_THAT(Refused({"--candidates", table_, "--layer-column", "Fall"}),
                HasSubstr("\"0\" is no layer"));
    EXPECT_THAT(
        Refused({"--candidates", table_, "--layer-column", "Ring", "--score-column", "Fall"}),
        StartsWith("--score-column: --layer-column tells the layers already."));
    EXPECT_THAT(Refused({"--layer-column", "Ring"}), StartsWith("--layer-column: it is a column"));
    WriteFile(table_, "A,C\n12,13\n");
    EXPECT_THAT(Refused({"--candidates", table_}), HasSubstr("there is no column \"B\""));
    EXPECT_THAT(Refused({"--candidates", folder_.File("none.csv")}), HasSubstr("cannot be read"));
}

TEST_F(OnionCommand, CandidateSetFilesAreTaken) {
    CandidateSet set;
    set.SetCandidateSet(Read().rows, DOpt::NumData());
    const std::string path = folder_.File("set.cand");
    ASSERT_TRUE(set.WriteToFile(path, nullptr, nullptr, nullptr));
    const CandidateTable table = ReadCandidateTable(path, {}, study());
    EXPECT_EQ(table.rows, Read().rows);
    EXPECT_THAT(Refused({"--candidates", path, "--layer-column", "Ring"}),
                HasSubstr("is a candidate set file, whose columns have no names"));
}

// --- The layers -------------------------------------------------------------------------------

TEST_F(OnionCommand, DistanceIsInHalfRanges) {
    const Study asked = study();
    EXPECT_EQ(DistanceFromCentre(std::vector<float>{15, 15}, asked.factors), 0);
    EXPECT_EQ(DistanceFromCentre(std::vector<float>{10, 15}, asked.factors), 1);
    EXPECT_NEAR(
        DistanceFromCentre(std::vector<float>{20, 10}, asked.factors), std::sqrt(2.0), 1e-12);
}

TEST_F(OnionCommand, DistanceIsInTheScaleOfTheTransform) {
    const Study asked = ReadStudy(
        R"({"factors":[{"name":"A","type":"Quantitative","low":1,"high":100,"transform":"log10"}]})",
        "s.json");
    EXPECT_NEAR(DistanceFromCentre(std::vector<float>{10}, asked.factors), 0, 1e-6);
}

TEST_F(OnionCommand, WithoutOtherWordDistancesDivideInEqualShares) {
    const CandidateTable table = Read();
    for (const int layers : {2, 3, 5, 49}) {
        const CandidateSet set = DivideIntoLayers(table, layers, study().factors);
        ASSERT_EQ(static_cast<int>(set.GetNumbers().size()), layers);
        const auto [fewest, most] = std::ranges::minmax(set.GetNumbers());
        EXPECT_LE(most - fewest, 1);
        // The centre once more, behind the layers.
        ASSERT_EQ(set.SizeRows(), 50);
        EXPECT_EQ(set(50, 1), 15.0F);
        EXPECT_EQ(set(50, 2), 15.0F);
        EXPECT_EQ(set.GetLayer(50), 0);
        EXPECT_EQ(set.GetRowName(50), "N25");
        double before = 0;
        for (int row = 1; row <= 49; ++row) {
            const double distance = DistanceFromCentre(set.RowSpan(row), study().factors);
            const bool isFirst = row == 1 || set.GetLayer(row) != set.GetLayer(row - 1);
            if (isFirst && row > 1) {
                for (int inner = 1; inner < row; ++inner) {
                    before =
                        std::max(before, DistanceFromCentre(set.RowSpan(inner), study().factors));
                }
            }
            EXPECT_GE(distance, before - 1e-9) << "row " << row << " of " << layers << " layers";
        }
    }
}

TEST_F(OnionCommand, EveryCandidateIsInOneLayer) {
    const CandidateSet set = DivideIntoLayers(Read(), 3, study().factors);
    std::set<std::string> names;
    for (unsigned row = 1; row <= 49; ++row) {
        names.insert(set.GetRowName(row));
    }
    EXPECT_EQ(names.size(), 49U);
}

TEST_F(OnionCommand, AColumnTellsTheLayers) {
    const CandidateSet set = DivideIntoLayers(Read({"Ring", ""}), 3, study().factors);
    EXPECT_THAT(set.GetStartPoints(), ElementsAre(1, 10, 26));
    EXPECT_THAT(set.GetNumbers(), ElementsAre(9, 16, 24));
}

TEST_F(OnionCommand, AColumnTellsTheScoresToDivideBy) {
    const CandidateSet set = DivideIntoLayers(Read({"", "Fall"}), 7, study().factors);
    for (int row = 1; row <= 49; ++row) {
        // The first factor falls by a step of the grid from layer to layer.
        EXPECT_EQ(set(row, 1), 19.5F - 1.5F * static_cast<float>(set.GetLayer(row) - 1));
    }
}

// A table in the order of a grid: its first rows lie on a line, from where no search starts.
TEST_F(OnionCommand, EachLayerBeginsWithRunsThatSpanTheSpace) {
    for (const int layers : {2, 3, 4, 8}) {
        const CandidateSet set = DivideIntoLayers(Read(), layers, study().factors);
        for (const int start : set.GetStartPoints()) {
            const double area = static_cast<double>(
                (set(start + 1, 1) - set(start, 1)) * (set(start + 2, 2) - set(start, 2)) -
                (set(start + 2, 1) - set(start, 1)) * (set(start + 1, 2) - set(start, 2)));
            EXPECT_GT(std::fabs(area), 0.5) << "row " << start << " of " << layers << " layers";
        }
    }
}

TEST_F(OnionCommand, GridsOfThreeFactorsAreSearchedInEverySharing) {
    std::string text = "A,B,C\n";
    for (int row = 0; row < 125; ++row) {
        text += std::to_string(10 + 2 * (row / 25)) + "," + std::to_string(10 + 2 * (row / 5 % 5)) +
                "," + std::to_string(10 + 2 * (row % 5)) + "\n";
    }
    WriteFile(table_, text);
    WriteFile(study_, Quantitatives(3, cOnion));
    for (const std::string layers : {"2", "3", "4", "6"}) {
        const Answer answer = Build({"--candidates", table_, "--layers", layers});
        EXPECT_EQ(answer.code, 0) << layers << " layers: " << answer.err;
    }
}

// --- The command ------------------------------------------------------------------------------

TEST_F(OnionCommand, BuildPrintsWorksheetAndLayers) {
    const Answer answer =
        Build({"--candidates", table_, "--layer-column", "Ring", "--center-points", "0"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.out, StartsWith("StdOrder,RunOrder,A,B\n"));
    EXPECT_EQ(std::ranges::count(answer.out, '\n'), 1 + 4 + 4 + 6);
    EXPECT_THAT(answer.err, HasSubstr("Layer  Candidates  Model   Runs  Condition"));
    EXPECT_THAT(answer.err, HasSubstr("    1           9  Linear     4  "));
    EXPECT_THAT(answer.err, HasSubstr("    2          16  Linear     4  "));
    EXPECT_THAT(answer.err, HasSubstr("    3          24  Linear     6  "));
    EXPECT_THAT(answer.err, HasSubstr("Onion D-Optimal: 14 runs, seed 1"));
}

// The corners of each ring are its D-optimal runs.
TEST_F(OnionCommand, PickedCandidatesAreToldByName) {
    const Answer answer = Build({"--candidates",
                                 table_,
                                 "--layer-column",
                                 "Ring",
                                 "--layer-runs",
                                 "4,4,4",
                                 "--center-points",
                                 "0"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("Layer 1: N17, N33, N19, N31\n"));
    EXPECT_THAT(answer.err, HasSubstr("Layer 2: N9, N41, N13, N37\n"));
    EXPECT_THAT(answer.err, HasSubstr("Layer 3: N1, N49, N7, N43\n"));
}

TEST_F(OnionCommand, CentrePointsCopyTheCandidateNearestTheCentre) {
    const Answer answer = Build({"--candidates", table_, "--center-points", "2"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    std::size_t found = 0;
    for (std::size_t at = answer.out.find(",15,15\n"); at != std::string::npos;
         at = answer.out.find(",15,15\n", at + 1)) {
        ++found;
    }
    EXPECT_GE(found, 2U);
    EXPECT_THAT(answer.err, HasSubstr("16 runs"));
}

TEST_F(OnionCommand, LayersHaveTheRunsThatWereAskedFor) {
    for (const auto& runs : {std::vector{4, 4, 4}, std::vector{5, 9, 7}, std::vector{12, 4, 8}}) {
        DesignRequest request;
        request.optimal.candidates = table_;
        request.onion.layerRuns = std::to_string(runs[0]) + ", " + std::to_string(runs[1]) + "," +
                                  std::to_string(runs[2]);
        request.centerPoints = 0;
        const Study asked = study();
        const BuiltDesign built = MakeDesign(asked, request);
        EXPECT_EQ(RunsOf(built), runs);
        EXPECT_EQ(built.design->GetDesignMatrix()->SizeRows(), runs[0] + runs[1] + runs[2]);
        EXPECT_EQ(built.options.GetRuns(), static_cast<unsigned>(runs[0] + runs[1] + runs[2]));
    }
}

TEST_F(OnionCommand, TheRunsOfTheWholeDesignAreSpread) {
    for (const int runs : {12, 17, 30, 54}) {
        DesignRequest request;
        request.optimal.candidates = table_;
        request.runs = runs;
        request.centerPoints = 1;
        const Study asked = study();
        const BuiltDesign built = MakeDesign(asked, request);
        EXPECT_EQ(built.design->GetDesignMatrix()->SizeRows(), runs + 1);
    }
}

TEST_F(OnionCommand, ARunLimitOfTheStudyIsKept) {
    WriteFile(study_, Quantitatives(2, std::string(cOnion) + R"(,"options":{"maxRuns":15})"));
    DesignRequest request;
    request.optimal.candidates = table_;
    const Study asked = study();
    EXPECT_LE(MakeDesign(asked, request).design->GetDesignMatrix()->SizeRows(), 15);
}

TEST_F(OnionCommand, WithoutCandidatesEachLayerGeneratesItsOwn) {
    const Answer answer = Build({"--layers", "4"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("--candidates gives the layers candidates of their own"));
    EXPECT_THAT(answer.err, HasSubstr("    4           5  Linear     6  "));
    EXPECT_THAT(answer.err, Not(HasSubstr("Layer 1:")));
}

TEST_F(OnionCommand, TheLastLayerHasTheModel) {
    WriteFile(study_, Quantitatives(2, R"("design":"OnionDOpt","objective":"optimization")"));
    const Answer answer = Build({"--candidates", table_, "--layers", "2"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(answer.err, HasSubstr("    1          25  Linear        4  "));
    EXPECT_THAT(answer.err, HasSubstr("    2          24  Quadratic     9  "));
}

TEST_F(OnionCommand, BadCountsAreRefusedWithWhatIsAllowed) {
    EXPECT_THAT(Refused({"--layers", "1"}), HasSubstr("must be a whole number from 2 to 100"));
    EXPECT_THAT(Refused({"--layers", "101"}), HasSubstr("must be a whole number from 2 to 100"));
    EXPECT_THAT(Refused({"--candidates", table_, "--layers", "50"}), HasSubstr("from 2 to 49"));
    EXPECT_THAT(Refused({"--candidates", table_, "--layer-column", "Ring", "--layers", "4"}),
                HasSubstr("--layers: 4 layers are asked for, but \"Ring\" tells 3."));
    EXPECT_THAT(Refused({"--layer-runs", "4,4"}), HasSubstr("\"4,4\" are 2 counts for 3 layers"));
    EXPECT_THAT(Refused({"--layer-runs", "4,3,4"}),
                HasSubstr("\"3\" must be a whole number from 4 to 12000 for layer 2"));
    EXPECT_THAT(Refused({"--layer-runs", "4,4,1e9"}), HasSubstr("\"1e9\" must be"));
    EXPECT_THAT(Refused({"--layer-runs", "4,4,4", "--runs", "13"}),
                HasSubstr("\"4,4,4\" are 12 runs, but --runs asks for 13."));
    EXPECT_THAT(Refused({"--runs", "11"}), HasSubstr("allowed: 12 to 54"));
}

TEST_F(OnionCommand, RunsThatTheLayersCannotHaveAreRefusedWithTheNearest) {
    WriteFile(study_, Quantitatives(3, R"("design":"OnionDOpt","objective":"optimization")"));
    // 19 + 19 of the linear layers and 25 of the last; the run counts of the family reach to 75.
    EXPECT_THAT(Refused({"--runs", "64"}),
                HasSubstr("--runs: 3 layers cannot have 64 runs; the nearest are 63."));
}

TEST_F(OnionCommand, LayersWithoutCandidatesAreRefused) {
    WriteFile(table_, "A,B,L\n10,10,1\n20,20,3\n");
    EXPECT_THAT(Refused({"--candidates", table_, "--layer-column", "L"}),
                StartsWith("--layer-column: no candidate is in layer 2 of 3."));
    WriteFile(table_, "A,B,L\n10,10,1\n20,20,1\n");
    EXPECT_THAT(Refused({"--candidates", table_, "--layer-column", "L"}),
                StartsWith("--layer-column: \"L\" has 1 layers; allowed are 2 to 100."));
}

TEST_F(OnionCommand, OtherDesignsRefuseLayers) {
    for (const std::string option :
         {"--layers", "--layer-runs", "--layer-column", "--score-column"}) {
        EXPECT_THAT(Refused({"--design", "FF2", option, "3"}),
                    StartsWith(option + ": the design FF2 has no layers; only OnionDOpt has."));
    }
}

TEST_F(OnionCommand, OptionsOfTheFamilyInTheStudyAreRefused) {
    WriteFile(study_,
              Quantitatives(
                  2, std::string(cOnion) + R"(,"options":{"designSpecificOptions":{"layers":3}})"));
    EXPECT_THAT(Refused({}), HasSubstr("the design \"OnionDOpt\" has no options of its own"));
}

TEST_F(OnionCommand, StudiesWithoutAnOnionDesignSayWhy) {
    WriteFile(study_,
              R"({"design":"OnionDOpt","factors":[
                  {"name":"A","type":"Quantitative","low":10,"high":20},
                  {"name":"B","type":"Qualitative","levels":["x","y"]}]})");
    const Answer answer = Build({"--candidates", table_});
    EXPECT_EQ(answer.code, 1);
    EXPECT_THAT(answer.err, HasSubstr("the design OnionDOpt is not valid for this study"));
}

TEST_F(OnionCommand, ASavedProjectHoldsTheLayers) {
    const std::string path = folder_.File("onion.ncdoe");
    ASSERT_EQ(Build({"--candidates", table_, "--layers", "2", "--project", path}).code, 0);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLine({"show", path}, out, err), 0) << err.str();
    EXPECT_THAT(out.str(), HasSubstr("OnionDOpt (Onion D-Optimal)"));
    const ConfigurationStore store = ConfigurationStore::LoadFromFile(path);
    OnionOptions options;
    EXPECT_TRUE(options.Load(
        store.OpenRoot()->OpenSection("DesignOptions")->OpenSection("SpecificOptions").get()));
    EXPECT_EQ(options.GetLayerCount(), 2);
    EXPECT_EQ(options.GetCandidateSet().SizeRows(), 50);
}

TEST_F(OnionCommand, TheStackIsJudgedOverAllCandidatesOfTheTable) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(
        RunCommandLine({"evaluate", study_, "--candidates", table_, "--layers", "2"}, out, err), 0)
        << err.str();
    // 4 and 6 runs with 3 centre points; 49 candidates and the centre once more.
    EXPECT_THAT(out.str(), testing::ContainsRegex("Runs +13\n"));
    EXPECT_THAT(out.str(), testing::ContainsRegex("Candidates +50\n"));
}

TEST_F(OnionCommand, ProjectsAreNotDividedAnew) {
    const std::string path = folder_.File("onion.ncdoe");
    ASSERT_EQ(Build({"--candidates", table_, "--project", path}).code, 0);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLine({"evaluate", path, "--layers", "2"}, out, err), 2);
    EXPECT_THAT(err.str(), StartsWith("--layers: a project holds its runs"));
}

// --- The example ------------------------------------------------------------------------------

TEST(OnionExample, TakesBuildingBlocksFromEachThirdOfTheSpace) {
    D_Optimal::SetValidating();
    const std::string base = std::string(QORVA_SOURCE_DIR) + "/examples/23-building-blocks";
    const Study study = ReadStudyFile(base + ".json");
    DesignRequest request;
    request.optimal.candidates = base + ".csv";
    const BuiltDesign built = MakeDesign(study, request);
    EXPECT_THAT(RunsOf(built), ElementsAre(5, 5, 7));
    // 17 runs and 3 copies of the block nearest the centre.
    EXPECT_EQ(built.design->GetDesignMatrix()->SizeRows(), 20);
    const auto& set = built.options.GetDesignSpecificOptions()->GetCandidateSet();
    EXPECT_THAT(set.GetNumbers(), ElementsAre(30, 30, 30));
}

}  // namespace
