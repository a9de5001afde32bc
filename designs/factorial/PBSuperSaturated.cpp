#include "designs/factorial/PBSuperSaturated.h"

#include <algorithm>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr long long cMaxWholeRuns = 36;
constexpr unsigned int cRunStep = 2;

// The runs of the whole design whose branching column, the last one, has the sign; without that
// column. [options.runs x factors]
NCDataMatrix<float> HalfWithSign(float sign, const Factors& factors, const DesignOptions& options) {
    NCDataMatrix<float> table =
        PB::MakePBDesignTable(static_cast<int>(factors.GetDesignFactorCount()) + 1,
                              2 * static_cast<int>(options.GetRuns()),
                              options.GetBlocks() > 1);
    const int branch = table.SizeColumns();
    for (int row = table.SizeRows(); row >= 1; --row) {
        if (table(row, branch) * sign < 0) {
            table.RemoveRows(row, 1);
        }
    }
    table.RemoveColumns(branch, 1);
    return table;
}

}  // namespace

PBSuperSaturated::PBSuperSaturated(const Factors& factors, const DesignOptions& options)
    : PB(factors) {
    SetDesignMatrixAddAndAdjust(HalfWithSign(-1.0F, factors, options), factors, options);
}

std::shared_ptr<NCDesign> PBSuperSaturated::Clone() const {
    return std::make_shared<PBSuperSaturated>(*this);
}

NCDataMatrix<float> PBSuperSaturated::MakeComplementaryHalf(const Factors& factors,
                                                            const DesignOptions& options) const {
    return HalfWithSign(1.0F, factors, options);
}

std::unique_ptr<NCDesign> PBSuperSaturatedBuilder::Build(const Factors& factors,
                                                         const DesignOptions& options,
                                                         bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<PBSuperSaturated>(factors, options)
                                     : nullptr;
}

unsigned int PBSuperSaturatedBuilder::GetDefaultRuns(const Factors& factors,
                                                     EObjective::Type /*objective*/) const {
    return GetRunsForFactors(static_cast<int>(factors.GetDesignFactorCountExpanded()));
}

std::vector<unsigned int> PBSuperSaturatedBuilder::GetLegalRuns(
    const Factors& factors, const DesignOptions& options) const {
    const auto columns = static_cast<long long>(factors.GetDesignFactorCountExpanded());
    const long long room =
        static_cast<long long>(options.GetMaxRuns()) - static_cast<int>(GetMinimumCenterPoints());
    // Fewer runs than factors, and no more than half of the largest whole design.
    const long long mostWhole = std::min({2 * columns - 2, 2 * room, cMaxWholeRuns});
    std::vector<unsigned int> legal;
    for (unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
         2LL * runs <= mostWhole;
         runs += cRunStep) {
        legal.push_back(runs);
    }
    return legal;
}

bool PBSuperSaturatedBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    return PBBuilder::IsValid(factors, options) &&
           factors.GetDesignFactorCountExpanded() >
               GetDefaultRuns(factors, options.GetObjective()) &&
           factors.GetDesignFactorCount() >= 2;
}

unsigned int PBSuperSaturatedBuilder::GetRunsForFactors(int factors) const {
    return PBBuilder::GetRunsForFactors(factors + 1) / 2;
}
