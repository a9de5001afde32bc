#include "host/RunsFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "foundation/utl/QvFile.h"
#include "host/CandidateFile.h"
#include "host/CsvText.h"
#include "host/HostError.h"
#include "host/JsonPlace.h"

namespace {

// Shares that a user writes have a few digits.
constexpr double cSumTolerance = 1e-4;
// Share of a Multilevel factor's range by which a written setting may be off.
constexpr float cSettingTolerance = 1e-5F;
constexpr const char* cBlockColumn = "Block";

// What columns of the file hold.
struct Columns {
    std::vector<std::size_t> ofFactors;  // one a factor of the study
    std::optional<std::size_t> ofBlock;
};

// A cell and the way to it.
struct Cell {
    const std::string& file;
    int line;
    const std::string& column;
    const std::string& text;

    [[noreturn]] void Fail(const std::string& problem) const {
        FailWith(fmt::format("{}: line {}, column {}: {}", file, line, Quoted(column), problem));
    }
    [[noreturn]] void Refuse(const std::string& allowed) const {
        Fail(text.empty() ? fmt::format("the value is missing; {}.", allowed)
                          : fmt::format("{} {}.", Quoted(text), allowed));
    }
};

bool IsOrderColumn(const std::string& name) {
    return name == "StdOrder" || name == "RunOrder";
}

bool IsFiller(const std::string& name, const StudyFactors& factors) {
    return factors.GetFiller() && factors.GetFiller()->name == name;
}

std::size_t FindColumn(const CsvRecord& header, const std::string& name, const std::string& file) {
    const auto found = std::ranges::find(header.fields, name);
    if (found == header.fields.end()) {
        std::vector<std::string> there;
        there.reserve(header.fields.size());
        for (const std::string& field : header.fields) {
            there.push_back(Quoted(field));
        }
        FailWith(fmt::format("{}: line {}: there is no column {}; the columns are {}.",
                             file,
                             header.line,
                             Quoted(name),
                             ListOf(there, "and")));
    }
    if (std::find(found + 1, header.fields.end(), name) != header.fields.end()) {
        FailWith(fmt::format(
            "{}: line {}: the column {} stands there twice.", file, header.line, Quoted(name)));
    }
    return static_cast<std::size_t>(found - header.fields.begin());
}

Columns FindColumns(const CsvRecord& header,
                    const Study& study,
                    int blocks,
                    const std::string& file) {
    Columns columns;
    columns.ofFactors.reserve(study.factors.All().size());
    for (const StudyFactor& factor : study.factors.All()) {
        columns.ofFactors.push_back(FindColumn(header, factor.name, file));
    }
    if (blocks > 1) {
        columns.ofBlock = FindColumn(header, cBlockColumn, file);
    }
    return columns;
}

void NoteUnused(const CsvRecord& header, const Study& study, int blocks, RunsFile& file) {
    std::vector<std::string> unused;
    for (const std::string& name : header.fields) {
        const bool isKnown = study.factors.Find(name) >= 0 || IsOrderColumn(name) ||
                             IsFiller(name, study.factors) || (blocks > 1 && name == cBlockColumn);
        if (!isKnown) {
            unused.push_back(Quoted(name));
        }
    }
    if (!unused.empty()) {
        file.notes.push_back(
            fmt::format("the columns {} are no factors and are not used", ListOf(unused, "and")));
    }
}

float NumberIn(const Cell& cell) {
    const char* const end = cell.text.data() + cell.text.size();
    float number = 0;
    const auto [rest, error] = std::from_chars(cell.text.data(), end, number);
    if (error == std::errc::result_out_of_range) {
        cell.Refuse("is beyond what a number of 32 bits holds");
    }
    if (error != std::errc() || rest != end || !std::isfinite(number)) {
        cell.Refuse("is no number");
    }
    if (number == Factors::cNoValue) {
        cell.Refuse("is the engine's mark of a missing value");
    }
    return number;
}

// A value without an image would count as missing wherever the transform is applied.
void RequireImage(const Cell& cell, const StudyFactor& factor, float value) {
    if (factor.transform && factor.transform->TransformValue(&value) != NCTransformError::None) {
        cell.Refuse("has no value under the factor's transform");
    }
}

float SettingIn(const Cell& cell, const StudyFactor& factor) {
    const float number = NumberIn(cell);
    const std::vector<float>& settings = factor.settings;
    const float tolerance = cSettingTolerance * (settings.back() - settings.front());
    std::vector<std::string> allowed;
    allowed.reserve(settings.size());
    for (const float setting : settings) {
        if (std::abs(setting - number) <= tolerance) {
            return setting;
        }
        allowed.push_back(fmt::format("{}", setting));
    }
    cell.Refuse("is no setting; allowed are " + ListOf(allowed, "and"));
}

// Number of the level, from 1.
int LevelIn(const Cell& cell, const StudyFactor& factor) {
    const auto found = std::ranges::find(factor.levels, cell.text);
    if (found == factor.levels.end()) {
        std::vector<std::string> allowed;
        allowed.reserve(factor.levels.size());
        for (const std::string& level : factor.levels) {
            allowed.push_back(Quoted(level));
        }
        cell.Refuse("is no level; allowed are " + ListOf(allowed, "and"));
    }
    return static_cast<int>(found - factor.levels.begin()) + 1;
}

int BlockIn(const Cell& cell, int blocks) {
    int block = 0;
    const char* const end = cell.text.data() + cell.text.size();
    const auto [rest, error] = std::from_chars(cell.text.data(), end, block);
    if (error != std::errc() || rest != end || block < 1 || block > blocks) {
        cell.Refuse(fmt::format("is no block; allowed are 1 to {}", blocks));
    }
    return block;
}

void AppendLevel(std::vector<float>& row, int level, int levels) {
    const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, levels);
    const auto codes = coding->RowSpan(level);
    row.insert(row.end(), codes.begin(), codes.end());
}

