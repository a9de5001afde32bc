#include "frame/CandidateSetFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/NumberText.h"

namespace {

using CandidateSetFile::Content;
using CandidateSetFile::Layers;
using CandidateSetFile::Limits;
using CandidateSetFile::Status;

/// Significant digits of a number, the default of a stream in the classic locale.
constexpr int cDigits = 6;
/// Rows between two looks at the user's wish to stop.
constexpr int cRowsPerLook = 4096;
/// Fields in front of the values: name and percentage, or a percentage only.
constexpr int cMaxHeadFields = 2;

void AppendNumber(std::string& text, float value) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(),
                                   digits.data() + digits.size(),
                                   value,
                                   std::chars_format::general,
                                   cDigits)
                         .ptr;
    text.append(digits.data(), end);
    text += '\t';
}

void AppendLine(std::string& text, int value) {
    text += std::to_string(value);
    text += '\n';
}

// A line end in a path would leave its rest outside the comment.
std::string OneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
    return line;
}

/// The lines of a text. What stands behind the last line feed is no line: the file was cut short
/// there.
class Lines {
  public:
    explicit Lines(std::string_view text) : rest_(text) {}

    /// The next line that is no comment; false when there is none.
    bool Next(std::string_view& line) {
        while (TakeLine(line)) {
            if (line.empty() || line.front() != '/') {
                return true;
            }
        }
        return false;
    }
    /// The next line that is neither a comment nor empty.
    bool NextFilled(std::string_view& line) {
        while (Next(line)) {
            if (!line.empty()) {
                return true;
            }
        }
        return false;
    }
    [[nodiscard]] std::string_view Rest() const { return rest_; }

  private:
    bool TakeLine(std::string_view& line) {
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) {
            return false;
        }
        line = rest_.substr(0, end);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        rest_.remove_prefix(end + 1);
        return true;
    }

    std::string_view rest_;
};

/// The fields of one line. The tab at the end of a line begins no further field.
class Fields {
  public:
    explicit Fields(std::string_view line) : rest_(line) {
        if (!rest_.empty() && rest_.back() == '\t') {
            rest_.remove_suffix(1);
        }
    }

    [[nodiscard]] std::size_t Count() const {
        return static_cast<std::size_t>(std::count(rest_.begin(), rest_.end(), '\t')) + 1;
    }
    /// An empty field when there is none left.
    std::string_view Take() {
        const std::size_t end = std::min(rest_.find('\t'), rest_.size());
        const std::string_view field = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return field;
    }
    template <class Number>
    [[nodiscard]] bool TakeNumber(Number& value) {
        return QvNumberText::Parse(Take(), value);
    }
    float TakeFloat() {
        float value = NCDataMatrix<float>::cMissing;
        return QvNumberText::Parse(Take(), value) ? value : NCDataMatrix<float>::cMissing;
    }

  private:
    std::string_view rest_;
};

bool ReadNumberLine(Lines& lines, int& number) {
    std::string_view line;
    return lines.NextFilled(line) && QvNumberText::Parse(line, number);
}

/// Where the rows of a file go.
class Target {
  public:
    Target(const Layers& layers, int fileRows) : fileRows_(fileRows) {
        const auto chosen = static_cast<std::size_t>(std::max(layers.chosen, 0));
        if (layers.numbers.empty() || chosen == 0) {
            last_ = fileRows;
            return;
        }
        first_ = layers.startPoints[chosen - 1];
        last_ = first_ + layers.numbers[chosen - 1] - 1;
        withCentroid_ = chosen == layers.numbers.size();
    }

    /// Rows to read.
    [[nodiscard]] int Size() const { return last_ - first_ + 1 + (withCentroid_ ? 1 : 0); }
    /// Calls `store` with every row of the target that row `fileRow` of the file is to fill. The
    /// overall centroid, last in the file, belongs behind the last layer.
    template <class Store>
    void ForEachRow(int fileRow, const Store& store) const {
        if (fileRow >= first_ && fileRow <= last_) {
            store(fileRow - first_ + 1);
        }
        if (withCentroid_ && fileRow == fileRows_) {
            store(Size());
        }
    }

