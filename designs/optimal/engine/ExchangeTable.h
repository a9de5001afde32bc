#pragma once

#include <cstddef>
#include <vector>

#include "designs/optimal/engine/PaddedMatrix.h"

/// The best replacement of one run of a design by one candidate, by the criterion trace(M P) with
/// P the inverse information matrix (X'X)^-1 and M the moment matrix.
///
/// With x the entering and y the leaving row, Q = P M P, a = x'Px, b = y'Py, c = x'Py, the ratio of
/// the information determinants is d = (1 + a)(1 - b) + c^2 and trace(M P) changes by
///   -[(1 - b) x'Qx + 2 c x'Qy - (1 + a) y'Qy] / d
/// (both follow from the inverse after a change of rank two, Fedorov 1972). The numbers c and x'Qy
/// of all pairs are kept from one step to the next: an exchange changes P and Q by matrices of low
/// rank, which costs a few operations a pair instead of a product of two rows. Kept numbers only
/// screen; the pairs that come near the best one are computed afresh, and these figures decide. So
/// the choice is that of fresh figures, first the lower change, then the earlier place in the pool,
/// then the earlier run.
class ExchangeTable {
  public:
    /// An exchange that would multiply the information determinant by no more than this makes the
    /// design singular: what rounding leaves of a zero is far below it, and a design that a regular
    /// exchange leads to with such a ratio is too ill-conditioned to be used.
    static constexpr double cSmallestRatio = 1e-10;

    /// Numbers kept for pairs, unless told otherwise: 256 MB.
    static constexpr std::size_t cMostKept = std::size_t{1} << 25U;

    struct Exchange {
        double change = 0;  ///< of trace(M P); below 0 for an improvement
        int pool = -1;      ///< place in the pool, counted from 0; -1 when nothing improves
        int run = 0;        ///< place in the design, counted from 0
    };

    /// What belongs to the present design: P and Q, and trace(M P).
    struct Step {
        PaddedMatrix inverse;
        PaddedMatrix spread;
        double trace = 0;
    };

    /// @param candidates  model rows, borrowed
    /// @param runs  number of runs of the design
    /// @param mostKept  when the pairs need more numbers than this, none are kept: every step
    ///        computes all pairs, so many at a time
    ExchangeTable(const PaddedMatrix& candidates,
                  std::size_t runs,
                  std::size_t mostKept = cMostKept);

    /// The pair with the lowest change below 0. The loop over the pool is shared by threads.
    /// @param pool, design  candidate row numbers, counted from 0. Between two calls the design may
    ///        change by Replace only; rows may leave the pool, none may enter.
    [[nodiscard]] Exchange FindBest(const std::vector<int>& pool,
                                    const std::vector<int>& design,
                                    const Step& step);

    /// Tells that `row` takes the place of run `run`; `step` is that of the design before.
    void Replace(int row, int run, const Step& step);

    /// How often the numbers of all pairs were computed anew.
    [[nodiscard]] int FreshScreens() const { return freshScreens_; }

  private:
    // How P and Q change by the exchange made last. With L = P [x y] and N = Q [x y] before it:
    // P' = P - L T L' and Q' = Q - L T N' - N T L' + L U L'.
    struct Update {
        std::size_t run = 0;
        double t11 = 0, t12 = 0, t22 = 0;
        double u11 = 0, u12 = 0, u22 = 0;
        std::vector<double> inverseOfEntering;  // P x
        std::vector<double> spreadOfEntering;   // Q x
        // For each run w of the new design: T L'w, and T N'w - U L'w.
        std::vector<double> t1, t2, v1, v2;
    };

    void ComputeRuns(const std::vector<int>& design, const Step& step);
    void Screen(const std::vector<int>& pool, const Step& step, bool afresh);
    [[nodiscard]] Exchange Decide(const std::vector<int>& pool,
                                  const Step& step,
                                  double bestGain,
                                  double margin) const;
    // P y and Q y of all runs as columns, for products with many candidates.
    [[nodiscard]] PaddedMatrix RunColumns() const;
    void ComputeKept(std::size_t row,
                     std::size_t slot,
                     const Step& step,
                     const PaddedMatrix& columns);
    void UpdateKept(std::size_t row, std::size_t slot);
    [[nodiscard]] double BestGain(std::size_t slot) const;

    const PaddedMatrix& candidates_;
    std::size_t runs_;
    std::size_t paddedRuns_;
    std::vector<const double*> runRows_;
    // Of the present design: row j is P y_j (Q y_j).
    PaddedMatrix inverseOfRuns_;
    PaddedMatrix spreadOfRuns_;
    std::vector<double> shrink_;  // 1 - y'Py; 0 in the padding, where no exchange is regular
    std::vector<double> ownSpread_;
    PaddedMatrix keptPairs_;  // one row a candidate: x'Py of all runs, then x'Qy of all runs
    PaddedMatrix keptOwn_;    // one row a candidate: x'Px, x'Qx
    std::vector<double> gains_;
    Update update_;
    int updates_ = 0;
    int freshScreens_ = 0;
    bool isKept_ = false;
};
