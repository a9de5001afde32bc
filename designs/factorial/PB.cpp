#include "designs/factorial/PB.h"

#include <algorithm>
#include <span>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr int cMinColumns = 2;
// The generator of 36 runs has 35 columns; the design is offered up to here.
constexpr int cMaxColumns = 32;
constexpr int cMinRuns = 8;
constexpr int cMaxRuns = 36;
constexpr int cRunStep = 4;

constexpr int cBand = 9;
constexpr int cBandedRuns = 3 * cBand + 1;

// Empty where the run count has no cyclic generator.
std::span<const float> GeneratorFor(int runs) {
    switch (runs) {
        case 8:
            return PB::pb8;
        case 12:
            return PB::pb12;
        case 16:
            return PB::pb16;
        case 20:
            return PB::pb20;
        case 24:
            return PB::pb24;
        case 32:
            return PB::pb32;
        case 36:
            return PB::pb36;
        default:
            return {};
    }
}

// Row and column count from 0. One step to the right shifts the generator by one downwards.
float CyclicSign(std::span<const float> generator, int row, int column) {
    const int length = static_cast<int>(generator.size());
    return generator[static_cast<std::size_t>((row - column + length) % length)];
}

// Row and column count from 0. The bands stand in the order A B C, B C A, C A B.
float BandedSign(int row, int column) {
    const std::array<const PB::Block*, 3> blocks{&PB::pb28A, &PB::pb28B, &PB::pb28C};
    const PB::Block& block = *blocks[static_cast<std::size_t>((row / cBand + column / cBand) % 3)];
    return block[static_cast<std::size_t>(row % cBand)][static_cast<std::size_t>(column % cBand)];
}

}  // namespace

PB::PB(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    SetDesignMatrixAddAndAdjust(MakePBDesignTable(static_cast<int>(factors.GetDesignFactorCount()),
                                                  static_cast<int>(options.GetRuns()),
                                                  options.GetBlocks() > 1),
                                factors,
                                options);
}

std::shared_ptr<NCDesign> PB::Clone() const {
    return std::make_shared<PB>(*this);
}

void PB::FoldOver(int centerPoints, const Factors& factors, const DesignOptions& options) {
    const std::shared_ptr<const NCDataMatrix<float>> matrix = GetDesignMatrix();
    const int runs = static_cast<int>(options.GetRuns());
    if (!matrix || matrix->SizeRows() < runs) {
        throw InvalidOperationException("PB::FoldOver");
    }
    NCDataMatrix<float> folded = *matrix;
    folded.InsertRows(matrix->SizeRows() + 1, runs);
    for (int row = 1; row <= runs; ++row) {
        std::ranges::transform(matrix->RowSpan(row),
                               folded.RowSpan(matrix->SizeRows() + row).begin(),
                               [](float value) { return -value; });
    }
    // Deliberate: the centre points go to the matrix that is replaced in the next step.
    if (centerPoints > 0) {
        AddCenterPoints(centerPoints, factors, options);
    }
    SetDesignMatrix(folded);
}

NCDataMatrix<float> PB::MakePBDesignTable(int factors, int runs, bool blockColumn) {
    NCDataMatrix<float> table(std::max(runs, 0), factors + (blockColumn ? 1 : 0));
    const std::span<const float> generator = GeneratorFor(runs);
    if (generator.empty() && runs != cBandedRuns) {
        return table;
    }
    const int columns = std::min(table.SizeColumns(), runs - 1);
    for (int row = 0; row < runs - 1; ++row) {
        const std::span<float> cells = table.RowSpan(row + 1);
        for (int column = 0; column < columns; ++column) {
            cells[static_cast<std::size_t>(column)] =
                generator.empty() ? BandedSign(row, column) : CyclicSign(generator, row, column);
        }
    }
    table.SetRow(runs, -1.0F);
    return table;
}

std::unique_ptr<NCDesign> PBBuilder::Build(const Factors& factors,
                                           const DesignOptions& options,
                                           bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<PB>(factors, options) : nullptr;
}

unsigned int PBBuilder::GetDefaultRuns(const Factors& factors,
                                       EObjective::Type /*objective*/) const {
    return GetRunsForFactors(static_cast<int>(factors.GetDesignFactorCountExpanded()));
}

std::vector<unsigned int> PBBuilder::GetLegalRuns(const Factors& factors,
                                                  const DesignOptions& options) const {
    const long long room =
        static_cast<long long>(options.GetMaxRuns()) - static_cast<int>(GetMinimumCenterPoints());
    std::vector<unsigned int> legal;
    for (long long runs = GetDefaultRuns(factors, options.GetObjective());
         runs <= std::min<long long>(room, cMaxRuns);
         runs += cRunStep) {
        legal.push_back(static_cast<unsigned int>(runs));
    }
    return legal;
}

unsigned char PBBuilder::GetPriority(const Factors& factors) const {
    // Deliberate: derived builders read the same row.
    return GetTablePriority(EDesign::PB, factors.GetDesignFactorCountExpanded());
}

bool PBBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options)) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) || options.GetModel() != EModel::Linear) {
        return false;
    }
    if (!factors.IsProcessOnly() || !factors.IsAll2Levels()) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs;
}

EModel::Type PBBuilder::GetDefaultModel(const Factors& /*factors*/,
                                        EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Linear : EModel::None;
}

unsigned int PBBuilder::GetRunsForFactors(int factors) const {
    if (factors < cMinColumns || factors > cMaxColumns) {
        return 0;
    }
    const int runs = (factors / cRunStep + 1) * cRunStep;
    return static_cast<unsigned int>(std::max(runs, cMinRuns));
}
