// Whatever keeps a family from a study, the user is told in the words of the study.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/DesignMaker.h"
#include "host/HostError.h"
#include "tests/host/HostTesting.h"

namespace {

using HostTesting::Quantitatives;
using HostTesting::ReadingError;
using testing::HasSubstr;

std::string Components(int count, const std::string& more) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i > 0 ? "," : "") + std::string(R"({"name":"M)") + std::to_string(i + 1) +
                R"(","type":"Formulation","low":0,"high":1})";
    }
    return R"({"factors":[)" + text + "]" + (more.empty() ? "" : "," + more) + "}";
}

// Quantitative factors and, as the last one, a qualitative factor of five levels.
std::string WithFiveLevels(int count, const std::string& more) {
    std::string text;
    for (int i = 1; i < count; ++i) {
        text +=
            R"({"name":"F)" + std::to_string(i) + R"(","type":"Quantitative","low":0,"high":1},)";
    }
    return R"({"factors":[)" + text +
           R"({"name":"Q","type":"Qualitative","levels":["a","b","c","d","e"]}],)" + more + "}";
}

// A family, a number of factors it takes, and the objective it serves.
struct Family {
    const char* name;
    int factors;
    bool isResponseSurface;
};

void PrintTo(const Family& family, std::ostream* out) {
    *out << family.name;
}

std::string Objective(bool isResponseSurface) {
    return isResponseSurface ? R"("objective":"optimization")" : R"("objective":"screening")";
}

std::string NoValid(const std::string& text, const Family& family) {
    const Study study = ReadStudy(text, "s.json");
    DesignRequest request;
    request.design = family.name;
    try {
        static_cast<void>(MakeDesign(study, request));
    } catch (const NoValidDesign& reason) {
        return reason.what();
    }
    return {};
}

std::string TestName(const testing::TestParamInfo<Family>& info) {
    std::string name = info.param.name;
    std::erase_if(name, [](char letter) { return letter == ' ' || letter == '_'; });
    return name;
}

class ProcessFamily : public testing::TestWithParam<Family> {
  protected:
    const Family family_ = GetParam();
    const std::string objective_ = Objective(family_.isResponseSurface);
};

TEST_P(ProcessFamily, NamesTheObjective) {
    EXPECT_THAT(
        NoValid(Quantitatives(family_.factors, Objective(!family_.isResponseSurface)), family_),
        HasSubstr("\n  objective: no design fits "));
}

TEST_P(ProcessFamily, NamesTheModel) {
    EXPECT_THAT(
        NoValid(Quantitatives(family_.factors, objective_ + R"(,"model":"cubic")"), family_),
        HasSubstr("\n  model: no design supports \"cubic\"; with "));
}

TEST_P(ProcessFamily, NamesTheRunLimit) {
    EXPECT_THAT(NoValid(Quantitatives(family_.factors, objective_ + R"(,"options":{"maxRuns":3})"),
                        family_),
                HasSubstr("\n  run limit: no design fits into 3 runs with its centre points; "));
}

TEST_P(ProcessFamily, NamesTheConstraints) {
    EXPECT_THAT(NoValid(Quantitatives(family_.factors, objective_ + R"(,"constraints":[{"terms":[
                    {"factor":"A","coefficient":1},{"factor":"B","coefficient":1}],
                    "bound":30,"relation":"<="}])"),
                        family_),
                HasSubstr("\n  constraints: no design takes them; without them there is "));
}

TEST_P(ProcessFamily, NamesTheTypeOfALevelFactor) {
    EXPECT_THAT(NoValid(WithFiveLevels(family_.factors, objective_), family_),
                HasSubstr("\n  factor types: no design takes level factors with these numbers of "
                          "levels; if they were quantitative, there would be "));
}

TEST_P(ProcessFamily, NamesTheTypeOfComponents) {
    EXPECT_THAT(NoValid(Components(family_.factors, objective_), family_),
                HasSubstr("\n  factor types: no design takes formulation factors; if all factors "
                          "were quantitative, there would be "));
}

TEST_P(ProcessFamily, NamesTheFactorCount) {
    std::string factors;
    for (int i = 1; i <= 70; ++i) {
        factors += (i > 1 ? "," : "") + std::string(R"({"name":"F)") + std::to_string(i) +
                   R"(","type":"Quantitative","low":0,"high":1})";
    }
    EXPECT_THAT(NoValid(R"({"factors":[)" + factors + "]," + objective_ + "}", family_),
                HasSubstr("\n  factor count: 70 is too many; there is "));
}

