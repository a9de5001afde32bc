#pragma once

#include <cstddef>
#include <cstring>

/// Arithmetic on blocks of two doubles, what every machine of the platform does at once. The order
/// of additions is fixed, so results do not depend on the machine.
namespace VectorKernels {

using Block = double __attribute__((vector_size(16)));
/// What a comparison of two blocks gives: all bits set where it holds.
using Mask = long long __attribute__((vector_size(16)));

constexpr std::size_t cBlock = 2;

inline void Load(Block& block, const double* from) {
    std::memcpy(&block, from, sizeof block);
}
inline void Store(double* to, const Block& block) {
    std::memcpy(to, &block, sizeof block);
}
inline void Spread(Block& block, double value) {
    block = Block{value, value};
}
inline double Sum(const Block& block) {
    return block[0] + block[1];
}

/// x'y; `size` is a multiple of four, as in all functions below.
inline double Dot(const double* x, const double* y, std::size_t size) {
    Block even{}, odd{};
    for (std::size_t i = 0; i < size; i += 2 * cBlock) {
        Block a, b, c, d;
        Load(a, x + i);
        Load(b, y + i);
        Load(c, x + i + cBlock);
        Load(d, y + i + cBlock);
        even += a * b;
        odd += c * d;
    }
    return Sum(even) + Sum(odd);
}

/// y += factor * x
inline void Add(double* y, double factor, const double* x, std::size_t size) {
    Block f;
    Spread(f, factor);
    for (std::size_t i = 0; i < size; i += cBlock) {
        Block a, b;
        Load(a, x + i);
        Load(b, y + i);
        b += f * a;
        Store(y + i, b);
    }
}

}  // namespace VectorKernels
