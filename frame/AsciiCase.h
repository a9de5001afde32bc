#pragma once

#include <algorithm>
#include <string_view>

/// Comparison of texts that depends on no locale.
namespace AsciiCase {

[[nodiscard]] constexpr char ToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] inline bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return ToLower(x) == ToLower(y);
    });
}

}  // namespace AsciiCase
