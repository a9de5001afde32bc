#include "host/Project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/BuildCommand.h"
#include "host/ShowCommand.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadFile;
using HostTesting::WriteFile;
using testing::HasSubstr;

// A folder with a built project of three factors in two blocks.
class ProjectTest : public testing::Test {
  protected:
    ProjectTest() {
        WriteFile(study_, Quantitatives(3, R"("name":"Three","design":"FF2")"));
        BuildArguments arguments;
        arguments.study = study_;
        arguments.request.blocks = 2;
        arguments.request.centerPoints = 1;
        arguments.seed = 4294967295U;
        arguments.project = project_;
        std::ostringstream err;
        RunBuild(arguments, csv_, err);
    }

    [[nodiscard]] std::string LoadingError() const {
        try {
            static_cast<void>(LoadProject(project_));
        } catch (const Exception& exception) {
            return exception.what();
        }
        return {};
    }

    // Changes the saved file through the store, as another program could.
    template <class Change>
    void ChangeStore(const Change& change) const {
        ConfigurationStore store = ConfigurationStore::LoadFromFile(project_);
        change(*store.OpenRoot());
        store.SaveToFile(project_);
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string project_ = folder_.File("project.txt");
    std::ostringstream csv_;
};

TEST_F(ProjectTest, ComesBackWithStudyAndFactors) {
    const Project project = LoadProject(project_);
    EXPECT_EQ(project.study.name, "Three");
    EXPECT_EQ(project.study.file, study_);
    EXPECT_EQ(project.study.factors.GetDesignFactorCount(), 3U);
    EXPECT_EQ(project.study.factors.At(0).high, 20.0F);
}

TEST_F(ProjectTest, ComesBackWithBuilderAndOptions) {
    const Project project = LoadProject(project_);
    EXPECT_EQ(project.builder->GetShortString(), "FF2");
    EXPECT_EQ(project.options.GetRuns(), 8U);
    EXPECT_EQ(project.options.GetBlocks(), 2U);
    EXPECT_EQ(project.options.GetCenterPoints(), 1U);
    EXPECT_EQ(project.options.GetObjective(), EObjective::Screening);
    EXPECT_EQ(project.options.GetModel(), EModel::Interaction);
    EXPECT_EQ(project.options.GetCreatedFromDesign(), EDesign::FF2);
}

TEST_F(ProjectTest, ComesBackWithTheWorksheet) {
    const Project project = LoadProject(project_);
    EXPECT_EQ(project.seed, 4294967295U);
    EXPECT_EQ(ToCsv(MakeWorksheetTable(project.Runs(), project.study.factors, false)), csv_.str());
}

TEST_F(ProjectTest, ComesBackWithLevelNamesAndFiller) {
    WriteFile(study_, R"({"design":"FF2","factors":[
        {"name":"q","type":"Qualitative","levels":["rot, \"hell\"","grün"]},
        {"name":"a","type":"Formulation","low":0.1,"high":0.3},
        {"name":"Water","type":"Filler"}]})");
    BuildArguments arguments;
    arguments.study = study_;
    arguments.project = project_;
    std::ostringstream csv;
    std::ostringstream err;
    RunBuild(arguments, csv, err);
    const Project project = LoadProject(project_);
    EXPECT_EQ(ToCsv(MakeWorksheetTable(project.Runs(), project.study.factors, false)), csv.str());
}

TEST_F(ProjectTest, IsShownWithStudyOptionsAndWorksheet) {
    std::ostringstream out;
    RunShow({project_, false}, out);
    for (const char* part : {"Study       Three\n",
                             "A       Quantitative  10 to 20\n",
                             "Design           FF2 (Full Fac (2 levels))\n",
                             "Blocks           2\n",
                             "Seed             4294967295\n",
                             "StdOrder  RunOrder   A   B   C  Block\n"}) {
        EXPECT_THAT(out.str(), HasSubstr(part));
    }
}

TEST_F(ProjectTest, IsShownCodedOnRequest) {
    std::ostringstream out;
    RunShow({project_, true}, out);
    EXPECT_THAT(out.str(), HasSubstr("StdOrder  RunOrder   A   B   C  Block\n"));
    EXPECT_THAT(out.str(), HasSubstr("  -1  -1  -1  "));
}

TEST_F(ProjectTest, NamesAFileThatIsNoProject) {
    WriteFile(project_, "StdOrder,RunOrder\n");
    EXPECT_THAT(LoadingError(), HasSubstr(project_));
}

TEST_F(ProjectTest, IsRefusedTruncatedAnywhere) {
    const std::string whole = ReadFile(project_);
    for (std::size_t size = 0; size + 1 < whole.size(); size += 7) {
        WriteFile(project_, whole.substr(0, size));
        EXPECT_THAT(LoadingError(), HasSubstr(project_)) << "after " << size << " bytes";
    }
}

TEST_F(ProjectTest, NamesASectionThatIsMissing) {
    for (const char* section :
         {"Project", "Study", "DesignBuilder", "DesignOptions", "Design", "Worksheet"}) {
        const std::string whole = ReadFile(project_);
        ChangeStore([section](ConfigurationSection& root) { root.RemoveSection(section); });
        EXPECT_THAT(LoadingError(), HasSubstr(std::string("\"") + section + "\"")) << section;
        WriteFile(project_, whole);
    }
}

TEST_F(ProjectTest, RefusesAnotherVersion) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Project")->WriteInt("Version", 2);
    });
    EXPECT_THAT(LoadingError(), HasSubstr("version 2; this program reads version 1"));
}

TEST_F(ProjectTest, RefusesARunOrderThatIsNoPermutation) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Worksheet")
            ->WriteIntVector("RunOrder", {1, 2, 3, 4, 5, 6, 7, 8, 8});
    });
    EXPECT_THAT(LoadingError(), HasSubstr("every number from 1 to 9 once"));
}

TEST_F(ProjectTest, RefusesASeedThatIsNone) {
    for (const char* seed : {"", "-1", "4294967296", "99999999999999999999"}) {
        ChangeStore([seed](ConfigurationSection& root) {
            root.OpenOrCreateSection("Worksheet")->WriteKey("Seed", seed);
        });
        EXPECT_THAT(LoadingError(), HasSubstr("must be a whole number from 0 to 4294967295"))
            << seed;
    }
}

TEST_F(ProjectTest, RefusesAMatrixOfAnotherWidth) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Worksheet")
            ->WriteMatrix("DesignMatrix", NCDataMatrix<float>(9, 7, 1.0F));
    });
    std::ostringstream out;
    EXPECT_THROW(RunShow({project_, false}, out), Exception);
    EXPECT_EQ(out.str(), "");
}

TEST_F(ProjectTest, RefusesAStudyThatIsBroken) {
    ChangeStore([](ConfigurationSection& root) {
        root.OpenOrCreateSection("Study")->WriteKey("Text", R"({"factors":[]})");
    });
    EXPECT_THAT(LoadingError(), HasSubstr("study: factors: an array of 0"));
}

TEST_F(ProjectTest, StaysWholeWhenABuildFails) {
    const std::string before = ReadFile(project_);
    BuildArguments arguments;
    arguments.study = study_;
    arguments.request.runs = 7;
    arguments.project = project_;
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_THROW(RunBuild(arguments, out, err), Exception);
    EXPECT_EQ(ReadFile(project_), before);
}

}  // namespace
