#include "foundation/mat/NCMatUtilities.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "foundation/utl/Exceptions.h"

namespace {

using Subset = std::vector<unsigned long long>;

/// More elements than any design table needs, and still within the memory of a small machine.
constexpr unsigned long long cMaxElements = 100'000'000;

/// The number of k-element subsets of n; any value above cMaxElements when there are more than
/// that.
unsigned long long CountSubsets(unsigned long long n, unsigned long long k) {
    const unsigned long long chosen = std::min(k, n - k);
    unsigned long long count = 1;
    for (unsigned long long i = 1; i <= chosen; ++i) {
        const unsigned long long from = n - chosen + i;
        // With 1 <= i < from there are at least `from` subsets, so that the product below never
        // leaves 64 bits.
        if (from > cMaxElements || count > cMaxElements) {
            return cMaxElements + 1;
        }
        count = count * from / i;
    }
    return count;
}

void CheckCount(unsigned long long subsets, unsigned long long k) {
    if (subsets > cMaxElements || (k > 0 && subsets > cMaxElements / k)) {
        throw InvalidOperationException("combnk: more subsets than can be listed");
    }
}

/// Steps to the next subset in lexicographic order; false after the last one.
bool Advance(Subset& subset, unsigned long long n) {
    const std::size_t k = subset.size();
    std::size_t place = k;
    while (place > 0 && subset[place - 1] == n - k + (place - 1)) {
        --place;
    }
    if (place == 0) {
        return false;
    }
    const auto begin = subset.begin() + static_cast<std::ptrdiff_t>(place - 1);
    std::iota(begin, subset.end(), *begin + 1);
    return true;
}

}  // namespace

std::vector<std::vector<unsigned long long>> NCMatUtilities::combnk(unsigned long long n,
                                                                    unsigned long long k) {
    std::vector<Subset> subsets;
    if (k > n) {
        return subsets;
    }
    const unsigned long long count = CountSubsets(n, k);
    CheckCount(count, k);
    subsets.reserve(count);
    Subset subset(k);
    std::iota(subset.begin(), subset.end(), 0ULL);
    do {
        subsets.push_back(subset);
    } while (Advance(subset, n));
    return subsets;
}
