#include "designs/rsm/RCCC.h"

#include "frame/DesignOptions.h"

namespace {

constexpr unsigned int cFactors = 4;
constexpr float cRotatableDistance = 1.861F;
constexpr float cFaceDistance = 1.0F;

}  // namespace

std::shared_ptr<NCDesign> RCCC::Clone() const {
    return std::make_shared<RCCC>(*this);
}

std::unique_ptr<NCDesign> RCCCBuilder::Build(const Factors& factors,
                                             const DesignOptions& options,
                                             bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    const bool isUnset = options.GetStarDistance() == DesignOptions::cNoStarDistance;
    auto design = std::make_unique<RCCC>(factors);
    design->GenerateReduced(factors, options, isUnset ? cFaceDistance : options.GetStarDistance());
    return design;
}

float RCCCBuilder::GetDefaultStarDistance(unsigned int factorCount,
                                          const DesignOptions& /*options*/) const {
    return factorCount == cFactors ? cRotatableDistance : DesignOptions::cNoStarDistance;
}
