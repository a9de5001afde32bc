#include "designs/rsm/CCF.h"

#include <array>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

namespace {

constexpr float cFaceDistance = 1.0F;
constexpr unsigned int cPlateRoom = 12;

}  // namespace

std::shared_ptr<NCDesign> CCF::Clone() const {
    return std::make_shared<CCF>(*this);
}

std::unique_ptr<Generators> CCF::MakeGenerators(int factors,
                                                unsigned int runs,
                                                int blockGens) const {
    return SelectGenerators(Generators::GetGen5, factors, runs, blockGens);
}

void CCF::GenerateComposite(const Factors& factors, const DesignOptions& options) {
    const bool isUnset = options.GetStarDistance() == DesignOptions::cNoStarDistance;
    const int starRuns = 2 * static_cast<int>(factors.GetDesignFactorCount());
    GenerateDesign(factors, options, starRuns, isUnset ? cFaceDistance : options.GetStarDistance());
}

std::unique_ptr<NCDesign> CCFBuilder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<CCF>(factors);
    design->GenerateComposite(factors, options);
    return design;
}

float CCFBuilder::GetDefaultStarDistance(unsigned int /*factorCount*/,
                                         const DesignOptions& /*options*/) const {
    return cFaceDistance;
}

std::vector<unsigned int> CCFBuilder::GetLegalRuns(const Factors& factors,
                                                   const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char CCFBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(IsDesign(), factors.GetDesignFactorCount());
}

bool CCFBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    // A star beyond the faces would leave the range of the formulation factors beside a filler.
    if (factors.HasFiller() && IsDesign() != EDesign::CCF) {
        return false;
    }
    const unsigned int runs = RunsForFactors(static_cast<int>(factors.GetDesignFactorCount()));
    return FamilyRules::IsQuantitativeResponseSurface(factors, options) && runs > 0 &&
           options.GetMaxRuns() >= runs + GetMinimumCenterPoints();
}

EModel::Type CCFBuilder::GetDefaultModel(const Factors& /*factors*/,
                                         EObjective::Type objective) const {
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}

unsigned int CCFBuilder::RunsForFactors(int factors) const {
    static constexpr std::array<RunsOfFactors, 8> cubes{{
        // clang-format off
        { 2,  2,   4},
        { 3,  3,   8},
        { 4,  5,  16},
        { 6,  6,  32},
        { 7,  8,  64},
        { 9, 11, 128},
        {12, 17, 256},
        {18, 21, 512},
        // clang-format on
    }};
    const unsigned int cube = LookUpRuns(cubes, factors);
    return cube > 0 ? cube + 2 * static_cast<unsigned int>(factors) : 0;
}

bool CCFBuilder::HasRoomForDistantStars(const Factors& factors, const DesignOptions& options) {
    // Deliberate: with two factors a limit of exactly twelve runs is room enough, with others not.
    return factors.GetDesignFactorCount() == 2 ? options.GetMaxRuns() >= cPlateRoom
                                               : options.GetMaxRuns() > cPlateRoom;
}
