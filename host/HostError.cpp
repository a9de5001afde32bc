#include "host/HostError.h"

#include <fmt/format.h>

#include <algorithm>

#include "QORVAncdoe.h"

namespace {

constexpr std::size_t cMostShown = 60;

bool IsControl(char letter) {
    return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
}

char LowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// The longest start of a UTF-8 text of at most that many bytes that ends between two characters.
std::string_view StartOf(std::string_view text, std::size_t most) {
    if (text.size() <= most) {
        return text;
    }
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return text.substr(0, end);
}

}  // namespace

void FailWith(const std::string& text) {
    throw Exception(ExceptionMessage::translate("{1}") << text);
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    const std::string_view start = StartOf(text, cMostShown);
    for (const char letter : start) {
        if (IsControl(letter)) {
            quoted += fmt::format("\\x{:02x}", static_cast<unsigned char>(letter));
        } else {
            quoted += letter;
        }
    }
    return quoted + (start.size() < text.size() ? "...\"" : "\"");
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view cBlanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(cBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(cBlanks) - begin + 1);
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char left, char right) {
        return LowerCase(left) == LowerCase(right);
    });
}
