#include "designs/plate/PlateRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <functional>
#include <map>
#include <numeric>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "designs/plate/PreCreatedDesign.h"
#include "designs/plate/ReducedDesign.h"
#include "tests/oracles/RowFigures.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/PlateRowCases.h"

namespace {

using oracles::FiguresOf;
using oracles::RowFigures;
using plate::AllRows;
using plate::BuilderNamed;
using plate::BuiltSide;
using plate::RowCase;
using plate::RowNamed;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;

struct Name {
    std::string shortString;
    std::string displayName;

    friend bool operator==(const Name&, const Name&) = default;
    friend void PrintTo(const Name& name, std::ostream* out) {
        *out << name.shortString << " \"" << name.displayName << '"';
    }
};

std::vector<Name> Group(const std::string& displayName, const std::vector<std::string>& names) {
    std::vector<Name> group;
    for (const std::string& name : names) {
        group.push_back({name, displayName});
    }
    return group;
}

std::vector<Name> ExpectedNames() {
    // clang-format off
    const std::vector<std::vector<Name>> groups{
        {{"Levels Duplicate", "Levels Duplicate"}, {"Levels Triplicate", "Levels Triplicate"},
         {"Levels Quad.", "Levels Quad."}, {"Levels * 6", "Levels * 6"}},
        Group("Frac Fac (Mixed)", {"FFM23a", "FFM33a", "FFM34b", "FFM34c", "FFM34d", "FFM34e", "FFM44a", "FFM44b", "FFM44c", "FFM223a", "FFM223b", "FFM224a", "FFM224b"}),
        Group("CCF missing 1 StarP", {"CCF23a", "CCF22a"}),
        Group("CCF No CenterP", {"CFF23b", "CCF22b"}),
        Group("Frac Fac (Mixed)", {"FFM36b", "FFM36c", "FFM224c", "FFM224d", "FFM224g", "FFM224j", "FFM226a", "FFM226g", "FFM233a", "FFM234a", "FFM234d", "FFM234e", "FFM333", "FFM2223"}),
        Group("CCF missing 3 StarP", {"FF3333a"}),
        Group("Full Fac (Mixed) Spec", {"eFFM24a", "eFFM24b", "eFFM24c", "eFFM24d", "eFFM24e", "eFFM24f"}),
        Group("Full Fac (2 levels) Duplicate", {"2*FF2_1", "2*FF2_2"}),
        Group("Full Fac (2 levels) Triplicate", {"3*FF2_3"}),
        Group("Full Fac (Mixed) Duplicate", {"2*FFM_4"}),
        Group("FF3 missing 2 AxisP", {"FF323a"}),
        Group("FF3 No CenterP", {"FF323b"}),
        Group("Frac Fac (Mixed)", {"FFM2224a"}),
        Group("D-opt (Pre made)", {"DPM2223a", "DPM2223b"}),
        Group("Frac Fac (Mixed)", {"FFM2224b"}),
        Group("Full Fac (Mixed)", {"FFM34a", "FFM36a"}),
        Group("Full Fac + Frac Fac Res III", {"FF+FFR3a", "FF+FFR3b", "FF+FFR3c", "FF+FFR3d"}),
        Group("Reduced Full Fac (Mixed)", {"FFM12_145"}),
    };
    // clang-format on
    std::vector<Name> all;
    for (const auto& group : groups) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

using Builders = std::vector<std::shared_ptr<const DesignBuilder>>;

// Behind the classic list.
Builders Registered() {
    const Builders& all = AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns();
    const auto classic =
        static_cast<std::ptrdiff_t>(AllDesigns::ClassicDesigns().GetAllDesigns().size());
    return {all.begin() + classic, all.end()};
}

TEST(PlateRows, StandBehindTheClassicListInTheirOrder) {
    std::vector<Name> names;
    for (const auto& builder : Registered()) {
        names.push_back({builder->GetShortString(), builder->GetDisplayName()});
    }
    EXPECT_THAT(names, ElementsAreArray(ExpectedNames()));
}

TEST(PlateRows, AreNoClassicDesigns) {
    for (const auto& builder : AllDesigns::ClassicDesigns().GetAllDesigns()) {
        EXPECT_NE(builder->IsDesign(), EDesign::Plugin) << builder->GetShortString();
    }
}

TEST(PlateRows, AreFoundByTheirDataWhichIsTheShortString) {
    for (const auto& builder : Registered()) {
        EXPECT_EQ(builder->GetDesignData(), builder->GetShortString());
        EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::Plugin, builder->GetShortString()),
                  builder);
    }
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::Plugin, ""), nullptr);
}

