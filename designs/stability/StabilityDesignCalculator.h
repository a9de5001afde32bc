#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"

class Factors;
class NCProgress;

/// Divides the full factorial of a set of factors into complementary subsets: every combination of
/// levels stands in exactly one of them, and each subset is a balanced design of about its share of
/// the runs (generalized subset designs; Surowiec et al. 2017, Analytical Chemistry 89, 6491-6497).
///
/// The search draws random divisions, keeps the best and ends with a count, a time limit or a
/// division without a flaw. Level factors have all their levels, others two.
class StabilityDesignCalculator {
  public:
    /// @param reduction number of subsets
    /// @param factors borrowed
    /// @param secondsToWait time limit of the search; 0 or less means none
    /// @param preferBalance looks for subsets in which levels, alone and in pairs, occur equally
    ///        often; otherwise for small condition numbers
    /// @param cancel borrowed, set by the caller to end the search; or null
    StabilityDesignCalculator(int reduction,
                              const Factors& factors,
                              int secondsToWait,
                              bool preferBalance,
                              const bool* cancel = nullptr);

    /// The subsets [runs x factors], as level numbers from 1; some can be empty where factors have
    /// fewer levels than there are subsets. None without factors or for a reduction below 1. The
    /// vectors are replaced by one entry a subset:
    /// @param progress told how far the search is and asked for a break; or null
    /// @param unique no two rows are equal
    /// @param balance every factor's levels occur equally often
    /// @param iterations divisions looked at, the same number everywhere
    /// @param distances pairs of rows by their squared distance in level numbers, from 0 to 9
    /// @param oa all pairs of levels of any two factors occur equally often
    /// @param noa the same up to a difference of 1
    /// @throws CancelException on a stop, and after a message to the user when the memory is
    ///         exhausted
    std::vector<NCDataMatrix<float>> Calculate(NCProgress* progress,
                                               std::vector<bool>& unique,
                                               std::vector<bool>& balance,
                                               std::vector<int>& iterations,
                                               std::vector<std::vector<int>>& distances,
                                               std::vector<bool>& oa,
                                               std::vector<bool>& noa);

  private:
    struct Implementation;

    std::shared_ptr<Implementation> implementation_;
};
