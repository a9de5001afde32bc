#include "tests/support/DesignMatchers.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Table = NCDataMatrix<float>;
using Counts = std::map<float, long long>;

// Sums of products of coded values are exact in double up to rounding of the column means.
constexpr double cOrthogonalTolerance = 1e-6;
constexpr float cFirstCode = 65.0F;

/// A property: an empty text where it holds, or else what breaks it.
using Property = std::function<std::string(const Table&)>;

class PropertyMatcher : public ::testing::MatcherInterface<const Table&> {
  public:
    PropertyMatcher(std::string name, Property property)
        : name_(std::move(name)), property_(std::move(property)) {}

    bool MatchAndExplain(const Table& table,
                         ::testing::MatchResultListener* listener) const override {
        const std::string fault = property_(table);
        *listener << fault;
        return fault.empty();
    }
    void DescribeTo(std::ostream* out) const override { *out << name_; }
    void DescribeNegationTo(std::ostream* out) const override { *out << "not: " << name_; }

  private:
    std::string name_;
    Property property_;
};

DesignMatcher MakeDesignMatcher(std::string name, Property property) {
    return DesignMatcher(new PropertyMatcher(std::move(name), std::move(property)));
}

template <class... Parts>
std::string Text(const Parts&... parts) {
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

std::string CellText(const Table& table, int row, int column) {
    return Text("row ", row, ", column ", column, " holds ", table(row, column));
}

Counts CountValues(const Table& table, int column) {
    Counts counts;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        ++counts[table(row, column)];
    }
    return counts;
}

