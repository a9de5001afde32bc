#include "host/DesignEvaluation.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "foundation/mat/NCSVD.h"
#include "host/ModelColumns.h"

namespace {

using Matrix = NCDataMatrix<double>;

Matrix Widened(const NCDataMatrix<float>& matrix) {
    Matrix wide(matrix.SizeRows(), matrix.SizeColumns());
    std::ranges::copy(matrix.Cells(), wide.Cells().begin());
    return wide;
}

std::vector<double> Column(const Matrix& matrix, int number) {
    std::vector<double> column(static_cast<std::size_t>(matrix.SizeRows()));
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        column[static_cast<std::size_t>(row - 1)] = matrix(row, number);
    }
    return column;
}

std::vector<double> Leverages(const Matrix& model, const Matrix& inverse) {
    const Matrix images = model * inverse;
    std::vector<double> leverages(static_cast<std::size_t>(model.SizeRows()));
    for (int row = 1; row <= model.SizeRows(); ++row) {
        const auto image = images.RowSpan(row);
        leverages[static_cast<std::size_t>(row - 1)] =
            std::inner_product(image.begin(), image.end(), model.RowSpan(row).begin(), 0.0);
    }
    return leverages;
}

std::vector<double> Variances(const Matrix& inverse) {
    std::vector<double> variances(static_cast<std::size_t>(inverse.SizeRows()));
    for (int i = 1; i <= inverse.SizeRows(); ++i) {
        variances[static_cast<std::size_t>(i - 1)] = inverse(i, i);
    }
    return variances;
}

// Less its mean, of length 1; empty for a column that does not vary.
std::vector<double> Standardised(std::vector<double> column) {
    const double mean = std::accumulate(column.begin(), column.end(), 0.0) /
                        static_cast<double>(std::max<std::size_t>(column.size(), 1));
    double squares = 0;
    double whole = 0;
    for (double& cell : column) {
        whole += cell * cell;
        cell -= mean;
        squares += cell * cell;
    }
    constexpr double cRounding = 1e-12;
    if (!(squares > cRounding * whole)) {
        return {};
    }
    for (double& cell : column) {
        cell /= std::sqrt(squares);
    }
    return column;
}

std::vector<DesignEvaluation::Correlation> Correlations(const Matrix& model) {
    std::vector<std::vector<double>> columns;
    columns.reserve(static_cast<std::size_t>(model.SizeColumns()));
    for (int column = 1; column <= model.SizeColumns(); ++column) {
        columns.push_back(Standardised(Column(model, column)));
    }
    std::vector<DesignEvaluation::Correlation> correlations;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (std::size_t j = i + 1; j < columns.size(); ++j) {
            if (!columns[i].empty() && !columns[j].empty()) {
                correlations.push_back(
                    {i,
                     j,
                     std::inner_product(
                         columns[i].begin(), columns[i].end(), columns[j].begin(), 0.0)});
            }
        }
    }
    std::ranges::stable_sort(correlations, [](const auto& a, const auto& b) {
        return std::abs(a.value) > std::abs(b.value);
    });
    return correlations;
}

}  // namespace

DesignEvaluation EvaluateDesign(const JudgedDesign& design) {
    const StudyFactors& factors = design.study.factors;
    const NCDOE::ModelMatrix model =
        NCDOE::MakeModelMatrix(factors, design.terms, design.runs, design.blocks);
    DesignEvaluation evaluation;
    bool stop = false;
    evaluation.figures = DesignStatistics::CalculateStatistics(
        factors,
        design.terms,
        design.runs,
        design.candidates.SizeRows() > 0 ? &design.candidates : nullptr,
        false,
        design.blocks,
        stop);
    evaluation.columns = ColumnNames(model, factors, design.blocks);
    evaluation.dependent = DependentColumns(model.rows, evaluation.columns);
    const Matrix rows = Widened(model.rows);
    evaluation.correlations = Correlations(rows);
    const auto svd = evaluation.dependent.empty() ? rows.GetSVD(nullptr) : nullptr;
    if (const auto inverse = svd ? svd->GetCrossInverse() : nullptr) {
        evaluation.leverages = Leverages(rows, *inverse);
        evaluation.variances = Variances(*inverse);
    }
    return evaluation;
}
