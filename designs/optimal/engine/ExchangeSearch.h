#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "designs/optimal/DOptProgress.h"
#include "designs/optimal/engine/DOptDesignState.h"
#include "designs/optimal/engine/ExchangeModel.h"

namespace DOpt {

/// What one pass of the search carries from exchange to exchange.
struct DOptMove : DOptExchangeStep {
    std::set<std::pair<int, int>> tabu;  // exchanges (from, to) that are barred
    std::vector<int> tried;              // leaving candidates of a first pass without a gain
    float threshold = 0;                 // least variance of an entering candidate
};

/// Point exchange after Fedorov (1972), with few leaving points: those of least variance. A walk of
/// exchanges goes on from the best design through at most one worse one; when it finds nothing
/// better, the points that it tried to exchange are set aside and the next ones take their turn.
class ExchangeSearch {
  public:
    /// Exchange rounds without a better design before the search gives up, or as many as it takes
    /// to try every row once, if these are more.
    static constexpr int cMaxRounds = 50;

    /// @param model borrowed
    /// @param width leaving points examined in one exchange
    ExchangeSearch(const ExchangeModel& model, int width, ProgressEvent progress);

    /// Improves a design until no leaving point is left to try, or until the search comes back to a
    /// design that it had found worse.
    /// Success, NotConverged, IllegalArgument for a determinant that would not stay positive, or
    /// what the callback answers.
    Status ExchangeRounds(DOptDesignState& current);

  private:
    Status ExchangePass(int& count);
    [[nodiscard]] Status KeepBetter();
    [[nodiscard]] bool IsNewDesign();
    [[nodiscard]] std::vector<int> LeavingPoints() const;
    void ListEntering();
    void BestExchange();
    void ComputeProducts(std::size_t group);
    [[nodiscard]] bool JudgeExchanges(int from, const double* products);
    [[nodiscard]] bool IsBarred(int from, int to) const;
    [[nodiscard]] bool ReplaceRow();
    void SetThreshold();
    [[nodiscard]] int RoundLimit() const;
    [[nodiscard]] bool IsUsed(int candidate) const {
        return used_[static_cast<std::size_t>(candidate)] != 0;
    }
    void ClearUsed() { used_.assign(static_cast<std::size_t>(model_.Candidates()), 0); }
    void SetUsed(int candidate) { used_[static_cast<std::size_t>(candidate)] = 1; }
    [[nodiscard]] bool IsTriedOut() const;

    const ExchangeModel& model_;
    const TileKernels& kernels_;
    std::size_t width_;
    ProgressEvent progress_;
    StateUpdate update_;

    DOptDesignState best_;
    DOptDesignState current_;
    DOptMove move_;
    std::set<std::uint64_t> visited_;  // keys of all designs that were the best
    bool hasTurnedBack_ = false;       // to one of them
    std::vector<int> used_;            // leaving candidates that are set aside
    std::vector<int> leaving_;         // by ascending variance
    std::vector<int> entering_;        // ascending
    std::vector<std::size_t> tiles_;   // with an entering candidate
    std::vector<double> x_;
    std::array<std::vector<double>, TileKernels::cVectors> images_;    // M x of leaving points
    std::array<std::vector<double>, TileKernels::cVectors> products_;  // x_k' M x by candidate
};

}  // namespace DOpt
