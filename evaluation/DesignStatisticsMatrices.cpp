// The forms of a design matrix that statistics and power are computed from.

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "evaluation/DesignStatistics.h"
#include "foundation/mat/TransformStruct.h"
#include "foundation/utl/Exceptions.h"
#include "frame/Factors.h"

namespace {

using Matrix = NCDataMatrix<float>;

[[noreturn]] void ThrowUnusable() {
    throw InvalidOperationException(
        ExceptionMessage::translate("The current model cannot be used.").GetText());
}

// Level of a letter code, counted from 1.
int LevelOfCode(float code, int levels) {
    const double level = std::trunc(static_cast<double>(code) + 0.5 - 64.0);
    if (!(level >= 1 && level <= levels)) {
        ThrowUnusable();
    }
    return static_cast<int>(level);
}

bool IsBlockColumn(const Factors& factors, int factor) {
    return factor >= static_cast<int>(factors.GetDesignFactorCount());
}

bool IsQualitative(const Factors& factors, int factor) {
    return !IsBlockColumn(factors, factor) && factors.GetFactorType(factor) == CEType::Qualitative;
}

void RequireColumns(const Matrix& matrix, int columns) {
    if (matrix.SizeColumns() < columns) {
        ThrowUnusable();
    }
}

// Values relative to the ends of a range, in float.
struct Range {
    float low;
    float high;
    [[nodiscard]] float Coded(float value) const {
        return (value - (high + low) / 2) / ((high - low) / 2);
    }
};

Range RangeOf(const Factors& factors, int factor) {
    const std::vector<float> settings = factors.GetFactorSettings(factor);
    return settings.empty() ? Range{-1, 1} : Range{settings.front(), settings.back()};
}

// --- Letter codes -----------------------------------------------------------------------------

void SpreadLevels(const Matrix& coded, int column, int levels, Matrix& result, int first) {
    const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, levels);
    for (int row = 1; row <= coded.SizeRows(); ++row) {
        const int level = LevelOfCode(coded(row, column), levels);
        for (int j = 1; j <= coding->SizeColumns(); ++j) {
            result(row, first + j - 1, (*coding)(level, j));
        }
    }
}

void LevelsFromZero(Matrix& matrix, int column) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        matrix(row, column, matrix(row, column) - Factors::cFirstLevelCode);
    }
}

void CodeMultilevel(Matrix& matrix, int column, const Factors& factors) {
    const std::vector<float> settings = factors.GetFactorSettings(column - 1);
    const Range range = RangeOf(factors, column - 1);
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const int level = LevelOfCode(matrix(row, column), static_cast<int>(settings.size()));
        matrix(row, column, range.Coded(settings[static_cast<std::size_t>(level - 1)]));
    }
}

void CodeFromLetters(Matrix& matrix, const Factors& factors) {
    for (int column = 1; column <= matrix.SizeColumns(); ++column) {
        if (IsBlockColumn(factors, column - 1) || IsQualitative(factors, column - 1)) {
            LevelsFromZero(matrix, column);
        } else if (factors.GetFactorType(column - 1) == CEType::Multilevel) {
            CodeMultilevel(matrix, column, factors);
        }
    }
}

// --- Expanded variables -----------------------------------------------------------------------

// The level, counted from 0, that coding columns stand for.
float LevelOfCoding(std::span<const float> coding) {
    if (coding.front() == -1.0F) {
        return 0;
    }
    const auto found = std::find(coding.begin(), coding.end(), 1.0F);
    return found != coding.end() ? static_cast<float>(found - coding.begin() + 1) : coding.front();
}

// Deliberate: the transform is applied to the value, not to the limits.
float CodedValue(const Factors& factors, int factor, float value) {
    const TransformStruct* transform = factors.GetFactorTransform(factor);
    if (transform != nullptr) {
        transform->TransformValue(&value);
    }
    return RangeOf(factors, factor).Coded(value);
}

float PowerValue(const Factors& factors, int factor, float value, bool pseudoFlag) {
    switch (factors.GetFactorType(factor)) {
        case CEType::Quantitative:
        case CEType::Multilevel:
            return CodedValue(factors, factor, value);
        case CEType::Formulation:
            return factors.IsFormulationSumFree()
                       ? CodedValue(factors, factor, value)
                       : factors.GetPseudoComponent(factor, value, pseudoFlag);
        default:
            return value;
    }
}

// Variables of a factor; all that are left for the block behind the factors.
int WidthAt(const Factors& factors, int factor, int columnsLeft) {
    return IsBlockColumn(factors, factor)
               ? columnsLeft
               : static_cast<int>(factors.GetExpandedVariableCount(factor));
}

Matrix ContractVariables(const Matrix& design, const Factors& factors, bool pseudoFlag) {
    Matrix result(design.SizeRows(), 0);
    int source = 1;
    for (int factor = 0; source <= design.SizeColumns(); ++factor) {
        const int width = WidthAt(factors, factor, design.SizeColumns() - source + 1);
        RequireColumns(design, source + width - 1);
        const bool hasLevels = IsBlockColumn(factors, factor) || IsQualitative(factors, factor);
        result.InsertColumns(factor + 1, 1);
        for (int row = 1; row <= design.SizeRows(); ++row) {
            const auto cells = design.RowSpan(row).subspan(static_cast<std::size_t>(source - 1),
                                                           static_cast<std::size_t>(width));
            result(row,
                   factor + 1,
                   hasLevels ? LevelOfCoding(cells)
                             : PowerValue(factors, factor, cells.front(), pseudoFlag));
        }
        source += width;
    }
    return result;
}

}  // namespace

NCDataMatrix<float> DesignStatistics::FromCodedMatrix(const NCDataMatrix<float>& coded,
                                                      const Factors& factors,
                                                      int blocks,
                                                      bool pseudo) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    const int blockColumns = std::max(blocks - 1, 0);
    RequireColumns(coded, blocks > 1 ? count + 1 : count);
    Matrix result(coded.SizeRows(),
                  static_cast<int>(factors.GetDesignFactorCountExpanded()) + blockColumns);
    int next = 1;
    for (int factor = 0; factor < count; ++factor) {
        if (IsQualitative(factors, factor)) {
            const int levels = static_cast<int>(factors.GetLevelCount(factor));
            SpreadLevels(coded, factor + 1, levels, result, next);
        } else {
            for (int row = 1; row <= coded.SizeRows(); ++row) {
                result(row, next, factors.FromCoded(factor, coded(row, factor + 1), pseudo));
            }
        }
        next += static_cast<int>(factors.GetExpandedVariableCount(factor));
    }
    if (blocks > 1) {
        SpreadLevels(coded, count + 1, blocks, result, next);
    }
    return result;
}

NCDataMatrix<float> DesignStatistics::DesignMatrixPower(const NCDataMatrix<float>& design,
                                                        const Factors& factors,
                                                        bool pseudoFlag,
                                                        bool dropExtra,
                                                        bool lettersCoded) {
    Matrix result = design;
    if (dropExtra && result.SizeColumns() > 0) {
        const int kept = lettersCoded ? result.SizeColumns() - 1
                                      : static_cast<int>(factors.GetDesignFactorCountExpanded());
        RequireColumns(result, kept);
        result.RemoveColumns(kept + 1, result.SizeColumns() - kept);
    }
    if (lettersCoded) {
        CodeFromLetters(result, factors);
    } else {
        result = ContractVariables(result, factors, pseudoFlag);
    }
    if (!factors.IsMixtureOnly()) {
        result.ConcatColumns(Matrix(result.SizeRows(), 1, 1.0F));
    }
    return result;
}
