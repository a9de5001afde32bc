#include "host/StudyFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using HostTesting::OneFactor;
using HostTesting::Quantitatives;
using HostTesting::ReadingError;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* cFull = R"({
  "name": "Reactor screening", "description": "About.", "source": "Someone 1999.",
  "factors": [
    {"name": "Temperature", "type": "Quantitative", "low": 150, "high": 180, "unit": "degC"},
    {"name": "Flow", "type": "Quantitative", "low": 1, "high": 100, "transform": "log10"},
    {"name": "Catalyst", "type": "Qualitative", "levels": ["A", "B", "C"]},
    {"name": "Stirring", "type": "Multilevel", "settings": [100, 200, 400]}
  ],
  "constraints": [{"terms": [{"factor": "Temperature", "coefficient": 1},
                             {"factor": "Flow", "coefficient": -2}],
                   "bound": 175, "relation": "<="}],
  "objective": "screening", "model": "interaction", "design": "ff2",
  "options": {"centerPoints": 3, "blocks": 1, "maxRuns": 40}
})";

TEST(StudyFile, KeepsTheFactorsInTheirOrder) {
    const Study study = ReadStudy(cFull, "s.json");
    std::vector<std::string> names;
    for (const StudyFactor& factor : study.factors.All()) {
        names.push_back(factor.name);
    }
    EXPECT_THAT(names, ElementsAre("Temperature", "Flow", "Catalyst", "Stirring"));
}

TEST(StudyFile, TellsTheEngineTypesSettingsAndLevels) {
    const Study study = ReadStudy(cFull, "s.json");
    const StudyFactors& factors = study.factors;
    EXPECT_EQ(factors.GetFactorType(0), CEType::Quantitative);
    EXPECT_THAT(factors.GetFactorSettings(0), ElementsAre(150, 180));
    EXPECT_EQ(factors.GetLevelCount(2), 3U);
    EXPECT_EQ(factors.GetFactorSettings(2).size(), 3U);
    EXPECT_THAT(factors.GetFactorSettings(3), ElementsAre(100, 200, 400));
    EXPECT_EQ(factors.GetLevelCount(3), 3U);
}

TEST(StudyFile, ReadsATransformByName) {
    const Study study = ReadStudy(cFull, "s.json");
    ASSERT_NE(study.factors.GetFactorTransform(1), nullptr);
    EXPECT_EQ(*study.factors.GetFactorTransform(1), TransformStruct(TransformStruct::Log10));
    EXPECT_EQ(study.factors.GetFactorTransform(0), nullptr);
}

TEST(StudyFile, ReadsATransformWithParameters) {
    const Study study =
        ReadStudy(OneFactor(R"({"name":"a","type":"Quantitative","low":0,"high":9,"transform":
                      {"kind":"power","scale":2,"offset":1,"exponent":0.5}})"),
                  "s.json");
    EXPECT_EQ(*study.factors.GetFactorTransform(0),
              TransformStruct(TransformStruct::Power, 2, 1, 0.5F));
}

TEST(StudyFile, TurnsFactorNamesOfConstraintsIntoIndices) {
    const Study study = ReadStudy(cFull, "s.json");
    NCDOE::Constraint expected;
    expected.terms = {{0, 1.0}, {1, -2.0}};
    expected.value = 175;
    expected.greaterOrEqual = false;
    EXPECT_EQ(study.constraints, NCDOE::Constraints({expected}));
}

TEST(StudyFile, ReadsObjectiveModelDesignAndRunLimit) {
    const Study study = ReadStudy(cFull, "s.json");
    EXPECT_EQ(study.objective, EObjective::Screening);
    EXPECT_EQ(study.model, EModel::Interaction);
    EXPECT_EQ(study.design, "ff2");
    EXPECT_EQ(study.MaxRuns(), 40U);
}

