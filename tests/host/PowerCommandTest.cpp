#include "host/PowerCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "host/TermPower.h"
#include "tests/host/CommandTesting.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::WriteFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PowerCommand : public ReactorStudy {
  protected:
    PowerCommand() { D_Optimal::SetValidating(); }

    [[nodiscard]] TermPower Judge(const std::string& model,
                                  const std::string& worksheet = "") const {
        JudgeRequest asked;
        asked.subject = study_;
        asked.worksheet = worksheet;
        asked.request.model = model;
        std::ostringstream notes;
        return TermPower(MakeJudgedDesign(asked, notes));
    }
    void WriteCube(const std::string& factor = "") const {
        const std::string more = R"("design":"FF2","options":{"centerPoints":0})";
        WriteFile(study_,
                  factor.empty() ? Quantitatives(3, more)
                                 : R"({"factors":[)" + factor + "]," + more + "}");
    }
    // The chances that a printed line of a term ends with.
    static std::string LineOf(const Answer& answer, const std::string& term) {
        for (const std::string& line : LinesOf(answer.out)) {
            if (line.starts_with(term + " ")) {
                return line;
            }
        }
        return "no such line";
    }
};

// A 2^3 design finds an effect of two standard deviations with a chance of 0.57 (5 percent, two
// sided, four residual degrees of freedom: t = 2.776, non-centrality 2.83).
TEST_F(PowerCommand, ChanceOfACubeIsThatOfItsTTest) {
    WriteCube();
    const TermPower power = Judge("linear");
    EXPECT_EQ(power.GetResidual(), 4);
    for (std::size_t term = 0; term < 3; ++term) {
        EXPECT_NEAR(power.Chance(term, 2, 0.05), 0.572, 5e-4);
    }
}

TEST_F(PowerCommand, PrintsAllTermsOverTheEffects) {
    WriteCube();
    const Answer answer = AskStudy({"power", "--model", "linear", "--effects", "2,20"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    for (const char* term : {"A", "B", "C"}) {
        EXPECT_THAT(LineOf(answer, term), HasSubstr("low to high    0.572     1.000"))
            << answer.out;
    }
}

TEST_F(PowerCommand, SigmaTellsTheEffectsInUnitsOfTheResponse) {
    WriteCube();
    const Answer answer =
        AskStudy({"power", "--model", "linear", "--effects", "2", "--sigma", "1.5"});
    EXPECT_THAT(answer.out, HasSubstr("2 sigma = 3"));
    EXPECT_THAT(LineOf(answer, "A"), HasSubstr("0.572"));
}

TEST_F(PowerCommand, DetectableEffectHasTheWantedChance) {
    WriteCube();
    const TermPower power = Judge("linear");
    const double effect = power.Detectable(0, 0.8, 0.05);
    EXPECT_NEAR(power.Chance(0, effect, 0.05), 0.8, 1e-6);
    EXPECT_GT(effect, 2);
}

TEST_F(PowerCommand, PrintsTheDetectableEffectAlone) {
    WriteCube();
    const Answer answer =
        AskStudy({"power", "--model", "linear", "--power", "0.572", "--sigma", "10"});
    EXPECT_THAT(LineOf(answer, "A"), HasSubstr("low to high  ")) << answer.out;
    EXPECT_THAT(LineOf(answer, "A"), HasSubstr(" = 20")) << answer.out;
    EXPECT_THAT(answer.out, testing::Not(HasSubstr("1 sigma")));
}

TEST_F(PowerCommand, SmallerLevelOfSignificanceLowersTheChance) {
    WriteCube();
    const TermPower power = Judge("linear");
    EXPECT_LT(power.Chance(0, 2, 0.01), power.Chance(0, 2, 0.05));
}

TEST_F(PowerCommand, TransformedFactorHasTheChanceOfAnyOther) {
    WriteCube(R"({"name":"A","type":"Quantitative","low":1,"high":100,"transform":"log10"},
                 {"name":"B","type":"Quantitative","low":1,"high":2},
                 {"name":"C","type":"Quantitative","low":1,"high":2})");
    const TermPower power = Judge("linear");
    EXPECT_NEAR(power.Chance(0, 2, 0.05), power.Chance(1, 2, 0.05), 1e-5);
}

TEST_F(PowerCommand, LevelsOfAFactorAreTestedTogether) {
    const TermPower power = Judge("linear");
    ASSERT_EQ(power.GetTerms().size(), 3U);
    EXPECT_EQ(power.GetTerms()[2].degrees, 2);
    EXPECT_EQ(power.GetTerms()[2].meaning, TermPower::Meaning::Level);
}

TEST_F(PowerCommand, BlocksAreTestedByAllTheirLevels) {
    WriteFile(study_, Quantitatives(4, R"("objective":"optimization","design":"BB")"));
    JudgeRequest asked;
    asked.subject = study_;
    asked.request.blocks = 3;
    std::ostringstream notes;
    const TermPower power(MakeJudgedDesign(asked, notes));
    const auto& terms = power.GetTerms();
    const auto block = std::ranges::find(terms, "block", &TermPower::Term::name);
    ASSERT_NE(block, terms.end());
    EXPECT_EQ(block->degrees, 2);
}

TEST_F(PowerCommand, TermsThatTheRunsCannotTellAreLeftOut) {
    WriteFile(study_, Quantitatives(3));
    WriteFile(csv_,
              "A,B,C\n10,10,20\n20,10,10\n10,20,10\n20,20,20\n10,10,20\n20,10,10\n10,20,10\n"
              "20,20,20\n");
    const TermPower power = Judge("interaction", csv_);
    EXPECT_THAT(power.GetLeftOut(), ElementsAre("A*B", "A*C", "B*C"));
    EXPECT_EQ(power.GetResidual(), 4);
    EXPECT_NEAR(power.Chance(0, 2, 0.05), 0.572, 5e-4);
}

TEST_F(PowerCommand, ComponentsOfAMixtureNeedNoConstant) {
    WriteFile(study_, R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":1},
        {"name":"b","type":"Formulation","low":0,"high":1},
        {"name":"c","type":"Formulation","low":0,"high":1}],
        "objective":"optimization","model":"quadratic","design":"SimM"})");
    const TermPower power = Judge("");
    EXPECT_THAT(power.GetLeftOut(), ElementsAre("a^2", "b^2", "c^2"));
    ASSERT_EQ(power.GetTerms().size(), 6U);
    EXPECT_EQ(power.GetTerms()[0].meaning, TermPower::Meaning::Component);
    EXPECT_EQ(power.GetTerms()[5].meaning, TermPower::Meaning::Blend);
    EXPECT_GT(power.Chance(5, 5, 0.05), 0.5);
}

