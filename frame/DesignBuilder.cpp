#include "frame/DesignBuilder.h"

#include <algorithm>

#include "foundation/utl/ConfigurationSection.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cSection = "DesignBuilder";
// Deliberate: the key is spelt so in every stored design.
constexpr const char* cTextsKey = "DesignNameAndDesciption";
constexpr char cListSeparator = ';';

}  // namespace

DesignBuilder::~DesignBuilder() = default;

unsigned int DesignBuilder::GetDefaultRuns(const Factors& factors,
                                           const DesignOptions& options) const {
    return GetDefaultRuns(factors, options.GetObjective());
}

EModel::Type DesignBuilder::GetDefaultProcessModel(const Factors& factors,
                                                   EObjective::Type objective,
                                                   unsigned int /*maxRuns*/) const {
    return factors.IsMixtureOnly() || IsMixtureOnlyDesign() ? EModel::None
                                                            : GetDefaultModel(factors, objective);
}

EModel::Type DesignBuilder::GetDefaultMixtureModel(const Factors& factors,
                                                   EObjective::Type objective,
                                                   unsigned int /*maxRuns*/) const {
    return factors.IsMixtureOnly() && IsMixtureOnlyDesign() ? GetDefaultModel(factors, objective)
                                                            : EModel::None;
}

bool DesignBuilder::IsPMInteractionDefault(const Factors& /*factors*/,
                                           const DesignOptions& /*options*/) const {
    return false;
}

float DesignBuilder::GetDefaultStarDistance(unsigned int /*factorCount*/,
                                            const DesignOptions& /*options*/) const {
    return DesignOptions::cNoStarDistance;
}

unsigned int DesignBuilder::GetDefaultCenterPoints(EObjective::Type objective) const {
    if (!IsCenterPointsAllowed()) {
        return 0;
    }
    const unsigned int usual = objective == EObjective::RobustnessVerification ? 1 : 3;
    return std::max(GetMinimumCenterPoints(), usual);
}

unsigned int DesignBuilder::GetDefaultReplicatedRuns() const {
    return 0;
}

std::string DesignBuilder::GetDesignData() const {
    return {};
}

std::string DesignBuilder::GetDisplayName() const {
    return displayName_;
}

std::string DesignBuilder::GetShortString() const {
    return shortString_;
}

std::string DesignBuilder::GetDescription() const {
    return description_;
}

bool DesignBuilder::IsCenterPointsAllowed() const {
    return true;
}

bool DesignBuilder::IsMixtureOnlyDesign() const {
    return false;
}

bool DesignBuilder::IsREDMUPRecommended(const Factors& /*factors*/,
                                        const DesignOptions& /*options*/) const {
    return true;
}

bool DesignBuilder::IsValid(const Factors& factors,
                            bool computerGeneratedOnly,
                            bool redmupOnly,
                            int maxRuns) const {
    DesignOptions options(*this, factors);
    options.SetMaxRuns(static_cast<unsigned int>(std::max(maxRuns, 0)));
    return IsValid(factors, options, computerGeneratedOnly, redmupOnly);
}

bool DesignBuilder::IsValid(const Factors& factors,
                            const DesignOptions& options,
                            bool computerGeneratedOnly,
                            bool redmupOnly) const {
    if (redmupOnly && !IsREDMUPRecommended(factors, options)) {
        return false;
    }
    const bool computerGenerated = IsDesign() == EDesign::DOpt || IsDesign() == EDesign::OnionDOpt;
    if (computerGeneratedOnly && !computerGenerated) {
        return false;
    }
    return IsValid(factors, options);
}

void DesignBuilder::Save(ConfigurationSection* section) const {
    section->OpenOrCreateSection(cSection)->WriteStringList(
        cTextsKey, {shortString_, displayName_, description_}, cListSeparator);
}

bool DesignBuilder::Load(const ConfigurationSection* section) {
    const auto own = section->OpenSection(cSection);
    std::vector<std::string> texts;
    if (!own || own->ReadStringList(cTextsKey, &texts, cListSeparator) != 3) {
        return false;
    }
    shortString_ = texts[0];
    displayName_ = texts[1];
    description_ = texts[2];
    return true;
}

std::shared_ptr<DesignSpecificOptions> DesignBuilder::GetDefaultDesignSpecificOptions(
    const Factors& /*factors*/, const DesignOptions& /*options*/) const {
    return nullptr;
}

unsigned int DesignBuilder::GetDefaultDF(EObjective::Type objective) {
    switch (objective) {
        case EObjective::Screening:
        case EObjective::SystemCharacterization:
            return 3;
        case EObjective::Optimization:
            return 5;
        default:
            return 1;
    }
}

unsigned char DesignBuilder::GetTablePriority(EDesign::Type type, unsigned int factorCount) {
    const auto& row = priority[static_cast<std::size_t>(type)];
    return row[std::min<std::size_t>(factorCount, row.size() - 1)];
}
