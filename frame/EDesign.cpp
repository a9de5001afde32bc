#include "frame/EDesign.h"

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"

std::string EDesign::GetString(Type type, const std::string& data) {
    const auto builder = AllDesigns::GetDesignBuilder(type, data);
    return builder ? builder->GetDisplayName() : std::string();
}

std::string EDesign::GetShortString(Type type, const std::string& data) {
    const auto builder = AllDesigns::GetDesignBuilder(type, data);
    return builder ? builder->GetShortString() : std::string();
}

EDesign::Type EDesign::GetType(const std::string& text) {
    for (const auto& builder : AllDesigns::AllPossibleDesigns().GetAllDesigns()) {
        if (builder->GetShortString() == text || builder->GetDisplayName() == text) {
            return builder->IsDesign();
        }
    }
    return text == "Plugin" ? Plugin : None;
}

json_value EDesign::ToJson(Type type) {
    return GetShortString(type, "");
}

EDesign::Type EDesign::FromJson(const json_value& value) {
    return value.is_string() ? GetType(value.get_string()) : None;
}
