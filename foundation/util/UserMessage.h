#pragma once

#include <functional>
#include <string>

#include "foundation/stream/Export.h"

/// Messages that go straight to the user, for the rare case in which the caller is told only that
/// the work was stopped.
namespace UserMessage {

/// Shows the text of an error to the user.
using ErrorReporter = std::function<void(const std::string& text)>;

/// Installs the reporter of the whole process; an empty function makes messages silent, as they are
/// at first.
QORVA_EXPORT void SetErrorReporter(ErrorReporter reporter);
/// Hands the text to the reporter, if there is one, on the calling thread.
QORVA_EXPORT void ShowError(const std::string& text);

}  // namespace UserMessage
