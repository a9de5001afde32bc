// How reduced combinatorial designs are kept.

#include <cstddef>

#include "designs/stability/J2Design.h"
#include "foundation/utl/ConfigurationSection.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cSection = "J2Design";
constexpr const char* cResultSection = "Result";
constexpr const char* cReplicatedRunsKey = "ReplicatedRuns";
constexpr const char* cVerticesKey = "ExtVert";
constexpr const char* cEdgesKey = "NumEdges";
constexpr const char* cCentroidsKey = "NumHiDimCent";
constexpr const char* cSelectedKey = "SelectedDesign";
constexpr const char* cTypeKey = "DesignType";

// A number that is no type counts as missing.
EDesign::Type ToType(int number) {
    return number >= EDesign::None && number <= EDesign::DefinitiveScreening
               ? static_cast<EDesign::Type>(number)
               : EDesign::J2;
}

}  // namespace

void J2Design::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    // Results of an earlier, longer list must not come back.
    design->RemoveSection(cSection);
    const auto own = design->OpenOrCreateSection(cSection);
    int index = 0;
    for (const Results& result : results_) {
        const auto child = own->OpenOrCreateSection(cResultSection, ++index);
        result.Save(*child);
        child->WriteInt(cReplicatedRunsKey, result.ReplicatedRuns);
    }
    own->WriteInt(cVerticesKey, numData_.ExtVert);
    own->WriteInt(cEdgesKey, numData_.NumEdges);
    own->WriteInt(cCentroidsKey, numData_.NumHiDimCent);
    own->WriteInt(cSelectedKey, selected_);
    own->WriteInt(cTypeKey, designType_);
}

bool J2Design::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    const auto own = section->OpenSection(cDesignSection)->OpenSection(cSection);
    if (!own) {
        return false;
    }
    results_.clear();
    numData_ = DOpt::NumData();
    selected_ = 0;
    ClearDesignMatrix();
    const int count = own->SectionCount(cResultSection);
    results_.reserve(static_cast<std::size_t>(count));
    for (int index = 1; index <= count; ++index) {
        const auto child = own->OpenSection(cResultSection, index);
        Results& result = results_.emplace_back();
        result.Load(*child);
        child->ReadInt(cReplicatedRunsKey, &result.ReplicatedRuns);
    }
    own->ReadInt(cVerticesKey, &numData_.ExtVert);
    own->ReadInt(cEdgesKey, &numData_.NumEdges);
    own->ReadInt(cCentroidsKey, &numData_.NumHiDimCent);
    own->ReadInt(cSelectedKey, &selected_);
    int type = EDesign::J2;
    own->ReadInt(cTypeKey, &type);
    designType_ = ToType(type);
    return true;
}
