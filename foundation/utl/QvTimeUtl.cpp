#include "foundation/utl/QvTimeUtl.h"

#include <cstddef>
#include <ctime>

#include "foundation/utl/Exceptions.h"

namespace QvTimeUtl {
namespace {

/// Longest text that is made; a format can ask for any width.
constexpr std::size_t cMaxLength = std::size_t{1} << 16U;

}  // namespace

std::string FormatLocal(long long time, const char* format) {
    const auto seconds = static_cast<std::time_t>(time);
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) {
        throw InvalidOperationException("FormatLocal: the time has no calendar date");
    }
    // strftime gives 0 for a buffer too small as well as for an empty text; with a blank in front
    // no text is empty.
    const std::string guarded = std::string(" ") + format;
    for (std::size_t size = 128; size <= cMaxLength; size *= 2) {
        std::string text(size, '\0');
        const std::size_t length = std::strftime(text.data(), size, guarded.c_str(), &local);
        if (length > 0) {
            return text.substr(1, length - 1);
        }
    }
    throw InvalidOperationException("FormatLocal: the text is too long");
}

}  // namespace QvTimeUtl
