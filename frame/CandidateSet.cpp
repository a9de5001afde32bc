#include "frame/CandidateSet.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <ctime>

#include "foundation/util/NCProgress.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvFile.h"
#include "foundation/utl/QvTimeUtl.h"
#include "frame/CandidatePicks.h"
#include "frame/CandidateSetFile.h"
#include "frame/Constraints.h"
#include "frame/Factors.h"
#include "frame/NCDesign.h"

namespace {

constexpr const char* cLayerSection = "Layer";
constexpr const char* cStartPointKey = "StartPoint";
constexpr const char* cNumbersKey = "Numbers";
constexpr const char* cRowsKey = "CandidateData";
constexpr const char* cNamesKey = "CandidateNames";
constexpr const char* cPercentagesKey = "CandidatePercentages";
constexpr const char* cVerticesKey = "ExtVert";
constexpr const char* cEdgesKey = "NumEdges";
constexpr const char* cCentroidsKey = "NumHiDimCent";
constexpr const char* cJsonRows = "data";
constexpr char cSeparator = ';';
/// Far above any set that a search can use.
constexpr std::size_t cMaxFileBytes = std::size_t{1} << 30U;

// The matrix column of every factor, the first one of an expanded factor.
std::vector<int> FirstColumns(const Factors& factors) {
    std::vector<int> columns;
    int column = 1;
    for (int factor = 0; factor < static_cast<int>(factors.GetDesignFactorCount()); ++factor) {
        columns.push_back(column);
        column += static_cast<int>(factors.GetExpandedVariableCount(factor));
    }
    return columns;
}

void RequireExpandedColumns(const NCDataMatrix<float>& matrix, const Factors& factors) {
    if (matrix.SizeColumns() < static_cast<int>(factors.GetDesignFactorCountExpanded())) {
        throw InvalidOperationException("Candidate rows without a column for every variable.");
    }
}

NCDataVector<float> PickColumns(const NCDataMatrix<float>& matrix,
                                int row,
                                const std::vector<int>& columns) {
    NCDataVector<float> run(static_cast<int>(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        run(static_cast<int>(i) + 1, matrix(row, columns[i]));
    }
    return run;
}

// Scans upwards; `isConstrained` is asked for rows only, never for row 1, which is the last resort.
template <class IsConstrained>
int LastFreeRow(int rows, const IsConstrained& isConstrained) {
    int row = rows;
    while (row > 1 && isConstrained(row)) {
        --row;
    }
    return row;
}

CandidateSetFile::Layers ReadLayers(const ConfigurationSection* section, int chosen) {
    CandidateSetFile::Layers layers;
    layers.chosen = chosen;
    const int count = section != nullptr ? section->SectionCount(cLayerSection) : 0;
    for (int i = 1; i <= count; ++i) {
        int start = 0;
        int number = 0;
        if (const auto layer = section->OpenSection(cLayerSection, i)) {
            layer->ReadInt(cStartPointKey, &start);
            layer->ReadInt(cNumbersKey, &number);
        }
        layers.startPoints.push_back(start);
        layers.numbers.push_back(number);
    }
    return layers;
}

void WriteLayers(ConfigurationSection* section,
                 const std::vector<int>& startPoints,
                 const std::vector<int>& numbers) {
    section->RemoveSection(cLayerSection);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto layer = section->OpenOrCreateSection(cLayerSection, static_cast<int>(i) + 1);
        layer->WriteInt(cNumbersKey, numbers[i]);
        layer->WriteInt(cStartPointKey, startPoints[i]);
    }
    section->Flush();
}

// Both given and one a row, or both missing.
bool FitNames(int rows,
              const std::vector<std::string>* names,
              const std::vector<float>* percentages) {
    if (names == nullptr || percentages == nullptr) {
        return names == nullptr && percentages == nullptr;
    }
    return names->size() == static_cast<std::size_t>(rows) &&
           percentages->size() == static_cast<std::size_t>(rows) &&
           std::all_of(names->begin(), names->end(), [](const std::string& name) {
               return CandidateSetFile::IsLegalName(name);
           });
}

[[noreturn]] void FailJson() {
    throw Exception(ExceptionMessage::translate("Parse error. The Candidate set is ill-formed."));
}

float CellFromJson(const json_value& value) {
    const double cell = value.is_number() ? value.get_float() : HUGE_VAL;
    if (!(std::fabs(cell) <= static_cast<double>(FLT_MAX))) {
        FailJson();
    }
    return static_cast<float>(cell);
}

const CandidatePicks* PicksOf(const NCDesign* design) {
    return dynamic_cast<const CandidatePicks*>(design);
}

}  // namespace

