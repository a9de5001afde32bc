#include "designs/optimal/engine/DesignFigures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "foundation/mat/NCSVD.h"

namespace DOpt {

namespace {

/// Singular values of X1'X1 below this are 0.
constexpr double cLeastSingularValue = 1e-17;

NCDataMatrix<double> PrimaryRows(const ExchangeModel& model, std::span<const int> rows) {
    NCDataMatrix<double> design(static_cast<int>(rows.size()), model.PrimaryColumns());
    int next = 1;
    for (const int row : rows) {
        const auto cells = model.Row(row).first(static_cast<std::size_t>(model.PrimaryColumns()));
        std::ranges::copy(cells, design.RowSpan(next++).begin());
    }
    return design;
}

SquareMatrix ToSquare(const NCDataMatrix<double>& matrix) {
    SquareMatrix square(matrix.SizeRows());
    for (int i = 1; i <= matrix.SizeRows(); ++i) {
        std::ranges::copy(matrix.RowSpan(i), square.Row(static_cast<std::size_t>(i - 1)));
    }
    return square;
}

struct VarianceSummary {
    double largest = 0;
    double mean = 0;
};

VarianceSummary Summarise(const ExchangeModel& model, const SquareMatrix& inverse) {
    std::vector<double> variances;
    model.ComputeVariances(inverse, variances);
    VarianceSummary summary;
    int count = 0;
    for (int k = 0; k < model.Candidates(); ++k) {
        if (model.IsUsable(k)) {
            const double variance = variances[static_cast<std::size_t>(k)];
            summary.largest = std::max(summary.largest, variance);
            summary.mean += variance;
            ++count;
        }
    }
    summary.mean /= count;
    return summary;
}

float IValue(std::span<const double> singularValues, double runs, double meanVariance) {
    const double largest = singularValues.front() * singularValues.front();
    const double smallest = singularValues.back() * singularValues.back();
    const bool isFormed = smallest >= cLeastSingularValue &&
                          largest / smallest <= static_cast<double>(cMaxConditionNumber);
    return isFormed ? static_cast<float>(runs * meanVariance)
                    : std::numeric_limits<float>::quiet_NaN();
}

}  // namespace

Status ComputeFigures(const ExchangeModel& model,
                      std::span<const int> rows,
                      bool* cancel,
                      ExchangeFigures& figures) {
    const auto svd = PrimaryRows(model, rows).GetSVD(cancel);
    if (svd == nullptr) {
        return Cancelled;
    }
    const auto inverse = svd->GetCrossInverse();
    if (inverse == nullptr) {
        return Singular;
    }
    if (svd->GetConditionNumber() < cMaxConditionNumber) {
        figures.conditionNumber = svd->GetConditionNumber();
    }
    figures.logDeterminant = static_cast<float>(svd->GetLogDeterminant());
    if (figures.logDeterminant == 0 || figures.logDeterminant == -99.0F) {
        return NoDeterminant;
    }
    const auto runs = static_cast<float>(rows.size());
    const auto columns = static_cast<float>(model.PrimaryColumns());
    figures.normLogDeterminant = figures.logDeterminant / columns - std::log10(runs);
    const VarianceSummary summary = Summarise(model, ToSquare(*inverse));
    figures.gEfficiency = static_cast<float>(static_cast<double>(columns) * 100 /
                                             (static_cast<double>(runs) * summary.largest));
    figures.iValue = IValue(svd->GetSingularValues(), static_cast<double>(runs), summary.mean);
    return Success;
}

}  // namespace DOpt
