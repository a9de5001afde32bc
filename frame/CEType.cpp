#include "frame/CEType.h"

#include <array>
#include <utility>

#include "frame/AsciiCase.h"

namespace {

constexpr std::array<std::pair<const char*, CEType::EType>, 7> cNames{{
    {"Quantitative", CEType::Quantitative},
    {"Multilevel", CEType::Multilevel},
    {"Qualitative", CEType::Qualitative},
    {"Formulation", CEType::Formulation},
    {"Mixture", CEType::Formulation},
    {"Filler", CEType::Filler},
    {"Time", CEType::Time},
}};

}  // namespace

const char* CEType::GetString(EType type) {
    for (const auto& [name, named] : cNames) {
        if (named == type) {
            return name;
        }
    }
    return "NotDefined";
}

CEType::EType CEType::GetEnum(const std::string& text) {
    for (const auto& [name, named] : cNames) {
        if (AsciiCase::EqualIgnoringCase(text, name)) {
            return named;
        }
    }
    return NotDefined;
}
