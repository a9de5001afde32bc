#include "evaluation/ModelMatrix.h"

#include <algorithm>
#include <numeric>

#include "designs/optimal/DOptFactorAdapter.h"
#include "evaluation/StatisticsModel.h"

namespace {

using Matrix = NCDataMatrix<float>;

// The caller's number, from 0, of each variable in the engine's order.
std::vector<int> CallersVariables(const Factors& factors, int blocks) {
    const DOptFactorAdapter adapter(factors, static_cast<unsigned int>(std::max(blocks, 1)));
    const int count = static_cast<int>(adapter.GetDesignFactorCountExpanded());
    Matrix numbers(1, count);
    const auto cells = numbers.RowSpan(1);
    std::iota(cells.begin(), cells.end(), 0.0F);
    adapter.ReorderToOriginal(numbers);
    std::vector<int> callers(static_cast<std::size_t>(count));
    for (int variable = 0; variable < count; ++variable) {
        callers[static_cast<std::size_t>(numbers(1, variable + 1))] = variable;
    }
    return callers;
}

}  // namespace

NCDOE::ModelMatrix NCDOE::MakeModelMatrix(const Factors& factors,
                                          const std::vector<std::vector<int>>& terms,
                                          const Matrix& runs,
                                          int blocks) {
    const StatisticsModel model(factors, terms, blocks, nullptr);
    ModelMatrix result{model.Expand(runs), model.GetColumns()};
    const std::vector<int> callers = CallersVariables(factors, blocks);
    for (std::vector<int>& column : result.columns) {
        std::ranges::transform(column, column.begin(), [&callers](int variable) {
            return callers[static_cast<std::size_t>(variable - 1)];
        });
        std::ranges::sort(column);
    }
    return result;
}