INSTANTIATE_TEST_SUITE_P(All,
                         ProcessFamily,
                         testing::Values(Family{"FF2", 3, false},
                                         Family{"FF3", 3, true},
                                         Family{"L9", 3, false},
                                         Family{"L18", 4, false},
                                         Family{"L27", 6, false},
                                         Family{"L36", 6, false},
                                         Family{"FFR_III", 5, false},
                                         Family{"FFR_IV", 6, false},
                                         Family{"FFR_V", 5, false},
                                         Family{"PB", 5, false},
                                         Family{"PB_SS", 9, false},
                                         Family{"BB", 4, true},
                                         Family{"CCC", 4, true},
                                         Family{"CCF", 4, true},
                                         Family{"CCO", 4, true},
                                         Family{"RCCF", 4, true},
                                         Family{"RCCC", 4, true},
                                         Family{"RSS", 4, true},
                                         Family{"RSR", 4, false},
                                         Family{"Doehlert", 4, true},
                                         Family{"Definitive Screening", 5, false}),
                         TestName);

class MixtureFamily : public ProcessFamily {};

TEST_P(MixtureFamily, NamesTheObjective) {
    EXPECT_THAT(
        NoValid(Components(family_.factors, Objective(!family_.isResponseSurface)), family_),
        HasSubstr("\n  objective: no design fits "));
}

TEST_P(MixtureFamily, NamesTheModel) {
    EXPECT_THAT(
        NoValid(Components(family_.factors, objective_ + R"(,"model":"interaction")"), family_),
        HasSubstr("\n  model: no design supports \"interaction\"; with "));
}

TEST_P(MixtureFamily, NamesTheRunLimit) {
    EXPECT_THAT(
        NoValid(Components(family_.factors, objective_ + R"(,"options":{"maxRuns":3})"), family_),
        HasSubstr("\n  run limit: no design fits into 3 runs with its centre points; "));
}

TEST_P(MixtureFamily, NamesTheFactorCount) {
    EXPECT_THAT(NoValid(Components(40, objective_), family_),
                HasSubstr("\n  factor count: 40 is too many; there is "));
    EXPECT_THAT(NoValid(Components(2, objective_), family_),
                HasSubstr("\n  factor count: 2 is too few; there is "));
}

TEST_P(MixtureFamily, NamesARegionThatIsNoSimplex) {
    EXPECT_THAT(
        NoValid(R"({"factors":[{"name":"a","type":"Formulation","low":0,"high":0.6},
                                       {"name":"b","type":"Formulation","low":0,"high":0.9},
                                       {"name":"c","type":"Formulation","low":0.1,"high":0.3}],)" +
                    objective_ + "}",
                family_),
        HasSubstr("\n  mixture ranges: no design takes the region that they leave, which is "
                  "no simplex; with 0 to 1 for every component there is "));
}

TEST_P(MixtureFamily, NamesProcessFactors) {
    EXPECT_THAT(NoValid(Quantitatives(family_.factors, objective_), family_),
                HasSubstr("\n  factor types: no design takes process factors; if all factors were "
                          "formulation factors, there would be "));
}

INSTANTIATE_TEST_SUITE_P(All,
                         MixtureFamily,
                         testing::Values(Family{"AxN", 4, false},
                                         Family{"AxE", 4, false},
                                         Family{"AxR", 4, false},
                                         Family{"SimM", 4, true},
                                         Family{"SimF", 4, true},
                                         Family{"SimSC", 4, true},
                                         Family{"SimC", 4, true}),
                         TestName);

TEST(FamilyObstacles, NameTheMissingLevelFactorOfAMixedFactorial) {
    EXPECT_THAT(NoValid(Quantitatives(3), {"FFM", 3, false}),
                HasSubstr("\n  factor types: no design takes these alone; with three levels of the "
                          "last factor there would be FFM"));
}

TEST(FamilyObstacles, NameTheDesignWhoseGenerationFails) {
    std::string factors;
    for (int i = 1; i <= 60; ++i) {
        factors += (i > 1 ? "," : "") + std::string(R"({"name":"F)") + std::to_string(i) +
                   R"(","type":"Quantitative","low":0,"high":1})";
    }
    const Study study = ReadStudy(R"({"design":"FFR_III","factors":[)" + factors + "]}", "s.json");
    try {
        static_cast<void>(MakeDesign(study, {}));
        FAIL() << "the generators hold 48 factors";
    } catch (const Exception& exception) {
        EXPECT_THAT(std::string(exception.what()),
                    HasSubstr("s.json: the design FFR_III cannot be built for 60 factors and 64 "
                              "runs: Generator error"));
    }
}

TEST(FamilyObstacles, TellTheSumThatMixtureRangesMiss) {
    EXPECT_EQ(
        ReadingError(R"({"factors":[{"name":"a","type":"Formulation","low":0,"high":0.2},
                                          {"name":"b","type":"Formulation","low":0,"high":0.4}]})"),
        "s.json: factors: The sum of the high settings of the formulation factors is too small "
        "0.6. The sum must be higher than 1. Change the settings or add a filler factor.");
    EXPECT_THAT(ReadingError(R"({"factors":[{"name":"a","type":"Formulation","low":0.5,"high":0.8},
                                            {"name":"b","type":"Formulation","low":0.75,"high":1}]})"),
                HasSubstr("s.json: factors: The sum of the low settings of the formulation factors "
                          "is too large 1.25."));
}

}  // namespace
