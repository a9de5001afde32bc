#pragma once

#include <locale>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/stream/Export.h"

namespace QvStdString {

/// The parts of a text between separators; any character of `separators` separates. n separators
/// give n + 1 parts, empty ones included, so an empty text gives one empty part.
[[nodiscard]] QORVA_EXPORT std::vector<std::string> Split(std::string_view text,
                                                          std::string_view separators);

/// The next non-empty token from `position` (counted from 0) on, which is moved behind it. When
/// there is none left, gives an empty text and sets the position to -1.
[[nodiscard]] QORVA_EXPORT std::string Tokenize(std::string_view text,
                                                const char* separators,
                                                int& position);

[[nodiscard]] QORVA_EXPORT std::string ToLowerCase(std::string_view text,
                                                   const std::locale& locale);

/// Compares two texts in which runs of digits count as whole numbers of any length, so "c2" stands
/// before "c10"; other characters compare by their code. Negative, 0 or positive. Texts that differ
/// only in leading zeros are ordered by length, so 0 means equal.
[[nodiscard]] QORVA_EXPORT int CompareNumber(std::string_view a,
                                             std::string_view b,
                                             const std::locale& locale);

}  // namespace QvStdString
