#pragma once

#include <string>

/// Whether two paths name the same file. Files that do not exist yet are compared by their names.
[[nodiscard]] bool IsSameFile(const std::string& a, const std::string& b);
