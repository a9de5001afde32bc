#include "host/ModelColumns.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/IndependentColumns.h"
#include "host/JsonPlace.h"

namespace {

constexpr std::size_t cMostNamed = 20;

// The names of the expanded variables, those of the blocks last.
std::vector<std::string> VariableNames(const StudyFactors& factors, int blocks) {
    std::vector<std::string> names;
    names.reserve(factors.GetDesignFactorCountExpanded());
    for (const StudyFactor& factor : factors.All()) {
        if (factor.type != CEType::Qualitative) {
            names.push_back(factor.name);
            continue;
        }
        for (std::size_t level = 1; level < factor.levels.size(); ++level) {
            names.push_back(factor.name + "=" + factor.levels[level]);
        }
    }
    for (int block = 2; block <= blocks; ++block) {
        names.push_back(fmt::format("Block={}", block));
    }
    return names;
}

std::string ColumnName(const std::vector<int>& variables, const std::vector<std::string>& names) {
    std::string text;
    for (auto first = variables.begin(); first != variables.end();) {
        const auto next =
            std::find_if(first, variables.end(), [first](int other) { return other != *first; });
        text += (text.empty() ? "" : "*") + names.at(static_cast<std::size_t>(*first));
        if (next - first > 1) {
            text += fmt::format("^{}", next - first);
        }
        first = next;
    }
    return text.empty() ? "constant" : text;
}

}  // namespace

std::vector<std::string> ColumnNames(const NCDOE::ModelMatrix& model,
                                     const StudyFactors& factors,
                                     int blocks) {
    const std::vector<std::string> variables = VariableNames(factors, blocks);
    std::vector<std::string> names;
    names.reserve(model.columns.size());
    for (const std::vector<int>& column : model.columns) {
        names.push_back(ColumnName(column, variables));
    }
    return names;
}

std::vector<std::string> DependentColumns(const NCDataMatrix<float>& rows,
                                          const std::vector<std::string>& names) {
    IndependentColumns independent;
    std::vector<std::string> dependent;
    for (int column = 1; column <= rows.SizeColumns(); ++column) {
        std::vector<double> cells(static_cast<std::size_t>(rows.SizeRows()));
        for (int row = 1; row <= rows.SizeRows(); ++row) {
            cells[static_cast<std::size_t>(row - 1)] = static_cast<double>(rows(row, column));
        }
        if (!independent.Add(std::move(cells))) {
            dependent.push_back(names[static_cast<std::size_t>(column - 1)]);
        }
    }
    return dependent;
}

std::string ShortListOf(std::vector<std::string> names) {
    const std::size_t more = names.size() > cMostNamed ? names.size() - cMostNamed : 0;
    names.resize(names.size() - more);
    if (more > 0) {
        names.push_back(fmt::format("{} more", more));
    }
    return ListOf(names, "and");
}
