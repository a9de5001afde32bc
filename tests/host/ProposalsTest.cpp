#include "host/Proposals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/HostError.h"
#include "tests/host/HostTesting.h"

namespace {

using HostTesting::Quantitatives;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// A family that is valid where the test says so, for the order of proposals.
class ScriptedBuilder : public DesignBuilder {
  public:
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    ScriptedBuilder(const char* name, unsigned char strength, unsigned int runs = 8)
        : DesignBuilder(name, name, name), priority_(strength), runs_(runs) {}

    std::unique_ptr<NCDesign> Build(const Factors& /*factors*/,
                                    const DesignOptions& /*options*/,
                                    bool* /*cancel*/) const override {
        return nullptr;
    }
    unsigned int GetDefaultRuns(const Factors& /*factors*/,
                                EObjective::Type /*objective*/) const override {
        return runs_;
    }
    unsigned int GetMinimumCenterPoints() const override { return 0; }
    std::vector<unsigned int> GetLegalRuns(const Factors& /*factors*/,
                                           const DesignOptions& /*options*/) const override {
        return {runs_};
    }
    unsigned char GetPriority(const Factors& /*factors*/) const override { return priority_; }
    EDesign::Type IsDesign() const override { return EDesign::Plugin; }
    bool IsValid(const Factors& /*factors*/, const DesignOptions& /*options*/) const override {
        return true;
    }
    EModel::Type GetDefaultModel(const Factors& /*factors*/,
                                 EObjective::Type /*objective*/) const override {
        return EModel::Linear;
    }

  private:
    unsigned char priority_;
    unsigned int runs_;
};

// A family that cannot even answer.
class RaisingBuilder : public ScriptedBuilder {
  public:
    using ScriptedBuilder::IsValid;
    using ScriptedBuilder::ScriptedBuilder;
    bool IsValid(const Factors& /*factors*/, const DesignOptions& /*options*/) const override {
        FailWith("no answer");
    }
};

std::vector<std::string> Names(const std::vector<Proposal>& proposals) {
    std::vector<std::string> names;
    for (const Proposal& proposal : proposals) {
        names.push_back(proposal.builder->GetShortString());
    }
    return names;
}

BuilderHandle Scripted(const char* name, unsigned char priority, unsigned int runs = 8) {
    return std::make_shared<ScriptedBuilder>(name, priority, runs);
}

// The families with simple rules of their own that these tests look at.
std::vector<BuilderHandle> Factorials() {
    return {FindBuilder("FF2"), FindBuilder("FF3"), FindBuilder("FFM")};
}

std::vector<std::string> Obstacles(const std::string& text) {
    const Study study = ReadStudy(text, "s.json");
    return FindObstacles(ConditionsOf(study), Factorials());
}

TEST(Proposals, ComeStrongestFirst) {
    const Study study = ReadStudy(Quantitatives(2), "s.json");
    EXPECT_THAT(
        Names(Propose(ConditionsOf(study), {Scripted("c", 9), Scripted("a", 1), Scripted("b", 5)})),
        ElementsAre("a", "b", "c"));
}

TEST(Proposals, ComeLastWithoutAnOpinion) {
    const Study study = ReadStudy(Quantitatives(2), "s.json");
    EXPECT_THAT(Names(Propose(ConditionsOf(study), {Scripted("none", 0), Scripted("weak", 255)})),
                ElementsAre("weak", "none"));
}

TEST(Proposals, KeepTheGivenOrderInATie) {
    const Study study = ReadStudy(Quantitatives(2), "s.json");
    EXPECT_THAT(
        Names(Propose(ConditionsOf(study),
                      {Scripted("z", 5), Scripted("y", 0), Scripted("x", 5), Scripted("w", 0)})),
        ElementsAre("z", "x", "y", "w"));
}

TEST(Proposals, GoOnAfterAFamilyThatRaisesAnError) {
    const Study study = ReadStudy(Quantitatives(2), "s.json");
    EXPECT_THAT(Names(Propose(ConditionsOf(study),
                              {std::make_shared<RaisingBuilder>("bad", 1), Scripted("good", 2)})),
                ElementsAre("good"));
}

TEST(Proposals, KeepTheRunLimitWhateverTheFamilySays) {
    const Study study = ReadStudy(Quantitatives(2, R"("options":{"maxRuns":10})"), "s.json");
    EXPECT_THAT(
        Names(Propose(ConditionsOf(study), {Scripted("large", 1, 11), Scripted("fits", 2, 10)})),
        ElementsAre("fits"));
}

TEST(Proposals, LowerCentrePointsToTheRunLimit) {
    const Study study = ReadStudy(Quantitatives(3, R"("options":{"maxRuns":10})"), "s.json");
    const auto proposals = Propose(ConditionsOf(study), Factorials());
    ASSERT_THAT(Names(proposals), ElementsAre("FF2"));
    EXPECT_EQ(proposals[0].options.GetCenterPoints(), 2U);
}

TEST(Proposals, TakeTheStudysCentrePoints) {
    const Study study = ReadStudy(Quantitatives(3, R"("options":{"centerPoints":5})"), "s.json");
    const auto proposals = Propose(ConditionsOf(study), Factorials());
    ASSERT_THAT(Names(proposals), ElementsAre("FF2"));
    EXPECT_EQ(proposals[0].options.GetCenterPoints(), 5U);
}

TEST(Proposals, TakeTheFamilysModelWhereTheStudyNamesNone) {
    const Study study = ReadStudy(Quantitatives(3), "s.json");
    const auto proposals = Propose(ConditionsOf(study), Factorials());
    ASSERT_THAT(Names(proposals), ElementsAre("FF2"));
    EXPECT_EQ(proposals[0].options.GetModel(), EModel::Interaction);
}

TEST(Proposals, TakeTheStudysModel) {
    const Study study = ReadStudy(Quantitatives(3, R"("model":"linear")"), "s.json");
    const auto proposals = Propose(ConditionsOf(study), Factorials());
    ASSERT_THAT(Names(proposals), ElementsAre("FF2"));
    EXPECT_EQ(proposals[0].options.GetModel(), EModel::Linear);
}

TEST(Proposals, TellLegalRunsAndBlocks) {
    const Study study = ReadStudy(Quantitatives(4), "s.json");
    const auto proposals = Propose(ConditionsOf(study), Factorials());
    ASSERT_THAT(proposals, SizeIs(1));
    EXPECT_THAT(proposals[0].legalRuns, ElementsAre(16));
    EXPECT_THAT(proposals[0].legalBlocks, ElementsAre(1, 2, 4));
}

TEST(Proposals, AreValidForTheEngineToo) {
    const Study study = ReadStudy(Quantitatives(4), "s.json");
    for (const Proposal& proposal : Propose(ConditionsOf(study))) {
        EXPECT_TRUE(proposal.builder->IsValid(study.factors, proposal.options))
            << proposal.builder->GetShortString();
    }
}

TEST(Proposals, LeaveOutFamiliesThatTakeNoConstraints) {
    const Study study =
        ReadStudy(Quantitatives(2,
                                R"("constraints":[{"terms":[{"factor":"A","coefficient":1}],
                         "bound":15,"relation":"<="}])"),
                  "s.json");
    EXPECT_THAT(Propose(ConditionsOf(study), Factorials()), SizeIs(0));
}

