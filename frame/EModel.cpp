#include "frame/EModel.h"

#include <array>
#include <locale>

#include "foundation/utl/QvStdString.h"
#include "frame/AsciiCase.h"

namespace {

struct ModelName {
    EModel::Type type;
    const char* text;
};

constexpr std::array<ModelName, 6> cNames{{
    {EModel::Linear, "Linear"},
    {EModel::Interaction, "Interaction"},
    {EModel::LinearQuadratic, "Linear+Quadratic"},
    {EModel::Quadratic, "Quadratic"},
    {EModel::SpecialCubic, "Special Cubic"},
    {EModel::Cubic, "Cubic"},
}};

}  // namespace

const char* EModel::GetString(Type type) {
    for (const ModelName& name : cNames) {
        if (name.type == type) {
            return name.text;
        }
    }
    return "--";
}

EModel::Type EModel::GetType(const std::string& text) {
    for (const ModelName& name : cNames) {
        if (AsciiCase::EqualIgnoringCase(text, name.text)) {
            return name.type;
        }
    }
    return None;
}

json_value EModel::ToJson(Type type) {
    return QvStdString::ToLowerCase(GetString(type), std::locale::classic());
}

EModel::Type EModel::FromJson(const json_value& value) {
    return value.is_string() ? GetType(value.get_string()) : None;
}
