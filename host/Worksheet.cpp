#include "host/Worksheet.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <random>

#include "foundation/utl/QvRandom.h"
#include "host/HostError.h"

namespace {

// What shares in float leave of a whole is known no finer than this; 1 - 0.3 - 0.2 is to be 0.5.
constexpr double cShareStep = 1e-6;
// Distance in coded units, or in shares, at which a value stands at an end of its range.
constexpr float cEndTolerance = 1e-6F;
// Share of a Multilevel factor's range by which a scaled and rescaled setting may be off.
constexpr float cSettingTolerance = 1e-5F;

int FactorCount(const StudyFactors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

[[noreturn]] void FailAtCell(int run, const std::string& column, float cell) {
    FailWith(fmt::format(
        "Run {} of the design has no meaning in column {}: {}.", run, Quoted(column), cell));
}

// Number from 0 of a level or block by its letter code.
std::optional<int> NumberOfLetter(float code, int count) {
    const double number = std::floor(static_cast<double>(code) + 0.5 - Factors::cFirstLevelCode);
    return number >= 0 && number < count ? std::optional<int>(static_cast<int>(number))
                                         : std::nullopt;
}

// Number from 0 of a level or block by its row of the sum-to-zero coding matrix: all -1 is the
// first, a single 1 at column k is number k.
std::optional<int> NumberOfCodingRow(std::span<const float> row) {
    if (std::all_of(row.begin(), row.end(), [](float cell) { return cell == -1; })) {
        return 0;
    }
    const auto one = std::find(row.begin(), row.end(), 1.0F);
    const auto zeros = std::count(row.begin(), row.end(), 0.0F);
    if (one == row.end() || zeros + 1 != static_cast<long>(row.size())) {
        return std::nullopt;
    }
    return static_cast<int>(one - row.begin()) + 1;
}

bool HasLevels(CEType::EType type) {
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

// Of a factor with a transform, -99 is a value outside the transform's range; of one without, -99
// is a number like any other.
bool IsMissing(const StudyFactor& factor, float coded, float real) {
    return !std::isfinite(real) || coded == Factors::cNoValue ||
           (real == Factors::cNoValue && factor.transform);
}

// Position of a real value between the ends of a continuous factor, -1 to 1.
float CodeOf(const StudyFactor& factor, float real) {
    float low = factor.low;
    float high = factor.high;
    if (factor.transform) {
        factor.transform->TransformValue(&low);
        factor.transform->TransformValue(&high);
        factor.transform->TransformValue(&real);
    }
    return (real + real - (low + high)) / (high - low);
}

// A value at an end of the range as the user wrote it: the engine's arithmetic in float may give
// 0.099999994 for a low setting of 0.1.
float SnappedToEnd(const StudyFactor& factor, float code, float value, bool pseudo) {
    const auto isAt = [&](float end, float endCode) {
        // A pseudo-component proportion has no code for the ends of its own, but is a share.
        return pseudo && factor.type == CEType::Formulation
                   ? std::abs(value - end) < cEndTolerance
                   : std::abs(code - endCode) < cEndTolerance;
    };
    if (isAt(factor.low, -1.0F)) {
        return factor.low;
    }
    return isAt(factor.high, 1.0F) ? factor.high : value;
}

void AddCoded(WorksheetRun& run, const StudyFactors& factors, int factor, float code, bool pseudo) {
    const StudyFactor& asked = factors.At(factor);
    float value = factors.FromCoded(factor, code, pseudo);
    if (HasLevels(asked.type)) {
        const auto level = NumberOfLetter(code, static_cast<int>(factors.GetLevelCount(factor)));
        if (!level) {
            FailAtCell(run.standardOrder, asked.name, code);
        }
        value = asked.type == CEType::Qualitative ? static_cast<float>(*level) : value;
    } else if (IsMissing(asked, code, value)) {
        FailAtCell(run.standardOrder, asked.name, code);
    } else {
        value = SnappedToEnd(asked, code, value, pseudo);
    }
    run.values.push_back(value);
    run.codes.push_back(code);
}

// Cells of one factor in real units: a value, or a row of the coding matrix.
void AddReal(WorksheetRun& run, const StudyFactor& factor, std::span<const float> cells) {
    if (factor.type == CEType::Qualitative) {
        const auto level = NumberOfCodingRow(cells);
        if (!level) {
            FailAtCell(run.standardOrder, factor.name, cells.front());
        }
        run.values.push_back(static_cast<float>(*level));
        run.codes.push_back(Factors::cFirstLevelCode + static_cast<float>(*level));
        return;
    }
    const float value = cells.front();
    if (!std::isfinite(value)) {
        FailAtCell(run.standardOrder, factor.name, value);
    }
    run.values.push_back(value);
    if (factor.type != CEType::Multilevel) {
        run.codes.push_back(CodeOf(factor, value));
        return;
    }
    const std::vector<float>& settings = factor.settings;
    const auto setting =
        std::min_element(settings.begin(), settings.end(), [value](float a, float b) {
            return std::abs(a - value) < std::abs(b - value);
        });
    if (std::abs(*setting - value) > cSettingTolerance * (settings.back() - settings.front())) {
        FailAtCell(run.standardOrder, factor.name, value);
    }
    run.codes.push_back(Factors::cFirstLevelCode +
                        static_cast<float>(setting - factor.settings.begin()));
}

void AddFactors(WorksheetRun& run,
                std::span<const float> row,
                const StudyFactors& factors,
                const DesignForm& form) {
    std::size_t column = 0;
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        if (form.coded) {
            AddCoded(run, factors, factor, row[column], form.pseudo);
            ++column;
        } else {
            const std::size_t width = factors.GetExpandedVariableCount(factor);
            AddReal(run, factors.At(factor), row.subspan(column, width));
            column += width;
        }
    }
}

// Block number from 1, by a letter code or by a row of the coding matrix.
int BlockOf(std::span<const float> cells, const DesignForm& form, int run) {
    const auto number =
        form.coded ? NumberOfLetter(cells.front(), form.blocks) : NumberOfCodingRow(cells);
    if (!number) {
        FailAtCell(run, "Block", cells.front());
    }
    return *number + 1;
}

float FillerShare(const WorksheetRun& run, const StudyFactors& factors) {
    double rest = 1;
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        if (factors.GetFactorType(factor) == CEType::Formulation) {
            rest -= static_cast<double>(run.values[static_cast<std::size_t>(factor)]);
        }
    }
    return static_cast<float>(std::round(rest / cShareStep) * cShareStep);
}

std::size_t FactorColumns(const StudyFactors& factors, bool coded) {
    return coded ? factors.GetDesignFactorCount() : factors.GetDesignFactorCountExpanded();
}

std::size_t BlockColumns(const DesignForm& form) {
    if (form.blocks < 2) {
        return 0;
    }
    return form.coded ? 1 : static_cast<std::size_t>(form.blocks) - 1;
}

std::string NumberText(float value) {
    // Adding 0 turns -0, which nobody would write, into 0.
    return fmt::format("{}", value + 0.0F);
}

std::string ValueText(const StudyFactor& factor, float value) {
    return factor.type == CEType::Qualitative ? factor.levels.at(static_cast<std::size_t>(value))
                                              : NumberText(value);
}

std::vector<std::string> MakeHeader(const StudyFactors& factors, bool blocks, bool filler) {
    std::vector<std::string> header;
    for (const StudyFactor& factor : factors.All()) {
        header.push_back(factor.name);
    }
    if (filler) {
        const StudyFactors::Filler& named = *factors.GetFiller();
        header.insert(header.begin() + static_cast<std::ptrdiff_t>(named.place), named.name);
    }
    header.insert(header.begin(), {"StdOrder", "RunOrder"});
    if (blocks) {
        header.emplace_back("Block");
    }
    return header;
}

std::vector<std::string> MakeLine(const WorksheetRun& run,
                                  const StudyFactors& factors,
                                  bool coded,
                                  bool filler) {
    std::vector<std::string> line;
    for (std::size_t i = 0; i < run.values.size(); ++i) {
        line.push_back(coded ? NumberText(run.codes[i])
                             : ValueText(factors.All()[i], run.values[i]));
    }
    if (filler) {
        line.insert(line.begin() + static_cast<std::ptrdiff_t>(factors.GetFiller()->place),
                    NumberText(run.fillerShare));
    }
    line.insert(line.begin(),
                {fmt::format("{}", run.standardOrder), fmt::format("{}", run.runOrder)});
    if (run.block > 0) {
        line.push_back(fmt::format("{}", run.block));
    }
    return line;
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of("\",\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter;
        if (letter == '"') {
            quoted += letter;
        }
    }
    return quoted + '"';
}

void AppendCsvLine(std::string& text, const std::vector<std::string>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        text += (i > 0 ? "," : "") + CsvField(fields[i]);
    }
    text += "\n";
}

}  // namespace

