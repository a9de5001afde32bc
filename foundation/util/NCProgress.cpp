#include "foundation/util/NCProgress.h"

#include <cmath>
#include <mutex>
#include <utility>

#include "foundation/utl/Exceptions.h"

namespace {

std::mutex displayMutex;
std::shared_ptr<NCProgressDisplay> installedDisplay;

std::shared_ptr<NCProgressDisplay> GetDisplay() {
    const std::lock_guard lock(displayMutex);
    return installedDisplay;
}

}  // namespace

NCProgressDisplay::~NCProgressDisplay() = default;

void NCProgress::SetDisplay(std::shared_ptr<NCProgressDisplay> display) {
    // The old display goes after the lock: its destructor is the host's code.
    const std::lock_guard lock(displayMutex);
    installedDisplay.swap(display);
}

NCProgress::NCProgress(std::string text,
                       float min,
                       float max,
                       bool hidden,
                       bool uninterruptible,
                       bool cancellable,
                       // NOLINTNEXTLINE(performance-unnecessary-value-param): the given signature
                       std::string title)
    : display_(hidden ? nullptr : GetDisplay()), uninterruptible_(uninterruptible) {
    ranges_.push_back({min, max, 0, 1, std::move(text)});
    if (display_) {
        display_->Begin(title, ranges_.back().text, cancellable);
    }
}

NCProgress::~NCProgress() {
    if (display_) {
        try {
            display_->End();
        } catch (...) {
            // Often run while an exception passes; a second one would end the program, and a
            // display that cannot be closed is no reason for that.
        }
    }
}

void NCProgress::SetRange(float min, float max) {
    ranges_.back().min = min;
    ranges_.back().max = max;
}

bool NCProgress::SetValue(float value) {
    return Show(ShareOf(value));
}

bool NCProgress::PushSubRange(float from, float to, std::string text) {
    const double shareFrom = ShareOf(from);
    ranges_.push_back({0, 100, shareFrom, ShareOf(to), std::move(text)});
    return Show(shareFrom);
}

bool NCProgress::PopSubRange() {
    if (ranges_.size() == 1) {
        throw InvalidOperationException("PopSubRange: there is no sub-range");
    }
    const double share = ranges_.back().shareTo;
    ranges_.pop_back();
    return Show(share);
}

void NCProgress::SetText(std::string text) {
    ranges_.back().text = std::move(text);
    static_cast<void>(Show(share_));
}

bool NCProgress::NextSpin() {
    if (display_) {
        display_->Show(-1, ranges_.back().text);
    }
    return !IsBreakPressed();
}

bool NCProgress::SpinDone() {
    return Show(share_);
}

void NCProgress::Hide() {
    if (display_) {
        display_->Hide();
    }
}

bool NCProgress::IsBreakPressed() const {
    return display_ && !uninterruptible_ && display_->IsBreakPressed();
}

bool NCProgress::Show(double share) {
    share_ = share;
    if (display_) {
        display_->Show(share, ranges_.back().text);
    }
    return !IsBreakPressed();
}

double NCProgress::ShareOf(float value) const {
    const Range& range = ranges_.back();
    const double width = static_cast<double>(range.max) - static_cast<double>(range.min);
    // A range without width has nothing left to do.
    double done = 1;
    if (width != 0) {
        done = (static_cast<double>(value) - static_cast<double>(range.min)) / width;
        done = done >= 0 ? std::fmin(done, 1.0) : 0.0;
    }
    return std::lerp(range.shareFrom, range.shareTo, done);  // exact at both ends
}
