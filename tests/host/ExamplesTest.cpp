// Every study in examples/ builds, and the ones of known size have it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "host/CandidateFile.h"
#include "host/CandidatesCommand.h"
#include "host/DesignMaker.h"
#include "host/PlateDesign.h"
#include "host/Proposals.h"
#include "host/StabilityCommand.h"
#include "host/StudyFile.h"
#include "host/SubsetsCommand.h"
#include "host/Worksheet.h"
#include "tests/support/TemporaryFolder.h"

namespace {

std::vector<std::string> ExampleNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(QORVA_SOURCE_DIR "/examples")) {
        if (entry.path().extension() == ".json") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

Study ReadExample(const std::string& name) {
    return ReadStudyFile(std::string(QORVA_SOURCE_DIR "/examples/") + name + ".json");
}

// Studies of irregular regions, for which no classical family has a design, with the number of
// extreme vertices of one level combination.
const std::map<std::string, int> cConstrained{{"19-railroad-flare", 8}, {"20-coating", 25}};

// Studies of design sets, which are no worksheets of runs.
const std::set<std::string> cDesignSets{"25-matrixing", "26-generalized-subset"};

// Studies for plates, with what the command is told about them and the wells that it fills.
PlateArguments TwoPlates() {
    PlateArguments arguments;
    arguments.size = 384;
    arguments.plates = 2;
    arguments.horizontal = "Buffer,pH,Salt";
    arguments.vertical = "Substrate,Enzyme,Magnesium";
    return arguments;
}

const std::map<std::string, std::pair<PlateArguments, int>> cPlates{
    {"27-immunoassay", {PlateArguments(), 96}}, {"28-enzyme-screening", {TwoPlates(), 768}}};

std::vector<std::string> ClassicalNames() {
    std::vector<std::string> names = ExampleNames();
    std::erase_if(names, [](const std::string& name) {
        return cConstrained.contains(name) || cDesignSets.contains(name) || cPlates.contains(name);
    });
    return names;
}

class AnyExample : public testing::TestWithParam<std::string> {};
class Examples : public testing::TestWithParam<std::string> {};

const auto cTestName = [](const testing::TestParamInfo<std::string>& info) {
    std::string word = info.param;
    std::replace(word.begin(), word.end(), '-', '_');
    return word;
};

TEST_P(AnyExample, NamesItsSource) {
    const Study study = ReadExample(GetParam());
    EXPECT_FALSE(study.citation.empty());
    EXPECT_FALSE(study.description.empty());
}

TEST_P(Examples, HaveProposals) {
    const Study study = ReadExample(GetParam());
    EXPECT_FALSE(Propose(ConditionsOf(study)).empty());
}

TEST_P(Examples, BuildWithinTheirRanges) {
    const Study study = ReadExample(GetParam());
    const BuiltDesign built = MakeDesign(study, {});
    const auto runs = DecodeRuns(*built.design->GetDesignMatrix(),
                                 study.factors,
                                 {built.design->IsDesignMatrixCoded(),
                                  built.design->IsMixtureOnlyDesign(),
                                  static_cast<int>(built.options.GetBlocks())});
    ASSERT_FALSE(runs.empty());
    // Star points may lie beyond the range.
    const float reach = std::max(1.0F, built.options.GetStarDistance());
    for (const WorksheetRun& run : runs) {
        for (std::size_t i = 0; i < run.values.size(); ++i) {
            const StudyFactor& factor = study.factors.All()[i];
            if (factor.type == CEType::Quantitative) {
                const float centre = (factor.low + factor.high) / 2;
                const float half = reach * (factor.high - factor.low) / 2;
                // Rounding of the decoded value.
                EXPECT_LE(std::abs(run.values[i] - centre), half * (1 + 1e-5F))
                    << factor.name << ", run " << run.standardOrder;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, AnyExample, testing::ValuesIn(ExampleNames()), cTestName);
INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(ClassicalNames()), cTestName);

TEST(ConstrainedExamples, HaveTheirVerticesAndOnlyCandidatesInside) {
    for (const auto& [name, vertices] : cConstrained) {
        const TemporaryFolder folder;
        const Study study = ReadExample(name);
        CandidatesArguments arguments;
        arguments.study = study.file;
        arguments.output = folder.File("set.cand");
        std::ostringstream out;
        std::ostringstream err;
        RunCandidates(arguments, out, err);
        const CandidateFile file = ReadCandidateFile(arguments.output, study);
        EXPECT_EQ(file.misfits, 0) << name << ": " << file.firstMisfit;
        const int levels = name == "20-coating" ? 2 : 1;
        EXPECT_EQ(file.set.GetNumData().ExtVert, levels * vertices) << name;
    }
}

TEST(DesignSetExamples, MatrixingTestsEverythingThreeTimes) {
    StabilityArguments arguments;
    arguments.study = ReadExample("25-matrixing").file;
    arguments.times = "0,6,12,24,36";
    arguments.search.csv = true;
    std::ostringstream out;
    std::ostringstream err;
    RunStability(arguments, out, err);
    EXPECT_THAT(err.str(), testing::HasSubstr("81 runs of 27 combinations at 5 points in time"));
    std::map<std::string, int> tests;
    std::istringstream lines(out.str());
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        // Strength, container and batch stand behind set, time, name and combination.
        std::size_t comma = 0;
        for (int i = 0; i < 4; ++i) {
            comma = line.find(',', comma) + 1;
        }
        ++tests[line.substr(comma)];
    }
    EXPECT_EQ(tests.size(), 27U);
    for (const auto& [combination, count] : tests) {
        EXPECT_EQ(count, 3) << combination;
    }
}

TEST(DesignSetExamples, SubsetsOfSeventyTwoRunsHaveEighteen) {
    SubsetsArguments arguments;
    arguments.study = ReadExample("26-generalized-subset").file;
    std::ostringstream out;
    std::ostringstream err;
    RunSubsets(arguments, out, err);
    EXPECT_THAT(err.str(), testing::HasSubstr("72 runs in 4 subsets"));
    for (const char* subset : {"D:1 ", "D:2 ", "D:3 ", "D:4 "}) {
        EXPECT_THAT(out.str(), testing::HasSubstr(std::string(subset) + "      18  yes"));
    }
}

TEST(PlateExamples, FillTheirPlates) {
    for (const auto& [name, asked] : cPlates) {
        const Study study = ReadExample(name);
        EXPECT_EQ(study.design, "RED-MUP") << name;
        const PlateDesign made = MakePlateDesign(study, asked.first);
        EXPECT_EQ(made.design->GetDesignMatrix()->SizeRows(), asked.second) << name;
    }
}

TEST(ExampleSizes, AreThoseOfThePublishedExperiments) {
    const std::map<std::string, int> published{
        {"01-filtration-rate", 16},  {"02-pilot-plant", 16},
        {"03-reactor", 32},          {"04-survival-times", 48},
        {"05-worsted-yarn", 27},     {"06-battery-life", 36},
        {"07-bicycle", 8},           {"08-reactor-half-fraction", 16},
        {"09-cast-fatigue", 12},     {"10-rubber", 14},
        {"11-surface-defects", 9},   {"12-definitive-screening", 13},
        {"13-process-yield", 13},    {"14-tire-tread", 20},
        {"15-box-behnken", 27},      {"16-doehlert", 13},
        {"17-rechtschaffner", 21},   {"18-yarn-elongation", 10},
        {"21-adhesive", 12},         {"22-baking", 15},
        {"24-nearly-orthogonal", 12}};
    for (const auto& [name, runs] : published) {
        const Study study = ReadExample(name);
        EXPECT_EQ(MakeDesign(study, {}).design->GetDesignMatrix()->SizeRows(), runs) << name;
    }
}

// The published design generators of the bicycle and star distances of the central composites.
TEST(ExampleContents, AreThoseOfThePublishedExperiments) {
    const Study bicycle = ReadExample("07-bicycle");
    const auto fraction = MakeDesign(bicycle, {}).design->GetDesignMatrix();
    const auto sign = [&](int row, int column) { return (*fraction)(row, column) == 65 ? -1 : 1; };
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(sign(row, 4), sign(row, 1) * sign(row, 2)) << "run " << row;
        EXPECT_EQ(sign(row, 7), sign(row, 1) * sign(row, 2) * sign(row, 3)) << "run " << row;
    }
    const Study yield = ReadExample("13-process-yield");
    EXPECT_NEAR(MakeDesign(yield, {}).options.GetStarDistance(), std::sqrt(2.0), 5e-4);
    const Study tread = ReadExample("14-tire-tread");
    EXPECT_FLOAT_EQ(MakeDesign(tread, {}).design->GetDesignMatrix()->RowSpan(9)[0], -1.633F);
}

TEST(OptimalExamples, AdhesiveKeepsItsConstraints) {
    const Study study = ReadExample("21-adhesive");
    const auto runs = MakeDesign(study, {}).design->GetDesignMatrix();
    for (int run = 1; run <= runs->SizeRows(); ++run) {
        const float sum = (*runs)(run, 1) + (*runs)(run, 2);
        EXPECT_GE(sum, -1.5F - 1e-5F) << "run " << run;
        EXPECT_LE(sum, 1 + 1e-5F) << "run " << run;
    }
}

TEST(OptimalExamples, BakingIsSearchedForItsTerms) {
    const Study study = ReadExample("22-baking");
    const BuiltDesign built = MakeDesign(study, {});
    const auto& family =
        dynamic_cast<const D_OptimalOptions&>(*built.options.GetDesignSpecificOptions());
    EXPECT_EQ(family.GetModel(EDesign::DOpt, study.factors, built.options),
              (D_OptimalOptions::Model{{}, {0}, {1}, {2}, {0, 1}, {0, 0}, {1, 1}, {0, 2}}));
}

}  // namespace
