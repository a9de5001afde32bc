#pragma once

#include <string>

#include "QORVAncdoe.h"

/// Figures of designs as they are printed, "-" where there is none.
namespace Figures {

[[nodiscard]] std::string Text(double figure);

/// The five figures, a line each.
[[nodiscard]] std::string Lines(const DesignStatistics::Results& results);

}  // namespace Figures