void RequireWhole(const std::vector<float>& shares, const std::string& file, int line) {
    double sum = 0;
    for (const float share : shares) {
        sum += static_cast<double>(share);
    }
    if (!shares.empty() && std::abs(sum - 1) > cSumTolerance) {
        FailWith(fmt::format("{}: line {}: the formulation factors add up to {:.6g} instead of 1.",
                             file,
                             line,
                             sum));
    }
}

std::vector<float> ReadRun(const CsvRecord& record,
                           const CsvRecord& header,
                           const Columns& columns,
                           const Study& study,
                           int blocks,
                           const std::string& file) {
    std::vector<float> row;
    std::vector<float> shares;
    const auto cellAt = [&](std::size_t column) {
        return Cell{file, record.line, header.fields[column], record.fields[column]};
    };
    for (std::size_t i = 0; i < columns.ofFactors.size(); ++i) {
        const StudyFactor& factor = study.factors.All()[i];
        const Cell cell = cellAt(columns.ofFactors[i]);
        if (factor.type == CEType::Qualitative) {
            AppendLevel(row, LevelIn(cell, factor), static_cast<int>(factor.levels.size()));
            continue;
        }
        row.push_back(factor.type == CEType::Multilevel ? SettingIn(cell, factor) : NumberIn(cell));
        RequireImage(cell, factor, row.back());
        if (factor.type == CEType::Formulation && study.factors.IsMixture()) {
            shares.push_back(row.back());
        }
    }
    if (columns.ofBlock) {
        AppendLevel(row, BlockIn(cellAt(*columns.ofBlock), blocks), blocks);
    }
    RequireWhole(shares, file, record.line);
    return row;
}

// Such runs are the user's affair, but hardly ever meant.
void NoteMisfits(const Study& study, RunsFile& file) {
    int misfits = 0;
    std::string first;
    for (int row = 1; row <= file.matrix.SizeRows(); ++row) {
        const std::string misfit = MisfitOf(file.matrix.RowSpan(row), study);
        if (!misfit.empty() && ++misfits == 1) {
            first =
                fmt::format("line {}: {}", file.lines[static_cast<std::size_t>(row - 1)], misfit);
        }
    }
    if (misfits > 0) {
        file.notes.push_back(fmt::format("{} of {} runs lie outside the study, the first in {}",
                                         misfits,
                                         file.matrix.SizeRows(),
                                         first));
    }
}

}  // namespace

RunsFile ReadRunsFile(const std::string& path, const Study& study, int blocks) {
    const std::vector<CsvRecord> records =
        ReadCsv(QvFile::ReadAll(path, StudyLimits::cMaxFileBytes), path);
    if (records.size() < 2) {
        FailWith(fmt::format(
            "{}: there are no runs; wanted are a line of factor names and one line a run.", path));
    }
    if (records.size() - 1 > static_cast<std::size_t>(StudyLimits::cMaxRuns)) {
        FailWith(fmt::format("{}: more than {} runs.", path, StudyLimits::cMaxRuns));
    }
    const CsvRecord& header = records.front();
    const Columns columns = FindColumns(header, study, blocks, path);
    RunsFile file;
    file.matrix = NCDataMatrix<float>(
        static_cast<int>(records.size()) - 1,
        static_cast<int>(study.factors.GetDesignFactorCountExpanded()) + std::max(blocks - 1, 0));
    file.lines.reserve(records.size() - 1);
    for (std::size_t i = 1; i < records.size(); ++i) {
        const CsvRecord& record = records[i];
        if (record.fields.size() != header.fields.size()) {
            FailWith(fmt::format("{}: line {}: there are {} values for {} columns.",
                                 path,
                                 record.line,
                                 record.fields.size(),
                                 header.fields.size()));
        }
        const std::vector<float> row = ReadRun(record, header, columns, study, blocks, path);
        std::ranges::copy(row, file.matrix.RowSpan(static_cast<int>(i)).begin());
        file.lines.push_back(record.line);
    }
    NoteUnused(header, study, blocks, file);
    NoteMisfits(study, file);
    return file;
}
