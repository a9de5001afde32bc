#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <string>

#include "foundation/utl/QvFile.h"
#include "host/BuildCommand.h"
#include "host/CombinatorialResults.h"
#include "host/DesignMaker.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/JudgedDesign.h"
#include "host/Project.h"
#include "host/SelectCommand.h"
#include "host/StudyFile.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::HasSubstr;

constexpr const char* cStudy = R"({
  "name": "Mill",
  "factors": [
    {"name": "Screen", "type": "Multilevel", "settings": [1, 2, 4]},
    {"name": "Supplier", "type": "Qualitative", "levels": ["A", "B", "C", "D"]},
    {"name": "Speed", "type": "Quantitative", "low": 10, "high": 30},
    {"name": "Feed", "type": "Quantitative", "low": 1, "high": 5}
  ]
})";

Study ReadMill(const std::string& options = "") {
    std::string text = cStudy;
    if (!options.empty()) {
        text.insert(text.rfind('}'), ", \"options\": " + options);
    }
    return ReadStudy(text, "mill.json");
}

DesignRequest J2Request() {
    DesignRequest request;
    request.design = "J2";
    request.runs = 24;
    request.optimal.repetitions = 3;
    return request;
}

std::string ErrorText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

const J2Design& DesignOf(const BuiltDesign& built) {
    return dynamic_cast<const J2Design&>(*built.design);
}

TEST(Combinatorial, IsBuiltWithItsOptions) {
    const Study study = ReadMill();
    DesignRequest request = J2Request();
    request.levels = 3;
    request.optimal.runRange = 1;
    request.replicatedRuns = 2;
    const BuiltDesign built = MakeDesign(study, request);
    ASSERT_EQ(DesignOf(built).GetResults().size(), 9U);
    EXPECT_EQ(built.design->GetDesignMatrix()->SizeRows(), 26);
    std::set<float> settings;
    for (int row = 1; row <= 24; ++row) {
        settings.insert((*built.design->GetDesignMatrix())(row, 3));
    }
    EXPECT_THAT(settings, testing::ElementsAre(-1, 0, 1));
}

TEST(Combinatorial, SelectTakesTheNumberedResult) {
    const Study study = ReadMill();
    DesignRequest request = J2Request();
    for (const int number : {1, 2, 3}) {
        request.optimal.select = number;
        const BuiltDesign built = MakeDesign(study, request);
        EXPECT_EQ(DesignOf(built).GetSelectedIndex(), number - 1);
        EXPECT_EQ(*built.design->GetDesignMatrix(),
                  DesignOf(built).GetResults()[static_cast<std::size_t>(number - 1)].design);
    }
}

TEST(Combinatorial, SelectBeyondTheResultsTellsHowManyThereAre) {
    const Study study = ReadMill();
    DesignRequest request = J2Request();
    request.optimal.select = 4;
    EXPECT_EQ(ErrorText([&] { static_cast<void>(MakeDesign(study, request)); }),
              "--select: 4 is no result of the search; there are 1 to 3.");
}

TEST(Combinatorial, TableHasALineForEachResultWithItsFigures) {
    const Study study = ReadMill();
    const BuiltDesign built = MakeDesign(study, J2Request());
    const std::string text =
        FormatCombinatorialResults(DesignOf(built), study.factors, built.options);
    EXPECT_THAT(text, HasSubstr("Model: main effects; levels of continuous factors: 2\n"));
    EXPECT_THAT(text, HasSubstr("Repeated"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 6);
    EXPECT_EQ(std::ranges::count(text, '*'), 1);
}

TEST(Combinatorial, TableTellsJ2) {
    // One factor of 3 levels in 7 runs: 3 + 1 + 1 pairs coincide.
    const Study study = ReadStudy(
        R"({"factors": [{"name": "S", "type": "Qualitative", "levels": ["A", "B", "C"]}]})", "s");
    DesignRequest request = J2Request();
    request.runs = 7;
    request.optimal.repetitions = 1;
    const BuiltDesign built = MakeDesign(study, request);
    EXPECT_THAT(FormatCombinatorialResults(DesignOf(built), study.factors, built.options),
                testing::ContainsRegex(R"(\* +1 +7 +3 +5 )"));
}

TEST(Combinatorial, FactorsWithoutAColumnDoNotCoincide) {
    const Study study = ReadStudy(
        R"({"factors": [{"name": "S", "type": "Qualitative", "levels": ["A", "B", "C"]},
                        {"name": "X", "type": "Quantitative", "low": 0, "high": 1}]})",
        "s");
    DesignRequest request = J2Request();
    request.runs = 12;
    DesignOptions options = MakeDesign(study, request).options;
    auto& family = dynamic_cast<J2Options&>(*options.GetDesignSpecificOptions());
    family.SetModel({{}, {0}});
    family.SetRepetitions(1);
    options.SetRuns(7);
    const J2Design design(EDesign::J2, study.factors, options, nullptr);
    ASSERT_EQ((*design.GetDesignMatrix())(1, 2), -99.0F);
    // Those of S alone: 3 + 1 + 1 pairs.
    EXPECT_THAT(FormatCombinatorialResults(design, study.factors, options),
                testing::ContainsRegex(R"(\* +1 +7 +3 +5 )"));
}

