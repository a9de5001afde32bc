#include "foundation/utl/QvStdString.h"

#include <algorithm>
#include <cstddef>

namespace QvStdString {
namespace {

int Sign(bool less, bool greater) {
    return static_cast<int>(greater) - static_cast<int>(less);
}

template <class Value>
int Order(const Value& a, const Value& b) {
    return Sign(a < b, b < a);
}

/// Takes the run of digits off the front of a text and gives it without its leading zeros.
std::string_view TakeNumber(std::string_view& text, const std::ctype<char>& ctype) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const char* const stop = ctype.scan_not(std::ctype_base::digit, begin, end);
    text.remove_prefix(static_cast<std::size_t>(stop - begin));
    const char* const first = std::find_if(begin, stop, [](char digit) { return digit != '0'; });
    return {first, static_cast<std::size_t>(stop - first)};
}

int CompareDigits(std::string_view a, std::string_view b) {
    const int lengths = Order(a.size(), b.size());
    return lengths != 0 ? lengths : Order(a, b);
}

}  // namespace

std::vector<std::string> Split(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find_first_of(separators, begin);
        parts.emplace_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos) {
            return parts;
        }
        begin = end + 1;
    }
}

std::string Tokenize(std::string_view text, const char* separators, int& position) {
    const std::size_t begin =
        position < 0 ? std::string_view::npos
                     : text.find_first_not_of(separators, static_cast<std::size_t>(position));
    if (begin == std::string_view::npos) {
        position = -1;
        return {};
    }
    const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
    position = static_cast<int>(end);
    return std::string(text.substr(begin, end - begin));
}

std::string ToLowerCase(std::string_view text, const std::locale& locale) {
    std::string lower(text);
    std::use_facet<std::ctype<char>>(locale).tolower(lower.data(), lower.data() + lower.size());
    return lower;
}

int CompareNumber(std::string_view a, std::string_view b, const std::locale& locale) {
    const auto& ctype = std::use_facet<std::ctype<char>>(locale);
    const auto isDigit = [&](char c) { return ctype.is(std::ctype_base::digit, c); };
    std::string_view restA = a;
    std::string_view restB = b;
    while (!restA.empty() && !restB.empty()) {
        int order = 0;
        if (isDigit(restA.front()) && isDigit(restB.front())) {
            const std::string_view numberA = TakeNumber(restA, ctype);
            order = CompareDigits(numberA, TakeNumber(restB, ctype));
        } else {
            order = Order(static_cast<unsigned char>(restA.front()),
                          static_cast<unsigned char>(restB.front()));
            restA.remove_prefix(1);
            restB.remove_prefix(1);
        }
        if (order != 0) {
            return order;
        }
    }
    if (restA.empty() != restB.empty()) {
        return restA.empty() ? -1 : 1;
    }
    // Only leading zeros can still differ. Where they balance each other ("a01b1", "a1b01") the
    // codes decide, since 0 must mean equal texts.
    const int lengths = Order(a.size(), b.size());
    return lengths != 0 ? lengths : Order(a, b);
}

}  // namespace QvStdString
