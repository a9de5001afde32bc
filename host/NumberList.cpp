#include "host/NumberList.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "foundation/utl/QvStdString.h"
#include "host/HostError.h"

std::vector<double> ReadNumbers(const std::string& text, const std::string& option) {
    std::vector<double> numbers;
    for (const std::string& part : QvStdString::Split(text, ",")) {
        const std::string_view trimmed = Trimmed(part);
        const char* const end = trimmed.data() + trimmed.size();
        double number = 0;
        const auto [rest, error] = std::from_chars(trimmed.data(), end, number);
        if (error != std::errc() || rest != end || !std::isfinite(number)) {
            FailWith(fmt::format("{}: {} is no number.", option, Quoted(part)));
        }
        numbers.push_back(number);
    }
    return numbers;
}
