#include "host/CandidateFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <string_view>
#include <vector>

#include "foundation/utl/QvFile.h"
#include "host/HostError.h"
#include "host/Interrupt.h"

namespace {

// The engine reads no larger file.
constexpr std::size_t cMaxFileBytes = std::size_t{1} << 30U;
constexpr int cRowsPerLook = 4096;
// Numbers are written with six digits, so they are off by this part of themselves at most, which is
// twice what rounding does, since a float behind them is rounded as well.
constexpr double cDigitsKept = 1e-5;
// The engine's own tolerances, by range and by share of a mixture.
constexpr double cRangeTolerance = 1e-5;
constexpr double cSumTolerance = 1e-4;
// Name and percentage in front of a row's values.
constexpr int cHeadFields = 2;

/// The lines of a text that are no comments, with their numbers from 1.
class NumberedLines {
  public:
    explicit NumberedLines(std::string_view text) : rest_(text) {}

    /// False at the end, and where no line feed ends the line.
    bool Next(std::string_view& line) {
        while (!rest_.empty()) {
            ++number_;
            const std::size_t end = rest_.find('\n');
            if (end == std::string_view::npos) {
                return false;
            }
            line = rest_.substr(0, end);
            rest_.remove_prefix(end + 1);
            if (!line.empty() && line.back() == '\r') {
                line.remove_suffix(1);
            }
            if (line.empty() || line.front() != '/') {
                return true;
            }
        }
        return false;
    }
    bool NextFilled(std::string_view& line) {
        while (Next(line)) {
            if (!line.empty()) {
                return true;
            }
        }
        return false;
    }
    [[nodiscard]] bool EndsInALine() const { return !rest_.empty(); }
    [[nodiscard]] int Number() const { return number_; }

  private:
    std::string_view rest_;
    int number_ = 0;
};

bool ParseCount(std::string_view text, int& count) {
    text = Trimmed(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    return error == std::errc() && end == text.data() + text.size() && count > 0;
}

// The tab at the end of a row begins no further field.
int FieldCount(std::string_view line) {
    const auto tabs = static_cast<int>(std::count(line.begin(), line.end(), '\t'));
    return line.ends_with('\t') ? tabs : tabs + 1;
}

std::string CutShort(const NumberedLines& lines, const std::string& missing) {
    return lines.EndsInALine()
               ? fmt::format("line {} is cut short; missing are {}", lines.Number(), missing)
               : fmt::format("it ends behind line {}; missing are {}", lines.Number(), missing);
}

// Looks at one row; an empty text for one that is right. The first one tells the width of all.
std::string RowFault(NumberedLines& lines, int row, int rows, int columns, int& width) {
    std::string_view line;
    const bool found = row == 1 ? lines.NextFilled(line) : lines.Next(line);
    if (!found) {
        return CutShort(lines, fmt::format("{} of {} rows", rows - row + 1, rows));
    }
    if (line.empty()) {
        return fmt::format("line {} is empty, but {} rows are told and only {} found",
                           lines.Number(),
                           rows,
                           row - 1);
    }
    const int fields = FieldCount(line);
    if (row == 1) {
        width = fields;
        if (width < columns || width > columns + cHeadFields) {
            return fmt::format(
                "line {} has {} values for {} columns", lines.Number(), fields, columns);
        }
    }
    return fields == width
               ? std::string()
               : fmt::format(
                     "line {} has {} fields, the first row has {}", lines.Number(), fields, width);
}

// The engine's reader tells that a file is wrong; this names the first line that is.
std::string FaultOf(std::string_view text) {
    NumberedLines lines(text);
    std::string_view line;
    int rows = 0;
    int columns = 0;
    for (const auto& [count, what] : {std::pair{&rows, "rows"}, std::pair{&columns, "columns"}}) {
        if (!lines.NextFilled(line)) {
            return text.empty() ? "it is empty"
                                : CutShort(lines, fmt::format("the number of {}", what));
        }
        if (!ParseCount(line, *count)) {
            return fmt::format("line {} must hold the number of {}, which is at least 1; it is {}",
                               lines.Number(),
                               what,
                               Quoted(line));
        }
    }
    int width = 0;
    for (int row = 1; row <= rows; ++row) {
        if (std::string fault = RowFault(lines, row, rows, columns, width); !fault.empty()) {
            return fault;
        }
    }
    return fmt::format(
        "behind its {} rows it must have an empty line, three counts and nothing more", rows);
}

[[noreturn]] void FailUnread(const std::string& path) {
    // Says by itself why a file cannot be opened.
    const std::string text = QvFile::ReadAll(path, cMaxFileBytes);
    FailWith(fmt::format("{}: this is no candidate set file: {}.", path, FaultOf(text)));
}

bool IsNear(float value, float setting, double range) {
    const auto wide = static_cast<double>(setting);
    return std::fabs(static_cast<double>(value) - wide) <=
           cRangeTolerance * range + cDigitsKept * std::fabs(wide);
}

bool IsWithin(float value, float low, float high) {
    const double range = static_cast<double>(high) - static_cast<double>(low);
    return (value >= low || IsNear(value, low, range)) &&
           (value <= high || IsNear(value, high, range));
}

// Whether the columns of a factor or of the blocks are those of one of its levels.
bool IsLevel(std::span<const float> columns, int levels) {
    const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, levels);
    for (int level = 1; level <= coding->SizeRows(); ++level) {
        const auto codes = coding->RowSpan(level);
        if (std::equal(codes.begin(), codes.end(), columns.begin(), [](float code, float value) {
                return IsNear(value, code, 1);
            })) {
            return true;
        }
    }
    return false;
}

std::string SettingMisfit(const StudyFactor& factor, std::span<const float> columns) {
    const float value = columns.front();
    if (factor.type == CEType::Qualitative) {
        return IsLevel(columns, static_cast<int>(factor.levels.size()))
                   ? std::string()
                   : fmt::format("the columns of {} are those of no level", Quoted(factor.name));
    }
    if (factor.type == CEType::Multilevel) {
        const bool known =
            std::ranges::any_of(factor.settings, [value](float s) { return IsNear(value, s, 0); });
        return known ? std::string()
                     : fmt::format(
                           "{} is {}, which is none of its settings", Quoted(factor.name), value);
    }
    return IsWithin(value, factor.low, factor.high) ? std::string()
                                                    : fmt::format("{} is {}; allowed are {} to {}",
                                                                  Quoted(factor.name),
                                                                  value,
                                                                  factor.low,
                                                                  factor.high);
}

std::string SumMisfit(const std::vector<float>& values, const StudyFactors& factors) {
    if (factors.GetMixtureFactorCount() == 0) {
        return {};
    }
    auto sum = static_cast<double>(factors.GetConstantMixtureShare());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (factors.All()[i].type == CEType::Formulation) {
            sum += static_cast<double>(values[i]);
        }
    }
    return std::fabs(sum - 1) <= cSumTolerance
               ? std::string()
               : fmt::format("the formulation factors add up to {:.6g} instead of 1", sum);
}

