#include "frame/EObjective.h"

#include <array>

#include "frame/AsciiCase.h"

namespace {

struct ObjectiveName {
    EObjective::Type type;
    const char* text;
    const char* json;
};

constexpr std::array<ObjectiveName, 5> cNames{{
    {EObjective::Screening, "Screening", "screening"},
    {EObjective::Optimization, "Optimization (RSM)", "optimization"},
    {EObjective::SplitObjective, "Split Objective", ""},
    {EObjective::RobustnessVerification, "Robustness Verification", "robust_verification"},
    {EObjective::SystemCharacterization, "System Characterization", "system_characterization"},
}};

}  // namespace

const char* EObjective::GetString(Type type) {
    for (const ObjectiveName& name : cNames) {
        if (name.type == type) {
            return name.text;
        }
    }
    return "--";
}

EObjective::Type EObjective::GetType(const std::string& text) {
    if (AsciiCase::EqualIgnoringCase(text, "Screening")) {
        return Screening;
    }
    if (text == "RSM") {
        return Optimization;
    }
    for (const ObjectiveName& name : cNames) {
        if (text == name.text) {
            return name.type;
        }
    }
    return None;
}

json_value EObjective::ToJson(Type type) {
    for (const ObjectiveName& name : cNames) {
        if (name.type == type) {
            return name.json;
        }
    }
    return "";
}

EObjective::Type EObjective::FromJson(const json_value& value) {
    if (!value.is_string() || value.get_string().empty()) {
        return None;
    }
    for (const ObjectiveName& name : cNames) {
        if (value.get_string() == name.json) {
            return name.type;
        }
    }
    return None;
}
