#include "frame/MatrixSection.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "foundation/utl/ConfigurationSection.h"
#include "frame/NCDesign.h"

namespace {

constexpr const char* cSection = "FMatrix";
constexpr const char* cColumnsKey = "NCols";
constexpr const char* cRowsKey = "NRows";
// No design is larger. A size read from a damaged file must not claim the machine's memory.
constexpr long long cMaxCells = 100 * NCDesign::cMaxFinishedRuns;

std::string RowKey(int row) {
    std::string key = "R";
    return key += std::to_string(row);
}

bool IsPossibleSize(int rows, int columns) {
    return rows >= 1 && columns >= 1 && static_cast<long long>(rows) * columns <= cMaxCells;
}

}  // namespace

namespace MatrixSection {

void SaveMatrix(ConfigurationSection* section, const NCDataMatrix<float>& matrix) {
    section->RemoveSection(cSection);
    const auto own = section->OpenOrCreateSection(cSection);
    own->WriteInt(cColumnsKey, matrix.SizeColumns());
    own->WriteInt(cRowsKey, matrix.SizeRows());
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const auto cells = matrix.RowSpan(row);
        own->WriteFloatVector(RowKey(row).c_str(), {cells.begin(), cells.end()});
    }
}

bool LoadMatrix(const ConfigurationSection* section, NCDataMatrix<float>* matrix) {
    const auto own = section->OpenSection(cSection);
    int rows = 0;
    int columns = 0;
    if (!own || !own->ReadInt(cRowsKey, &rows) || !own->ReadInt(cColumnsKey, &columns) ||
        !IsPossibleSize(rows, columns)) {
        return false;
    }
    NCDataMatrix<float> loaded(rows, columns);
    for (int row = 1; row <= rows; ++row) {
        std::vector<float> cells;
        if (own->ReadFloatVector(RowKey(row).c_str(), &cells)) {
            const auto count = std::min(cells.size(), static_cast<std::size_t>(columns));
            std::copy_n(cells.begin(), count, loaded.RowSpan(row).begin());
        }
    }
    *matrix = std::move(loaded);
    return true;
}

void Remove(ConfigurationSection* section) {
    section->RemoveSection(cSection);
}

}  // namespace MatrixSection
