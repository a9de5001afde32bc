// Every study in examples/ builds, and the ones of known size have it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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
                                               {"06-battery-life", 36},
                                               {"07-bicycle", 8},
                                               {"08-reactor-half-fraction", 16},
                                               {"09-cast-fatigue", 12},
                                               {"10-rubber", 14},
                                               {"11-surface-defects", 9},
                                               {"12-definitive-screening", 13},
                                               {"13-process-yield", 13},
                                               {"14-tire-tread", 20},
                                               {"15-box-behnken", 27},
                                               {"16-doehlert", 13},
                                               {"17-rechtschaffner", 21},
                                               {"18-yarn-elongation", 10}};
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

}  // namespace