TEST(PlateRows, AreOfTypePluginAndOfTheStrongestPriority) {
    for (const auto& builder : Registered()) {
        EXPECT_EQ(builder->IsDesign(), 34) << builder->GetShortString();
        EXPECT_EQ(builder->GetPriority(TestFactors().Quantitatives(2)), 1);
    }
}

TEST(PlateRows, ServeAsPartsOfPlates) {
    const TestFactors factors;
    for (const auto& builder : Registered()) {
        EXPECT_TRUE(builder->IsREDMUPRecommended(factors, DesignOptions()))
            << builder->GetShortString();
    }
}

TEST(PlateRows, DescriptionsEndWithWhatWasDone) {
    for (const auto& row : ReducedRows::cRows) {
        const std::string end = row.listed == ReducedRows::Listed::Removed
                                    ? " Reduced to fit the plate."
                                    : " Expanded to fit the plate.";
        EXPECT_THAT(BuilderNamed(row.shortString)->GetDescription(), ::testing::EndsWith(end));
    }
    for (const auto& row : PreCreatedRows::cRows) {
        EXPECT_EQ(BuilderNamed(row.shortString)->GetDescription(), row.displayName);
    }
}

TEST(PlateRows, CompositeRowsTellWhatIsMissing) {
    const std::string composite =
        "Central Composite Face design composed of a full or fractional factorial design and star "
        "points placed on the faces of the sides. ";
    const std::map<std::string, std::string> closings{
        {"CCF23a", "One star point is left out."},
        {"CCF22a", "One star point is left out."},
        {"CFF23b", "The centre point is left out."},
        {"CCF22b", "The centre point is left out."},
        {"FF3333a", "One star point of each factor is left out."}};
    for (const auto& [name, closing] : closings) {
        EXPECT_EQ(BuilderNamed(name)->GetDescription(),
                  composite + closing + " Reduced to fit the plate.");
    }
}

TEST(PlateRows, OtherDescriptionsAreTheDisplayNames) {
    EXPECT_EQ(BuilderNamed("FFM23a")->GetDescription(),
              "Frac Fac (Mixed) Expanded to fit the plate.");
    EXPECT_EQ(BuilderNamed("FFM33a")->GetDescription(),
              "Frac Fac (Mixed) Reduced to fit the plate.");
}

// --- The tables -------------------------------------------------------------------------------

int Product(const std::vector<int>& levels) {
    return std::accumulate(levels.begin(), levels.end(), 1, std::multiplies<>());
}

TEST(PlateRows, NamesTellTheLevelCounts) {
    // The family, then the level counts, then perhaps a letter. FF3 is the family of its rows.
    const std::regex pattern("(?:e?FFM|CCF|CFF|DPM|FF3)([0-9]+)[a-z]?");
    const std::map<std::string, std::vector<int>> others{
        // Serial numbers stand at the end of the first four names; 3 is a resolution.
        {"2*FF2_1", {2, 2}},
        {"2*FF2_2", {2, 2, 2}},
        {"3*FF2_3", {2, 2}},
        {"2*FFM_4", {2, 3}},
        {"FF+FFR3a", {2, 2, 2}},
        {"FF+FFR3b", {2, 2, 2}},
        {"FF+FFR3c", {2, 2, 2}},
        {"FF+FFR3d", {2, 2, 2, 2, 2}},
        // Twelve runs of factors at 4 and 5 levels.
        {"FFM12_145", {4, 5}}};
    for (const RowCase& row : AllRows()) {
        std::smatch match;
        if (std::regex_match(row.name, match, pattern)) {
            EXPECT_EQ(row.levels, plate::Digits(match[1].str())) << row.name;
        } else {
            ASSERT_EQ(others.count(row.name), 1U) << row.name;
            EXPECT_EQ(row.levels, others.at(row.name)) << row.name;
        }
    }
}

