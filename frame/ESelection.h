#pragma once

#include <string>

#include "foundation/stream/Export.h"

/// How large a selection of runs the experimenter asked for.
class QORVA_EXPORT ESelection {
  public:
    /// The numbers are stored and tested, and so are fixed.
    enum Type { None = 0, Low = 1, Recommended = 2, User = 3 };

    /// "Low", "Recommended" or "User"; "--" for None and unknown numbers.
    [[nodiscard]] static const char* GetString(Type type);
    /// Matches exactly; None for anything else.
    [[nodiscard]] static Type GetType(const std::string& text);
};