TEST(Combinatorial, SquaresWithTwoLevelsAreExplained) {
    Study study = ReadMill();
    study.objective = EObjective::Optimization;
    DesignRequest request = J2Request();
    request.runs = 40;
    const BuiltDesign two = MakeDesign(study, request);
    EXPECT_THAT(FormatCombinatorialResults(DesignOf(two), study.factors, two.options),
                HasSubstr("Ask for --levels 3."));
    request.levels = 3;
    const BuiltDesign three = MakeDesign(study, request);
    EXPECT_THAT(FormatCombinatorialResults(DesignOf(three), study.factors, three.options),
                testing::Not(HasSubstr("Ask for")));
    EXPECT_NE(DesignOf(three).GetResults().front().LogDet, -99);
}

TEST(Combinatorial, ModelTermsMakeTheModelAndItsRuns) {
    const Study study = ReadMill();
    DesignRequest request = J2Request();
    request.runs.reset();
    request.levels = 3;
    request.optimal.modelTerms = "Speed^2, Screen*Speed";
    const BuiltDesign built = MakeDesign(study, request);
    // 1 + 1 + 3 + 1 + 1 main effects, 2 terms, 1 and 2 more.
    EXPECT_EQ(built.options.GetRuns(), 12U);
    EXPECT_THAT(FormatCombinatorialResults(DesignOf(built), study.factors, built.options),
                HasSubstr("Speed^2, Screen*Speed"));
}

TEST(Combinatorial, LevelsOutsideTheirRangeAreRefused) {
    const Study study = ReadMill();
    for (const long long levels : {-1LL, 0LL, 1LL, 256LL, 9'000'000'000LL}) {
        DesignRequest request = J2Request();
        request.levels = levels;
        EXPECT_EQ(ErrorText([&] { static_cast<void>(MakeDesign(study, request)); }),
                  "--levels: " + std::to_string(levels) + " must be a whole number from 2 to 255.");
    }
}

TEST(Combinatorial, LevelsAreForThisDesignOnly) {
    const Study study = ReadMill();
    DesignRequest request;
    request.design = "FFM";
    request.levels = 3;
    EXPECT_THAT(ErrorText([&] { static_cast<void>(MakeDesign(study, request)); }),
                HasSubstr("--levels: the design FFM"));
}

TEST(Combinatorial, WhatItCannotUseIsRefused) {
    const Study study = ReadMill();
    const auto refusal = [&](const auto& change) {
        DesignRequest request = J2Request();
        change(request);
        return ErrorText([&] { static_cast<void>(MakeDesign(study, request)); });
    };
    EXPECT_THAT(refusal([](DesignRequest& r) { r.optimal.inclusions = "x"; }),
                HasSubstr("--inclusions: the design J2 is not picked from candidates"));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.optimal.candidates = "x"; }),
                HasSubstr("--candidates: "));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.optimal.balanceOn = "Supplier"; }),
                HasSubstr("--balance-on: "));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.optimal.onlyBalanced = true; }),
                HasSubstr("--only-balanced: "));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.optimal.noPotentialTerms = true; }),
                HasSubstr("--no-potential-terms: "));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.replicates = 1; }),
                HasSubstr("J2 takes no replicates"));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.centerPoints = 1; }),
                HasSubstr("J2 takes no centre points"));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.blocks = 2; }), HasSubstr("allowed: 1."));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.runs = 256; }),
                HasSubstr("J2 cannot have 256 runs"));
    EXPECT_THAT(refusal([](DesignRequest& r) { r.runs = 3; }), HasSubstr("J2 cannot have 3 runs"));
}

TEST(Combinatorial, SettingsOfTheStudyAreHeldToTheirRange) {
    for (const char* member : {"\"runSpan\": 2000000", "\"runSpan\": -1", "\"repetitions\": 0"}) {
        const Study study = ReadMill(std::string("{\"designSpecificOptions\": {") + member + "}}");
        DesignRequest request;
        request.design = "J2";
        EXPECT_THAT(ErrorText([&] { static_cast<void>(MakeDesign(study, request)); }),
                    HasSubstr("mill.json: options.designSpecificOptions."));
    }
}

TEST(Combinatorial, StudiesItDoesNotFitAreToldWhy) {
    const Study study = ReadStudy(
        R"({"factors": [{"name": "A", "type": "Quantitative", "low": 0, "high": 1},
                        {"name": "B", "type": "Quantitative", "low": 0, "high": 1}]})",
        "two.json");
    DesignRequest request;
    request.design = "J2";
    EXPECT_THROW(static_cast<void>(MakeDesign(study, request)), NoValidDesign);
}

