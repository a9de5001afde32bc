// Every study in examples/ builds, and the ones of known size have it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "host/DesignMaker.h"
#include "host/Proposals.h"
#include "host/StudyFile.h"
#include "host/Worksheet.h"

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

class Examples : public testing::TestWithParam<std::string> {};

TEST_P(Examples, NameTheirSource) {
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
    for (const WorksheetRun& run : runs) {
        for (std::size_t i = 0; i < run.values.size(); ++i) {
            const StudyFactor& factor = study.factors.All()[i];
            if (factor.type == CEType::Quantitative) {
                EXPECT_GE(run.values[i], factor.low)
                    << factor.name << ", run " << run.standardOrder;
                EXPECT_LE(run.values[i], factor.high)
                    << factor.name << ", run " << run.standardOrder;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(ExampleNames()), [](const auto& name) {
    std::string word = name.param;
    std::replace(word.begin(), word.end(), '-', '_');
    return word;
});

TEST(ExampleSizes, AreThoseOfThePublishedExperiments) {
    const std::map<std::string, int> published{{"01-filtration-rate", 16},
                                               {"02-pilot-plant", 16},
                                               {"03-reactor", 32},
                                               {"04-survival-times", 48},
                                               {"05-worsted-yarn", 27},
                                               {"06-battery-life", 36}};
    for (const auto& [name, runs] : published) {
        const Study study = ReadExample(name);
        EXPECT_EQ(MakeDesign(study, {}).design->GetDesignMatrix()->SizeRows(), runs) << name;
    }
}

}  // namespace
