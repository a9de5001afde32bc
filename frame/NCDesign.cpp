#include "frame/NCDesign.h"

#include <algorithm>
#include <array>

#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cSection = "Design";
constexpr std::array<float, 2> cTwoLevels{-1.0F, 1.0F};
constexpr std::array<float, 3> cThreeLevels{-1.0F, 0.0F, 1.0F};
constexpr float cFirstCode = Factors::cFirstLevelCode;

bool IsContinuous(CEType::EType type) {
    return type == CEType::Quantitative || type == CEType::Formulation;
}

bool IsLevelType(CEType::EType type) {
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

// The settings that one column of a full factorial cycles through; empty when the column stays
// blank.
std::vector<float> ColumnSettings(const Factors& factors, int factor, bool threeLevels) {
    const CEType::EType type = factors.GetFactorType(factor);
    if (IsContinuous(type)) {
        return threeLevels ? std::vector<float>(cThreeLevels.begin(), cThreeLevels.end())
                           : std::vector<float>(cTwoLevels.begin(), cTwoLevels.end());
    }
    std::vector<float> codes;
    if (IsLevelType(type)) {
        for (unsigned int level = 0; level < factors.GetLevelCount(factor); ++level) {
            codes.push_back(cFirstCode + static_cast<float>(level));
        }
    }
    return codes;
}

// Recodes one column whose -1, 0, 1 stand for levels.
void RecodeLevels(NCDataMatrix<float>& matrix, int column, unsigned int levels) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const float raw = matrix(row, column);
        if (levels == 2 && (raw == -1.0F || raw == 1.0F)) {
            matrix(row, column, raw < 0 ? cFirstCode : cFirstCode + 1);
        } else if (levels == 3 && (raw == -1.0F || raw == 0.0F || raw == 1.0F)) {
            matrix(row, column, cFirstCode + 1 + raw);
        }
    }
}

void RequireCopies(long long runs, long long copies) {
    if (runs > 0 && copies > NCDesign::cMaxFinishedRuns / runs) {
        throw Exception(ExceptionMessage::translate(
                            "The design would have {1} runs in each of {2} copies. It may have at "
                            "most {3} runs in all.")
                        << runs << copies << NCDesign::cMaxFinishedRuns);
    }
}

void ReplaceZeros(NCDataMatrix<float>& matrix, int column, float code) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        if (matrix(row, column) == 0.0F) {
            matrix(row, column, code);
        }
    }
}

void RotateZerosThroughBlocks(NCDataMatrix<float>& matrix, int column, unsigned int blocks) {
    unsigned int next = 0;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        if (matrix(row, column) == 0.0F) {
            matrix(row, column, cFirstCode + static_cast<float>(next % blocks));
            ++next;
        }
    }
}

}  // namespace

NCDesign::~NCDesign() = default;

std::shared_ptr<const NCDataMatrix<float>> NCDesign::GetDesignMatrix() const {
    return matrix_;
}

void NCDesign::Save(ConfigurationSection* section) const {
    section->OpenOrCreateSection(cSection);
}

bool NCDesign::Load(const ConfigurationSection* section) {
    return section->OpenSection(cSection) != nullptr;
}

void NCDesign::Remove(ConfigurationSection* section) const {
    section->RemoveSection(cSection);
}

void NCDesign::AdjustCenterPoints(const Factors& factors, const DesignOptions& options) {
    if (matrix_) {
        AdjustCenterPoints(DetachedMatrix(), factors, options);
    }
}

bool NCDesign::IsDesignMatrixCoded() const {
    return true;
}

void NCDesign::SetDesignMatrix(const NCDataMatrix<float>& matrix) {
    matrix_ = std::make_shared<NCDataMatrix<float>>(matrix);
}

void NCDesign::AddCenterPoints(int count, const Factors& factors, const DesignOptions& options) {
    if (!matrix_) {
        return;
    }
    if (count > 0) {
        NCDataMatrix<float>& matrix = DetachedMatrix();
        matrix.ConcatRows(NCDataMatrix<float>(count, matrix.SizeColumns(), 0.0F));
    }
    if (IsDesignMatrixCoded()) {
        AdjustCenterPoints(factors, options);
    }
}

