#include "designs/rsm/CCO.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr unsigned int cMaxFactors = 21;

struct BaseFactors {
    unsigned int lastFactor;
    int count;
};

// Deliberate: 17 factors stand with 512 factorial runs, of which they have 256.
constexpr std::array<BaseFactors, 8> cBaseFactors{{
    // clang-format off
    { 2, 2},
    { 3, 3},
    { 5, 4},
    { 6, 5},
    { 8, 6},
    {11, 7},
    {16, 8},
    {21, 9},
    // clang-format on
}};

}  // namespace

std::shared_ptr<NCDesign> CCO::Clone() const {
    return std::make_shared<CCO>(*this);
}

std::unique_ptr<NCDesign> CCOBuilder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<CCO>(factors);
    design->GenerateComposite(factors, options);
    return design;
}

float CCOBuilder::GetDefaultStarDistance(unsigned int factorCount,
                                         const DesignOptions& options) const {
    if (factorCount < 2 || factorCount > cMaxFactors) {
        return DesignOptions::cNoStarDistance;
    }
    const auto row = std::find_if(
        cBaseFactors.begin(), cBaseFactors.end(), [factorCount](const BaseFactors& one) {
            return factorCount <= one.lastFactor;
        });
    const double cubeRuns = 1 << row->count;
    const double runs = cubeRuns + 2.0 * factorCount + options.GetCenterPoints();
    // The squares are uncorrelated when (cubeRuns + 2 distance^2)^2 = cubeRuns * runs.
    const double gap = std::sqrt(runs) - std::sqrt(cubeRuns);
    return static_cast<float>(std::sqrt(std::sqrt(gap * gap * cubeRuns * 0.25)));
}

bool CCOBuilder::IsREDMUPRecommended(const Factors& factors, const DesignOptions& options) const {
    return HasRoomForDistantStars(factors, options);
}
