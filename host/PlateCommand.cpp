#include "host/PlateCommand.h"

#include <fmt/format.h>

#include <algorithm>

#include "foundation/utl/QvFile.h"
#include "foundation/utl/QvStdString.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/JsonPlace.h"
#include "host/Notes.h"
#include "host/PlateDesign.h"
#include "host/StudyFile.h"
#include "host/TextTable.h"
#include "host/Worksheet.h"

namespace {

using SubDesign = REDMUPOptions::REDMUPSubDesign;

constexpr const char* cPlate = "Plate";
constexpr const char* cWell = "Well";
constexpr const char* cName = "Name";
constexpr const char* cPlateLetter = "PlateLetter";

// The runs in the order of the design, with texts to print, and where they stand.
struct PlateRuns {
    WorksheetTable settings;         // factors only, in real units
    std::vector<std::string> names;  // "A_1"
    std::size_t rows = 0;            // of a plate
    std::size_t columns = 0;
    std::size_t plates = 0;

    [[nodiscard]] std::size_t Wells() const { return rows * columns; }
    [[nodiscard]] const std::string& At(std::size_t plate,
                                        std::size_t well,
                                        std::size_t factor) const {
        return settings.lines[plate * Wells() + well][factor];
    }
};

// Row letters and column number of a well: "AF" and "48" of "P2_AF_48".
std::pair<std::string, std::string> PlaceOf(const std::string& name) {
    const std::vector<std::string> parts = QvStdString::Split(name, "_");
    return {parts.at(parts.size() - 2), parts.back()};
}

std::vector<std::string> LettersOf(NCDataMatrix<float>& matrix) {
    std::vector<std::string> letters;
    const int last = matrix.SizeColumns();
    for (int run = 1; run <= matrix.SizeRows(); ++run) {
        // Plates beyond Z have numbers: the codes go on after the last letter.
        const int number = static_cast<int>(matrix(run, last) - Factors::cFirstLevelCode);
        letters.push_back(number < 26 ? std::string(1, static_cast<char>('A' + number))
                                      : std::to_string(number + 1));
    }
    matrix.RemoveColumns(last, 1);
    return letters;
}

PlateRuns MakeRuns(const PlateDesign& made, const StudyFactors& factors) {
    constexpr std::ptrdiff_t cOrders = 2;  // StdOrder and RunOrder: wells tell the order
    const REDMUPOptions& plates = made.Plates();
    NCDataMatrix<float> matrix = made.CodedMatrix(factors);
    std::vector<std::string> letters;
    if (plates.GetPlateFactorsUse() == REDMUPOptions::WithPlateColumn) {
        letters = LettersOf(matrix);
    }
    PlateRuns runs;
    runs.settings = MakeWorksheetTable(DecodeRuns(matrix, factors, DesignForm()), factors, false);
    runs.settings.header.erase(runs.settings.header.begin(),
                               runs.settings.header.begin() + cOrders);
    for (std::size_t run = 0; run < runs.settings.lines.size(); ++run) {
        auto& line = runs.settings.lines[run];
        line.erase(line.begin(), line.begin() + cOrders);
        if (!letters.empty()) {
            line.push_back(letters[run]);
        }
    }
    if (!letters.empty()) {
        runs.settings.header.emplace_back(cPlateLetter);
    }
    runs.names = plates.GetDefaultExperimentNames();
    runs.rows = plates.GetVerticalSize();
    runs.columns = plates.GetHorizontalSize();
    runs.plates = static_cast<std::size_t>(plates.GetNumPlates());
    return runs;
}

// The list for a liquid handler: plate, well as its software writes it, the engine's name of the
// run, and the settings.
WorksheetTable MakeRunList(const PlateRuns& runs) {
    WorksheetTable list = runs.settings;
    list.header.insert(list.header.begin(), {cPlate, cWell, cName});
    for (std::size_t run = 0; run < list.lines.size(); ++run) {
        const auto [row, column] = PlaceOf(runs.names[run]);
        const std::string plate = std::to_string(run / runs.Wells() + 1);
        list.lines[run].insert(list.lines[run].begin(), {plate, row + column, runs.names[run]});
    }
    return list;
}

bool IsSameOnAllPlates(const PlateRuns& runs, std::size_t factor) {
    for (std::size_t plate = 1; plate < runs.plates; ++plate) {
        for (std::size_t well = 0; well < runs.Wells(); ++well) {
            if (runs.At(plate, well, factor) != runs.At(0, well, factor)) {
                return false;
            }
        }
    }
    return true;
}

bool IsConstantOnPlates(const PlateRuns& runs, std::size_t factor) {
    for (std::size_t plate = 0; plate < runs.plates; ++plate) {
        for (std::size_t well = 1; well < runs.Wells(); ++well) {
            if (runs.At(plate, well, factor) != runs.At(plate, 0, factor)) {
                return false;
            }
        }
    }
    return true;
}

// All columns of a grid are as wide as the widest, to look like the plate.
std::string Grid(const PlateRuns& runs, std::size_t plate, std::size_t factor, bool numbers) {
    std::size_t width = 0;
    for (std::size_t well = 0; well < runs.Wells(); ++well) {
        width = std::max(width, runs.At(plate, well, factor).size());
    }
    std::vector<std::string> header{""};
    for (std::size_t column = 1; column <= runs.columns; ++column) {
        header.push_back(numbers ? fmt::format("{:>{}}", column, width)
                                 : fmt::format("{:<{}}", column, width));
    }
    std::vector<std::vector<std::string>> lines;
    for (std::size_t row = 0; row < runs.rows; ++row) {
        lines.push_back({PlaceOf(runs.names[row]).first});
        for (std::size_t column = 0; column < runs.columns; ++column) {
            lines.back().push_back(runs.At(plate, column * runs.rows + row, factor));
        }
    }
    return FormatTable(header, lines);
}

// The settings of the plate factors, a line for each plate; empty when there are none.
std::string PlateTable(const PlateRuns& runs, const std::vector<std::size_t>& factors) {
    if (factors.empty()) {
        return {};
    }
    std::vector<std::string> header{cPlate};
    std::vector<std::vector<std::string>> lines;
    for (const std::size_t factor : factors) {
        header.push_back(runs.settings.header[factor]);
    }
    for (std::size_t plate = 0; plate < runs.plates; ++plate) {
        lines.push_back({std::to_string(plate + 1)});
        for (const std::size_t factor : factors) {
            lines.back().push_back(runs.At(plate, 0, factor));
        }
    }
    return FormatTable(header, lines);
}

std::string TitleOf(const std::string& name, const StudyFactors& factors) {
    const int factor = factors.Find(name);
    const auto& filler = factors.GetFiller();
    const std::string unit = factor >= 0                      ? factors.At(factor).unit
                             : filler && filler->name == name ? filler->unit
                                                              : "";
    return unit.empty() ? name : fmt::format("{} [{}]", name, unit);
}

// A grid for each factor, once where all plates are alike; plate factors in one table.
void PrintGrids(const PlateRuns& runs, const StudyFactors& factors, std::ostream& out) {
    std::vector<std::size_t> plateFactors;
    std::string text;
    for (std::size_t factor = 0; factor < runs.settings.header.size(); ++factor) {
        const std::string& name = runs.settings.header[factor];
        const std::string title = TitleOf(name, factors);
        const int index = factors.Find(name);
        const bool numbers = index < 0 || factors.GetFactorType(index) != CEType::Qualitative;
        if (runs.plates > 1 && IsConstantOnPlates(runs, factor)) {
            plateFactors.push_back(factor);
        } else if (IsSameOnAllPlates(runs, factor)) {
            text += fmt::format("{}{}\n{}\n",
                                title,
                                runs.plates > 1 ? ", every plate" : "",
                                Grid(runs, 0, factor, numbers));
        } else {
            for (std::size_t plate = 0; plate < runs.plates; ++plate) {
                text += fmt::format(
                    "{}, plate {}\n{}\n", title, plate + 1, Grid(runs, plate, factor, numbers));
            }
        }
    }
    const std::string table = PlateTable(runs, plateFactors);
    out << text << (table.empty() ? "" : table + "\n");
}

// The factor of a side that has one only, when it is qualitative.
const StudyFactor* LoneQualitative(const SubDesign& design, const StudyFactors& factors) {
    if (design.factors.size() != 1) {
        return nullptr;
    }
    const StudyFactor& factor = factors.At(static_cast<int>(design.factors.front()));
    return factor.type == CEType::Qualitative ? &factor : nullptr;
}

// How often the side repeats the levels of a qualitative factor; 0 for any other design.
unsigned int CopiesOfLevels(const SubDesign& design, const StudyFactors& factors) {
    const auto builder = AllDesigns::GetDesignBuilder(design.designType, design.designData);
    const auto* repeated = dynamic_cast<const LevelsDuplicate*>(builder.get());
    const bool isRepeated = repeated != nullptr && LoneQualitative(design, factors) != nullptr;
    return isRepeated ? repeated->GetTimes() : 0;
}

// Copies of a qualitative factor's levels are filled up with further levels, and no centre points.
std::string RunsText(const SubDesign& design, const StudyFactors& factors) {
    const DesignOptions& options = *design.options;
    const unsigned int copies = CopiesOfLevels(design, factors);
    if (copies == 0) {
        return fmt::format(
            "{} runs and {} centre points", options.GetRuns(), options.GetCenterPoints());
    }
    const auto levels = static_cast<unsigned int>(LoneQualitative(design, factors)->levels.size());
    const unsigned int further = options.GetMaxRuns() - copies * levels;
    const std::string more = further == 0   ? ""
                             : further == 1 ? " and one more of the first"
                                            : fmt::format(" and one more of the first {}", further);
    return fmt::format("{} runs ({} of each level{})", options.GetMaxRuns(), copies, more);
}

void PrintSide(const char* side,
               const SubDesign& design,
               const StudyFactors& factors,
               std::ostream& err) {
    const DesignOptions& options = *design.options;
    err << fmt::format("{}: {} of {}, {}, {} model\n",
                       side,
                       EDesign::GetShortString(design.designType, design.designData),
                       ListOf(FactorNames(design.factors, factors), "and"),
                       RunsText(design, factors),
                       EModel::ToJson(options.GetModel()).get_string());
    const StudyFactor* alone = LoneQualitative(design, factors);
    if (alone != nullptr && options.GetCenterPoints() > 0 && CopiesOfLevels(design, factors) == 0) {
        err << fmt::format("{}: {} has no centre; all centre points are its first level, {}.\n",
                           side,
                           alone->name,
                           Quoted(alone->levels.front()));
    }
}

// The list of wells and the tables of plates name each column once.
void RequireFreeNames(const Study& study, const REDMUPOptions& plates) {
    std::vector<std::string> taken{cPlate, cWell, cName};
    if (plates.GetPlateFactorsUse() == REDMUPOptions::WithPlateColumn) {
        taken.emplace_back(cPlateLetter);
    }
    const auto require = [&](const std::string& name) {
        if (std::find(taken.begin(), taken.end(), name) != taken.end()) {
            FailWith(fmt::format(
                "{}: the factor {} has the name of another column in the list of wells; choose "
                "another name.",
                study.file,
                Quoted(name)));
        }
    };
    for (const StudyFactor& factor : study.factors.All()) {
        require(factor.name);
    }
    if (const auto& filler = study.factors.GetFiller()) {
        require(filler->name);
    }
}

void PrintUnused(const Study& study, std::ostream& err) {
    if (study.options.get_length() > 0 || study.model || study.objective != EObjective::Screening) {
        err << fmt::format(
            "{}: objective, model and options of the study are not used; the sides of a plate have "
            "those of their designs.\n",
            study.file);
    }
}

}  // namespace

void RunPlate(const PlateArguments& arguments, std::ostream& out, std::ostream& err) {
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    if (!arguments.output.empty() && IsSameFile(arguments.output, study.file)) {
        FailWith(fmt::format("-o: {} is the study itself; choose another file.", arguments.output));
    }
    PrintUnused(study, err);
    const PlateDesign made = MakePlateDesign(study, arguments);
    RequireFreeNames(study, made.Plates());
    const PlateRuns runs = MakeRuns(made, study.factors);
    if (!arguments.output.empty()) {
        QvFile::ReplaceAll(arguments.output, ToCsv(MakeRunList(runs)));
    }
    PrintGrids(runs, study.factors, out);
    PrintSide("columns", made.Plates().GetHorizontalDesign(), study.factors, err);
    PrintSide("rows", made.Plates().GetVerticalDesign(), study.factors, err);
    err << fmt::format("{} runs on {} plate{} of {} wells\n",
                       runs.names.size(),
                       runs.plates,
                       runs.plates == 1 ? "" : "s",
                       runs.Wells());
}
