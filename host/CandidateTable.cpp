#include "host/CandidateTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numeric>
#include <optional>

#include "foundation/utl/QvFile.h"
#include "host/CandidateFile.h"
#include "host/CsvText.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/RunsFile.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr std::size_t cMaxFileBytes = std::size_t{1} << 28U;
constexpr const char* cNameColumn = "Name";
constexpr int cRowsPerLook = 4096;

// A candidate set file begins with a comment or with its number of rows; the header of a table does
// not, since no factor is called by a mere number here.
bool IsCandidateSetFile(const std::string& text) {
    const std::string_view first = Trimmed(std::string_view(text).substr(0, text.find('\n')));
    const auto isDigit = [](unsigned char letter) { return std::isdigit(letter) != 0; };
    return first.starts_with('/') || (!first.empty() && std::ranges::all_of(first, isDigit));
}

template <class Number>
bool ParseNumber(std::string_view text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

// One column of a table that is no factor.
class Column {
  public:
    Column(const std::vector<CsvRecord>& records, std::size_t index, const std::string& file)
        : records_(records), index_(index), file_(file) {}

    // The first line is the header.
    [[nodiscard]] const std::string& Text(std::size_t row) const {
        return records_.at(row + 1).fields.at(index_);
    }
    [[noreturn]] void Refuse(std::size_t row, std::string_view problem) const {
        FailWith(fmt::format("{}: line {}, column {}: {} {}.",
                             file_,
                             records_.at(row + 1).line,
                             Quoted(records_.front().fields.at(index_)),
                             Quoted(Text(row)),
                             problem));
    }

  private:
    const std::vector<CsvRecord>& records_;
    std::size_t index_;
    const std::string& file_;
};

std::optional<std::size_t> FindColumn(const CsvRecord& header, const std::string& name) {
    const auto found = std::ranges::find_if(header.fields, [&name](const std::string& field) {
        return EqualsIgnoringCase(field, name);
    });
    return found != header.fields.end()
               ? std::optional(static_cast<std::size_t>(found - header.fields.begin()))
               : std::nullopt;
}

std::size_t RequireColumn(const CsvRecord& header,
                          const std::string& name,
                          const char* option,
                          const std::string& file) {
    const auto found = FindColumn(header, name);
    if (!found) {
        FailWith(fmt::format("{}: {} has no column {}.", option, file, Quoted(name)));
    }
    return *found;
}

std::vector<int> ReadLayers(const Column& column, std::size_t rows) {
    std::vector<int> layers(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (!ParseNumber(column.Text(row), layers[row]) || layers[row] < 1) {
            column.Refuse(row, "is no layer; layers are whole numbers from 1, the innermost");
        }
    }
    return layers;
}

std::vector<double> ReadScores(const Column& column, std::size_t rows) {
    std::vector<double> scores(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (!ParseNumber(column.Text(row), scores[row]) || !std::isfinite(scores[row])) {
            column.Refuse(row, "is no score; scores are numbers");
        }
    }
    return scores;
}

std::vector<std::string> ReadNames(const Column& column, std::size_t rows) {
    std::vector<std::string> names;
    names.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        names.push_back(column.Text(row));
    }
    return names;
}

CandidateTable ReadTable(const std::string& path,
                         const std::string& text,
                         const CandidateColumnNames& columns,
                         const Study& study) {
    CandidateTable table;
    table.rows = ReadRunsFile(path, study, 1).matrix;
    const std::vector<CsvRecord> records = ReadCsv(text, path);
    const auto rows = static_cast<std::size_t>(table.rows.SizeRows());
    const CsvRecord& header = records.front();
    if (const auto name = FindColumn(header, cNameColumn);
        name && study.factors.Find(header.fields[*name]) < 0) {
        table.names = ReadNames(Column(records, *name, path), rows);
    }
    if (!columns.layer.empty()) {
        const std::size_t index = RequireColumn(header, columns.layer, "--layer-column", path);
        table.layers = ReadLayers(Column(records, index, path), rows);
    }
    if (!columns.score.empty()) {
        const std::size_t index = RequireColumn(header, columns.score, "--score-column", path);
        table.scores = ReadScores(Column(records, index, path), rows);
    }
    return table;
}

