#include "foundation/utl/QvCombinatorics.h"

#include <cstddef>
#include <numeric>

#include "foundation/utl/Exceptions.h"

namespace QvCombinatorics {
namespace {

/// C(n + k - 1, k - 1), built up as C(n + i, i) for i = 1, 2, ..., k - 1. Every step divides before
/// it multiplies, so an overflow is one of the result itself.
long CountCompositions(long n, long k) {
    long count = 1;
    for (long i = 1; i < k; ++i) {
        long top = 0;
        const long shared = std::gcd(count, i);
        if (__builtin_add_overflow(n, i, &top) ||
            __builtin_mul_overflow(count / shared, top / (i / shared), &count)) {
            throw InvalidOperationException("NIntoK: the number of compositions does not fit");
        }
    }
    return count;
}

}  // namespace

NIntoK::NIntoK(long n, long k) : n_(n) {
    if (n < 0 || k < 1) {
        throw InvalidOperationException("NIntoK: n must be 0 or more and k 1 or more");
    }
    count_ = CountCompositions(n, k);
    parts_.assign(static_cast<std::size_t>(k), 0);
}

NIntoK::~NIntoK() = default;

bool NIntoK::Next() {
    const std::size_t last = parts_.size() - 1;
    const long tail = parts_[last];
    if (!started_ || tail == n_) {
        const bool wraps = started_;
        started_ = true;
        parts_[last] = 0;
        parts_.front() = n_;
        return wraps;
    }
    // The next smaller one: take 1 from the rightmost part that can give and collect it, with all
    // that stood at the end, right behind.
    std::size_t giving = last - 1;
    while (parts_[giving] == 0) {
        --giving;
    }
    --parts_[giving];
    parts_[last] = 0;
    parts_[giving + 1] = tail + 1;
    return false;
}

}  // namespace QvCombinatorics