TEST(PlateRows, NamesTellHowOftenTheFactorialStands) {
    for (const RowCase& row : AllRows()) {
        if (row.name[1] == '*') {
            EXPECT_EQ(static_cast<int>(row.runs), (row.name[0] - '0') * Product(row.levels))
                << row.name;
        }
    }
    EXPECT_EQ(RowNamed("FFM12_145").runs, 12U);
}

TEST(PlateRows, RunsAreThoseOfAPlatesSide) {
    for (const RowCase& row : AllRows()) {
        EXPECT_THAT((std::vector<unsigned>{8, 12, 16, 24, 32, 48}), ::testing::Contains(row.runs))
            << row.name;
    }
}

TEST(PlateRows, LevelCountsAscendAndEachColumnHasAMask) {
    for (const RowCase& row : AllRows()) {
        EXPECT_TRUE(std::is_sorted(row.levels.begin(), row.levels.end())) << row.name;
        EXPECT_EQ(row.levels.size(), row.masks.size()) << row.name;
        for (const int levels : row.levels) {
            EXPECT_GE(levels, 2) << row.name;
        }
    }
}

TEST(PlateRows, MasksKeepBothWaysOfMatchingTheSame) {
    for (const RowCase& row : AllRows()) {
        for (std::size_t column = 0; column < row.levels.size(); ++column) {
            if (row.model != EModel::Quadratic) {
                EXPECT_EQ(row.masks[column], row.levels[column] == 2 ? 7 : 6) << row.name;
            } else {
                EXPECT_LE(row.masks[column], 2) << row.name;
                EXPECT_LE(row.levels[column], 3) << row.name;
            }
        }
    }
}

TEST(PlateRows, SideAndModelAreNotServedTwiceByOneKindOfRow) {
    // A second row of the same factors, side and model would never be chosen. The quadratic rows
    // and the two full factorials with a fraction are known under several names.
    std::map<std::string, std::vector<std::string>> names;
    for (const RowCase& row : AllRows()) {
        if (row.model != EModel::Quadratic) {
            std::ostringstream key;
            key << ::testing::PrintToString(row.levels) << row.runs << row.model;
            names[key.str()].push_back(row.name);
        }
    }
    for (const auto& [key, sharing] : names) {
        EXPECT_EQ(sharing.size(), 1U) << ::testing::PrintToString(sharing);
    }
}

// What is wrong with a row list.
std::vector<std::string> ListFaults(const ReducedRows::Row& row) {
    const auto list = row.RowList();
    const bool removed = row.listed == ReducedRows::Listed::Removed;
    const std::vector<int> levels = plate::Digits(row.levels);
    const int count = static_cast<int>(levels.size());
    // A composite design: the cube, two stars a factor and the one centre point.
    const int base = row.base == EDesign::CCF ? (1 << count) + 2 * count + 1 : Product(levels);
    std::vector<std::string> faults;
    if (!std::is_sorted(list.begin(), list.end())) {
        faults.emplace_back("not ascending");
    }
    if (removed && std::adjacent_find(list.begin(), list.end()) != list.end()) {
        faults.emplace_back("a run removed twice");
    }
    if (list.empty() || list.front() < 1 || list.back() > base) {
        faults.emplace_back("a run that the base lacks");
    }
    const int size = static_cast<int>(list.size());
    if (static_cast<int>(row.runs) != (removed ? base - size : base + size)) {
        faults.emplace_back("not the runs of the side");
    }
    return faults;
}

TEST(PlateRows, ListsAscendWithinTheBaseAndMakeUpTheSide) {
    for (const auto& row : ReducedRows::cRows) {
        EXPECT_THAT(ListFaults(row), IsEmpty()) << row.shortString;
    }
}

TEST(PlateRows, ProofOfListsObjectsToEveryFault) {
    const ReducedRows::Row good = ReducedRows::cRows[2];
    ReducedRows::Row bad = good;
    std::swap(bad.list[0], bad.list[1]);
    EXPECT_THAT(ListFaults(bad), Not(IsEmpty()));
    bad = good;
    bad.list[1] = bad.list[0];
    EXPECT_THAT(ListFaults(bad), Not(IsEmpty()));
    bad = good;
    bad.list[3] = 13;
    EXPECT_THAT(ListFaults(bad), Not(IsEmpty()));
    bad = good;
    bad.list[4] = 11;
    EXPECT_THAT(ListFaults(bad), Not(IsEmpty()));
}

