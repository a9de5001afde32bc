#pragma once

#include <numeric>
#include <random>
#include <span>
#include <vector>

#include "foundation/utl/QvRandom.h"
#include "frame/Validating.h"

/// Random orders of the runs along the sides of a plate.
namespace RunOrders {

/// Seeded from the platform, or always alike in validating mode.
[[nodiscard]] inline std::mt19937 MakeEngine() {
    constexpr std::mt19937::result_type cValidatingSeed = 1974;
    return Validating::Get() ? std::mt19937(cValidatingSeed) : QvRandom::MakeSeededEngine();
}

/// The rows 1 to `size` in random order.
[[nodiscard]] inline std::vector<unsigned int> Draw(unsigned long long size, std::mt19937& engine) {
    std::vector<unsigned int> rows(size);
    std::iota(rows.begin(), rows.end(), 1U);
    QvRandom::Shuffle(std::span(rows), engine);
    return rows;
}

}  // namespace RunOrders
