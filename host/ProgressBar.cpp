#include "host/ProgressBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using std::chrono::milliseconds;

// Shorter work needs no bar.
constexpr milliseconds cDelay(300);
// More often than this nobody can read.
constexpr milliseconds cInterval(100);
// Before this a guess at the time left is worth nothing.
constexpr std::chrono::seconds cEstimateDelay(3);
constexpr double cLeastShare = 0.01;
constexpr int cBarWidth = 30;
constexpr std::string_view cWipe = "\r\x1b[K";

std::string BarText(double share) {
    if (share < 0) {
        return "working";
    }
    const double part = std::clamp(share, 0.0, 1.0);
    const int filled = static_cast<int>(std::floor(part * cBarWidth));
    return fmt::format("[{:<{}}] {:3.0f} %",
                       std::string(static_cast<std::size_t>(filled), '#'),
                       cBarWidth,
                       std::floor(part * 100));
}

// "50 s", "12 min", "3 h".
std::string DurationText(double seconds) {
    constexpr double cMinute = 60;
    constexpr double cHour = 60 * cMinute;
    if (seconds < 2 * cMinute) {
        return fmt::format("{:.0f} s", std::ceil(seconds));
    }
    return seconds < 2 * cHour ? fmt::format("{:.0f} min", std::ceil(seconds / cMinute))
                               : fmt::format("{:.0f} h", std::ceil(seconds / cHour));
}

}  // namespace

ProgressBar::ProgressBar(std::ostream& out,
                         bool visible,
                         std::function<bool()> isBreakPressed,
                         Clock clock)
    : out_(out),
      visible_(visible),
      isBreakPressed_(std::move(isBreakPressed)),
      clock_(std::move(clock)) {}

void ProgressBar::Begin(const std::string& title, const std::string& text, bool /*cancellable*/) {
    if (depth_++ == 0) {
        begun_ = clock_();
        lastDrawn_ = begun_ - cInterval;
        outerShare_ = 0;
        lastTitle_ = title.empty() ? text : title;
    }
}

void ProgressBar::Show(double share, const std::string& text) {
    if (!visible_ || depth_ == 0) {
        return;
    }
    if (depth_ == 1) {
        outerShare_ = share;
    }
    const auto now = clock_();
    if (now - begun_ < cDelay || now - lastDrawn_ < cInterval) {
        return;
    }
    lastDrawn_ = now;
    Draw(share, text.empty() ? lastTitle_ : text);
}

// From the speed so far. Nested operations begin anew and tell nothing about the whole.
std::string ProgressBar::TimeLeft() const {
    const std::chrono::duration<double> elapsed = clock_() - begun_;
    if (elapsed < cEstimateDelay || outerShare_ < cLeastShare || outerShare_ >= 1) {
        return {};
    }
    const double left = elapsed.count() * (1 - outerShare_) / outerShare_;
    return fmt::format(", about {} left", DurationText(left));
}

void ProgressBar::Draw(double share, const std::string& text) {
    out_ << cWipe << BarText(share) << ' ' << text << TimeLeft() << std::flush;
    drawn_ = true;
}

void ProgressBar::Hide() {
    if (drawn_) {
        out_ << cWipe << std::flush;
        drawn_ = false;
    }
}

void ProgressBar::End() {
    depth_ = std::max(depth_ - 1, 0);
    if (depth_ == 0) {
        Hide();
    }
}
