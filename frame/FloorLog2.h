#pragma once

#include <bit>

/// Largest k with 2^k not above `value`; 0 for values of 1 and below.
[[nodiscard]] constexpr int FloorLog2(long long value) {
    return value > 1 ? static_cast<int>(std::bit_width(static_cast<unsigned long long>(value))) - 1
                     : 0;
}
