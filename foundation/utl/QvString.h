#pragma once

#include "foundation/stream/Export.h"

namespace QvString {

/// Parses a whole text as a decimal number in the classic locale; blanks around it are allowed.
/// Returns true on success; otherwise, for an overflow and for "inf" and "nan", `value` stays.
[[nodiscard]] QORVA_EXPORT bool ToFloat(const char* text, float& value);

}  // namespace QvString