bool Keeps(const NCDOE::Constraint& constraint, const std::vector<float>& values) {
    double sum = 0;
    double size = std::fabs(constraint.value);
    for (const NCDOE::Constraint::Term& term : constraint.terms) {
        const double part = static_cast<double>(values.at(static_cast<std::size_t>(term.factor))) *
                            term.coefficient;
        sum += part;
        size += std::fabs(part);
    }
    const double excess =
        constraint.greaterOrEqual ? constraint.value - sum : sum - constraint.value;
    return excess <= cDigitsKept * size;
}

std::string ConstraintMisfit(const std::vector<float>& values, const Study& study) {
    int number = 0;
    for (const NCDOE::Constraint& constraint : study.constraints.GetConstraints()) {
        ++number;
        if (!Keeps(constraint, values)) {
            return fmt::format("constraint {} is broken", number);
        }
    }
    return {};
}

// Blocks that the study asks for.
unsigned int BlocksOf(const Study& study) {
    return study.options.has_child("blocks")
               ? static_cast<unsigned int>(study.options.get_child("blocks").get_integer())
               : 1U;
}

void LookAtRows(const Study& study, CandidateFile& file) {
    for (int row = 1; row <= file.set.SizeRows(); ++row) {
        const std::string misfit = MisfitOf(file.set.RowSpan(row), study);
        if (!misfit.empty() && ++file.misfits == 1) {
            file.firstMisfit = fmt::format("row {}: {}", row, misfit);
        }
        if (row % cRowsPerLook == 0) {
            Interrupt::ThrowIfRequested();
        }
    }
}

}  // namespace

int CandidateColumns(const Study& study) {
    return static_cast<int>(study.factors.GetDesignFactorCountExpanded() + BlocksOf(study) - 1);
}

std::string MisfitOf(std::span<const float> row, const Study& study) {
    if (std::ranges::find(row, NCDataMatrix<float>::cMissing) != row.end()) {
        return "a value is missing";
    }
    std::vector<float> values;
    std::span<const float> rest = row;
    for (const StudyFactor& factor : study.factors.All()) {
        const std::size_t width =
            factor.type == CEType::Qualitative ? factor.levels.size() - 1 : std::size_t{1};
        if (std::string misfit = SettingMisfit(factor, rest.first(width)); !misfit.empty()) {
            return misfit;
        }
        values.push_back(rest.front());
        rest = rest.subspan(width);
    }
    if (!rest.empty() && !IsLevel(rest, static_cast<int>(rest.size()) + 1)) {
        return "the columns of the block are those of no block";
    }
    if (std::string misfit = SumMisfit(values, study.factors); !misfit.empty()) {
        return misfit;
    }
    return ConstraintMisfit(values, study);
}

CandidateFile ReadCandidateFile(const std::string& path, const Study& study) {
    CandidateFile file;
    if (!file.set.ReadCandidateSet(path, -1, nullptr)) {
        FailUnread(path);
    }
    const int columns = CandidateColumns(study);
    if (file.set.SizeColumns() != columns) {
        FailWith(
            fmt::format("{}: the candidate set has {} columns, the study {} has {}: one a "
                        "factor, levels - 1 for a qualitative factor and for the blocks.",
                        path,
                        file.set.SizeColumns(),
                        study.file,
                        columns));
    }
    LookAtRows(study, file);
    return file;
}