bool IsLevelFactor(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

int FactorCount(const Factors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

std::string BalanceFault(const Table& table, const Factors& factors) {
    for (int column = 1; column <= table.SizeColumns(); ++column) {
        const Counts counts = CountValues(table, column);
        for (const auto& [value, count] : counts) {
            if (count != counts.begin()->second) {
                return Text("column ",
                            column,
                            " holds ",
                            counts.begin()->first,
                            " in ",
                            counts.begin()->second,
                            " rows, but ",
                            value,
                            " in ",
                            count);
            }
        }
        const bool hasLevels = column <= FactorCount(factors) && IsLevelFactor(factors, column - 1);
        if (hasLevels && counts.size() != factors.GetLevelCount(column - 1)) {
            return Text("column ",
                        column,
                        " holds ",
                        counts.size(),
                        " of ",
                        factors.GetLevelCount(column - 1),
                        " levels");
        }
    }
    return {};
}

std::vector<double> CentredColumn(const Table& table, int column) {
    std::vector<double> values;
    double sum = 0;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        values.push_back(table(row, column));
        sum += values.back();
    }
    for (double& value : values) {
        value -= sum / table.SizeRows();
    }
    return values;
}

std::string OrthogonalityFault(const Table& table) {
    std::vector<std::vector<double>> columns;
    for (int column = 1; column <= table.SizeColumns(); ++column) {
        columns.push_back(CentredColumn(table, column));
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (std::size_t j = i + 1; j < columns.size(); ++j) {
            double sum = 0;
            for (std::size_t row = 0; row < columns[i].size(); ++row) {
                sum += columns[i][row] * columns[j][row];
            }
            if (std::abs(sum) > cOrthogonalTolerance * table.SizeRows()) {
                return Text("columns ", i + 1, " and ", j + 1, " have the product ", sum);
            }
        }
    }
    return {};
}

std::string FrequencyFault(const Table& table) {
    for (int a = 1; a <= table.SizeColumns(); ++a) {
        const Counts countsA = CountValues(table, a);
        for (int b = a + 1; b <= table.SizeColumns(); ++b) {
            std::map<std::pair<float, float>, long long> pairs;
            for (int row = 1; row <= table.SizeRows(); ++row) {
                ++pairs[{table(row, a), table(row, b)}];
            }
            for (const auto& [valueA, countA] : countsA) {
                for (const auto& [valueB, countB] : CountValues(table, b)) {
                    const long long both = pairs[{valueA, valueB}];
                    if (both * table.SizeRows() != countA * countB) {
                        return Text("columns ",
                                    a,
                                    " and ",
                                    b,
                                    " hold (",
                                    valueA,
                                    ", ",
                                    valueB,
                                    ") in ",
                                    both,
                                    " rows");
                    }
                }
            }
        }
    }
    return {};
}

// Why a cell is not allowed, or an empty text.
std::string IllegalCell(
    const Table& table, int row, int column, std::optional<unsigned> codes, float reach) {
    const float value = table(row, column);
    if (codes) {
        const float level = value - cFirstCode;
        const bool legal =
            level >= 0 && level < static_cast<float>(*codes) && level == std::floor(level);
        return legal ? "" : CellText(table, row, column) + Text(", no code of ", *codes, " levels");
    }
    const bool legal = value >= -reach && value <= reach;
    return legal ? "" : CellText(table, row, column) + Text(", outside -", reach, " to ", reach);
}

std::string LegalLevelsFault(const Table& table,
                             const Factors& factors,
                             unsigned blocks,
                             float reach) {
    const int count = FactorCount(factors);
    const int expected = count + (blocks > 1 ? 1 : 0);
    if (table.SizeColumns() != expected) {
        return Text("there are ", table.SizeColumns(), " columns, not ", expected);
    }
    for (int column = 1; column <= expected; ++column) {
        std::optional<unsigned> codes;
        if (column > count) {
            codes = blocks;
        } else if (IsLevelFactor(factors, column - 1)) {
            codes = factors.GetLevelCount(column - 1);
        }
        for (int row = 1; row <= table.SizeRows(); ++row) {
            std::string fault = IllegalCell(table, row, column, codes, reach);
            if (!fault.empty()) {
                return fault;
            }
        }
    }
    return {};
}

// The column as signs; empty unless it has exactly two values.
std::vector<int> Signs(const Table& table, int column) {
    const Counts counts = CountValues(table, column);
    std::vector<int> signs;
    if (counts.size() == 2) {
        for (int row = 1; row <= table.SizeRows(); ++row) {
            signs.push_back(table(row, column) == counts.begin()->first ? -1 : 1);
        }
    }
    return signs;
}

// Looks at the product with each further column in turn, deeper while orders are left.
std::string ConfoundedProduct(const std::vector<std::vector<int>>& columns,
                              const std::vector<int>& product,
                              std::size_t next,
                              int ordersLeft,
                              const std::string& names) {
    for (std::size_t column = next; ordersLeft > 0 && column < columns.size(); ++column) {
        std::vector<int> longer = product;
        long long sum = 0;
        for (std::size_t row = 0; row < longer.size(); ++row) {
            longer[row] *= columns[column][row];
            sum += longer[row];
        }
        const std::string longerNames = Text(names, names.empty() ? "" : " * ", column + 1);
        if (sum != 0) {
            return Text("the product of columns ", longerNames, " sums to ", sum);
        }
        std::string fault =
            ConfoundedProduct(columns, longer, column + 1, ordersLeft - 1, longerNames);
        if (!fault.empty()) {
            return fault;
        }
    }
    return {};
}

std::string ResolutionFault(const Table& table, int resolution) {
    std::vector<std::vector<int>> columns;
    for (int column = 1; column <= table.SizeColumns(); ++column) {
        columns.push_back(Signs(table, column));
        if (columns.back().empty()) {
            return Text(
                "column ", column, " has ", CountValues(table, column).size(), " values, not two");
        }
    }
    const std::vector<int> constant(static_cast<std::size_t>(table.SizeRows()), 1);
    return ConfoundedProduct(columns, constant, 0, resolution - 1, "");
}

std::vector<float> MirrorImage(const std::vector<float>& run) {
    std::vector<float> mirror;
    for (const float value : run) {
        const bool isCode = value == cFirstCode || value == cFirstCode + 1;
        // The sum avoids -0, which orders like 0 but prints otherwise.
        mirror.push_back(isCode ? 2 * cFirstCode + 1 - value : 0.0F - value);
    }
    return mirror;
}

std::string FoldOverFault(const Table& table) {
    std::map<std::vector<float>, int> balance;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        const auto span = table.RowSpan(row);
        const std::vector<float> run(span.begin(), span.end());
        ++balance[run];
        --balance[MirrorImage(run)];
    }
    for (int row = 1; row <= table.SizeRows(); ++row) {
        const auto span = table.RowSpan(row);
        if (balance[std::vector<float>(span.begin(), span.end())] != 0) {
            return Text("row ", row, " and its mirror image do not occur equally often");
        }
    }
    return {};
}

