#pragma once

#include <string>

#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"

/// What the experimenter is after.
class QORVA_EXPORT EObjective {
  public:
    /// The numbers are stored and tested, and so are fixed.
    enum Type {
        None = 0,
        Screening = 1,
        Optimization = 2,
        SplitObjective = 3,
        RobustnessVerification = 4,
        SystemCharacterization = 5
    };

    /// "Screening", "Optimization (RSM)" and so on; "--" for None and unknown numbers.
    [[nodiscard]] static const char* GetString(Type type);
    /// Deliberate: "Screening" matches regardless of case, everything else exactly. "RSM" gives
    /// Optimization; None for anything else.
    [[nodiscard]] static Type GetType(const std::string& text);
    /// A short lower-case text. None and SplitObjective have no JSON form and give an empty text.
    [[nodiscard]] static json_value ToJson(Type type);
    /// None for an unknown text or another kind of value.
    [[nodiscard]] static Type FromJson(const json_value& value);
};
