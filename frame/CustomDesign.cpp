#include "frame/CustomDesign.h"

#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cSection = "CustomDesign";
constexpr const char* cFilePathKey = "FilePath";

const CustomDesignOptions* OptionsOf(const DesignOptions& options) {
    return dynamic_cast<const CustomDesignOptions*>(options.GetDesignSpecificOptions());
}

bool HasRightWidth(const CustomDesignOptions& options, const Factors& factors) {
    return options.GetMatrix().SizeColumns() ==
           static_cast<int>(factors.GetDesignFactorCountExpanded());
}

}  // namespace

void CustomDesignOptions::Save(ConfigurationSection* section) const {
    section->OpenOrCreateSection(cSection)->WriteKey(cFilePathKey, filePath_);
}

bool CustomDesignOptions::Load(const ConfigurationSection* section) {
    const auto own = section->OpenSection(cSection);
    if (!own) {
        return false;
    }
    own->ReadString(cFilePathKey, &filePath_);
    return true;
}

void CustomDesignOptions::FromJson(const json_value& /*value*/) {}

json_value CustomDesignOptions::ToJson() const {
    return {};
}

CustomDesign::CustomDesign(const Factors& factors, const DesignOptions& options)
    : NCDesign(factors) {
    const CustomDesignOptions* custom = OptionsOf(options);
    if (custom == nullptr) {
        throw Exception(ExceptionMessage::translate("Missing matrix."));
    }
    if (!HasRightWidth(*custom, factors)) {
        throw Exception(ExceptionMessage::translate("Incorrect number of columns."));
    }
    SetDesignMatrix(custom->GetMatrix());
}

std::shared_ptr<NCDesign> CustomDesign::Clone() const {
    return std::make_shared<CustomDesign>(*this);
}

std::unique_ptr<NCDesign> CustomDesignBuilder::Build(const Factors& factors,
                                                     const DesignOptions& options,
                                                     bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<CustomDesign>(factors, options) : nullptr;
}

unsigned int CustomDesignBuilder::GetDefaultRuns(const Factors& /*factors*/,
                                                 EObjective::Type /*objective*/) const {
    return 1;
}

std::vector<unsigned int> CustomDesignBuilder::GetLegalRuns(
    const Factors& /*factors*/, const DesignOptions& /*options*/) const {
    return {1};
}

unsigned char CustomDesignBuilder::GetPriority(const Factors& /*factors*/) const {
    return 1;
}

bool CustomDesignBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    const CustomDesignOptions* custom = OptionsOf(options);
    return custom != nullptr && HasRightWidth(*custom, factors);
}

EModel::Type CustomDesignBuilder::GetDefaultModel(const Factors& /*factors*/,
                                                  EObjective::Type /*objective*/) const {
    return EModel::Linear;
}

std::shared_ptr<DesignSpecificOptions> CustomDesignBuilder::GetDefaultDesignSpecificOptions(
    const Factors& /*factors*/, const DesignOptions& /*options*/) const {
    return std::make_shared<CustomDesignOptions>();
}
