#include "designs/plate/REDMUPFactors.h"

#include <algorithm>
#include <utility>

#include "foundation/utl/Exceptions.h"

namespace {

bool IsGroupOf(std::vector<unsigned long long> indices, const Factors& parent) {
    std::sort(indices.begin(), indices.end());
    const bool repeats = std::adjacent_find(indices.begin(), indices.end()) != indices.end();
    return !repeats && (indices.empty() || indices.back() < parent.GetDesignFactorCount());
}

}  // namespace

REDMUPFactors::REDMUPFactors(std::vector<unsigned long long> indices, const Factors& parent)
    : indices_(std::move(indices)), parent_(&parent) {
    if (!IsGroupOf(indices_, parent)) {
        throw Exception(ExceptionMessage::translate("Incorrect block factor setup."));
    }
}

bool REDMUPFactors::HasFiller() const {
    return GetNumMixtureFactors() > 0 && parent_->HasFiller();
}

bool REDMUPFactors::IsFormulationSumFree() const {
    return GetNumMixtureFactors() > 0 && parent_->IsFormulationSumFree();
}

float REDMUPFactors::GetConstantMixtureShare() const {
    return GetNumMixtureFactors() > 0 ? parent_->GetConstantMixtureShare() : 0.0F;
}

// A factor outside the group is asked for as one outside the parent, whose answer decides.
int REDMUPFactors::ParentIndex(int factor) const {
    return factor >= 0 && factor < static_cast<int>(indices_.size())
               ? static_cast<int>(indices_[static_cast<std::size_t>(factor)])
               : static_cast<int>(parent_->GetDesignFactorCount());
}
