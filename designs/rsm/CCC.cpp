#include "designs/rsm/CCC.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr unsigned int cMaxFactors = 21;

struct RotatableDistance {
    unsigned int lastFactor;
    float distance;
};

// Deliberate: 17 factors stand with the distance of 512 factorial runs, of which they have 256.
constexpr std::array<RotatableDistance, 8> cRotatable{{
    // clang-format off
    { 2, 1.414F},
    { 3, 1.682F},
    { 5, 2.0F},
    { 6, 2.378F},
    { 8, 2.828F},
    {11, 3.364F},
    {16, 4.0F},
    {21, 4.757F},
    // clang-format on
}};

// Box and Hunter (1957): each block's share of the second moments is its share of the runs. Centre
// points rotate through the blocks; the factorial blocks have those of every full round, and those
// of a round that lacks the star block only.
float OrthogonallyBlockedDistance(float factors, float cubeRuns, const DesignOptions& options) {
    const unsigned int centerPoints = options.GetCenterPoints();
    const unsigned int cubeBlocks = options.GetBlocks() - 1;
    const unsigned int rounds = centerPoints / options.GetBlocks();
    const bool allButStar = centerPoints % options.GetBlocks() >= cubeBlocks;
    const unsigned int cubePoints = cubeBlocks * rounds + (allButStar ? cubeBlocks : 0);
    const auto ofCube = static_cast<float>(cubePoints);
    const auto ofStar = static_cast<float>(centerPoints - cubePoints);
    return std::sqrt((ofStar / (2 * factors) + 1) * factors / (ofCube / cubeRuns + 1));
}

}  // namespace

std::shared_ptr<NCDesign> CCC::Clone() const {
    return std::make_shared<CCC>(*this);
}

std::unique_ptr<NCDesign> CCCBuilder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<CCC>(factors);
    design->GenerateComposite(factors, options);
    return design;
}

float CCCBuilder::GetDefaultStarDistance(unsigned int factorCount,
                                         const DesignOptions& options) const {
    if (factorCount < 2 || factorCount > cMaxFactors) {
        return DesignOptions::cNoStarDistance;
    }
    if (options.GetBlocks() > 1) {
        const unsigned int cubeRuns =
            RunsForFactors(static_cast<int>(factorCount)) - 2 * factorCount;
        return OrthogonallyBlockedDistance(
            static_cast<float>(factorCount), static_cast<float>(cubeRuns), options);
    }
    return std::find_if(cRotatable.begin(),
                        cRotatable.end(),
                        [factorCount](const RotatableDistance& row) {
                            return factorCount <= row.lastFactor;
                        })
        ->distance;
}

bool CCCBuilder::IsREDMUPRecommended(const Factors& factors, const DesignOptions& options) const {
    return HasRoomForDistantStars(factors, options);
}