TEST_F(PowerCommand, ProcessFactorsBesideAMixtureHaveAPower) {
    WriteFile(study_, R"({"factors":[
        {"name":"a","type":"Formulation","low":0,"high":1},
        {"name":"b","type":"Formulation","low":0,"high":1},
        {"name":"c","type":"Formulation","low":0,"high":1},
        {"name":"Heat","type":"Quantitative","low":0,"high":1}],"design":"DOpt"})");
    JudgeRequest asked;
    asked.subject = study_;
    asked.request.optimal.repetitions = 1;
    asked.request.optimal.runRange = 0;
    std::ostringstream notes;
    const TermPower power(MakeJudgedDesign(asked, notes));
    const auto& terms = power.GetTerms();
    const auto heat = std::ranges::find(terms, "Heat", &TermPower::Term::name);
    ASSERT_NE(heat, terms.end());
    EXPECT_GT(power.Chance(static_cast<std::size_t>(heat - terms.begin()), 3, 0.05), 0.5);
}

TEST_F(PowerCommand, InteractionsWithLevelsHaveNoPower) {
    const Answer answer = AskStudy({"power", "--design", "FFM", "--model-terms", "Temp*Cat"});
    EXPECT_THAT(LineOf(answer, "Temp*Cat"), testing::EndsWith("-"));
    EXPECT_THAT(answer.out, HasSubstr("no power is told of interactions with levels"));
}

TEST_F(PowerCommand, SaturatedModelHasNoPower) {
    WriteCube();
    const Answer answer = AskStudy({"power", "--model-terms", "A*B, A*C, B*C, A*B*C"});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err,
                HasSubstr("8 runs leave no degree of freedom beside the 8 columns of the model"));
}

TEST_F(PowerCommand, LevelThatOccursInNoRunIsTold) {
    WriteFile(csv_,
              "Temp,Flow,Cat\n150,1,A\n180,1,B\n150,100,A\n180,100,B\n165,10,A\n165,10,B\n"
              "150,1,B\n180,100,A\n");
    const Answer answer = AskStudy({"power", "--worksheet", csv_});
    EXPECT_EQ(answer.code, 2);
    EXPECT_THAT(answer.err, HasSubstr("\"Cat\" has 3 levels, of which only 2 occur in the runs"));
}

TEST_F(PowerCommand, FewRunsHaveNoPower) {
    WriteFile(study_, Quantitatives(1));
    WriteFile(csv_, "A\n10\n20\n10\n");
    EXPECT_THAT(AskStudy({"power", "--worksheet", csv_}).err,
                HasSubstr("3 runs are too few to tell a power; there must be 4"));
}

TEST_F(PowerCommand, WrongNumbersAreRefused) {
    const std::vector<std::pair<std::string, std::string>> wrong{
        {"--sigma=0", "--sigma: 0 must be a number above 0"},
        {"--sigma=-1", "--sigma: -1 must be"},
        {"--sigma=nan", "--sigma: nan must be"},
        {"--alpha=0", "--alpha: 0 must be between 0 and 1"},
        {"--alpha=1", "--alpha: 1 must be"},
        {"--power=1", "--power: 1 must be above"},
        {"--power=0.04", "--power: 0.04 must be above the level of significance, 0.05"},
        {"--effects=1,big", "--effects: \"big\" is no number"},
        {"--effects=1,,2", "--effects: \"\" is no number"},
        {"--effects=inf", "--effects: \"inf\" is no number"},
        {"--effects=0", "--effects: 0 must be above 0"},
        {"--effects=1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1", "more than 20 effects"}};
    for (const auto& [argument, text] : wrong) {
        const Answer answer = AskStudy({"power", argument});
        EXPECT_EQ(answer.code, 2) << argument;
        EXPECT_THAT(answer.err, HasSubstr(text));
        EXPECT_THAT(answer.out, IsEmpty());
    }
}

TEST_F(PowerCommand, HugeEffectsAreCertainToBeFound) {
    WriteCube();
    const Answer answer = AskStudy({"power", "--model", "linear", "--effects", "1e6"});
    EXPECT_EQ(answer.code, 0) << answer.err;
    EXPECT_THAT(LineOf(answer, "A"), testing::EndsWith("1.000")) << answer.out;
}

TEST_F(PowerCommand, LevelOfSignificanceWithoutDigitsIsRefused) {
    EXPECT_THAT(AskStudy({"power", "--alpha=1e-13"}).err,
                HasSubstr("--alpha: 1e-13 must be 1e-12 at least"));
    WriteCube();
    const Answer strict =
        AskStudy({"power", "--model", "linear", "--alpha=1e-12", "--effects", "1,1e6"});
    EXPECT_EQ(strict.code, 0) << strict.err;
}

}  // namespace
