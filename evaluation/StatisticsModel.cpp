#include "evaluation/StatisticsModel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "designs/optimal/IOptimal.h"
#include "foundation/mat/NCSVD.h"
#include "foundation/utl/Exceptions.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr double cNone = -99.0;
/// A condition number above this is not told, and nothing that rests on the inverse with it.
constexpr double cMaxConditionNumber = 3000.0;

// Overflow, and underflow below the normal numbers, count as no value.
double TellableOrNone(double value) {
    const int kind = std::fpclassify(value);
    return kind == FP_NORMAL || kind == FP_ZERO ? value : cNone;
}

double LargestVariance(const Matrix& rows, const Matrix& inverse) {
    const Matrix images = rows * inverse;
    double largest = 0;
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        const auto image = images.RowSpan(row);
        const auto cells = rows.RowSpan(row);
        double variance = 0;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            variance += static_cast<double>(image[i]) * static_cast<double>(cells[i]);
        }
        largest = std::max(largest, variance);
    }
    return largest;
}

}  // namespace

StatisticsModel::StatisticsModel(const Factors& factors,
                                 const ModelTerms::List& terms,
                                 int blocks,
                                 const Matrix* candidates)
    : adapter_(factors, static_cast<unsigned int>(std::max(blocks, 1))), candidates_(candidates) {
    const auto variables = static_cast<int>(adapter_.GetDesignFactorCountExpanded());
    if (generator_.SetVariables(variables) != DOpt::Success) {
        return;
    }
    generator_.SetIsMixFrom(adapter_);
    generator_.SetVarRangesFrom(adapter_);
    generator_.SetTransformsFrom(adapter_);
    expansion_ = std::make_unique<DOpt::ModelExpansion>(generator_, adapter_);
    expansion_->AddModelTerms(terms);
}

StatisticsModel::~StatisticsModel() = default;

Matrix StatisticsModel::Expand(const Matrix& rows) const {
    if (expansion_ == nullptr || rows.SizeRows() == 0) {
        return {};
    }
    if (rows.SizeColumns() != generator_.GetVariables()) {
        throw InvalidOperationException("");
    }
    Matrix ordered = rows;
    adapter_.ReorderFromOriginal(ordered);
    return expansion_->MakeMatrix(ordered);
}

std::vector<std::vector<int>> StatisticsModel::GetColumns() const {
    return expansion_ != nullptr ? expansion_->GetColumns() : std::vector<std::vector<int>>();
}

void StatisticsModel::ExpandCandidates(int columns) {
    if (average_ == nullptr) {
        candidateModel_ = Expand(*candidates_);
        if (candidateModel_.SizeColumns() == columns) {
            average_ = std::make_unique<NCDOE::IOptimal>(candidateModel_);
        }
    }
    if (candidateModel_.SizeColumns() != columns) {
        throw InvalidOperationException("");
    }
}

void StatisticsModel::JudgePredictions(const Matrix& model,
                                       const Matrix& inverse,
                                       DesignStatistics::Results& results) {
    ExpandCandidates(model.SizeColumns());
    const double columns = model.SizeColumns();
    const double runs = model.SizeRows();
    results.GEff =
        TellableOrNone(100.0 * columns / (runs * LargestVariance(candidateModel_, inverse)));
    results.IOptimality = average_->GetIValue(model);
}

DesignStatistics::Results StatisticsModel::Calculate(const Matrix& design, bool& stop) {
    DesignStatistics::Results results;
    const Matrix model = Expand(design);
    if (stop || model.SizeRows() == 0 || model.SizeRows() < model.SizeColumns()) {
        return results;
    }
    const auto svd = model.GetSVD(&stop);
    if (svd == nullptr) {
        return results;
    }
    const auto logDet = static_cast<double>(svd->GetLogDeterminant());
    if (logDet == 0.0 || logDet == cNone) {
        return results;
    }
    results.LogDet = logDet;
    const auto columns = static_cast<float>(model.SizeColumns());
    const auto runs = static_cast<float>(model.SizeRows());
    results.NormLogDet = TellableOrNone(logDet / static_cast<double>(columns) -
                                        static_cast<double>(std::log10(runs)));
    const auto condition = static_cast<double>(svd->GetConditionNumber());
    results.CondNo = condition > cMaxConditionNumber ? cNone : condition;
    if (candidates_ == nullptr || results.CondNo == cNone) {
        return results;
    }
    const auto crossSvd = (model.Prim() * model).GetSVD(&stop);
    const auto inverse = crossSvd != nullptr ? crossSvd->GetInverse(-99.0F) : nullptr;
    if (!stop && inverse != nullptr) {
        JudgePredictions(model, *inverse, results);
    }
    return results;
}
