#include "designs/stability/SubsetModel.h"

#include <algorithm>
#include <cstddef>

#include "foundation/mat/NCSVD.h"
#include "foundation/mat/TransformStruct.h"
#include "frame/Factors.h"

namespace {

constexpr float cNone = Factors::cNoValue;

}  // namespace

SubsetModel::SubsetModel(const Factors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Multilevel) {
            codings_.push_back(CodeMultilevel(factors, factor));
        } else if (type == CEType::Qualitative) {
            codings_.push_back(CodeQualitative(factors, factor));
        } else {
            codings_.push_back({true, 2, 1, {1.0F, -1.0F, 1.0F}});
        }
        width_ += codings_.back().width;
    }
}

SubsetModel::Coding SubsetModel::CodeMultilevel(const Factors& factors, int factor) {
    std::vector<float> settings = factors.GetFactorSettings(factor);
    if (settings.empty()) {
        return {false, 0, 1, {cNone}};
    }
    if (const TransformStruct* transform = factors.GetFactorTransform(factor)) {
        for (float& setting : settings) {
            transform->TransformValue(&setting);
        }
    }
    const float low = settings.front();
    const float high = settings.back();
    const std::size_t middle = (settings.size() - 1) / 2;
    Coding coding{false, static_cast<int>(settings.size()), 1, {settings[middle]}};
    coding.cells.insert(coding.cells.end(), settings.begin(), settings.end());
    for (float& cell : coding.cells) {
        // A setting without an image under the transform has none under the scaling either.
        cell = cell == cNone || low == cNone || high == cNone
                   ? cNone
                   : (cell - (high + low) / 2) / ((high - low) / 2);
    }
    return coding;
}

SubsetModel::Coding SubsetModel::CodeQualitative(const Factors& factors, int factor) {
    const int levels = static_cast<int>(factors.GetLevelCount(factor));
    const auto rows = Factors::MakeCodingMatrix(CEType::Qualitative, levels);
    Coding coding{false, levels, rows->SizeColumns(), {}};
    coding.cells.assign(static_cast<std::size_t>(coding.width), cNone);
    coding.cells.insert(coding.cells.end(), rows->Cells().begin(), rows->Cells().end());
    return coding;
}

NCDataMatrix<float> SubsetModel::MakeDesignMatrix(LevelRows rows) const {
    NCDataMatrix<float> matrix(static_cast<int>(rows.Count()), width_);
    auto target = matrix.Cells().begin();
    for (std::size_t row = 0; row < rows.Count(); ++row) {
        auto level = rows[row].begin();
        for (const Coding& coding : codings_) {
            const int asked = coding.twoLevel && *level != 1 ? 2 : *level;
            if (asked >= 0 && asked <= coding.levels) {
                std::copy_n(coding.cells.begin() + std::ptrdiff_t{asked} * coding.width,
                            coding.width,
                            target);
            }
            target += coding.width;
            ++level;
        }
    }
    return matrix;
}

float SubsetModel::GetConditionNumber(LevelRows rows) const {
    if (width_ == 0 || rows.Count() < static_cast<std::size_t>(width_)) {
        return cNone;
    }
    const auto svd = MakeDesignMatrix(rows).GetSVD(nullptr);
    return svd ? svd->GetConditionNumber() : cNone;
}

float GetConditionNo(const LevelMatrix& subset, const Factors& factors) {
    const auto columns = static_cast<long>(factors.GetDesignFactorCount());
    std::vector<int> cells;
    cells.reserve(static_cast<std::size_t>(subset.nr() * columns));
    for (long row = 0; row < subset.nr(); ++row) {
        for (long column = 0; column < columns; ++column) {
            cells.push_back(subset(row, column));
        }
    }
    return SubsetModel(factors).GetConditionNumber({cells, static_cast<std::size_t>(columns)});
}
