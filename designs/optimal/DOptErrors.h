#pragma once

#include <string>

class D_OptimalOptions;

namespace DOpt {

/// The text of a status of the engine for the user.
/// @param options null allowed
[[nodiscard]] std::string GetErrorString(int code, const D_OptimalOptions* options);

}  // namespace DOpt
