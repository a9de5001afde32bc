#include "host/CsvText.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/HostError.h"

namespace {

constexpr std::string_view cByteOrderMark = "\xEF\xBB\xBF";

class CsvReader {
  public:
    CsvReader(std::string_view text, const std::string& file) : rest_(text), file_(file) {
        if (rest_.starts_with(cByteOrderMark)) {
            rest_.remove_prefix(cByteOrderMark.size());
        }
    }

    [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

    CsvRecord Next() {
        CsvRecord record;
        record.line = line_;
        do {
            record.fields.push_back(NextField());
        } while (Take(','));
        Take('\r');
        if (Take('\n')) {
            ++line_;
        }
        return record;
    }

  private:
    bool Take(char letter) {
        const bool is = rest_.starts_with(letter);
        rest_.remove_prefix(is ? 1 : 0);
        return is;
    }

    std::string NextField() {
        const std::string_view blanks = " \t";
        const std::size_t start = std::min(rest_.find_first_not_of(blanks), rest_.size());
        if (rest_.substr(start).starts_with('"')) {
            rest_.remove_prefix(start + 1);
            return QuotedField();
        }
        // A carriage return alone ends no line.
        const std::size_t end = std::min(rest_.find_first_of(",\n"), rest_.size());
        std::string field(Trimmed(rest_.substr(0, end)));
        rest_.remove_prefix(end);
        return field;
    }

    std::string QuotedField() {
        const int begin = line_;
        std::string field;
        do {
            const std::size_t end = rest_.find('"');
            if (end == std::string_view::npos) {
                FailWith(fmt::format("{}: line {}: the quotes do not end.", file_, begin));
            }
            const std::string_view part = rest_.substr(0, end);
            line_ += static_cast<int>(std::ranges::count(part, '\n'));
            field += part;
            rest_.remove_prefix(end + 1);
            if (!Take('"')) {
                break;
            }
            field += '"';
        } while (true);
        const std::size_t next = std::min(rest_.find_first_of(",\n"), rest_.size());
        if (!Trimmed(rest_.substr(0, next)).empty()) {
            FailWith(fmt::format("{}: line {}: text stands behind the closing quotes of {}.",
                                 file_,
                                 line_,
                                 Quoted(field)));
        }
        rest_.remove_prefix(next);
        return field;
    }

    std::string_view rest_;
    const std::string& file_;
    int line_ = 1;
};

bool IsEmpty(const CsvRecord& record) {
    return record.fields.size() == 1 && record.fields.front().empty();
}

}  // namespace

std::vector<CsvRecord> ReadCsv(std::string_view text, const std::string& file) {
    std::vector<CsvRecord> records;
    CsvReader reader(text, file);
    while (!reader.AtEnd()) {
        CsvRecord record = reader.Next();
        if (!IsEmpty(record)) {
            records.push_back(std::move(record));
        }
    }
    return records;
}