TEST(PlateRows, TablesOfTheirOwnKeepToTheAlphabetOfTheirLevels) {
    const std::map<int, std::string> alphabets{
        {2, "-+"}, {3, "-0+"}, {4, "ABCD"}, {5, "ABCDE"}, {6, "ABCDEF"}};
    for (const auto& row : PreCreatedRows::cRows) {
        for (const std::string_view run : row.runs) {
            ASSERT_EQ(run.size(), row.levels.size()) << row.shortString;
            for (std::size_t column = 0; column < run.size(); ++column) {
                // Both factors of a quadratic row take three positions.
                const int levels = row.model == EModel::Quadratic ? 3 : row.levels[column] - '0';
                EXPECT_NE(alphabets.at(levels).find(run[column]), std::string::npos)
                    << row.shortString << ' ' << run;
            }
        }
    }
}

// --- Every order of the factors ---------------------------------------------------------------

TEST(PlateRows, FillTheirSideUnderEveryOrderOfTheFactors) {
    for (const RowCase& row : AllRows()) {
        const auto builder = BuilderNamed(row.name);
        for (const TestFactors& factors : plate::FactorsInEveryOrder(row)) {
            const DesignOptions options = plate::SideOptions(*builder, factors, row);
            EXPECT_EQ(options.GetRuns() + options.GetCenterPoints(), row.runs) << row.name;
            ASSERT_TRUE(builder->IsValid(factors, options)) << row.name;
            const NCDataMatrix<float> matrix = BuiltSide(*builder, factors, row);
            EXPECT_EQ(matrix.SizeRows(), static_cast<int>(row.runs)) << row.name;
            EXPECT_THAT(matrix, HasOnlyLegalLevels(factors, options)) << row.name;
        }
    }
}

// The worst of all orders; what is not estimable has an efficiency of 0.
RowFigures WorstFigures(const DesignBuilder& builder, const RowCase& row) {
    RowFigures worst{1e30, 0};
    for (const TestFactors& factors : plate::FactorsInEveryOrder(row)) {
        const RowFigures figures = FiguresOf(BuiltSide(builder, factors, row), factors, row.model);
        worst.efficiency = std::min(worst.efficiency, figures.efficiency);
        worst.condition = std::max(worst.condition, figures.condition);
    }
    return worst;
}

std::string ModelName(EModel::Type model) {
    return model == EModel::Linear        ? "linear"
           : model == EModel::Interaction ? "interaction"
                                          : "quadratic";
}

std::string DocumentedRow(const RowCase& row, const RowFigures& figures) {
    std::ostringstream levels;
    for (std::size_t i = 0; i < row.levels.size(); ++i) {
        levels << (i > 0 ? " x " : "") << row.levels[i];
    }
    std::array<char, 160> text{};
    std::snprintf(text.data(),
                  text.size(),
                  "| %s | %s | %u | %s | %.3f | %.2f |",
                  row.name.c_str(),
                  levels.str().c_str(),
                  row.runs,
                  ModelName(row.model).c_str(),
                  figures.efficiency,
                  figures.condition);
    return text.data();
}

TEST(PlateRows, EfficienciesAreThoseOfTheHandbook) {
    std::ifstream handbook(QORVA_SOURCE_DIR "/docs/designs.md");
    ASSERT_TRUE(handbook.is_open());
    std::vector<std::string> lines;
    for (std::string line; std::getline(handbook, line);) {
        lines.push_back(line);
    }
    for (const RowCase& row : AllRows()) {
        const std::string expected = DocumentedRow(row, WorstFigures(*BuilderNamed(row.name), row));
        EXPECT_EQ(std::count(lines.begin(), lines.end(), expected), 1) << expected;
    }
}

TEST(PlateRows, ModelsAreEstimableUnderEveryOrderOfTheFactors) {
    for (const RowCase& row : AllRows()) {
        const RowFigures figures = WorstFigures(*BuilderNamed(row.name), row);
        EXPECT_GT(figures.efficiency, row.model == EModel::Quadratic ? 0.3 : 0.8) << row.name;
        EXPECT_LT(figures.condition, row.model == EModel::Quadratic ? 7 : 2.6) << row.name;
    }
}

