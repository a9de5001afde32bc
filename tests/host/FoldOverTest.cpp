#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/BuildCommand.h"
#include "host/DesignMaker.h"
#include "host/ShowCommand.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::WriteFile;
using testing::HasSubstr;
using testing::Not;

DesignRequest Folded(const std::string& design) {
    DesignRequest request;
    request.design = design;
    request.foldOver = true;
    return request;
}

std::string Refusal(const std::string& text, const DesignRequest& request) {
    const Study study = ReadStudy(text, "s.json");
    try {
        static_cast<void>(MakeDesign(study, request));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

class FoldOver : public testing::TestWithParam<const char*> {};

TEST_P(FoldOver, AppendsTheMirrorImageBehindTheCentrePoints) {
    const Study study = ReadStudy(Quantitatives(7), "s.json");
    const BuiltDesign built = MakeDesign(study, Folded(GetParam()));
    const auto matrix = built.design->GetDesignMatrix();
    const int runs = static_cast<int>(built.options.GetRuns());
    ASSERT_EQ(matrix->SizeRows(), 2 * runs + 3);
    for (int row = 1; row <= runs; ++row) {
        for (int column = 1; column <= 7; ++column) {
            EXPECT_EQ((*matrix)(runs + 3 + row, column), -(*matrix)(row, column))
                << "row " << row << ", column " << column;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Families, FoldOver, testing::Values("PB", "PB_SS"));

TEST(FoldOverRefusal, NamesTheDesign) {
    EXPECT_EQ(Refusal(Quantitatives(3), Folded("FF2")),
              "--fold-over: the design FF2 cannot be folded over; PB and PB_SS can.");
}

TEST(FoldOverRefusal, NamesTheLevelFactor) {
    EXPECT_EQ(Refusal(R"({"factors":[{"name":"t","type":"Quantitative","low":0,"high":1},
                                     {"name":"Oven","type":"Qualitative","levels":["x","y"]}]})",
                      Folded("PB")),
              "--fold-over: the factor \"Oven\" has levels, whose order cannot be reversed; only "
              "designs of continuous factors can be folded over.");
}

TEST(FoldOverRefusal, MeetsBlocks) {
    DesignRequest request = Folded("PB");
    request.blocks = 2;
    EXPECT_EQ(Refusal(Quantitatives(6), request),
              "--fold-over: a design in blocks cannot be folded over.");
}

TEST(FoldOverRefusal, MeetsReplicatesAndReplicatedRuns) {
    const std::string expected =
        "--fold-over: a design with replicates or replicated runs cannot be folded over.";
    DesignRequest request = Folded("PB");
    request.replicates = 1;
    EXPECT_EQ(Refusal(Quantitatives(6), request), expected);
    request.replicates = 0;
    request.replicatedRuns = 1;
    EXPECT_EQ(Refusal(Quantitatives(6), request), expected);
}

TEST(FoldOverRefusal, KeepsTheRunLimit) {
    EXPECT_EQ(
        Refusal(Quantitatives(7, R"("options":{"maxRuns":18,"centerPoints":3})"), Folded("PB")),
        "--fold-over: 19 runs with the mirror image and the centre points exceed the run limit "
        "of 18.");
    EXPECT_EQ(
        Refusal(Quantitatives(7, R"("options":{"maxRuns":19,"centerPoints":3})"), Folded("PB")),
        "");
}

TEST(FoldedProject, ShowsAllRunsAndSaysSo) {
    const TemporaryFolder folder;
    WriteFile(folder.File("s.json"), Quantitatives(7));
    std::ostringstream out;
    std::ostringstream err;
    BuildArguments arguments;
    arguments.study = folder.File("s.json");
    arguments.request = Folded("PB");
    arguments.project = folder.File("p.txt");
    RunBuild(arguments, out, err);
    EXPECT_THAT(err.str(), HasSubstr("Plackett Burman: 19 runs"));
    std::ostringstream shown;
    RunShow({folder.File("p.txt"), false}, shown);
    EXPECT_THAT(shown.str(), HasSubstr("Folded over      yes"));
    EXPECT_THAT(shown.str(), HasSubstr("\n      19  "));
}

TEST(FoldedProject, IsNotSaidOfOthers) {
    const TemporaryFolder folder;
    WriteFile(folder.File("s.json"),
              Quantitatives(5, R"("design":"FFR_V","options":{"generators":"E=-ABCD"})"));
    std::ostringstream out;
    std::ostringstream err;
    BuildArguments arguments;
    arguments.study = folder.File("s.json");
    arguments.project = folder.File("p.txt");
    RunBuild(arguments, out, err);
    std::ostringstream shown;
    RunShow({folder.File("p.txt"), false}, shown);
    EXPECT_THAT(shown.str(), Not(HasSubstr("Folded over")));
    EXPECT_THAT(shown.str(), HasSubstr("Generators       E=-ABCD\n"));
}

}  // namespace
