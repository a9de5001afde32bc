#pragma once

#include <string>

#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"

/// The regression model that a design is to support.
class QORVA_EXPORT EModel {
  public:
    /// The numbers are stored and tested, and so are fixed.
    enum Type {
        None = 0,
        Linear = 1,
        Interaction = 2,
        Quadratic = 3,
        SpecialCubic = 4,
        Cubic = 5,
        LinearQuadratic = 6
    };

    /// "Linear", "Special Cubic", "Linear+Quadratic" and so on; "--" for None and unknown numbers.
    [[nodiscard]] static const char* GetString(Type type);
    /// Ignores the case of ASCII letters; None for anything else.
    [[nodiscard]] static Type GetType(const std::string& text);
    /// The text in lower case.
    [[nodiscard]] static json_value ToJson(Type type);
    /// None for an unknown text or another kind of value.
    [[nodiscard]] static Type FromJson(const json_value& value);
};