/// Asks to stop from the so-manieth look at the display on, as Ctrl-C does.
class InterruptingDisplay : public NCProgressDisplay {
  public:
    explicit InterruptingDisplay(int after) : left_(after) {}
    void Begin(const std::string&, const std::string&, bool) override {}
    void Show(double, const std::string&) override {
        if (--left_ == 0) {
            Interrupt::Set(true);
        }
    }
    void Hide() override {}
    void End() override {}
    [[nodiscard]] bool IsBreakPressed() const override { return Interrupt::IsRequested(); }

  private:
    int left_;
};

class Interrupted {
  public:
    explicit Interrupted(int after) {
        NCProgress::SetDisplay(std::make_shared<InterruptingDisplay>(after));
    }
    Interrupted(const Interrupted&) = delete;
    Interrupted& operator=(const Interrupted&) = delete;
    ~Interrupted() {
        NCProgress::SetDisplay(nullptr);
        Interrupt::Set(false);
    }
};

TEST(Combinatorial, CtrlCKeepsTheDesignsFoundSoFar) {
    const TemporaryFolder folder;
    BuildArguments arguments;
    arguments.study = folder.File("mill.json");
    QvFile::ReplaceAll(arguments.study, cStudy);
    arguments.request = J2Request();
    arguments.request.optimal.repetitions = 500;
    arguments.request.replicatedRuns = 0;
    std::ostringstream out;
    std::ostringstream err;
    const Interrupted interrupted(1000);
    RunBuild(arguments, out, err);
    EXPECT_THAT(out.str(), HasSubstr("StdOrder,RunOrder,Screen,Supplier,Speed,Feed"));
    EXPECT_EQ(std::ranges::count(out.str(), '\n'), 25);
    EXPECT_THAT(err.str(), HasSubstr("Stopped: the design is the best of "));
}

TEST(Combinatorial, CtrlCBeforeTheFirstDesignStops) {
    const Study study = ReadMill();
    const Interrupted interrupted(1);
    EXPECT_THROW(static_cast<void>(MakeDesign(study, J2Request())), CancelException);
}

TEST(Combinatorial, ProjectKeepsDesignAndOptions) {
    const TemporaryFolder folder;
    BuildArguments arguments;
    arguments.study = folder.File("mill.json");
    QvFile::ReplaceAll(arguments.study, cStudy);
    arguments.request = J2Request();
    arguments.request.levels = 4;
    arguments.project = folder.File("mill.doe");
    std::ostringstream out;
    std::ostringstream err;
    RunBuild(arguments, out, err);
    const Project project = LoadProject(arguments.project);
    EXPECT_EQ(project.matrix.SizeRows(), 27);
    const auto* family = dynamic_cast<const J2Options*>(project.options.GetDesignSpecificOptions());
    ASSERT_NE(family, nullptr);
    EXPECT_EQ(family->GetLevels(), 4);
    EXPECT_EQ(family->GetRepetitions(), 3);
}

TEST(Combinatorial, AProjectIsJudgedByTheTermsOfItsSearch) {
    const TemporaryFolder folder;
    BuildArguments arguments;
    arguments.study = folder.File("mill.json");
    QvFile::ReplaceAll(arguments.study, cStudy);
    arguments.request = J2Request();
    arguments.request.levels = 3;
    arguments.request.optimal.modelTerms = "Speed^2, Screen*Speed";
    arguments.project = folder.File("mill.doe");
    std::ostringstream out;
    std::ostringstream err;
    RunBuild(arguments, out, err);
    JudgeRequest asked;
    asked.subject = arguments.project;
    const JudgedDesign judged = MakeJudgedDesign(asked, err);
    EXPECT_THAT(judged.terms, testing::Contains(std::vector{2, 2}));
    EXPECT_THAT(judged.terms, testing::Contains(std::vector{0, 2}));
    // Constant, 4 main effects and the two.
    EXPECT_EQ(judged.terms.size(), 7U);
    // Named terms still win.
    asked.request.optimal.modelTerms = "Feed^2";
    EXPECT_THAT(MakeJudgedDesign(asked, err).terms, testing::Contains(std::vector{3, 3}));
}

TEST(Combinatorial, OtherResultsOfAProjectCannotBeTaken) {
    const TemporaryFolder folder;
    BuildArguments arguments;
    arguments.study = folder.File("mill.json");
    QvFile::ReplaceAll(arguments.study, cStudy);
    arguments.request = J2Request();
    arguments.project = folder.File("mill.doe");
    std::ostringstream out;
    std::ostringstream err;
    RunBuild(arguments, out, err);
    SelectArguments select;
    select.project = arguments.project;
    select.number = 2;
    EXPECT_THAT(ErrorText([&] { RunSelect(select, out, err); }),
                HasSubstr("the runs of J2's other results are not kept"));
}

}  // namespace