  private:
    int fileRows_;
    int first_ = 1;
    int last_ = 0;
    bool withCentroid_ = false;
};

bool FitLayers(const Layers& layers, int fileRows) {
    if (layers.startPoints.size() != layers.numbers.size() ||
        (!layers.numbers.empty() && layers.chosen > static_cast<int>(layers.numbers.size()))) {
        return false;
    }
    for (std::size_t i = 0; i < layers.numbers.size(); ++i) {
        const int start = layers.startPoints[i];
        const int number = layers.numbers[i];
        if (start < 1 || start > fileRows || number < 0 || number > fileRows - start + 1) {
            return false;
        }
    }
    return true;
}

/// The reading of one text, step by step.
class Reader {
  public:
    Reader(std::string_view text, const Layers& layers, NCProgress* progress)
        : lines_(text), layers_(layers), progress_(progress) {}

    Status Read(Content& content) {
        Status status = ReadSize();
        if (status == Status::Success) {
            status = ReadRows();
        }
        if (status == Status::Success && layers_.numbers.empty()) {
            status = ReadLimits();
        }
        if (status == Status::Success) {
            status = ReadEnd();
        }
        if (status == Status::Success) {
            content = std::move(content_);
        }
        return status;
    }

  private:
    Status ReadSize() {
        if (!ReadNumberLine(lines_, fileRows_) || !ReadNumberLine(lines_, columns_) ||
            fileRows_ <= 0 || columns_ <= 0) {
            return Status::EmptyOrIncorrect;
        }
        return FitLayers(layers_, fileRows_) ? Status::Success : Status::WidthMismatch;
    }

    Status ReadRows() {
        Status status = FindShape();
        if (status != Status::Success) {
            return status;
        }
        const Target target(layers_, fileRows_);
        if (!MakeRoom(target.Size())) {
            return Status::EmptyOrIncorrect;
        }
        for (int row = 1; row <= fileRows_ && status == Status::Success; ++row) {
            status = ReadRow(target, row);
            Look(row);
        }
        return status;
    }

    // The first row tells whether there are names and percentages.
    Status FindShape() {
        Lines ahead = lines_;
        std::string_view line;
        if (!ahead.NextFilled(line)) {
            return Status::EmptyOrIncorrect;
        }
        width_ = Fields(line).Count();
        const auto columns = static_cast<std::size_t>(columns_);
        if (width_ < columns || width_ > columns + cMaxHeadFields) {
            return Status::WidthMismatch;
        }
        hasNames_ = width_ == columns + 2;
        hasPercentages_ = width_ > columns;
        return Status::Success;
    }

    // A row has a tab or a line feed behind each field, so a text too short for the rows that it
    // promises is found out before memory is taken for them.
    [[nodiscard]] bool MakeRoom(int rows) {
        if (rows == 0 || static_cast<std::size_t>(fileRows_) > lines_.Rest().size() / width_) {
            return false;
        }
        content_.rows.SetSize(rows, columns_);
        content_.names.resize(hasNames_ ? static_cast<std::size_t>(rows) : 0);
        content_.percentages.resize(hasPercentages_ ? static_cast<std::size_t>(rows) : 0);
        return true;
    }

    Status ReadRow(const Target& target, int fileRow) {
        std::string_view line;
        // Empty lines may stand in front of the rows, never between them.
        const bool found = fileRow == 1 ? lines_.NextFilled(line) : lines_.Next(line);
        if (!found || line.empty()) {
            return Status::EmptyOrIncorrect;
        }
        if (Fields(line).Count() != width_) {
            return Status::WidthMismatch;
        }
        target.ForEachRow(fileRow, [&](int row) { StoreRow(Fields(line), row); });
        return Status::Success;
    }

