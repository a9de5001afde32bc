#include "designs/factorial/FFM.h"

#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned long long cMaxRuns = 12000;
constexpr unsigned int cMinRuns = 4;

}  // namespace

FFM::FFM(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    SetDesignMatrixAddAndAdjust(
        MakeFFDesignTable(
            factors, static_cast<int>(options.GetRuns()), options.GetBlocks() >= 2, false),
        factors,
        options);
}

std::shared_ptr<NCDesign> FFM::Clone() const {
    return std::make_shared<FFM>(*this);
}

std::unique_ptr<NCDesign> FFMBuilder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<FFM>(factors, options) : nullptr;
}

unsigned int FFMBuilder::GetDefaultRuns(const Factors& factors,
                                        EObjective::Type /*objective*/) const {
    unsigned long long runs = 1;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const bool hasLevels = type == CEType::Multilevel || type == CEType::Qualitative;
        runs *= hasLevels ? factors.GetLevelCount(factor) : 2;
        // Once too large, it stays 0.
        runs = runs > cMaxRuns ? 0 : runs;
    }
    return static_cast<unsigned int>(runs);
}

std::vector<unsigned int> FFMBuilder::GetLegalRuns(const Factors& factors,
                                                   const DesignOptions& /*options*/) const {
    return {GetDefaultRuns(factors, EObjective::Screening)};
}

unsigned char FFMBuilder::GetPriority(const Factors& factors) const {
    const unsigned int columns = factors.GetDesignFactorCountExpanded();
    if (columns >= cPriorityColumns) {
        return 0;
    }
    const unsigned char own = GetTablePriority(EDesign::FFM, columns);
    const unsigned char optimal = GetTablePriority(EDesign::DOpt, columns);
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    if (builder) {
        // The whole factorial comes first where it needs fewer runs than its optimal fraction.
        DesignOptions options(*builder, factors);
        options.SetObjective(EObjective::Screening);
        options.SetModel(EModel::Interaction);
        const bool smaller = GetDefaultRuns(factors, EObjective::Screening) <
                             builder->GetDefaultRuns(factors, options);
        if (smaller && own > optimal) {
            return 1;
        }
    }
    return own;
}

bool FFMBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options)) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) ||
        !FamilyRules::IsLinearOrInteraction(options.GetModel())) {
        return false;
    }
    return factors.IsProcessOnly() && !factors.IsAll2Levels() &&
           GetDefaultRuns(factors, options.GetObjective()) >= cMinRuns &&
           factors.GetDesignFactorCount() >= 2;
}

EModel::Type FFMBuilder::GetDefaultModel(const Factors& /*factors*/,
                                         EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Interaction : EModel::None;
}