TEST(Obstacles, NameTheObjective) {
    EXPECT_THAT(Obstacles(Quantitatives(3, R"("model":"quadratic")")),
                ElementsAre(StartsWith("objective: no design fits \"screening\"; with "
                                       "\"optimization\" there is FF3"),
                            StartsWith("model: no design supports \"quadratic\"; with "
                                       "\"interaction\" there is FF2")));
}

TEST(Obstacles, NameTheModelAlone) {
    EXPECT_THAT(Obstacles(Quantitatives(3, R"("model":"cubic")")),
                ElementsAre("model: no design supports \"cubic\"; with \"interaction\" there is "
                            "FF2"));
}

TEST(Obstacles, NameTooFewFactors) {
    EXPECT_THAT(Obstacles(Quantitatives(1)),
                ElementsAre("factor count: 1 is too few; there is FF2 for 2"));
}

TEST(Obstacles, NameTooManyFactors) {
    EXPECT_THAT(Obstacles(Quantitatives(11)),
                ElementsAre("factor count: 11 is too many; there is FF2 for 10"));
}

TEST(Obstacles, NameTheRunLimit) {
    EXPECT_THAT(Obstacles(Quantitatives(3, R"("options":{"maxRuns":7,"centerPoints":0})")),
                Contains("run limit: no design fits into 7 runs with its centre points; FF2 has 8 "
                         "runs"));
}

TEST(Obstacles, NameCentrePointsBeyondTheRunLimit) {
    EXPECT_THAT(Obstacles(Quantitatives(3, R"("options":{"maxRuns":10,"centerPoints":5})")),
                Contains("centre points: no design takes 5; FF2 takes 2"));
}

TEST(Obstacles, NameTheConstraints) {
    EXPECT_THAT(Obstacles(Quantitatives(2,
                                        R"("constraints":[{"terms":[{"factor":"A",
                                           "coefficient":1}],"bound":15,"relation":"<="}])")),
                ElementsAre("constraints: no design takes them; without them there is FF2"));
}

TEST(Obstacles, AreNeverEmpty) {
    EXPECT_THAT(Obstacles(Quantitatives(11, R"("model":"cubic")")),
                ElementsAre(HasSubstr("no single change")));
}

TEST(DesignNames, AreFoundWhateverTheCase) {
    ASSERT_TRUE(FindBuilder("ff2"));
    EXPECT_EQ(FindBuilder("ff2")->GetShortString(), "FF2");
    ASSERT_TRUE(FindBuilder("full fac (MIXED)"));
    EXPECT_EQ(FindBuilder("full fac (MIXED)")->GetShortString(), "FFM");
    EXPECT_FALSE(FindBuilder("FF"));
}

TEST(DesignNames, AreTheSameForEveryFamily) {
    for (const std::string& name : AllDesignNames()) {
        ASSERT_TRUE(FindBuilder(name)) << name;
        EXPECT_EQ(FindBuilder(name)->GetShortString(), name);
    }
}

TEST(CountsText, JoinsNeighbours) {
    EXPECT_EQ(CountsText({8}), "8");
    EXPECT_EQ(CountsText({1, 2, 4}), "1, 2 and 4");
    EXPECT_EQ(CountsText({4, 8, 12, 13, 14, 15}), "4, 8 and 12 to 15");
    EXPECT_EQ(CountsText({}), "");
}

}  // namespace
