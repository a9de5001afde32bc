#include "designs/rsm/BB.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>

#include "designs/rsm/BBTable.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr float cFirstBlock = Factors::cFirstLevelCode;
// From so many factors on, base rows vary three factors or more, and their runs can be split by the
// sign of the product without losing a factor's balance.
constexpr int cFirstSplitFactors = 6;

// Null where there is no design of so many factors.
const BBTable::Plan* FindPlan(unsigned int factors) {
    const auto found = std::find_if(BBTable::cPlans.begin(),
                                    BBTable::cPlans.end(),
                                    [&](const auto& plan) { return plan.factors == factors; });
    return found != BBTable::cPlans.end() ? &*found : nullptr;
}

// Writes the runs of one base row below row `before`.
void ExpandBaseRow(std::string_view baseRow, NCDataMatrix<float>& table, int before) {
    for (std::size_t column = 0; column < baseRow.size(); ++column) {
        if (baseRow[column] == '0') {
            continue;
        }
        const auto letter = static_cast<std::size_t>(baseRow[column] - BBTable::cFirstLetter);
        int row = before;
        for (const char sign : BBTable::cSigns[letter]) {
            table(++row, static_cast<int>(column) + 1, sign == '-' ? -1.0F : 1.0F);
        }
    }
}

NCDataMatrix<float> ExpandPlan(const BBTable::Plan& plan) {
    NCDataMatrix<float> table(static_cast<int>(plan.runs), static_cast<int>(plan.factors), 0.0F);
    const int group = static_cast<int>(plan.runs / plan.baseRows.size());
    int before = 0;
    for (const std::string_view baseRow : plan.baseRows) {
        ExpandBaseRow(baseRow, table, before);
        before += group;
    }
    return table;
}

// How many equal stretches of runs the blocks are first made of.
int CountStretches(int factors, int blocks) {
    if (factors < cFirstSplitFactors) {
        return blocks;
    }
    return factors == 9 ? 5 : 1;
}

bool IsSplitBySign(int factors, int blocks) {
    return factors >= cFirstSplitFactors && !(factors == 9 && blocks == 5);
}

bool HasPositiveProduct(std::span<const float> run) {
    const auto negative = std::count_if(run.begin(), run.end(), [](float x) { return x < 0; });
    return negative % 2 == 0;
}

void AppendBlockColumn(NCDataMatrix<float>& table, int blocks) {
    const int factors = table.SizeColumns();
    const int runs = table.SizeRows();
    // More stretches than runs cannot be; all runs then form one.
    const int asked = CountStretches(factors, blocks);
    const int stretch = asked <= runs ? runs / asked : runs;
    NCDataVector<float> column(runs);
    for (int run = 1; run <= runs; ++run) {
        int block = (run - 1) / stretch + 1;
        if (IsSplitBySign(factors, blocks)) {
            block = HasPositiveProduct(table.RowSpan(run)) ? 2 * block - 1 : 2 * block;
        }
        column(run, cFirstBlock + static_cast<float>(block - 1));
    }
    table.InsertColumn(factors + 1, column);
}

}  // namespace

BB::BB(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    const BBTable::Plan* plan = FindPlan(factors.GetDesignFactorCount());
    if (plan == nullptr) {
        return;
    }
    NCDataMatrix<float> table = ExpandPlan(*plan);
    if (options.GetBlocks() > 1) {
        AppendBlockColumn(table, static_cast<int>(std::min(options.GetBlocks(), plan->runs + 1)));
    }
    SetDesignMatrixAndAdd(table, factors, options);
}

std::shared_ptr<NCDesign> BB::Clone() const {
    return std::make_shared<BB>(*this);
}

std::unique_ptr<NCDesign> BBBuilder::Build(const Factors& factors,
                                           const DesignOptions& options,
                                           bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<BB>(factors, options) : nullptr;
}

unsigned int BBBuilder::GetDefaultRuns(const Factors& factors,
                                       EObjective::Type /*objective*/) const {
    const BBTable::Plan* plan = FindPlan(factors.GetDesignFactorCount());
    return plan != nullptr ? plan->runs : 0;
}

std::vector<unsigned int> BBBuilder::GetLegalRuns(const Factors& factors,
                                                  const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char BBBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::BB, factors.GetDesignFactorCount());
}

bool BBBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if ((factors.IsMixture() && !factors.IsFormulationSumFree()) ||
        FamilyRules::HasConstraints(options)) {
        return false;
    }
    if (!FamilyRules::IsResponseSurface(options.GetObjective()) ||
        options.GetModel() != EModel::Quadratic) {
        return false;
    }
    if (!factors.IsProcessOnly() || !factors.IsAllQuantitative()) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs + GetMinimumCenterPoints();
}

EModel::Type BBBuilder::GetDefaultModel(const Factors& /*factors*/,
                                        EObjective::Type objective) const {
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}