void CandidateSet::SetCandidateSet(const NCDataMatrix<float>& rows,
                                   const DOpt::NumData& numData,
                                   const std::vector<int>* startPoints,
                                   const std::vector<int>* numbers) {
    static_cast<NCDataMatrix<float>&>(*this) = rows;
    numData_ = numData;
    if (startPoints != nullptr) {
        startPoints_ = *startPoints;
    }
    if (numbers != nullptr) {
        numbers_ = *numbers;
    }
}

NCDataMatrix<float> CandidateSet::GetMatrix(int layer) const {
    NCDataMatrix<float> rows(0, SizeColumns());
    const auto [first, last] = RowsOfLayer(layer);
    if (first <= last) {
        rows.SetSize(last - first + 1, SizeColumns());
        const auto offset =
            static_cast<std::size_t>(first - 1) * static_cast<std::size_t>(SizeColumns());
        const auto source = Cells().subspan(offset, rows.Cells().size());
        std::copy(source.begin(), source.end(), rows.Cells().begin());
    }
    return rows;
}

std::pair<int, int> CandidateSet::RowsOfLayer(int layer) const {
    const int count = static_cast<int>(startPoints_.size());
    if (layer < 1 || layer > count) {
        return {1, 0};
    }
    const auto index = static_cast<std::size_t>(layer);
    const int next = layer < count ? std::max(startPoints_[index], 1) : SizeRows() + 1;
    return {std::max(startPoints_[index - 1], 1), std::min(next - 1, SizeRows())};
}

std::string CandidateSet::GetRowName(unsigned int row) const {
    return row >= 1 && row <= rowNames_.size() ? rowNames_[row - 1] : std::string();
}

float CandidateSet::GetPercentage(int row) const {
    return row >= 1 && static_cast<std::size_t>(row) <= percentages_.size()
               ? percentages_[static_cast<std::size_t>(row - 1)]
               : cNoPercentage;
}

void CandidateSet::ConcatCandidateSet(unsigned long long layer, const NCDataMatrix<float>& rows) {
    const int count = rows.SizeRows();
    int start = 1;
    if (layer == 0) {
        static_cast<NCDataMatrix<float>&>(*this) = rows;
    } else {
        start = SizeRows() + 1;
        ConcatRows(rows);
    }
    if (layer < startPoints_.size()) {
        startPoints_[layer] = start;
    } else {
        startPoints_.push_back(start);
    }
    if (layer < numbers_.size()) {
        numbers_[layer] = count;
    } else {
        numbers_.push_back(count);
    }
}