bool NCDesign::IsMixtureOnlyDesign() const {
    return false;
}

int NCDesign::GetDesignCoding(int /*row*/, int /*column*/) const {
    return 0;
}

void NCDesign::AddReplicates(unsigned int count) {
    if (!matrix_ || count == 0) {
        return;
    }
    RequireCopies(matrix_->SizeRows(), static_cast<long long>(count) + 1);
    NCDataMatrix<float>& matrix = DetachedMatrix();
    const NCDataMatrix<float> once = matrix;
    matrix.ReserveRows(once.SizeRows() * static_cast<int>(count + 1));
    for (unsigned int i = 0; i < count; ++i) {
        matrix.ConcatRows(once);
    }
}

void NCDesign::RequireFinishedSize(int coreRuns, const DesignOptions& options) {
    const long long once =
        static_cast<long long>(coreRuns) + options.GetReplicatedRuns() + options.GetCenterPoints();
    RequireCopies(once, static_cast<long long>(options.GetReplicates()) + 1);
}

void NCDesign::SetDesignMatrixAddAndAdjust(const NCDataMatrix<float>& table,
                                           const Factors& factors,
                                           const DesignOptions& options) {
    RequireFinishedSize(table.SizeRows(), options);
    SetDesignMatrix(table);
    if (factors.GetQualitativeCount() > 0 || options.GetBlocks() >= 2) {
        AdjustQualitativeFactors(factors);
    }
    if (factors.GetMultilevelCount() > 0) {
        AdjustMultilevelFactors(factors);
    }
    AddRuns(factors, options);
}

NCDataMatrix<float> NCDesign::MakeFFDesignTable(const Factors& factors,
                                                int runs,
                                                bool blockColumn,
                                                bool threeLevels) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    NCDataMatrix<float> table(std::max(runs, 0), count + (blockColumn ? 1 : 0));
    long long stride = 1;
    for (int column = 1; column <= count && stride < runs; ++column) {
        const std::vector<float> settings = ColumnSettings(factors, column - 1, threeLevels);
        if (settings.empty()) {
            continue;
        }
        const auto levels = static_cast<long long>(settings.size());
        for (int row = 1; row <= runs; ++row) {
            table(row, column, settings[static_cast<std::size_t>((row - 1) / stride % levels)]);
        }
        stride *= levels;
    }
    if (blockColumn) {
        for (int row = 1; row <= table.SizeRows(); ++row) {
            table(row, count + 1, 0.0F);
        }
    }
    return table;
}

NCDataMatrix<float> NCDesign::MakePureFF2DesignTable(int factors, int runs) {
    if (runs <= 0) {
        runs = 1 << factors;
    }
    NCDataMatrix<float> table(runs, factors, 0.0F);
    // Up to and including stride == runs: the first factor beyond the reach of `runs` stands at -1.
    long long stride = 1;
    for (int column = 1; column <= factors && stride <= runs; ++column, stride *= 2) {
        for (int row = 1; row <= runs; ++row) {
            table(row, column, cTwoLevels[static_cast<std::size_t>((row - 1) / stride % 2)]);
        }
    }
    return table;
}

void NCDesign::AdjustCenterPoints(NCDataMatrix<float>& matrix,
                                  const Factors& factors,
                                  const DesignOptions& options) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    const int last = matrix.SizeColumns();
    for (int column = 1; column <= last; ++column) {
        const CEType::EType type =
            column <= count ? factors.GetFactorType(column - 1) : CEType::Qualitative;
        if (options.GetBlocks() >= 2 && column == last) {
            RotateZerosThroughBlocks(matrix, column, options.GetBlocks());
        } else if (type == CEType::Multilevel) {
            const unsigned int middle = (factors.GetLevelCount(column - 1) + 1) / 2;
            ReplaceZeros(matrix, column, cFirstCode + static_cast<float>(middle) - 1);
        } else if (type == CEType::Qualitative) {
            ReplaceZeros(matrix, column, cFirstCode);
        }
    }
}

