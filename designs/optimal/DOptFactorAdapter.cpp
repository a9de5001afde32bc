#include "designs/optimal/DOptFactorAdapter.h"

#include <algorithm>
#include <limits>
#include <set>

#include "foundation/mat/NCIntegralVector.h"
#include "foundation/util/NCInternalError.h"

namespace {

constexpr unsigned int cLeastBlocks = 2;

NCIntegralVector<int, -99> FromOne(const std::vector<int>& order) {
    NCIntegralVector<int, -99> columns(static_cast<int>(order.size()));
    for (int i = 1; i <= columns.Size(); ++i) {
        columns(i) = order[static_cast<std::size_t>(i - 1)] + 1;
    }
    return columns;
}

std::vector<int> Inverse(const std::vector<int>& order) {
    std::vector<int> inverse(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        inverse[static_cast<std::size_t>(order[i])] = static_cast<int>(i);
    }
    return inverse;
}

}  // namespace

DOptFactorAdapter::DOptFactorAdapter(const Factors& factors, unsigned int blocks)
    : factors_(&factors), blocks_(blocks) {
    order_ = ColumnOrder(false);
}

DOptFactorAdapter::~DOptFactorAdapter() = default;

std::vector<int> DOptFactorAdapter::ColumnOrder(bool expanded) const {
    std::vector<int> order;
    std::set<int> formulation;
    int column = 0;
    const int count = static_cast<int>(factors_->GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const bool isFormulation = factors_->GetFactorType(factor) == CEType::Formulation;
        const int width =
            expanded ? static_cast<int>(factors_->GetExpandedVariableCount(factor)) : 1;
        for (int i = 0; i < width; ++i, ++column) {
            if (isFormulation) {
                formulation.insert(column);
            } else {
                order.push_back(column);
            }
        }
    }
    if (blocks_ >= cLeastBlocks) {
        const int width = expanded ? static_cast<int>(blocks_) - 1 : 1;
        for (int i = 0; i < width; ++i, ++column) {
            order.push_back(column);
        }
    }
    order.insert(order.end(), formulation.begin(), formulation.end());
    return order;
}

int DOptFactorAdapter::ToUnderlying(int factor) const {
    return factor >= 0 && factor < static_cast<int>(order_.size())
               ? order_[static_cast<std::size_t>(factor)]
               : factor;
}

bool DOptFactorAdapter::IsBlock(int factor) const {
    return blocks_ >= cLeastBlocks && factor >= 0 && factor < static_cast<int>(order_.size()) &&
           ToUnderlying(factor) == static_cast<int>(factors_->GetDesignFactorCount());
}

unsigned int DOptFactorAdapter::GetDesignFactorCount() const {
    return factors_->GetDesignFactorCount() + (blocks_ >= cLeastBlocks ? 1 : 0);
}

CEType::EType DOptFactorAdapter::GetFactorType(int factor) const {
    return IsBlock(factor) ? CEType::Qualitative : factors_->GetFactorType(ToUnderlying(factor));
}

std::vector<float> DOptFactorAdapter::GetFactorSettings(int factor) const {
    return IsBlock(factor) ? std::vector<float>(blocks_, 0.0F)
                           : factors_->GetFactorSettings(ToUnderlying(factor));
}

unsigned int DOptFactorAdapter::GetLevelCount(int factor) const {
    return IsBlock(factor) ? blocks_ : factors_->GetLevelCount(ToUnderlying(factor));
}

void DOptFactorAdapter::SetFactorRange(int /*factor*/, float /*low*/, float /*high*/) {
    throw NCInternalError("should only be used const.");
}

const TransformStruct* DOptFactorAdapter::GetFactorTransform(int factor) const {
    return IsBlock(factor) ? nullptr : factors_->GetFactorTransform(ToUnderlying(factor));
}

bool DOptFactorAdapter::HasFiller() const {
    return factors_->HasFiller();
}

bool DOptFactorAdapter::IsFormulationSumFree() const {
    return factors_->IsFormulationSumFree();
}

float DOptFactorAdapter::GetConstantMixtureShare() const {
    return factors_->GetConstantMixtureShare();
}

bool DOptFactorAdapter::IsOriginalOrder() const {
    return std::is_sorted(order_.begin(), order_.end());
}

std::vector<int> DOptFactorAdapter::ColumnOrderOfWidth(int columns) const {
    if (columns == static_cast<int>(GetDesignFactorCountExpanded())) {
        return ColumnOrder(true);
    }
    if (columns == static_cast<int>(GetDesignFactorCount())) {
        return order_;
    }
    throw NCInternalError("ReorderFromOriginal");
}

void DOptFactorAdapter::ReorderFromOriginal(NCDataMatrix<float>& matrix) const {
    if (!IsOriginalOrder()) {
        matrix.ReduceColumns(FromOne(ColumnOrderOfWidth(matrix.SizeColumns())));
    }
}

void DOptFactorAdapter::ReorderToOriginal(NCDataMatrix<float>& matrix) const {
    if (!IsOriginalOrder()) {
        matrix.ReduceColumns(FromOne(Inverse(ColumnOrderOfWidth(matrix.SizeColumns()))));
    }
}

int DOptFactorAdapter::ExpandedToFactor(int variable) const {
    if (variable < 1) {
        return 0;
    }
    int last = 0;
    const int count = static_cast<int>(GetDesignFactorCount());
    for (int factor = 1; factor <= count; ++factor) {
        last += ExpandedWidth(factor);
        if (variable <= last) {
            return factor;
        }
    }
    return 0;
}

int DOptFactorAdapter::FactorToExpanded(int factor) const {
    if (factor < 1 || factor > static_cast<int>(GetDesignFactorCount())) {
        return 0;
    }
    int first = 1;
    for (int before = 1; before < factor; ++before) {
        first += ExpandedWidth(before);
    }
    return first;
}

int DOptFactorAdapter::ExpandedWidth(int factor) const {
    return factor >= 1 && factor <= static_cast<int>(GetDesignFactorCount())
               ? static_cast<int>(GetExpandedVariableCount(factor - 1))
               : 0;
}

int DOptFactorAdapter::FactorPosition(int index) const {
    const auto found = std::find(order_.begin(), order_.end(), index);
    if (found != order_.end()) {
        return static_cast<int>(found - order_.begin()) + 1;
    }
    return index == std::numeric_limits<int>::max() ? index : index + 1;
}
