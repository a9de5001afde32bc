#pragma once

#include <string>

#include "foundation/stream/Export.h"

/// The type of an experimental factor.
class QORVA_EXPORT CEType {
  public:
    /// The numbers are stored and tested, and so are fixed.
    enum EType {
        NotDefined = 0,
        Quantitative = 1,
        Multilevel = 2,
        Qualitative = 3,
        Formulation = 4,
        Filler = 5,
        Time = 6
    };

    /// "Quantitative" and so on; "NotDefined" for every number outside 1 to 6.
    [[nodiscard]] static const char* GetString(EType type);
    /// Ignores the case of ASCII letters; "Mixture" gives Formulation; NotDefined for anything
    /// else.
    [[nodiscard]] static EType GetEnum(const std::string& text);
};
