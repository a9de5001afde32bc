#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <utility>

/// The one uniform draw and shuffle of the system. Standard engines give the same bits everywhere,
/// standard distributions and std::shuffle do not; these do.
namespace QvRandom {

/// A whole number from 0 to bound - 1, without bias, by multiply and shift with rejection
/// (Lemire 2019, "Fast random integer generation in an interval"). bound must be above 0.
[[nodiscard]] inline std::uint32_t DrawBelow(std::mt19937& engine, std::uint32_t bound) {
    std::uint64_t product = std::uint64_t{engine()} * bound;
    if (static_cast<std::uint32_t>(product) < bound) {
        // The first (2^32 - bound) mod bound low halves would be hit once too often.
        const std::uint32_t threshold = (0U - bound) % bound;
        while (static_cast<std::uint32_t>(product) < threshold) {
            product = std::uint64_t{engine()} * bound;
        }
    }
    return static_cast<std::uint32_t>(product >> 32U);
}

/// Uniform shuffle by Fisher and Yates, from the front on: position i takes one of the elements
/// from i to the end.
template <class T>
void Shuffle(std::span<T> values, std::mt19937& engine) {
    for (std::size_t i = 0; i + 1 < values.size(); ++i) {
        const auto rest = static_cast<std::uint32_t>(values.size() - i);
        std::swap(values[i], values[i + DrawBelow(engine, rest)]);
    }
}

/// A twister seeded from the platform's random device.
[[nodiscard]] inline std::mt19937 MakeSeededEngine() {
    return std::mt19937(std::random_device{}());
}

}  // namespace QvRandom
