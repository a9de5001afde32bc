#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

/// Pairs of a reduction and an index as they are stored: "3,1".
namespace UsedDesignText {

/// A whole text as a decimal whole number, with or without a sign; nothing around it.
template <class Number>
[[nodiscard]] std::optional<Number> ParseWhole(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional<Number>(number) : std::nullopt;
}

template <class Number>
[[nodiscard]] std::string Format(const std::pair<Number, Number>& pair) {
    return std::to_string(pair.first) + "," + std::to_string(pair.second);
}

template <class Number>
[[nodiscard]] std::optional<std::pair<Number, Number>> Parse(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) {
        return std::nullopt;
    }
    const auto reduction = ParseWhole<Number>(text.substr(0, comma));
    const auto index = ParseWhole<Number>(text.substr(comma + 1));
    if (!reduction || !index) {
        return std::nullopt;
    }
    return std::pair(*reduction, *index);
}

}  // namespace UsedDesignText
