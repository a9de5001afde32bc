#include "designs/stability/J2Options.h"

#include "foundation/utl/ConfigurationSection.h"

namespace {

constexpr const char* cBaseSection = "DesignSpecificOptions";
constexpr const char* cSection = "J2Options";
constexpr const char* cLevelsKey = "Levels";

}  // namespace

J2Options::J2Options(const DesignBuilder& builder,
                     const Factors& factors,
                     const DesignOptions& options)
    : D_OptimalOptions(builder, factors, options) {}

void J2Options::Save(ConfigurationSection* section) const {
    D_OptimalOptions::Save(section);
    section->OpenOrCreateSection(cBaseSection)
        ->OpenOrCreateSection(cSection)
        ->WriteInt(cLevelsKey, levels_);
}

bool J2Options::Load(const ConfigurationSection* section) {
    if (!D_OptimalOptions::Load(section)) {
        return false;
    }
    levels_ = cDefaultLevels;
    if (const auto own = section->OpenSection(cBaseSection)->OpenSection(cSection)) {
        own->ReadInt(cLevelsKey, &levels_);
    }
    return true;
}
