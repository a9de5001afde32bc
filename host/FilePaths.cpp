#include "host/FilePaths.h"

#include <filesystem>
#include <system_error>

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) ||
           std::filesystem::absolute(a, error).lexically_normal() ==
               std::filesystem::absolute(b, error).lexically_normal();
}