std::string RowSumFault(const Table& table, double target, double tolerance) {
    for (int row = 1; row <= table.SizeRows(); ++row) {
        double sum = 0;
        for (const float value : table.RowSpan(row)) {
            sum += value;
        }
        if (!(std::abs(sum - target) <= tolerance)) {
            return Text("row ", row, " sums to ", sum, ", not ", target);
        }
    }
    return {};
}

// Deliberate: the sums are formed here, not asked of the constraint, so that one checks the other.
std::string ConstraintFault(const Table& table, const std::vector<NCDOE::Constraint>& constraints) {
    for (int row = 1; row <= table.SizeRows(); ++row) {
        for (std::size_t i = 0; i < constraints.size(); ++i) {
            double sum = 0;
            for (const auto& [factor, coefficient] : constraints[i].terms) {
                if (table(row, factor + 1) == Table::cMissing) {
                    return CellText(table, row, factor + 1);
                }
                sum += coefficient * table(row, factor + 1);
            }
            const double excess = constraints[i].greaterOrEqual ? constraints[i].value - sum
                                                                : sum - constraints[i].value;
            if (excess > 0) {
                return Text("row ", row, " breaks constraint ", i + 1, " by ", excess);
            }
        }
    }
    return {};
}

float CentreCell(const Factors& factors, int factor) {
    switch (factors.GetFactorType(factor)) {
        case CEType::Qualitative:
            return cFirstCode;
        case CEType::Multilevel:
            return cFirstCode + static_cast<float>((factors.GetLevelCount(factor) + 1) / 2 - 1);
        default:
            return 0;
    }
}

std::string CentrePointFault(const Table& table, int count, const Factors& factors) {
    if (table.SizeRows() < count || table.SizeColumns() < FactorCount(factors)) {
        return Text(
            "there are only ", table.SizeRows(), " rows and ", table.SizeColumns(), " columns");
    }
    for (int row = table.SizeRows() - count + 1; row <= table.SizeRows(); ++row) {
        for (int column = 1; column <= FactorCount(factors); ++column) {
            if (table(row, column) != CentreCell(factors, column - 1)) {
                return CellText(table, row, column);
            }
        }
    }
    return {};
}

}  // namespace

DesignMatcher IsBalanced(const Factors& factors) {
    return MakeDesignMatcher("holds each level equally often", [&factors](const Table& table) {
        return BalanceFault(table, factors);
    });
}

DesignMatcher HasOrthogonalColumns() {
    return MakeDesignMatcher("has orthogonal columns", OrthogonalityFault);
}

DesignMatcher HasProportionalFrequencies() {
    return MakeDesignMatcher("has proportional frequencies", FrequencyFault);
}

DesignMatcher HasOnlyLegalLevels(const Factors& factors, const DesignOptions& options) {
    const float reach = std::max(1.0F, options.GetStarDistance());
    return MakeDesignMatcher("has only legal levels",
                             [&factors, blocks = options.GetBlocks(), reach](const Table& table) {
                                 return LegalLevelsFault(table, factors, blocks, reach);
                             });
}

DesignMatcher HasResolutionAtLeast(int resolution) {
    return MakeDesignMatcher(
        Text("has resolution ", resolution, " at least"),
        [resolution](const Table& table) { return ResolutionFault(table, resolution); });
}

DesignMatcher IsFoldOver() {
    return MakeDesignMatcher("is a fold-over", FoldOverFault);
}

DesignMatcher RowsSumTo(double target, double tolerance) {
    return MakeDesignMatcher(
        Text("has rows that sum to ", target),
        [target, tolerance](const Table& table) { return RowSumFault(table, target, tolerance); });
}

DesignMatcher KeepsWithin(const NCDOE::Constraints& constraints) {
    return MakeDesignMatcher("keeps within the constraints",
                             [list = constraints.GetConstraints()](const Table& table) {
                                 return ConstraintFault(table, list);
                             });
}

DesignMatcher HasCentrePointRows(int count, const Factors& factors) {
    return MakeDesignMatcher(
        Text("ends with ", count, " centre points"),
        [count, &factors](const Table& table) { return CentrePointFault(table, count, factors); });
}
