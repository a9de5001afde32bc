#include "designs/factorial/FF2.h"

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

namespace {

constexpr unsigned int cMaxColumns = 10;

}  // namespace

FF2::FF2(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    NCDataMatrix<float> table = MakeFFDesignTable(
        factors, static_cast<int>(options.GetRuns()), options.GetBlocks() >= 2, false);
    Generators::AdjustDMFFBlock(table, static_cast<int>(options.GetBlocks()));
    SetDesignMatrixAddAndAdjust(table, factors, options);
}

std::shared_ptr<NCDesign> FF2::Clone() const {
    return std::make_shared<FF2>(*this);
}

std::unique_ptr<NCDesign> FF2Builder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<FF2>(factors, options) : nullptr;
}

unsigned int FF2Builder::GetDefaultRuns(const Factors& factors,
                                        EObjective::Type /*objective*/) const {
    const unsigned int columns = factors.GetDesignFactorCountExpanded();
    return columns >= 1 && columns <= cMaxColumns ? 1U << columns : 0;
}

std::vector<unsigned int> FF2Builder::GetLegalRuns(const Factors& factors,
                                                   const DesignOptions& /*options*/) const {
    return {GetDefaultRuns(factors, EObjective::Screening)};
}

unsigned char FF2Builder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::FF2, factors.GetDesignFactorCountExpanded());
}

bool FF2Builder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options)) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) ||
        !FamilyRules::IsLinearOrInteraction(options.GetModel())) {
        return false;
    }
    if (!factors.IsProcessOnly() || !factors.IsAll2Levels() || factors.GetDesignFactorCount() < 2) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs;
}

EModel::Type FF2Builder::GetDefaultModel(const Factors& /*factors*/,
                                         EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Interaction : EModel::None;
}