TEST(StudyFile, NeedsFactorsOnly) {
    const Study study = ReadStudy(Quantitatives(2), "s.json");
    EXPECT_EQ(study.objective, EObjective::Screening);
    EXPECT_FALSE(study.model.has_value());
    EXPECT_EQ(study.MaxRuns(), DesignOptions::cNoRunLimit);
    EXPECT_TRUE(study.constraints.IsEmpty());
}

TEST(StudyFile, TrimsNames) {
    const Study study = ReadStudy(
        OneFactor(R"({"name":" a b ","type":"Qualitative","levels":[" x","y "]})"), "s.json");
    EXPECT_EQ(study.factors.At(0).name, "a b");
    EXPECT_THAT(study.factors.At(0).levels, ElementsAre("x", "y"));
}

TEST(StudyFile, AllowsARangeAroundTheMarkOfAMissingValue) {
    EXPECT_THAT(
        ReadingError(OneFactor(R"({"name":"a","type":"Quantitative","low":-100,"high":-98})")),
        IsEmpty());
}

TEST(StudyFile, TakesTheTypeFillerOutOfTheCountedFactors) {
    const Study study = ReadStudy(
        R"({"factors":[{"name":"a","type":"Formulation","low":0.1,"high":0.3},
                       {"name":"Water","type":"Filler"},
                       {"name":"b","type":"Mixture","low":0.1,"high":0.4}]})",
        "s.json");
    EXPECT_EQ(study.factors.GetDesignFactorCount(), 2U);
    EXPECT_TRUE(study.factors.HasFiller());
    EXPECT_TRUE(study.factors.IsFormulationSumFree());
    EXPECT_EQ(study.factors.GetFiller()->name, "Water");
    EXPECT_EQ(study.factors.GetFiller()->place, 1U);
}

TEST(StudyFile, TakesAFlaggedFormulationFactorAsFillerToo) {
    const Study study = ReadStudy(
        R"({"factors":[{"name":"a","type":"Formulation","low":0.1,"high":0.3},
                       {"name":"Water","type":"Formulation","low":0.5,"high":1,"filler":true}]})",
        "s.json");
    EXPECT_EQ(study.factors.GetDesignFactorCount(), 1U);
    EXPECT_EQ(study.factors.GetFiller()->name, "Water");
}

TEST(StudyFile, TightensMixtureRangesAndSaysSo) {
    // With a and b from 0.2 up, c can have 0.6 at most.
    const Study study = ReadStudy(
        R"({"factors":[{"name":"a","type":"Formulation","low":0.2,"high":0.5},
                       {"name":"b","type":"Formulation","low":0.2,"high":0.5},
                       {"name":"c","type":"Formulation","low":0.1,"high":1}]})",
        "s.json");
    EXPECT_FLOAT_EQ(study.factors.At(2).high, 0.6F);
    EXPECT_THAT(study.notes, ElementsAre(HasSubstr("the range of \"c\" is tightened to 0.1 to")));
}

TEST(StudyFile, KeepsItsTextForTheProject) {
    const Study study = ReadStudy(cFull, "s.json");
    EXPECT_EQ(json_value::parse(study.text), json_value::parse(cFull));
}

TEST(StudyFile, NamesAFileThatIsNotThere) {
    try {
        static_cast<void>(ReadStudyFile("/nowhere/study.json"));
        FAIL() << "no exception";
    } catch (const Exception& exception) {
        EXPECT_THAT(exception.what(), HasSubstr("/nowhere/study.json"));
    }
}

TEST(StudyFile, RefusesAFileBeyondTheLimit) {
    const TemporaryFolder folder;
    const std::string path = folder.File("huge.json");
    HostTesting::WriteFile(path, "{");
    std::filesystem::resize_file(path, StudyLimits::cMaxFileBytes + 1);
    EXPECT_THROW(static_cast<void>(ReadStudyFile(path)), Exception);
}