NCDataMatrix<float> NCDesign::MakeLDesignTable(const Factors& factors, int runs) const {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    NCDataMatrix<float> table(runs, count);
    for (int column = 1; column <= count; ++column) {
        const CEType::EType type = factors.GetFactorType(column - 1);
        if (!IsContinuous(type) && !IsLevelType(type)) {
            continue;
        }
        // Deliberate: a two-level column uses codes 1 and 3 only, so its middle entry has no level.
        std::array<float, 3> settings = cThreeLevels;
        if (IsLevelType(type)) {
            settings = factors.GetLevelCount(column - 1) == 2
                           ? std::array<float, 3>{cFirstCode, 0.0F, cFirstCode + 1}
                           : std::array<float, 3>{cFirstCode, cFirstCode + 1, cFirstCode + 2};
        }
        for (int row = 1; row <= runs; ++row) {
            const int code = GetDesignCoding(row, column);
            if (code >= 1 && code <= 3) {
                table(row, column, settings[static_cast<std::size_t>(code - 1)]);
            }
        }
    }
    return table;
}

void NCDesign::AddCCRuns(float distance, int blocks) {
    if (!matrix_) {
        return;
    }
    NCDataMatrix<float>& matrix = DetachedMatrix();
    const int columns = matrix.SizeColumns();
    const int axes = blocks > 1 ? columns - 1 : columns;
    const int before = matrix.SizeRows();
    matrix.ConcatRows(NCDataMatrix<float>(2 * axes, columns, 0.0F));
    for (int axis = 1; axis <= axes; ++axis) {
        const int row = before + 2 * axis - 1;
        matrix(row, axis, -distance);
        matrix(row + 1, axis, distance);
        if (blocks > 1) {
            matrix(row, columns, cFirstCode + static_cast<float>(blocks - 1));
            matrix(row + 1, columns, cFirstCode + static_cast<float>(blocks - 1));
        }
    }
}

void NCDesign::AdjustQualitativeFactors(const Factors& factors) {
    if (!matrix_) {
        return;
    }
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    NCDataMatrix<float>& matrix = DetachedMatrix();
    for (int column = 1; column <= matrix.SizeColumns(); ++column) {
        if (column > count) {
            RecodeLevels(matrix, column, 2);  // the block column
        } else if (factors.GetFactorType(column - 1) == CEType::Qualitative) {
            RecodeLevels(matrix, column, factors.GetLevelCount(column - 1));
        }
    }
}

void NCDesign::AdjustMultilevelFactors(const Factors& factors) {
    if (!matrix_) {
        return;
    }
    NCDataMatrix<float>& matrix = DetachedMatrix();
    const int count =
        std::min(static_cast<int>(factors.GetDesignFactorCount()), matrix.SizeColumns());
    for (int column = 1; column <= count; ++column) {
        if (factors.GetFactorType(column - 1) == CEType::Multilevel) {
            RecodeLevels(matrix, column, factors.GetLevelCount(column - 1));
        }
    }
}

void NCDesign::SetDesignMatrixAndAdd(const NCDataMatrix<float>& table,
                                     const Factors& factors,
                                     const DesignOptions& options) {
    RequireFinishedSize(table.SizeRows(), options);
    SetDesignMatrix(table);
    AddRuns(factors, options);
}

void NCDesign::AddReplicatedRuns(const Factors& factors, const DesignOptions& options) {
    if (matrix_ && options.GetReplicatedRuns() > 0) {
        NCDataMatrix<float> matrix = *matrix_;
        AddReplicatedRuns(matrix, factors, options);
        SetDesignMatrix(matrix);
    }
}

void NCDesign::AddRuns(const Factors& factors, const DesignOptions& options) {
    AddReplicatedRuns(factors, options);
    AddCenterPoints(static_cast<int>(options.GetCenterPoints()), factors, options);
    AddReplicates(options.GetReplicates());
}

NCDataMatrix<float>& NCDesign::DetachedMatrix() {
    if (matrix_.use_count() > 1) {
        matrix_ = std::make_shared<NCDataMatrix<float>>(*matrix_);
    }
    return *matrix_;
}
