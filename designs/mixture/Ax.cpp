#include "designs/mixture/Ax.h"

#include <algorithm>
#include <numeric>

#include "designs/mixture/MixtureRules.h"
#include "designs/mixture/SimplexPoints.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned int cMaxFactors = 20;
// The default of the reduced design has at most so many interior points.
constexpr unsigned int cMaxReducedInterior = 4;

unsigned int MinimumRuns(EDesign::Type type, unsigned int factors) {
    if (factors > cMaxFactors) {
        return 0;
    }
    switch (type) {
        case EDesign::AxN:
            return 2 * factors;
        case EDesign::AxE:
            return 3 * factors;
        default:
            return factors;
    }
}

int CountInteriorPoints(EDesign::Type type, unsigned int factors, unsigned int runs) {
    if (type != EDesign::AxR) {
        return static_cast<int>(factors);
    }
    // There is one interior point for each factor; runs beyond are no legal count.
    return static_cast<int>(std::min(runs - std::min(runs, factors), factors));
}

}  // namespace

Ax::Ax(EDesign::Type type, const Factors& factors, const DesignOptions& options)
    : SimplexDesign(factors) {
    const unsigned int count = factors.GetDesignFactorCount();
    SimplexPoints points(static_cast<int>(count));
    points.AddVertices();
    points.AddInteriorPoints(CountInteriorPoints(type, count, options.GetRuns()));
    if (type == EDesign::AxE) {
        points.AddFaceCenters();
    }
    SetPointsAndFinish(points, options);
}

std::shared_ptr<NCDesign> Ax::Clone() const {
    return std::make_shared<Ax>(*this);
}

std::unique_ptr<NCDesign> AxBuilder::Build(const Factors& factors,
                                           const DesignOptions& options,
                                           bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<Ax>(designType_, factors, options)
                                     : nullptr;
}

unsigned int AxBuilder::GetDefaultRuns(const Factors& factors,
                                       EObjective::Type /*objective*/) const {
    const unsigned int columns = factors.GetDesignFactorCountExpanded();
    const unsigned int minimum = MinimumRuns(designType_, columns);
    return designType_ == EDesign::AxR ? minimum + std::min(columns >> 1, cMaxReducedInterior)
                                       : minimum;
}

std::vector<unsigned int> AxBuilder::GetLegalRuns(const Factors& factors,
                                                  const DesignOptions& options) const {
    const unsigned int most = GetDefaultRuns(factors, options.GetObjective());
    if (designType_ != EDesign::AxR) {
        return {most};
    }
    const unsigned int first = MinimumRuns(designType_, factors.GetDesignFactorCount());
    const unsigned int last = std::min(most, options.GetMaxRuns());
    if (last < first) {
        return {};
    }
    std::vector<unsigned int> runs(last - first + 1);
    std::iota(runs.begin(), runs.end(), first);
    return runs;
}

unsigned char AxBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(designType_, factors.GetDesignFactorCount());
}

bool AxBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (factors.IsFormulationSumFree() || FamilyRules::HasConstraints(options) ||
        !MixtureRules::IsSimplexRegion(factors)) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) || options.GetModel() != EModel::Linear ||
        !factors.IsMixtureOnly()) {
        return false;
    }
    const unsigned int count = factors.GetDesignFactorCount();
    return count <= cMaxFactors && options.GetMaxRuns() >= MinimumRuns(designType_, count);
}

EModel::Type AxBuilder::GetDefaultModel(const Factors& /*factors*/,
                                        EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Linear : EModel::None;
}
