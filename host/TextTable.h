#pragma once

#include <string>
#include <vector>

/// A table for people: columns as wide as their widest text, two blanks apart, a line under the
/// header. A column whose texts are all numbers stands to the right. Widths count UTF-8 characters.
[[nodiscard]] std::string FormatTable(const std::vector<std::string>& header,
                                      const std::vector<std::vector<std::string>>& lines);
