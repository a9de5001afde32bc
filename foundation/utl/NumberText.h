#pragma once

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>
#include <type_traits>

/// Numbers as people write them in text files. Not part of what is installed.
namespace QvNumberText {

[[nodiscard]] inline std::string_view Trim(std::string_view text) {
    constexpr std::string_view cBlanks = " \t\r\n\v\f";
    const std::size_t begin = text.find_first_not_of(cBlanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(cBlanks) - begin + 1);
}

/// Parses a whole text as a decimal number with a point, whatever the locale; blanks around it and
/// a plus sign are allowed. A fraction too small for the type becomes 0. Returns false, and leaves
/// the value, for anything else: no number, an overflow, "inf", "nan".
template <class Number>
[[nodiscard]] bool Parse(std::string_view text, Number& value) {
    text = Trim(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (rest != end || (error != std::errc() && error != std::errc::result_out_of_range)) {
        return false;
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (error != std::errc()) {
            // Too large or too small? The widest type tells for all but absurd exponents.
            long double wide = 0;
            if (std::from_chars(text.data(), end, wide).ec != std::errc() || std::fabs(wide) > 1) {
                return false;
            }
            number = static_cast<Number>(wide);
        }
        if (!std::isfinite(number)) {
            return false;
        }
    } else if (error != std::errc()) {
        return false;
    }
    value = number;
    return true;
}

}  // namespace QvNumberText
