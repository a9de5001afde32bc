#pragma once

#include <string>
#include <vector>

/// The numbers of a text such as "0.5, 1, 2".
/// @param option names the text in errors
/// @throws Exception for anything but finite numbers between commas
[[nodiscard]] std::vector<double> ReadNumbers(const std::string& text, const std::string& option);
