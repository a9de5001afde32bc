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
        lastTitle_ = title.empty() ? text : title;
    }
}

void ProgressBar::Show(double share, const std::string& text) {
    if (!visible_ || depth_ == 0) {
        return;
    }
    const auto now = clock_();
    if (now - begun_ < cDelay || now - lastDrawn_ < cInterval) {
        return;
    }
    lastDrawn_ = now;
    Draw(share, text.empty() ? lastTitle_ : text);
}

void ProgressBar::Draw(double share, const std::string& text) {
    out_ << cWipe << BarText(share) << ' ' << text << std::flush;
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
