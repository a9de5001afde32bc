#include <algorithm>

#include "designs/stability/StabilityDesign.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

bool IsLegal(const StabilityDesignOptions& options) {
    const auto& used = options.GetUsedReduction();
    return std::all_of(used.begin(), used.end(), [](const auto& pair) {
        return pair.first > 0 && pair.second >= 1 && pair.second <= pair.first;
    });
}

}  // namespace

std::unique_ptr<NCDesign> StabilityDesignBuilder::Build(const Factors& factors,
                                                        const DesignOptions& options,
                                                        bool* cancel) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    try {
        return std::make_unique<StabilityDesign>(type_, factors, options, cancel);
    } catch (const Exception&) {
        return nullptr;
    }
}

unsigned int StabilityDesignBuilder::GetDefaultRuns(const Factors& /*factors*/,
                                                    EObjective::Type /*objective*/) const {
    return 0;
}

std::vector<unsigned int> StabilityDesignBuilder::GetLegalRuns(
    const Factors& /*factors*/, const DesignOptions& /*options*/) const {
    return {0};
}

unsigned char StabilityDesignBuilder::GetPriority(const Factors& /*factors*/) const {
    return 0;
}

bool StabilityDesignBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!factors.IsProcessOnly() || factors.GetDesignFactorCount() == 0) {
        return false;
    }
    const DesignSpecificOptions* specific = options.GetDesignSpecificOptions();
    if (const auto* stability = dynamic_cast<const StabilityDesignOptions*>(specific)) {
        return IsLegal(*stability);
    }
    const auto* subset = dynamic_cast<const GeneralizedSubsetDesignsDesignOptions*>(specific);
    return subset != nullptr && subset->GetReduction() != 0;
}

EModel::Type StabilityDesignBuilder::GetDefaultModel(const Factors& /*factors*/,
                                                     EObjective::Type /*objective*/) const {
    return EModel::Linear;
}

std::shared_ptr<DesignSpecificOptions> StabilityDesignBuilder::GetDefaultDesignSpecificOptions(
    const Factors& /*factors*/, const DesignOptions& /*options*/) const {
    if (type_ == EDesign::Stability) {
        return std::make_shared<StabilityDesignOptions>();
    }
    return std::make_shared<GeneralizedSubsetDesignsDesignOptions>();
}
