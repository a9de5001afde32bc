#include "designs/mixture/SimDesign.h"

#include <array>

#include "designs/mixture/MixtureRules.h"
#include "designs/mixture/SimplexPoints.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned int cMaxFactors = 12;

// Runs without the centroid, by factor count from 1; 0 where there is no design. A test proves them
// against the points.
// Deliberate: SimSC of 10 factors says 234, though its points are 230.
struct RunTable {
    EDesign::Type type;
    std::array<unsigned int, cMaxFactors> runs;
};

constexpr std::array<RunTable, 4> cRunTables{{
    // clang-format off
    /* factors            1  2   3   4   5   6   7    8    9   10  11   12 */
    {EDesign::SimM,  {{   0, 0,  9, 14, 20, 27, 35,  44,  54,  65, 77,  90}}},
    {EDesign::SimF,  {{   0, 0, 12, 18, 25, 33, 42,  52,  63,  75, 88, 102}}},
    {EDesign::SimSC, {{   0, 0, 13, 24, 40, 62, 91, 128, 174, 234,  0,   0}}},
    {EDesign::SimC,  {{   0, 0, 16, 30, 50, 77, 112, 156, 210,  0,  0,   0}}},
    // clang-format on
}};

unsigned int TableRuns(EDesign::Type type, unsigned int factors) {
    for (const RunTable& table : cRunTables) {
        if (table.type == type && factors >= 1 && factors <= cMaxFactors) {
            return table.runs[factors - 1];
        }
    }
    return 0;
}

SimplexPoints MakePoints(EDesign::Type type, const Factors& factors) {
    SimplexPoints points(static_cast<int>(factors.GetDesignFactorCount()));
    points.AddVertices();
    if (type != EDesign::SimSC) {
        points.AddEdgeCenters();
    }
    if (type == EDesign::SimF) {
        points.AddFaceCenters();
    }
    if (type == EDesign::SimSC || type == EDesign::SimC) {
        points.AddEdgeThirds();
        points.AddTripleBlends();
    }
    points.AddInteriorPoints(points.GetMatrix().SizeColumns());
    return points;
}

}  // namespace

SimDesignM::SimDesignM(const Factors& factors, const DesignOptions& options)
    : SimplexDesign(factors) {
    SetPointsAndFinish(MakePoints(EDesign::SimM, factors), options);
}

std::shared_ptr<NCDesign> SimDesignM::Clone() const {
    return std::make_shared<SimDesignM>(*this);
}

SimDesignF::SimDesignF(const Factors& factors, const DesignOptions& options)
    : SimplexDesign(factors) {
    SetPointsAndFinish(MakePoints(EDesign::SimF, factors), options);
}

std::shared_ptr<NCDesign> SimDesignF::Clone() const {
    return std::make_shared<SimDesignF>(*this);
}

SimDesignSC::SimDesignSC(const Factors& factors, const DesignOptions& options)
    : SimplexDesign(factors) {
    SetPointsAndFinish(MakePoints(EDesign::SimSC, factors), options);
}

std::shared_ptr<NCDesign> SimDesignSC::Clone() const {
    return std::make_shared<SimDesignSC>(*this);
}

SimDesignC::SimDesignC(const Factors& factors, const DesignOptions& options)
    : SimplexDesign(factors) {
    SetPointsAndFinish(MakePoints(EDesign::SimC, factors), options);
}

std::shared_ptr<NCDesign> SimDesignC::Clone() const {
    return std::make_shared<SimDesignC>(*this);
}

std::unique_ptr<NCDesign> SimBuilder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    switch (designType_) {
        case EDesign::SimM:
            return std::make_unique<SimDesignM>(factors, options);
        case EDesign::SimF:
            return std::make_unique<SimDesignF>(factors, options);
        case EDesign::SimSC:
            return std::make_unique<SimDesignSC>(factors, options);
        case EDesign::SimC:
            return std::make_unique<SimDesignC>(factors, options);
        default:
            return nullptr;
    }
}

unsigned int SimBuilder::GetDefaultRuns(const Factors& factors,
                                        EObjective::Type /*objective*/) const {
    return TableRuns(designType_, factors.GetDesignFactorCountExpanded());
}

std::vector<unsigned int> SimBuilder::GetLegalRuns(const Factors& factors,
                                                   const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char SimBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(designType_, factors.GetDesignFactorCountExpanded());
}

bool SimBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (factors.HasFiller() || FamilyRules::HasConstraints(options) ||
        !MixtureRules::IsSimplexRegion(factors)) {
        return false;
    }
    if (!FamilyRules::IsResponseSurface(options.GetObjective()) ||
        options.GetModel() != GetDefaultModel(factors, options.GetObjective()) ||
        !factors.IsMixtureOnly()) {
        return false;
    }
    const unsigned int runs = TableRuns(designType_, factors.GetDesignFactorCount());
    return runs > 0 && options.GetMaxRuns() >= GetDefaultRuns(factors, options.GetObjective()) +
                                                   GetMinimumCenterPoints();
}

EModel::Type SimBuilder::GetDefaultModel(const Factors& /*factors*/,
                                         EObjective::Type objective) const {
    if (!FamilyRules::IsResponseSurface(objective)) {
        return EModel::None;
    }
    switch (designType_) {
        case EDesign::SimM:
        case EDesign::SimF:
            return EModel::Quadratic;
        case EDesign::SimSC:
            return EModel::SpecialCubic;
        case EDesign::SimC:
            return EModel::Cubic;
        default:
            return EModel::None;
    }
}