    void StoreRow(Fields fields, int row) {
        const auto index = static_cast<std::size_t>(row - 1);
        if (hasNames_) {
            content_.names[index] = fields.Take();
        }
        if (hasPercentages_) {
            content_.percentages[index] = fields.TakeFloat();
        }
        for (float& cell : content_.rows.RowSpan(row)) {
            const std::string_view field = fields.Take();
            if (field.empty()) {
                break;
            }
            static_cast<void>(QvNumberText::Parse(field, cell));
        }
    }

    void Look(int row) const {
        if (progress_ != nullptr && row % cRowsPerLook == 0 &&
            !progress_->SetValue(100.0F * static_cast<float>(row) /
                                 static_cast<float>(fileRows_))) {
            throw CancelException();
        }
    }

    // An empty line behind the rows, or the end of the text, means that there are no limits.
    Status ReadLimits() {
        std::string_view line;
        if (!lines_.Next(line) || line.empty()) {
            return Status::Success;
        }
        int variables = 0;
        if (!QvNumberText::Parse(line, variables) || variables != columns_) {
            return Status::WidthMismatch;
        }
        Limits& limits = content_.limits.emplace();
        for (int variable = 1; variable <= variables; ++variable) {
            int isMixture = 0;
            if (!lines_.Next(line)) {
                return Status::EmptyOrIncorrect;
            }
            Fields fields(line);
            if (fields.Count() != 3 || !fields.TakeNumber(isMixture)) {
                return Status::WidthMismatch;
            }
            limits.isMixture.push_back(isMixture);
            limits.low.push_back(fields.TakeFloat());
            limits.high.push_back(fields.TakeFloat());
        }
        return Status::Success;
    }

    // The counts, if any, and nothing behind them.
    Status ReadEnd() {
        std::string_view line;
        if (lines_.NextFilled(line)) {
            // Deliberate: edge centres stand first here, unlike in the record.
            DOpt::NumData& counts = content_.numData;
            Fields fields(line);
            if (fields.Count() != 3 || !fields.TakeNumber(counts.NumEdges) ||
                !fields.TakeNumber(counts.ExtVert) || !fields.TakeNumber(counts.NumHiDimCent) ||
                lines_.NextFilled(line)) {
                return Status::EmptyOrIncorrect;
            }
        }
        return lines_.Rest().empty() ? Status::Success : Status::EmptyOrIncorrect;
    }

    Lines lines_;
    const Layers& layers_;
    NCProgress* progress_;
    int fileRows_ = 0;
    int columns_ = 0;
    std::size_t width_ = 0;  // fields of a row
    bool hasNames_ = false;
    bool hasPercentages_ = false;
    Content content_;
};

}  // namespace

std::string CandidateSetFile::Write(const Text& text,
                                    std::string_view name,
                                    std::string_view time) {
    const bool hasHead = text.names != nullptr && text.percentages != nullptr;
    std::string file = "/ Initial candidate set file <" + OneLine(name) +
                       "> generated by QORVA: " + OneLine(time) + ".\n";
    AppendLine(file, text.rows.SizeRows());
    AppendLine(file, text.rows.SizeColumns());
    for (int row = 1; row <= text.rows.SizeRows(); ++row) {
        if (hasHead) {
            file += (*text.names)[static_cast<std::size_t>(row - 1)];
            file += '\t';
            AppendNumber(file, (*text.percentages)[static_cast<std::size_t>(row - 1)]);
        }
        for (const float cell : text.rows.RowSpan(row)) {
            AppendNumber(file, cell);
        }
        file += '\n';
    }
    file += '\n';
    file += std::to_string(text.numData.NumEdges) + '\t';
    file += std::to_string(text.numData.ExtVert) + '\t';
    AppendLine(file, text.numData.NumHiDimCent);
    return file;
}

bool CandidateSetFile::IsLegalName(std::string_view name) {
    return name.find_first_of("\t\n\r") == std::string_view::npos &&
           (name.empty() || name.front() != '/');
}

CandidateSetFile::Status CandidateSetFile::Read(std::string_view text,
                                                const Layers& layers,
                                                NCProgress* progress,
                                                Content& content) {
    return Reader(text, layers, progress).Read(content);
}
