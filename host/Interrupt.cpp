#include "host/Interrupt.h"

#include <csignal>

#include "foundation/utl/Exceptions.h"

namespace {

// The one thing that a signal handler may write.
volatile std::sig_atomic_t gRequested = 0;

}  // namespace

extern "C" {
static void NoteInterrupt(int /*signal*/) {
    gRequested = 1;
}
}

namespace Interrupt {

void Install() {
    struct sigaction action = {};
    action.sa_handler = NoteInterrupt;
    // The system's own handling comes back with the first signal.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

bool IsRequested() {
    return gRequested != 0;
}

void Set(bool requested) {
    gRequested = requested ? 1 : 0;
}

void ThrowIfRequested() {
    if (IsRequested()) {
        throw CancelException();
    }
}

}  // namespace Interrupt
