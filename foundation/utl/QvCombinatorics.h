#pragma once

#include <vector>

#include "foundation/stream/Export.h"

namespace QvCombinatorics {

/// Walks all compositions of n into k non-negative parts, of which there are C(n+k-1, k-1). They
/// come in descending lexicographic order: the first is (n, 0, ..., 0), the last (0, ..., 0, n).
class QORVA_EXPORT NIntoK {
  public:
    /// @throws InvalidOperationException when n is negative, k is below 1, or the number of
    ///         compositions does not fit a long.
    NIntoK(long n, long k);
    ~NIntoK();
    NIntoK(const NIntoK&) = default;
    NIntoK& operator=(const NIntoK&) = default;

    [[nodiscard]] long SizeCombinations() const { return count_; }
    /// Steps to the next composition; the first call yields the first one. Returns true when it
    /// wraps, that is when it yields the first composition again after the last; else false.
    bool Next();
    /// The parts of the present composition; all 0 before the first call of Next.
    [[nodiscard]] const std::vector<long>& GetParts() const { return parts_; }

  private:
    long n_;
    long count_ = 1;
    bool started_ = false;
    std::vector<long> parts_;
};

}  // namespace QvCombinatorics
