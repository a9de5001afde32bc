#include "frame/ESelection.h"

#include <array>

namespace {

constexpr std::array cTypes{ESelection::Low, ESelection::Recommended, ESelection::User};

}  // namespace

const char* ESelection::GetString(Type type) {
    switch (type) {
        case Low:
            return "Low";
        case Recommended:
            return "Recommended";
        case User:
            return "User";
        case None:
            break;
    }
    return "--";
}

ESelection::Type ESelection::GetType(const std::string& text) {
    for (const Type type : cTypes) {
        if (text == GetString(type)) {
            return type;
        }
    }
    return None;
}