CandidateTable ReadSet(const std::string& path,
                       const CandidateColumnNames& columns,
                       const Study& study) {
    for (const auto& [option, name] : {std::pair{"--layer-column", &columns.layer},
                                       std::pair{"--score-column", &columns.score}}) {
        if (!name->empty()) {
            FailWith(
                fmt::format("{}: {} is a candidate set file, whose columns have no names; give a "
                            "table of comma-separated values.",
                            option,
                            path));
        }
    }
    const CandidateFile file = ReadCandidateFile(path, study);
    CandidateTable table;
    table.rows = file.set.GetMatrix();
    table.names = file.set.GetRowNames();
    return table;
}

template <class Value>
void KeepEntries(const std::vector<std::size_t>& kept, std::vector<Value>& values) {
    if (values.empty()) {
        return;
    }
    std::vector<Value> left;
    left.reserve(kept.size());
    for (const std::size_t row : kept) {
        left.push_back(values[row]);
    }
    values = std::move(left);
}

Matrix Rows(const Matrix& rows, const std::vector<std::size_t>& kept) {
    Matrix left(static_cast<int>(kept.size()), rows.SizeColumns());
    int next = 0;
    for (const std::size_t row : kept) {
        std::ranges::copy(rows.RowSpan(static_cast<int>(row) + 1), left.RowSpan(++next).begin());
    }
    return left;
}

// Rows outside the ranges are mistakes; those that the constraints cut off are what constraints are
// for.
void LeaveOutConstrained(const std::string& path, const Study& study, CandidateTable& table) {
    Study unconstrained = study;
    unconstrained.constraints = NCDOE::Constraints();
    const int count = table.rows.SizeRows();
    std::vector<std::size_t> kept;
    kept.reserve(static_cast<std::size_t>(count));
    for (int row = 1; row <= count; ++row) {
        const auto cells = table.rows.RowSpan(row);
        if (const std::string misfit = MisfitOf(cells, unconstrained); !misfit.empty()) {
            FailWith(fmt::format("{}: candidate {}: {}.", path, row, misfit));
        }
        if (MisfitOf(cells, study).empty()) {
            kept.push_back(static_cast<std::size_t>(row) - 1);
        }
        if (row % cRowsPerLook == 0) {
            Interrupt::ThrowIfRequested();
        }
    }
    if (kept.empty()) {
        FailWith(fmt::format("{}: none of the {} candidates keeps the constraints.", path, count));
    }
    const int leftOut = count - static_cast<int>(kept.size());
    if (leftOut > 0) {
        table.notes.push_back(fmt::format(
            "{}: {} of {} candidates break a constraint and are left out", path, leftOut, count));
        table.rows = Rows(table.rows, kept);
        KeepEntries(kept, table.names);
        KeepEntries(kept, table.layers);
        KeepEntries(kept, table.scores);
    }
}

float Transformed(const StudyFactor& factor, float value) {
    if (factor.transform) {
        factor.transform->TransformValue(&value);
    }
    return value;
}

// From -1 to 1 in the scale of the factor's transform.
double CodedSetting(const StudyFactor& factor, float value) {
    const auto low = static_cast<double>(Transformed(factor, factor.low));
    const auto high = static_cast<double>(Transformed(factor, factor.high));
    return (static_cast<double>(Transformed(factor, value)) - (low + high) / 2) /
           ((high - low) / 2);
}

std::vector<double> Distances(const Matrix& rows, const StudyFactors& factors) {
    std::vector<double> distances;
    distances.reserve(static_cast<std::size_t>(rows.SizeRows()));
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        distances.push_back(DistanceFromCentre(rows.RowSpan(row), factors));
    }
    return distances;
}

// The factors' settings of a row from -1 to 1, with a constant in front.
std::vector<double> Coded(std::span<const float> row, const StudyFactors& factors) {
    std::vector<double> coded{1};
    for (std::size_t i = 0; i < row.size(); ++i) {
        coded.push_back(CodedSetting(factors.All().at(i), row[i]));
    }
    return coded;
}

