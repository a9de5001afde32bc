#include "designs/factorial/FF3.h"

#include <array>

#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

namespace {

// 3^c runs by factor count; 0 where there is no design.
constexpr std::array<unsigned int, 7> cRuns{0, 3, 9, 27, 81, 243, 729};

// Quadratic models need three quantitative levels; with all factors quantitative, screening at
// three levels is not offered.
bool FitsObjective(const Factors& factors, const DesignOptions& options) {
    const bool quadratic = options.GetModel() == EModel::Quadratic;
    const bool qualitative = factors.GetQualitativeCount() > 0;
    if (FamilyRules::IsResponseSurface(options.GetObjective())) {
        return quadratic && !qualitative;
    }
    return !quadratic && qualitative && !factors.IsAllQuantitative();
}

}  // namespace

FF3::FF3(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    NCDataMatrix<float> table = MakeFFDesignTable(
        factors, static_cast<int>(options.GetRuns()), options.GetBlocks() >= 2, true);
    Generators::AdjustDMFFBlock(table, static_cast<int>(options.GetBlocks()));
    SetDesignMatrixAddAndAdjust(table, factors, options);
}

std::shared_ptr<NCDesign> FF3::Clone() const {
    return std::make_shared<FF3>(*this);
}

std::unique_ptr<NCDesign> FF3Builder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<FF3>(factors, options) : nullptr;
}

unsigned int FF3Builder::GetDefaultRuns(const Factors& factors,
                                        EObjective::Type /*objective*/) const {
    const unsigned int count = factors.GetDesignFactorCount();
    return count < cRuns.size() ? cRuns[count] : 0;
}

std::vector<unsigned int> FF3Builder::GetLegalRuns(const Factors& factors,
                                                   const DesignOptions& /*options*/) const {
    return {GetDefaultRuns(factors, EObjective::Screening)};
}

unsigned char FF3Builder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::FF3, factors.GetDesignFactorCount());
}

bool FF3Builder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options)) {
        return false;
    }
    // Deliberate: process factors only are demanded only where there are options of a family.
    if (options.GetDesignSpecificOptions() != nullptr && !factors.IsProcessOnly()) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) &&
        !FamilyRules::IsResponseSurface(options.GetObjective())) {
        return false;
    }
    if (!FamilyRules::IsLinearOrInteraction(options.GetModel()) &&
        options.GetModel() != EModel::Quadratic) {
        return false;
    }
    if (!FitsObjective(factors, options)) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return factors.IsAll3Levels() && factors.GetDesignFactorCount() >= 2 && runs > 0 &&
           options.GetMaxRuns() >= runs;
}

EModel::Type FF3Builder::GetDefaultModel(const Factors& /*factors*/,
                                         EObjective::Type objective) const {
    if (FamilyRules::IsScreening(objective)) {
        return EModel::Interaction;
    }
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}