TEST(PlateRows, FullFactorialHasTheFiguresOfOne) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative().MultilevelOf(4);
    const auto matrix = NCDesign::MakeFFDesignTable(factors, 24, false, false);
    const RowFigures figures = FiguresOf(matrix, factors, EModel::Interaction);
    EXPECT_NEAR(figures.efficiency, 1, 1e-12);
    EXPECT_NEAR(figures.condition, 1, 1e-12);
}

TEST(PlateRows, ProofOfEfficiencyObjectsToAnotherRun) {
    const RowCase row = RowNamed("FFM34b");
    const double known = WorstFigures(*BuilderNamed(row.name), row).efficiency;
    const ReducedDesign other({row.levels, row.masks},
                              row.model,
                              EDesign::FFM,
                              row.runs,
                              true,
                              {3, 5, 8, 11},
                              "other",
                              "other");
    EXPECT_LT(WorstFigures(other, row).efficiency, known - 0.01);
}

TEST(PlateRows, ProofOfEfficiencySeesATermThatIsLost) {
    // Balanced under the order 3, 4 of the levels; under 4, 3 two levels of one factor vanish.
    const RowCase row = RowNamed("FFM34b");
    const ReducedDesign other({row.levels, row.masks},
                              row.model,
                              EDesign::FFM,
                              row.runs,
                              true,
                              {1, 5, 9, 10},
                              "other",
                              "other");
    EXPECT_EQ(WorstFigures(other, row).efficiency, 0);
}

TEST(PlateRows, OrthogonalPlansAreOrthogonalUntilACellIsFlipped) {
    for (const std::string name :
         {"FFM2224a", "FFM2224b", "FF+FFR3b", "FF+FFR3c", "FFM226a", "FFM224a", "FFM2223"}) {
        const RowCase row = RowNamed(name);
        const TestFactors factors = plate::FactorsOf(row);
        const NCDataMatrix<float> matrix = BuiltSide(*BuilderNamed(name), factors, row);
        EXPECT_NEAR(FiguresOf(matrix, factors, row.model).efficiency, 1, 1e-9) << name;
        const NCDataMatrix<float> flipped = WithFlippedCell(matrix, 1, 1);
        EXPECT_LT(FiguresOf(flipped, factors, row.model).efficiency, 0.999) << name;
    }
}

// --- Rows with a construction -----------------------------------------------------------------

NCDataMatrix<float> LastRows(NCDataMatrix<float> matrix, int count) {
    matrix.RemoveRows(1, matrix.SizeRows() - count);
    return matrix;
}

bool HasWord(const NCDataMatrix<float>& matrix, const std::vector<int>& columns, float product) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        float found = 1;
        for (const int column : columns) {
            found *= matrix(row, column);
        }
        if (found != product) {
            return false;
        }
    }
    return true;
}

TEST(PlateRows, FullFactorialsStandBeforeTheirFractions) {
    for (const std::string name : {"FF+FFR3a", "FF+FFR3b", "FF+FFR3c", "FF+FFR3d"}) {
        const RowCase row = RowNamed(name);
        const int count = static_cast<int>(row.levels.size());
        const NCDataMatrix<float> matrix =
            BuiltSide(*BuilderNamed(name), TestFactors().Quantitatives(count), row);
        EXPECT_EQ(RowsOf(matrix, 1, 1 << count), RowsOf(NCDesign::MakePureFF2DesignTable(count, 0)))
            << name;
    }
}

TEST(PlateRows, FractionsHaveWordsOfThreeFactors) {
    const auto tail = [](const std::string& name, int runs) {
        const RowCase row = RowNamed(name);
        return LastRows(BuiltSide(*BuilderNamed(name),
                                  TestFactors().Quantitatives(static_cast<int>(row.levels.size())),
                                  row),
                        runs);
    };
    EXPECT_TRUE(HasWord(tail("FF+FFR3a", 4), {1, 2, 3}, 1));
    EXPECT_TRUE(HasWord(tail("FF+FFR3b", 4), {1, 2, 3}, 1));
    EXPECT_TRUE(HasWord(tail("FF+FFR3c", 4), {1, 2, 3}, -1));
    EXPECT_TRUE(HasWord(tail("FF+FFR3d", 16), {1, 2, 4}, 1));
    EXPECT_TRUE(HasWord(tail("FF+FFR3d", 8), {1, 3, 5}, -1));
    EXPECT_FALSE(HasWord(tail("FF+FFR3d", 16), {1, 3, 5}, -1));
}

