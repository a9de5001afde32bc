#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

/// How many splits a search may look at. The limit follows from the measured speed, since the work
/// for one split grows with the factors.
namespace SearchLimit {

/// @param secondsToWait time limit; 0 or less means none
[[nodiscard]] inline int GetInitial(int reduction, int secondsToWait, bool validating) {
    constexpr int cMost = 1'000'000;
    constexpr int cSplitsOfOneSubset = 100;
    if (validating) {
        return 1;
    }
    if (secondsToWait >= 1) {
        return cMost;
    }
    return reduction > std::numeric_limits<int>::max() / cSplitsOfOneSubset
               ? std::numeric_limits<int>::max()
               : cSplitsOfOneSubset * reduction;
}

/// The speed is measured before iteration 5, counted from 0, and again every 30 iterations.
[[nodiscard]] inline bool IsMeasuredBefore(int iteration) {
    return iteration % 30 == 5;
}

/// The time as the rule sees it, in whole milliseconds.
[[nodiscard]] inline double ToSeconds(std::chrono::nanoseconds elapsed) {
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed);
    return static_cast<double>(whole.count()) / 1000.0;
}

/// The limit after `iteration` iterations took `seconds`, which must be positive: as many as fit
/// the time limit or, without one, at least what fits two seconds. Never below `iteration`.
[[nodiscard]] inline int GetAdjusted(int limit, int iteration, double seconds, int secondsToWait) {
    constexpr double cLeastSeconds = 2.0;
    constexpr int cMost = std::numeric_limits<int>::max();
    const double each = seconds / iteration;
    const auto countIn = [each](double time) {
        return time / each < cMost ? static_cast<int>(time / each) : cMost;
    };
    const int wanted =
        secondsToWait > 0 ? countIn(secondsToWait) : std::max(limit, countIn(cLeastSeconds));
    return std::max(wanted, iteration);
}

}  // namespace SearchLimit
