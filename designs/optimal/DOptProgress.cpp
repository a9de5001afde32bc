#include "designs/optimal/DOptProgress.h"

#include <atomic>

#include "foundation/util/NCProgress.h"

namespace DOpt {

namespace {

// Shared by all searches of the process: what the one progress bar shows. Two searches at once
// disturb each other's bar and nothing else.
std::atomic<float> shownValue = 0;
std::atomic<float> baseValue = 0;

void MoveShownValue(EClassName event, float value) {
    switch (event) {
        case Step:
        case SubStep:
            shownValue = static_cast<float>(static_cast<int>(value) % 21 * 5);
            break;
        case Base:
            baseValue = value;
            shownValue = value;
            break;
        default:
            shownValue = value;
    }
}

// Whether the search may go on.
bool Report(NCProgress& progress, EClassName event, float value) {
    if (event == Round) {
        return progress.NextSpin();
    }
    if (event == RepetitionDone) {
        progress.SetValue(baseValue + value);
        progress.SpinDone();
        return !progress.IsBreakPressed();
    }
    MoveShownValue(event, value);
    progress.SetValue(shownValue);
    return !progress.IsBreakPressed();
}

bool IsSet(const bool* cancel) {
    return cancel != nullptr && *cancel;
}

}  // namespace

ProgressEvent MakeProgressEvent(NCProgress* progress, const bool* cancel) {
    return [progress, cancel](EClassName event, float value) {
        const bool goesOn = progress == nullptr || Report(*progress, event, value);
        return goesOn && !IsSet(cancel) ? Success : Stopped;
    };
}

StopTest MakeStopTest(NCProgress* progress, const bool* cancel, float full) {
    return [progress, cancel, full](float share) {
        if (progress != nullptr && share >= 0) {
            progress->SetValue(share * full);
        }
        return IsSet(cancel) || (progress != nullptr && progress->IsBreakPressed());
    };
}

}  // namespace DOpt
