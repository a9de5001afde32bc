#include "foundation/util/UserMessage.h"

#include <mutex>
#include <utility>

namespace {

std::mutex reporterMutex;
UserMessage::ErrorReporter installedReporter;

}  // namespace

namespace UserMessage {

void SetErrorReporter(ErrorReporter reporter) {
    // The old reporter goes after the lock: it may own what the host has to destroy.
    const std::lock_guard lock(reporterMutex);
    installedReporter.swap(reporter);
}

void ShowError(const std::string& text) {
    ErrorReporter reporter;
    {
        const std::lock_guard lock(reporterMutex);
        reporter = installedReporter;
    }
    if (reporter) {
        reporter(text);
    }
}

}  // namespace UserMessage
