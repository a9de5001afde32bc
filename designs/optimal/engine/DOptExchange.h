#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "designs/optimal/DOptProgress.h"
#include "designs/optimal/engine/DOptDesignState.h"
#include "designs/optimal/engine/DesignFigures.h"
#include "designs/optimal/engine/ExchangeModel.h"
#include "designs/optimal/engine/ExchangeSearch.h"

namespace DOpt {

struct ExchangeSettings {
    int runs = 0;          // design rows to find, inclusions not counted
    int width = 3;         // leaving points examined in one exchange
    int randomPoints = 3;  // rows of a start design that are drawn
    unsigned int seed = 1974;
    std::vector<int> inclusions;  // candidates that every design holds, counted from 1
    ProgressEvent progress;
    bool* cancel = nullptr;  // borrowed
};

/// First model column, counted from 1, of each factor whose levels are to be balanced, with the
/// number of its levels.
using BalanceMap = std::map<int, int>;

/// One finished design.
struct ExchangeResult {
    ExchangeFigures figures;
    bool balanced = false;
    std::vector<int> rows;  // candidates counted from 1, ascending, inclusions among them
};

/// Searches for designs of one run count. Inside, candidates count from 0.
class DOptExchange {
  public:
    /// Seeds the C library's generator. Borrows the model, which it may residualise.
    DOptExchange(ExchangeModel& model, ExchangeSettings settings);

    /// Success; IllegalArgument for more runs than candidates; IllegalInclusions for inclusions
    /// that are no complete candidates.
    [[nodiscard]] Status GetStatus() const { return status_; }

    /// Appends a result for each repetition that finds a design of sound condition.
    /// @param onlyBalanced results that are not balanced are left out
    /// Success, or the status of the repetition that failed, which ends the search; NoResult for
    /// less than one repetition.
    Status RepetitionLoop(std::vector<ExchangeResult>& results,
                          int repetitions,
                          const BalanceMap& balance,
                          bool onlyBalanced);

    // The steps of one repetition, for their own tests and measurement.
    Status StartDesign();
    Status RecomputeInverse();
    Status ExchangeRounds() { return search_.ExchangeRounds(state_); }
    [[nodiscard]] const DOptDesignState& GetState() const { return state_; }

  private:
    Status FindDesign(ExchangeResult& result);
    Status PrepareStart();
    Status CompleteStart(const std::vector<int>& drawn);
    [[nodiscard]] std::vector<int> DrawPoints() const;
    Status FillUp();
    [[nodiscard]] int LargestVariance() const;
    [[nodiscard]] bool HasInclusionAmong(const std::vector<int>& points) const;
    [[nodiscard]] std::vector<int> AllRows() const;
    [[nodiscard]] const SquareMatrix& InclusionsInfo();
    [[nodiscard]] Status Poll() const;

    ExchangeModel& model_;
    ExchangeSettings settings_;
    Status status_ = Success;
    std::vector<int> inclusions_;
    std::optional<SquareMatrix> inclusionsInfo_;  // with the weights of the potential columns
    ExchangeSearch search_;
    StateUpdate update_;
    std::optional<DOptDesignState> start_;  // of every repetition: the ridge and the inclusions
    DOptDesignState state_;
};

/// Whether each factor of the map has all its levels in the design, equally often.
/// @param rows candidates counted from 1
[[nodiscard]] bool IsBalanced(const ExchangeModel& model,
                              const std::vector<int>& rows,
                              const BalanceMap& balance);

}  // namespace DOpt