// Takes the row whose part outside the span of those taken so far is the longest, and takes that
// part from the others. Returns the number of rows when all lie in the span.
std::size_t TakeFarthest(std::vector<std::vector<double>>& rest, const std::vector<bool>& isTaken) {
    constexpr double cSpanned = 1e-6;
    std::size_t farthest = rest.size();
    double longest = cSpanned;
    for (std::size_t row = 0; row < rest.size(); ++row) {
        const double length =
            std::inner_product(rest[row].begin(), rest[row].end(), rest[row].begin(), 0.0);
        if (!isTaken[row] && length > longest) {
            farthest = row;
            longest = length;
        }
    }
    if (farthest == rest.size()) {
        return farthest;
    }
    const std::vector<double> direction = rest[farthest];
    for (std::vector<double>& part : rest) {
        const double share =
            std::inner_product(part.begin(), part.end(), direction.begin(), 0.0) / longest;
        for (std::size_t i = 0; i < part.size(); ++i) {
            part[i] -= share * direction[i];
        }
    }
    return farthest;
}

// Puts rows in front that span the space. A search starts from a few of the first rows of a layer,
// and fails where these lie on a line, as neighbours of a table often do.
void SpreadFirst(const Matrix& rows, const StudyFactors& factors, std::span<std::size_t> layer) {
    constexpr int cRounds = 2;
    std::vector<std::vector<double>> coded;
    coded.reserve(layer.size());
    for (const std::size_t row : layer) {
        coded.push_back(Coded(rows.RowSpan(static_cast<int>(row) + 1), factors));
    }
    std::vector<bool> isTaken(layer.size(), false);
    std::vector<std::size_t> order;
    order.reserve(layer.size());
    for (int round = 0; round < cRounds; ++round) {
        std::vector<std::vector<double>> rest = coded;
        for (std::size_t next = TakeFarthest(rest, isTaken); next < layer.size();
             next = TakeFarthest(rest, isTaken)) {
            isTaken[next] = true;
            order.push_back(layer[next]);
        }
    }
    for (std::size_t i = 0; i < layer.size(); ++i) {
        if (!isTaken[i]) {
            order.push_back(layer[i]);
        }
    }
    std::ranges::copy(order, layer.begin());
}

// Layer of every row by equal shares of what is sorted; ties keep the order of the table.
std::vector<int> EqualShares(const std::vector<double>& keys, int layers) {
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&keys](std::size_t row) { return keys[row]; });
    std::vector<int> layerOf(keys.size());
    for (std::size_t rank = 0; rank < order.size(); ++rank) {
        layerOf[order[rank]] =
            static_cast<int>(rank * static_cast<std::size_t>(layers) / order.size()) + 1;
    }
    return layerOf;
}

}  // namespace

CandidateTable ReadCandidateTable(const std::string& path,
                                  const CandidateColumnNames& columns,
                                  const Study& study) {
    const std::string text = QvFile::ReadAll(path, cMaxFileBytes);
    CandidateTable table = IsCandidateSetFile(text) ? ReadSet(path, columns, study)
                                                    : ReadTable(path, text, columns, study);
    LeaveOutConstrained(path, study, table);
    return table;
}

double DistanceFromCentre(std::span<const float> row, const StudyFactors& factors) {
    double sum = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const double part = CodedSetting(factors.All().at(i), row[i]);
        sum += part * part;
    }
    return std::sqrt(sum);
}

CandidateSet DivideIntoLayers(const CandidateTable& table,
                              int layers,
                              const StudyFactors& factors) {
    const std::vector<double> distances = Distances(table.rows, factors);
    const std::vector<int> layerOf =
        !table.layers.empty()
            ? table.layers
            : EqualShares(table.scores.empty() ? distances : table.scores, layers);
    std::vector<std::size_t> order(layerOf.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&layerOf](std::size_t row) { return layerOf[row]; });
    std::vector<int> starts;
    std::vector<int> numbers;
    for (int layer = 1; layer <= layers; ++layer) {
        numbers.push_back(static_cast<int>(std::ranges::count(layerOf, layer)));
        starts.push_back(layer == 1 ? 1 : starts.back() + *(numbers.end() - 2));
    }
    for (std::size_t layer = 0; layer < starts.size(); ++layer) {
        SpreadFirst(table.rows,
                    factors,
                    std::span(order).subspan(static_cast<std::size_t>(starts[layer]) - 1,
                                             static_cast<std::size_t>(numbers[layer])));
    }
    order.push_back(
        static_cast<std::size_t>(std::ranges::min_element(distances) - distances.begin()));
    CandidateSet set;
    set.SetCandidateSet(Rows(table.rows, order), DOpt::NumData(), &starts, &numbers);
    std::vector<std::string> names = table.names;
    KeepEntries(order, names);
    set.SetRowNames(std::move(names));
    return set;
}
