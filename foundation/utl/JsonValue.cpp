#include "foundation/utl/JsonValue.h"

#include <fmt/format.h>

#include <algorithm>

#include "foundation/utl/Exceptions.h"

namespace {

const char* KindName(json_value::Kind kind) {
    switch (kind) {
        case json_value::Kind::Null:
            return "null";
        case json_value::Kind::Bool:
            return "a bool";
        case json_value::Kind::Float:
            return "a float";
        case json_value::Kind::Integer:
            return "an integer";
        case json_value::Kind::String:
            return "a string";
        case json_value::Kind::Array:
            return "an array";
        case json_value::Kind::Object:
            return "an object";
    }
    return "broken";
}

void Require(json_value::Kind kind, json_value::Kind wanted) {
    if (kind != wanted) {
        const char* const is = KindName(kind);
        const char* const asked = KindName(wanted);
        throw InvalidOperationException(
            fmt::vformat("The JSON value is {}, not {}.", fmt::make_format_args(is, asked)));
    }
}

}  // namespace

json_value::json_value(bool value) : kind_(Kind::Bool), bool_(value) {}
json_value::json_value(int value) : kind_(Kind::Integer), integer_(value) {}
json_value::json_value(long long value) : kind_(Kind::Integer), integer_(value) {}
json_value::json_value(double value) : kind_(Kind::Float), float_(value) {}
json_value::json_value(const char* value) : kind_(Kind::String), string_(value) {}
json_value::json_value(std::string value) : kind_(Kind::String), string_(std::move(value)) {}
json_value::json_value(std::initializer_list<json_value> elements)
    : kind_(Kind::Array), elements_(elements) {}

json_value json_value::make_object() {
    json_value value;
    value.kind_ = Kind::Object;
    return value;
}

json_value json_value::make_array() {
    json_value value;
    value.kind_ = Kind::Array;
    return value;
}

bool json_value::get_bool() const {
    Require(kind_, Kind::Bool);
    return bool_;
}

double json_value::get_float() const {
    if (kind_ == Kind::Integer) {
        return static_cast<double>(integer_);
    }
    Require(kind_, Kind::Float);
    return float_;
}

long long json_value::get_integer() const {
    Require(kind_, Kind::Integer);
    return integer_;
}

const std::string& json_value::get_string() const {
    Require(kind_, Kind::String);
    return string_;
}

const std::vector<json_value>& json_value::get_array() const {
    Require(kind_, Kind::Array);
    return elements_;
}

unsigned long long json_value::get_length() const {
    return elements_.size();
}

bool json_value::has_child(std::string_view name) const {
    return std::find(names_.begin(), names_.end(), name) != names_.end();
}

const json_value& json_value::get_child(std::string_view name) const {
    Require(kind_, Kind::Object);
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found == names_.end()) {
        throw InvalidOperationException(
            fmt::vformat("The JSON object has no member \"{}\".", fmt::make_format_args(name)));
    }
    return elements_[static_cast<std::size_t>(found - names_.begin())];
}

const json_value& json_value::get_child(unsigned long long index) const {
    if (kind_ != Kind::Object) {
        Require(kind_, Kind::Array);
    }
    if (index >= elements_.size()) {
        throw InvalidOperationException(
            fmt::vformat("The JSON value has no element {}.", fmt::make_format_args(index)));
    }
    return elements_[index];
}

const std::string& json_value::get_child_name(unsigned long long index) const {
    Require(kind_, Kind::Object);
    if (index >= names_.size()) {
        throw InvalidOperationException(
            fmt::vformat("The JSON object has no member {}.", fmt::make_format_args(index)));
    }
    return names_[index];
}

json_value& json_value::put_child(std::string_view name) {
    if (kind_ == Kind::Null) {
        kind_ = Kind::Object;
    }
    Require(kind_, Kind::Object);
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found != names_.end()) {
        return elements_[static_cast<std::size_t>(found - names_.begin())];
    }
    elements_.emplace_back();
    names_.emplace_back(name);
    return elements_.back();
}

json_value& json_value::append_child() {
    push_back(json_value());
    return elements_.back();
}

void json_value::push_back(json_value value) {
    if (kind_ == Kind::Null) {
        kind_ = Kind::Array;
    }
    Require(kind_, Kind::Array);
    elements_.push_back(std::move(value));
}

bool operator==(const json_value& a, const json_value& b) {
    if (a.kind_ != b.kind_) {
        return false;
    }
    switch (a.kind_) {
        case json_value::Kind::Null:
            return true;
        case json_value::Kind::Bool:
            return a.bool_ == b.bool_;
        case json_value::Kind::Float:
            return a.float_ == b.float_;
        case json_value::Kind::Integer:
            return a.integer_ == b.integer_;
        case json_value::Kind::String:
            return a.string_ == b.string_;
        case json_value::Kind::Array:
            return a.elements_ == b.elements_;
        case json_value::Kind::Object:
            break;
    }
    if (a.names_ == b.names_) {
        return a.elements_ == b.elements_;
    }
    // Names are unique, so equal counts and every member found make equal objects.
    if (a.names_.size() != b.names_.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.names_.size(); ++i) {
        if (!b.has_child(a.names_[i]) || !(a.elements_[i] == b.get_child(a.names_[i]))) {
            return false;
        }
    }
    return true;
}