std::vector<WorksheetRun> DecodeRuns(const NCDataMatrix<float>& matrix,
                                     const StudyFactors& factors,
                                     const DesignForm& form) {
    const std::size_t factorColumns = FactorColumns(factors, form.coded);
    const std::size_t blockColumns = BlockColumns(form);
    if (static_cast<std::size_t>(matrix.SizeColumns()) != factorColumns + blockColumns) {
        FailWith(fmt::format("The design has {} columns; its factors and blocks need {}.",
                             matrix.SizeColumns(),
                             factorColumns + blockColumns));
    }
    std::vector<WorksheetRun> runs(static_cast<std::size_t>(matrix.SizeRows()));
    for (int number = 1; number <= matrix.SizeRows(); ++number) {
        WorksheetRun& run = runs[static_cast<std::size_t>(number - 1)];
        run.standardOrder = number;
        AddFactors(run, matrix.RowSpan(number), factors, form);
        if (blockColumns > 0) {
            run.block = BlockOf(matrix.RowSpan(number).subspan(factorColumns), form, number);
        }
        if (factors.HasFiller()) {
            run.fillerShare = FillerShare(run, factors);
        }
    }
    return runs;
}

std::vector<int> MakeRunOrder(const std::vector<WorksheetRun>& runs, std::uint32_t seed) {
    std::vector<std::size_t> sequence(runs.size());
    std::iota(sequence.begin(), sequence.end(), std::size_t{0});
    std::mt19937 engine(seed);
    QvRandom::Shuffle(std::span(sequence), engine);
    // Sorting a shuffled sequence by block leaves every block shuffled.
    std::stable_sort(sequence.begin(), sequence.end(), [&](std::size_t a, std::size_t b) {
        return runs[a].block < runs[b].block;
    });
    std::vector<int> order(runs.size());
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        order[sequence[i]] = static_cast<int>(i) + 1;
    }
    return order;
}

WorksheetTable MakeWorksheetTable(const std::vector<WorksheetRun>& runs,
                                  const StudyFactors& factors,
                                  bool coded) {
    const bool filler = factors.HasFiller() && !coded;
    const bool blocks = !runs.empty() && runs.front().block > 0;
    std::vector<const WorksheetRun*> sorted;
    sorted.reserve(runs.size());
    for (const WorksheetRun& run : runs) {
        sorted.push_back(&run);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto* a, const auto* b) {
        return a->runOrder < b->runOrder;
    });
    WorksheetTable table;
    table.header = MakeHeader(factors, blocks, filler);
    for (const WorksheetRun* run : sorted) {
        table.lines.push_back(MakeLine(*run, factors, coded, filler));
    }
    return table;
}

std::string ToCsv(const WorksheetTable& table) {
    std::string text;
    AppendCsvLine(text, table.header);
    for (const auto& line : table.lines) {
        AppendCsvLine(text, line);
    }
    return text;
}
