#pragma once

#include <string>

#include "foundation/stream/Export.h"

namespace QvTimeUtl {

/// Text of a time (seconds since 1970-01-01 UTC) in the local time zone. `format` is strftime's.
/// @throws InvalidOperationException for a time without a calendar date, or a text above 64 KiB.
[[nodiscard]] QORVA_EXPORT std::string FormatLocal(long long time, const char* format);

}  // namespace QvTimeUtl