TEST(StudyFile, RefusesMoreThanAThousandFactors) {
    std::string factors;
    for (int i = 0; i <= 1000; ++i) {
        factors += (i > 0 ? "," : "") + std::string(R"({"name":"f)") + std::to_string(i) +
                   R"(","type":"Quantitative","low":0,"high":1})";
    }
    EXPECT_EQ(ReadingError(R"({"factors":[)" + factors + "]}"),
              "s.json: factors: an array of 1001 must be an array of 1 to 1000 elements.");
}

// What a broken study says: the start names file and path, the rest value and what is allowed.
struct BrokenStudy {
    std::string name;
    std::string text;
    std::string where;
    std::vector<std::string> says;
};

void PrintTo(const BrokenStudy& broken, std::ostream* out) {
    *out << broken.text;
}

class BrokenStudies : public testing::TestWithParam<BrokenStudy> {};

TEST_P(BrokenStudies, AreRefusedWithFilePathValueAndWhatIsAllowed) {
    const std::string error = ReadingError(GetParam().text);
    EXPECT_THAT(error, StartsWith(GetParam().where));
    for (const std::string& part : GetParam().says) {
        EXPECT_THAT(error, HasSubstr(part));
    }
}

std::string Quantitative(const std::string& members) {
    return OneFactor(R"({"name":"a","type":"Quantitative",)" + members + "}");
}

std::string Qualitative(const std::string& levels) {
    return OneFactor(R"({"name":"a","type":"Qualitative","levels":)" + levels + "}");
}

std::string Multilevel(const std::string& settings) {
    return OneFactor(R"({"name":"a","type":"Multilevel","settings":)" + settings + "}");
}

std::string Constraint(const std::string& members) {
    return R"({"factors":[{"name":"a","type":"Quantitative","low":0,"high":1},
                          {"name":"q","type":"Qualitative","levels":["x","y"]},
                          {"name":"m","type":"Formulation","low":0,"high":0.5},
                          {"name":"w","type":"Filler"}],"constraints":[{)" +
           members + "}]}";
}

