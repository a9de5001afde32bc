#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/stream/Export.h"

/// Whole text files, read with a limit and written in one step.
namespace QvFile {

/// The file's bytes.
/// @throws Exception naming the file when it cannot be read, is a folder, or holds more than
///         `maxBytes`.
[[nodiscard]] QORVA_EXPORT std::string ReadAll(const std::string& path, std::size_t maxBytes);

/// Writes a new file beside the old one and lets it take the old one's place, so a reader sees
/// either the whole old or the whole new content. A device or pipe is written directly.
/// @throws Exception naming the file and the reason; the old file stays.
QORVA_EXPORT void ReplaceAll(const std::string& path, std::string_view content);

}  // namespace QvFile
