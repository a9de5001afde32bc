#include "host/JsonPlace.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "QORVAncdoe.h"
#include "host/HostError.h"

namespace {

constexpr std::size_t cLongestName = 1000;

// The value as the user wrote it, or what it is where that would be long.
std::string Shown(const json_value& value) {
    switch (value.kind()) {
        case json_value::Kind::String:
            return Quoted(value.get_string());
        case json_value::Kind::Array:
            return fmt::format("an array of {}", value.get_length());
        case json_value::Kind::Object:
            return "an object";
        default:
            return value.to_text();
    }
}

bool HasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char letter) {
        return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
    });
}

}  // namespace

JsonPlace::JsonPlace(const json_value& root, const std::string& file)
    : JsonPlace(root, std::make_shared<const std::string>(file), "") {}

std::string JsonPlace::Where() const {
    return path_.empty() ? *file_ : fmt::format("{}: {}", *file_, path_);
}

void JsonPlace::Refuse(std::string_view allowed) const {
    FailWith(fmt::format("{}: {} {}.", Where(), Shown(*value_), allowed));
}

void JsonPlace::Fail(std::string_view problem) const {
    FailWith(fmt::format("{}: {}", Where(), problem));
}

void JsonPlace::RequireMembers(const std::vector<std::string_view>& allowed) const {
    if (!value_->is_object()) {
        Refuse("must be an object");
    }
    for (unsigned long long i = 0; i < value_->get_length(); ++i) {
        const std::string& name = value_->get_child_name(i);
        if (std::find(allowed.begin(), allowed.end(), name) == allowed.end()) {
            Fail(fmt::format("the member {} is unknown; allowed are {}.",
                             Quoted(name),
                             ListOf({allowed.begin(), allowed.end()}, "and")));
        }
    }
}

JsonPlace JsonPlace::Member(std::string_view member) const {
    if (!Has(member)) {
        Fail(fmt::format("the member \"{}\" is missing.", member));
    }
    return {value_->get_child(member),
            file_,
            path_.empty() ? std::string(member) : fmt::format("{}.{}", path_, member)};
}

std::vector<JsonPlace> JsonPlace::Elements(unsigned long long least,
                                           unsigned long long most) const {
    if (!value_->is_array() || value_->get_length() < least || value_->get_length() > most) {
        Refuse(fmt::format("must be an array of {} to {} elements", least, most));
    }
    std::vector<JsonPlace> places;
    for (const json_value& element : value_->get_array()) {
        places.push_back({element, file_, fmt::format("{}[{}]", path_, places.size())});
    }
    return places;
}

bool JsonPlace::Flag() const {
    if (!value_->is_bool()) {
        Refuse("must be true or false");
    }
    return value_->get_bool();
}

std::string JsonPlace::Text() const {
    if (!value_->is_string()) {
        Refuse("must be a text");
    }
    return value_->get_string();
}

std::string JsonPlace::Name() const {
    const std::string text = Text();
    const std::string_view name = Trimmed(text);
    if (name.empty() || name.size() > cLongestName || HasControl(name)) {
        Refuse(fmt::format("must be a text of 1 to {} bytes without control characters",
                           cLongestName));
    }
    return std::string(name);
}

float JsonPlace::Number() const {
    const double wide = WideNumber();
    const auto number = static_cast<float>(wide);
    if (!std::isfinite(number)) {
        Refuse("must be a number between -3.4e38 and 3.4e38");
    }
    if (number == Factors::cNoValue) {
        Refuse("is the mark of a missing value and cannot be used; choose another number");
    }
    return number;
}

double JsonPlace::WideNumber() const {
    if (!value_->is_number() || !std::isfinite(value_->get_float())) {
        Refuse("must be a number");
    }
    return value_->get_float();
}

long long JsonPlace::WholeNumber(long long least, long long most) const {
    if (!value_->is_integer() || value_->get_integer() < least || value_->get_integer() > most) {
        Refuse(fmt::format("must be a whole number from {} to {}", least, most));
    }
    return value_->get_integer();
}

std::string ListOf(const std::vector<std::string>& items, std::string_view conjunction) {
    std::string list;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) {
            list += i + 1 == items.size() ? fmt::format(" {} ", conjunction) : ", ";
        }
        list += items[i];
    }
    return list;
}