const std::vector<BrokenStudy> cBrokenStudies{
    {"NoObject", "[]", "s.json: ", {"an array of 0", "must be an object"}},
    {"Truncated", R"({"factors":[{"na)", "s.json", {}},
    {"Empty", "", "s.json", {}},
    {"NoFactors", "{}", "s.json: ", {"\"factors\" is missing"}},
    {"EmptyFactors", R"({"factors":[]})", "s.json: factors: ", {"an array of 0", "1 to 1000"}},
    {"UnknownMember",
     R"({"factor":[]})",
     "s.json: ",
     {"\"factor\" is unknown", "name, description, source, factors"}},
    {"UnknownFactorMember",
     Quantitative(R"("low":0,"hgih":1)"),
     "s.json: factors[0]: ",
     {"\"hgih\" is unknown", "low, high"}},
    {"MemberOfAnotherType",
     OneFactor(R"({"name":"a","type":"Qualitative","levels":["x","y"],"low":1})"),
     "s.json: factors[0]: ",
     {"\"low\" is unknown"}},
    {"FactorNoObject", R"({"factors":[3]})", "s.json: factors[0]: ", {"3 must be an object"}},
    {"UnknownType",
     OneFactor(R"({"name":"a","type":"Quantitive","low":0,"high":1})"),
     "s.json: factors[0].type: ",
     {"\"Quantitive\"", "Quantitative, Multilevel, Qualitative, Formulation and Filler"}},
    {"TimeType",
     OneFactor(R"({"name":"a","type":"Time"})"),
     "s.json: factors[0].type: ",
     {"\"Time\""}},
    {"TypeMissing", OneFactor(R"({"name":"a"})"), "s.json: factors[0]: ", {"\"type\" is missing"}},
    {"NameMissing",
     OneFactor(R"({"type":"Quantitative","low":0,"high":1})"),
     "s.json: factors[0]: ",
     {"\"name\" is missing"}},
    {"NameEmpty",
     OneFactor(R"({"name":"  ","type":"Quantitative","low":0,"high":1})"),
     "s.json: factors[0].name: ",
     {"\"  \"", "1 to 1000 bytes"}},
    {"NameWithControl",
     OneFactor(R"({"name":"a\u001b[2J","type":"Quantitative","low":0,"high":1})"),
     "s.json: factors[0].name: ",
     {"\\x1b", "control characters"}},
    {"NameOfAColumn",
     OneFactor(R"({"name":"Block","type":"Quantitative","low":0,"high":1})"),
     "s.json: factors[0].name: ",
     {"\"Block\"", "choose another name"}},
    {"NameTwice",
     R"({"factors":[{"name":"a","type":"Quantitative","low":0,"high":1},
                    {"name":" a","type":"Quantitative","low":0,"high":1}]})",
     "s.json: factors[1].name: ",
     {"\" a\"", "a name of its own"}},
    {"LowMissing", Quantitative(R"("high":1)"), "s.json: factors[0]: ", {"\"low\" is missing"}},
    {"LowText",
     Quantitative(R"("low":"0","high":1)"),
     "s.json: factors[0].low: ",
     {"\"0\" must be a number"}},
    {"LowAboveHigh",
     Quantitative(R"("low":2,"high":1)"),
     "s.json: factors[0].low: ",
     {"2 must be less than the high setting 1"}},
    {"LowEqualsHigh",
     Quantitative(R"("low":1,"high":1)"),
     "s.json: factors[0].low: ",
     {"must be less"}},
    {"LowEqualsHighInFloat",
     Quantitative(R"("low":1,"high":1.000000001)"),
     "s.json: factors[0].low: ",
     {"must be less"}},
    {"BeyondFloat",
     Quantitative(R"("low":0,"high":1e39)"),
     "s.json: factors[0].high: ",
     {"1e+39", "between -3.4e38 and 3.4e38"}},
    {"BeyondDouble", Quantitative(R"("low":0,"high":1e999)"), "s.json", {}},
    {"TooWide", Quantitative(R"("low":-3e38,"high":3e38)"), "s.json: factors[0]: ", {"too wide"}},
    {"MissingValueMark",
     Quantitative(R"("low":-99,"high":1)"),
     "s.json: factors[0].low: ",
     {"-99", "mark of a missing value"}},
    {"NoImageUnderTransform",
     Quantitative(R"("low":0,"high":1,"transform":"log10")"),
     "s.json: factors[0].low: ",
     {"0 has no image under the factor's transform"}},
    {"SameImageUnderTransform",
     Quantitative(R"("low":1,"high":1.0000001,"transform":{"kind":"exp","scale":1e-9})"),
     "s.json: factors[0].low: ",
     {"the same image"}},
    {"UnknownTransform",
     Quantitative(R"("low":1,"high":2,"transform":"log")"),
     "s.json: factors[0].transform: ",
     {"\"log\"", "log10, neglog10, ln, power, exp and logit"}},
    {"TransformNumber",
     Quantitative(R"("low":1,"high":2,"transform":3)"),
     "s.json: factors[0].transform: ",
     {"3 must be the name"}},
    {"TransformMember",
     Quantitative(R"("low":1,"high":2,"transform":{"kind":"ln","base":2})"),
     "s.json: factors[0].transform: ",
     {"\"base\" is unknown", "kind, scale, offset and exponent"}},
    {"TransformScale",
     Quantitative(R"("low":1,"high":2,"transform":{"kind":"ln","scale":0})"),
     "s.json: factors[0].transform.scale: ",
     {"0 must not be 0"}},
    {"TransformExponent",
     Quantitative(R"("low":1,"high":2,"transform":{"kind":"power","exponent":0})"),
     "s.json: factors[0].transform.exponent: ",
     {"0 must not be 0"}},
    {"ExponentOfAnotherKind",
     Quantitative(R"("low":1,"high":2,"transform":{"kind":"ln","exponent":2})"),
     "s.json: factors[0].transform.exponent: ",
     {"power alone"}},
    {"NoLevels", Qualitative("[]"), "s.json: factors[0].levels: ", {"an array of 0", "2 to 1000"}},
    {"OneLevel", Qualitative(R"(["x"])"), "s.json: factors[0].levels: ", {"2 to 1000"}},
    {"LevelTwice",
     Qualitative(R"(["x","y"," x"])"),
     "s.json: factors[0].levels[2]: ",
     {"occurs twice"}},
    {"LevelNumber",
     Qualitative(R"(["x",2])"),
     "s.json: factors[0].levels[1]: ",
     {"2 must be a text"}},
    {"NoSettings",
     Multilevel("[]"),
     "s.json: factors[0].settings: ",
     {"an array of 0", "2 to 1000"}},
    {"SettingTwice",
     Multilevel("[1,2,2]"),
     "s.json: factors[0].settings[2]: ",
     {"2 must be above the setting before it, 2"}},
    {"SettingsDescend", Multilevel("[2,1]"), "s.json: factors[0].settings[1]: ", {"ascend"}},
    {"SettingMissing",
     Multilevel("[-99,1]"),
     "s.json: factors[0].settings[0]: ",
     {"mark of a missing value"}},
    {"SettingWithoutImage",
     OneFactor(R"({"name":"a","type":"Multilevel","settings":[-1,1],"transform":"ln"})"),
     "s.json: factors[0].settings[0]: ",
     {"-1 has no image"}},
    {"ShareAboveOne",
     OneFactor(R"({"name":"a","type":"Formulation","low":0.5,"high":60})"),
     "s.json: factors[0].high: ",
     {"60 must be a share from 0 to 1"}},
    {"ShareBelowZero",
     OneFactor(R"({"name":"a","type":"Formulation","low":-0.5,"high":1})"),
     "s.json: factors[0].low: ",
     {"-0.5 must be a share from 0 to 1"}},
    {"FillerFlagText",
     OneFactor(R"({"name":"a","type":"Formulation","low":0,"high":1,"filler":"yes"})"),
     "s.json: factors[0].filler: ",
     {"\"yes\" must be true or false"}},
    {"FillerAlone",
     OneFactor(R"({"name":"a","type":"Filler"})"),
     "s.json: factors[0]: ",
     {"at least one other factor of type Formulation"}},
    {"TwoFillers",
     R"({"factors":[{"name":"a","type":"Filler"},{"name":"b","type":"Filler"}]})",
     "s.json: factors[1]: ",
     {"one filler only"}},
    {"NoRoomForTheFiller",
     R"({"factors":[{"name":"a","type":"Formulation","low":0.1,"high":0.6},
                    {"name":"b","type":"Formulation","low":0.1,"high":0.6},
                    {"name":"w","type":"Filler"}]})",
     "s.json: factors[2]: ",
     {"add up to 1.2", "at least 0"}},
    {"FillerBelowItsRange",
     R"({"factors":[{"name":"a","type":"Formulation","low":0.1,"high":0.6},
                    {"name":"w","type":"Filler","low":0.5,"high":1}]})",
     "s.json: factors[1]: ",
     {"add up to 0.6", "at least 0.5"}},
    {"FillerAboveItsRange",
     R"({"factors":[{"name":"a","type":"Formulation","low":0.1,"high":0.6},
                    {"name":"w","type":"Filler","low":0.1,"high":0.5}]})",
     "s.json: factors[1]: ",
     {"add up to 0.1", "at most 0.5"}},
    {"MixtureTooLow",
     R"({"factors":[{"name":"a","type":"Formulation","low":0,"high":0.25},
                    {"name":"b","type":"Formulation","low":0,"high":0.25}]})",
     "s.json: factors: ",
     {"The sum of the high settings of the formulation factors is too small 0.5."}},
    {"MixtureTooHigh",
     R"({"factors":[{"name":"a","type":"Formulation","low":0.75,"high":0.875},
                    {"name":"b","type":"Formulation","low":0.75,"high":0.875}]})",
     "s.json: factors: ",
     {"The sum of the low settings of the formulation factors is too large 1.5."}},
    {"UnknownObjective",
     Quantitatives(2, R"("objective":"screning")"),
     "s.json: objective: ",
     {"\"screning\"", "\"screening\", \"optimization\""}},
    {"UnknownModel",
     Quantitatives(2, R"("model":"--")"),
     "s.json: model: ",
     {"\"--\"", "\"linear\", \"interaction\""}},
    {"UnknownDesign",
     Quantitatives(2, R"("design":"FF9")"),
     "s.json: design: ",
     {"\"FF9\"", "FF2, FF3"}},
    {"UnknownOption",
     Quantitatives(2, R"("options":{"centrePoints":3})"),
     "s.json: options: ",
     {"\"centrePoints\" is unknown", "blocks, runs, centerPoints"}},
    {"FractionalCount",
     Quantitatives(2, R"("options":{"centerPoints":2.5})"),
     "s.json: options.centerPoints: ",
     {"2.5 must be a whole number from 0 to 1000000"}},
    {"NegativeCount",
     Quantitatives(2, R"("options":{"replicatedDesigns":-1})"),
     "s.json: options.replicatedDesigns: ",
     {"-1 must be a whole number from 0 to 1000000"}},
    {"CountBeyondLimit",
     Quantitatives(2, R"("options":{"runs":1000001})"),
     "s.json: options.runs: ",
     {"1000001 must be a whole number from 1 to 1000000"}},
    {"NoBlocks",
     Quantitatives(2, R"("options":{"blocks":0})"),
     "s.json: options.blocks: ",
     {"0 must be a whole number from 1"}},
    {"StarDistance",
     Quantitatives(2, R"("options":{"starDistance":0})"),
     "s.json: options.starDistance: ",
     {"0 must be above 0"}},
    {"DescriptionWithControl",
     Quantitatives(2, R"("description":"\u001b[2J")"),
     "s.json: description: ",
     {"control characters"}},
    {"ConstraintOnNobody",
     Constraint(R"("terms":[{"factor":"b","coefficient":1}],"bound":1,"relation":"<=")"),
     "s.json: constraints[0].terms[0].factor: ",
     {"\"b\" is no factor of the study"}},
    {"ConstraintOnTheFiller",
     Constraint(R"("terms":[{"factor":"w","coefficient":1}],"bound":1,"relation":"<=")"),
     "s.json: constraints[0].terms[0].factor: ",
     {"\"w\" is the filler"}},
    {"ConstraintRelation",
     Constraint(R"("terms":[{"factor":"a","coefficient":1}],"bound":1,"relation":"<")"),
     "s.json: constraints[0].relation: ",
     {"\"<\"", "\"<=\" and \">=\""}},
    {"ConstraintWithoutTerms",
     Constraint(R"("terms":[],"bound":1,"relation":"<=")"),
     "s.json: constraints[0].terms: ",
     {"an array of 0"}},
    {"ConstraintOnLevels",
     Constraint(R"("terms":[{"factor":"q","coefficient":1}],"bound":1,"relation":"<=")"),
     "s.json: constraints[0]: ",
     {"Constraints are only for quantitative and mixture factors."}},
    {"ConstraintMixed",
     Constraint(R"("terms":[{"factor":"a","coefficient":1},{"factor":"m","coefficient":1}],
                   "bound":1,"relation":"<=")"),
     "s.json: constraints[0]: ",
     {"Constraints should not mix quantitative and mixture factors."}},
};

INSTANTIATE_TEST_SUITE_P(StudyFile,
                         BrokenStudies,
                         testing::ValuesIn(cBrokenStudies),
                         [](const auto& broken) { return broken.param.name; });

}  // namespace