int CandidateSet::GetLayer(int row) const {
    if (!HasLayers()) {
        return -1;
    }
    const std::size_t count = std::min(startPoints_.size(), numbers_.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (row < startPoints_.front()) {
            break;
        }
        // In wide numbers: the layers may come from a store that was tampered with.
        const long long offset = static_cast<long long>(row) - startPoints_[i];
        if (offset >= 0 && offset < numbers_[i]) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

int CandidateSet::GetNumExperiments(int layer) const {
    int count = 0;
    for (int row = 1; row <= SizeRows(); ++row) {
        count += GetLayer(row) == layer ? 1 : 0;
    }
    return count;
}

void CandidateSet::RequireRows(unsigned int first, unsigned int count, unsigned int limit) const {
    if (first < 1 || first > limit || count > limit - first + 1) {
        throw InvalidOperationException("A row outside the candidate set.");
    }
}

void CandidateSet::AddRows(unsigned int first, unsigned int count) {
    RequireRows(first, 0, static_cast<unsigned int>(SizeRows()) + 1);
    if (count > static_cast<unsigned int>(INT_MAX - SizeRows())) {
        throw InvalidOperationException("Too many candidate rows.");
    }
    if (count > 0) {
        InsertRows(static_cast<int>(first), static_cast<int>(count));
        SetRow(static_cast<int>(first), cMissing);
    }
}

void CandidateSet::RemoveRows(unsigned int first, unsigned int count) {
    RequireRows(first, count, static_cast<unsigned int>(SizeRows()));
    NCDataMatrix<float>::RemoveRows(static_cast<int>(first), static_cast<int>(count));
}

void CandidateSet::UpdateCandidateSet(unsigned int row, unsigned int column, float value) {
    RequireRows(row, 1, static_cast<unsigned int>(SizeRows()));
    if (column < 1 || column > static_cast<unsigned int>(SizeColumns())) {
        throw InvalidOperationException("A column outside the candidate set.");
    }
    (*this)(static_cast<int>(row), static_cast<int>(column), value);
}

int CandidateSet::FindReplicateRow(const NCDataMatrix<float>& matrix,
                                   const NCDOE::Constraints* constraints) {
    if (constraints == nullptr) {
        return matrix.SizeRows();
    }
    return LastFreeRow(matrix.SizeRows(),
                       [&](int row) { return constraints->IsConstrained(matrix.GetRow(row)); });
}

int CandidateSet::FindReplicateRow(const NCDataMatrix<float>& matrix,
                                   const NCDOE::Constraints* constraints,
                                   const Factors& factors) {
    if (constraints == nullptr || matrix.SizeRows() == 0) {
        return matrix.SizeRows();
    }
    RequireExpandedColumns(matrix, factors);
    const std::vector<int> columns = FirstColumns(factors);
    return LastFreeRow(matrix.SizeRows(), [&](int row) {
        return constraints->IsConstrained(PickColumns(matrix, row, columns));
    });
}

NCDataMatrix<float> CandidateSet::ReduceToFactors(const NCDataMatrix<float>& matrix,
                                                  const Factors& factors) {
    RequireExpandedColumns(matrix, factors);
    const std::vector<int> columns = FirstColumns(factors);
    NCDataMatrix<float> reduced(matrix.SizeRows(), static_cast<int>(columns.size()));
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        reduced.SetRow(row, PickColumns(matrix, row, columns));
    }
    return reduced;
}

int CandidateSet::RowOfPick(int pick, int layer, const CandidatePicks& picks) const {
    const auto [first, last] =
        picks.IsLayered() ? RowsOfLayer(layer) : std::pair<int, int>(1, SizeRows());
    const int candidate = pick - picks.GetInclusionRows(layer);
    if (candidate < 1 || last < first) {
        return 0;
    }
    // Candidates that were doubled for want of rows stand below the originals.
    return (candidate - 1) % (last - first + 1) + first;
}

std::vector<int> CandidateSet::GetRunsOf(int row, const NCDesign* design) const {
    const CandidatePicks* picks = PicksOf(design);
    const int layer = picks != nullptr && picks->IsLayered() ? GetLayer(row) : 1;
    std::vector<int> runs;
    if (picks == nullptr || row < 1 || layer < 1 || layer > picks->GetLayerCount()) {
        return runs;
    }
    int run = 0;
    for (int before = 1; before < layer; ++before) {
        run += static_cast<int>(picks->GetPickedRows(before).size());
    }
    for (const int pick : picks->GetPickedRows(layer)) {
        ++run;
        if (RowOfPick(pick, layer, *picks) == row) {
            runs.push_back(run);
        }
    }
    return runs;
}

std::vector<int> CandidateSet::GetAllDesignRuns(int row,
                                                const std::shared_ptr<const NCDesign>& design,
                                                const DesignOptions& /*options*/) const {
    return GetRunsOf(row, design.get());
}

int CandidateSet::GetDesignRun(int row, const std::shared_ptr<const NCDesign>& design) const {
    const std::vector<int> runs = GetRunsOf(row, design.get());
    return runs.empty() ? 0 : runs.front();
}

std::string CandidateSet::GetDesignRunName(int row,
                                           const std::shared_ptr<const NCDesign>& design,
                                           const DesignOptions& options) const {
    std::string text;
    for (const int run : GetAllDesignRuns(row, design, options)) {
        text += (text.empty() ? "" : ", ") + std::to_string(run);
    }
    return text;
}

std::vector<std::string> CandidateSet::GetUsedScoreNames(const NCDesign& design) const {
    std::vector<std::string> names;
    const CandidatePicks* picks = PicksOf(&design);
    if (picks == nullptr || !HasRowNames()) {
        return names;
    }
    for (int layer = 1; layer <= picks->GetLayerCount(); ++layer) {
        for (const int pick : picks->GetPickedRows(layer)) {
            names.push_back(GetRowName(static_cast<unsigned int>(RowOfPick(pick, layer, *picks))));
        }
    }
    return names;
}

bool CandidateSet::WriteToFile(const std::string& name,
                               ConfigurationSection* layers,
                               const std::vector<std::string>* names,
                               const std::vector<float>* percentages) const {
    if (SizeRows() == 0 || !FitNames(SizeRows(), names, percentages)) {
        return false;
    }
    const std::string time = QvTimeUtl::FormatLocal(std::time(nullptr), "%Y-%m-%d %H:%M:%S");
    QvFile::ReplaceAll(name,
                       CandidateSetFile::Write({*this, names, percentages, numData_}, name, time));
    if (layers != nullptr && startPoints_.size() == numbers_.size()) {
        WriteLayers(layers, startPoints_, numbers_);
    }
    return true;
}

bool CandidateSet::ReadCandidateSet(const std::string& name,
                                    int layer,
                                    const ConfigurationSection* layers,
                                    int* status) {
    NCProgress progress("Reading candidate set...", 0.0F, 100.0F, false, false, true, "");
    CandidateSetFile::Layers wanted = ReadLayers(layers, layer);
    CandidateSetFile::Content content;
    CandidateSetFile::Status result = CandidateSetFile::CannotOpen;
    try {
        const std::string text = QvFile::ReadAll(name, cMaxFileBytes);
        result = CandidateSetFile::Read(text, wanted, &progress, content);
    } catch (const Exception&) {
        result = CandidateSetFile::CannotOpen;
    }
    if (status != nullptr) {
        *status = result;
    }
    if (result != CandidateSetFile::Success) {
        return false;
    }
    static_cast<NCDataMatrix<float>&>(*this) = std::move(content.rows);
    startPoints_ = std::move(wanted.startPoints);
    numbers_ = std::move(wanted.numbers);
    rowNames_ = std::move(content.names);
    percentages_ = std::move(content.percentages);
    numData_ = content.numData;
    return true;
}

void CandidateSet::Save(ConfigurationSection* section) const {
    if (SizeRows() > 0) {
        section->WriteMatrix(cRowsKey, *this);
    }
    if (HasRowNames()) {
        section->WriteStringList(cNamesKey, rowNames_, cSeparator);
    }
    if (!percentages_.empty()) {
        section->WriteFloatVector(cPercentagesKey, percentages_);
    }
    if (!startPoints_.empty()) {
        section->WriteIntVector(cStartPointKey, startPoints_);
    }
    if (!numbers_.empty()) {
        section->WriteIntVector(cNumbersKey, numbers_);
    }
    if (numData_ != DOpt::NumData()) {
        section->WriteInt(cVerticesKey, numData_.ExtVert);
        section->WriteInt(cEdgesKey, numData_.NumEdges);
        section->WriteInt(cCentroidsKey, numData_.NumHiDimCent);
    }
}

void CandidateSet::Load(const ConfigurationSection* section) {
    // As a whole, not key by key: names of another set would not fit the rows.
    CandidateSet loaded;
    bool found = section->ReadMatrix(cRowsKey, &loaded);
    found = section->ReadStringList(cNamesKey, &loaded.rowNames_, cSeparator) > 0 || found;
    found = section->ReadFloatVector(cPercentagesKey, &loaded.percentages_) || found;
    found = section->ReadIntVector(cStartPointKey, &loaded.startPoints_) || found;
    found = section->ReadIntVector(cNumbersKey, &loaded.numbers_) || found;
    found = section->ReadInt(cVerticesKey, &loaded.numData_.ExtVert) || found;
    found = section->ReadInt(cEdgesKey, &loaded.numData_.NumEdges) || found;
    found = section->ReadInt(cCentroidsKey, &loaded.numData_.NumHiDimCent) || found;
    if (found) {
        *this = std::move(loaded);
    }
}

json_value CandidateSet::ToJson() const {
    if (HasLayers()) {
        throw Exception(
            ExceptionMessage::translate("Saving Onion designs as json is not supported."));
    }
    json_value rows = json_value::make_array();
    for (int row = 1; row <= SizeRows(); ++row) {
        json_value cells = json_value::make_array();
        for (const float cell : RowSpan(row)) {
            cells.push_back(static_cast<double>(cell));
        }
        rows.push_back(std::move(cells));
    }
    json_value object = json_value::make_object();
    object.put_child(cJsonRows) = std::move(rows);
    return object;
}

void CandidateSet::FromJson(const json_value& value) {
    if (!value.is_object() || !value.has_child(cJsonRows)) {
        return;
    }
    const json_value& data = value.get_child(cJsonRows);
    if (!data.is_array()) {
        FailJson();
    }
    if (data.get_length() == 0) {
        return;
    }
    const std::vector<json_value>& rows = data.get_array();
    const unsigned long long columns = rows.front().is_array() ? rows.front().get_length() : 0;
    // All rows are looked at before memory is taken: one long row must not multiply many short
    // ones.
    for (const json_value& row : rows) {
        if (!row.is_array() || columns == 0 || row.get_length() != columns) {
            FailJson();
        }
    }
    CandidateSet read;
    read.SetSize(static_cast<int>(rows.size()), static_cast<int>(columns));
    auto cell = read.Cells().begin();
    for (const json_value& row : rows) {
        for (const json_value& number : row.get_array()) {
            *cell++ = CellFromJson(number);
        }
    }
    *this = std::move(read);
}
