#include "designs/rsm/RCCF.h"

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned int cFactors = 4;
constexpr unsigned int cRuns = 20;
constexpr float cFaceDistance = 1.0F;

// Twelve of the sixteen runs of the 2^4 factorial (John, 1961): the quarter I = -AC = -ABD = BCD is
// left out. All main effects and two-factor interactions can be estimated. Proven by the tests of
// the reduced designs: every level occurs six times, the missing runs are that quarter, and the
// quadratic model has full rank.
const NCDataMatrix<float>& ThreeQuarterReplicate() {
    static const NCDataMatrix<float> runs{
        // clang-format off
        {-1, -1, -1, -1},
        { 1, -1, -1, -1},
        {-1,  1, -1, -1},
        { 1, -1,  1, -1},
        {-1,  1,  1, -1},
        { 1,  1,  1, -1},
        {-1, -1, -1,  1},
        {-1,  1, -1,  1},
        { 1,  1, -1,  1},
        {-1, -1,  1,  1},
        { 1, -1,  1,  1},
        { 1,  1,  1,  1},
        // clang-format on
    };
    return runs;
}

}  // namespace

std::shared_ptr<NCDesign> RCCF::Clone() const {
    return std::make_shared<RCCF>(*this);
}

void RCCF::GenerateReduced(const Factors& factors,
                           const DesignOptions& options,
                           float starDistance) {
    // With blocks, the column of the last factor would be taken for the block column.
    DesignOptions unblocked = options;
    unblocked.SetBlocks(1);
    SetDesignMatrix(ThreeQuarterReplicate());
    AddCCRuns(starDistance, 1);
    SetDesignMatrixAddAndAdjust(*GetDesignMatrix(), factors, unblocked);
}

std::unique_ptr<NCDesign> RCCFBuilder::Build(const Factors& factors,
                                             const DesignOptions& options,
                                             bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<RCCF>(factors);
    design->GenerateReduced(factors, options, cFaceDistance);
    return design;
}

unsigned int RCCFBuilder::GetDefaultRuns(const Factors& factors,
                                         EObjective::Type /*objective*/) const {
    return factors.GetDesignFactorCount() == cFactors ? cRuns : 0;
}

float RCCFBuilder::GetDefaultStarDistance(unsigned int /*factorCount*/,
                                          const DesignOptions& /*options*/) const {
    return cFaceDistance;
}

std::vector<unsigned int> RCCFBuilder::GetLegalRuns(const Factors& factors,
                                                    const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char RCCFBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(IsDesign(), factors.GetDesignFactorCount());
}

bool RCCFBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    // A star beyond the faces would leave the range of the formulation factors beside a filler.
    if (factors.HasFiller() && IsDesign() != EDesign::RCCF) {
        return false;
    }
    return FamilyRules::IsQuantitativeResponseSurface(factors, options) &&
           factors.GetDesignFactorCount() == cFactors &&
           options.GetMaxRuns() >= cRuns + GetMinimumCenterPoints();
}

EModel::Type RCCFBuilder::GetDefaultModel(const Factors& /*factors*/,
                                          EObjective::Type objective) const {
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}