TEST(PlateRows, ThreeStarsThatAreMissingAreTheBestThree) {
    const RowCase row = RowNamed("FF3333a");
    const TestFactors factors = plate::FactorsOf(row);
    const double known = WorstFigures(*BuilderNamed(row.name), row).efficiency;
    for (int a = 9; a <= 14; ++a) {
        for (int b = a + 1; b <= 14; ++b) {
            for (int c = b + 1; c <= 14; ++c) {
                const ReducedDesign other({row.levels, row.masks},
                                          row.model,
                                          EDesign::CCF,
                                          row.runs,
                                          true,
                                          {a, b, c},
                                          "other",
                                          "other");
                EXPECT_LE(FiguresOf(BuiltSide(other, factors, row), factors, row.model).efficiency,
                          known + 1e-9)
                    << a << ' ' << b << ' ' << c;
            }
        }
    }
}

// --- When rows are valid ----------------------------------------------------------------------

TEST(PlateRows, AnswerTheirSideAndNoLimitOnly) {
    for (const RowCase& row : AllRows()) {
        const auto builder = BuilderNamed(row.name);
        const TestFactors factors = plate::FactorsOf(row);
        std::vector<unsigned> valid;
        for (unsigned limit = 0; limit <= 12002; limit = limit == 100 ? 11998 : limit + 1) {
            DesignOptions options = plate::SideOptions(*builder, factors, row);
            options.SetMaxRuns(limit);
            if (builder->IsValid(factors, options)) {
                valid.push_back(limit);
            }
        }
        EXPECT_THAT(valid, ::testing::ElementsAre(row.runs, 12000U)) << row.name;
    }
}

TEST(PlateRows, AnswerTheirOwnObjectiveAndModelOnly) {
    for (const RowCase& row : AllRows()) {
        const auto builder = BuilderNamed(row.name);
        const TestFactors factors = plate::FactorsOf(row);
        for (int objective = 0; objective <= 5; ++objective) {
            for (int model = 0; model <= 6; ++model) {
                DesignOptions options = plate::SideOptions(*builder, factors, row);
                options.SetObjective(static_cast<EObjective::Type>(objective));
                options.SetModel(static_cast<EModel::Type>(model));
                EXPECT_EQ(builder->IsValid(factors, options),
                          objective == row.Objective() && model == row.model)
                    << row.name << ' ' << objective << ' ' << model;
            }
        }
    }
}

TEST(PlateRows, RefuseAnotherNumberOfFactorsOrLevels) {
    for (const RowCase& row : AllRows()) {
        const auto builder = BuilderNamed(row.name);
        std::vector<plate::FactorKind> more = plate::KindsOf(row, 1);
        more.emplace_back(CEType::Quantitative, 2);
        std::vector<plate::FactorKind> fewer = plate::KindsOf(row, 1);
        fewer.pop_back();
        std::vector<plate::FactorKind> others = plate::KindsOf(row, 1);
        others.back() = {CEType::Qualitative, 7};
        for (const auto& kinds : {more, fewer, others}) {
            const TestFactors factors = plate::FactorsOf(kinds);
            EXPECT_FALSE(builder->IsValid(factors, plate::SideOptions(*builder, factors, row)))
                << row.name;
        }
    }
}

TEST(PlateRows, RefuseConstraints) {
    for (const std::string name : {"FFM23a", "CCF22a", "DPM2223a"}) {
        const RowCase row = RowNamed(name);
        const auto builder = BuilderNamed(name);
        const TestFactors factors = plate::FactorsOf(row);
        DesignOptions options = plate::SideOptions(*builder, factors, row);
        built::Constrain(options, factors);
        EXPECT_FALSE(builder->IsValid(factors, options)) << name;
        EXPECT_EQ(builder->Build(factors, options), nullptr) << name;
    }
}

TEST(PlateRows, DefaultOptionsOfAScreeningRowAreValid) {
    for (const RowCase& row : AllRows()) {
        const auto builder = BuilderNamed(row.name);
        const TestFactors factors = plate::FactorsOf(row);
        const DesignOptions options(*builder, factors);
        // Rows of a quadratic model are asked for under their own objective.
        EXPECT_EQ(builder->IsValid(factors, options), row.model != EModel::Quadratic) << row.name;
        EXPECT_EQ(options.GetModel(), row.model) << row.name;
    }
}

}  // namespace
