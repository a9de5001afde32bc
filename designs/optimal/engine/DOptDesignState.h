#pragma once

#include <vector>

#include "designs/optimal/engine/ExchangeModel.h"
#include "designs/optimal/engine/SquareMatrix.h"

namespace DOpt {

/// What a search knows of one design: enough to judge any exchange without a decomposition.
/// Candidates count from 0.
struct DOptDesignState {
    /// Inverse of the information matrix, by columns. Not exactly symmetric after updates.
    SquareMatrix inverse;
    /// Prediction variance of every candidate, padded to whole tiles.
    std::vector<double> variances;
    /// Candidates of the design, inclusions left out; a candidate may occur more than once.
    std::vector<int> rows;
    /// Of the information matrix, log10, carried on from step to step.
    float logDeterminant = -99.0F;
};

/// One exchange.
struct DOptExchangeStep {
    int from = -1;   // leaving candidate, -1 for none
    int to = -1;     // entering candidate
    float gain = 0;  // the determinant is multiplied by 1 + gain
};

/// Moves designs from state to state by rank-one updates.
class StateUpdate {
  public:
    /// Borrows the model.
    explicit StateUpdate(const ExchangeModel& model);

    /// Adds a candidate to inverse, variances, determinant and rows.
    void Enter(int candidate, DOptDesignState& state);
    /// Updates inverse, variances and determinant; the rows are the caller's.
    void Exchange(const DOptExchangeStep& step, DOptDesignState& state);

  private:
    void Multiply(const SquareMatrix& inverse, int candidate, std::vector<double>& u);
    [[nodiscard]] double ProductWithRow(const std::vector<double>& u) const;
    void Scale(const std::vector<double>& u, double divisor);

    const ExchangeModel& model_;
    const TileKernels& kernels_;
    std::vector<double> x_;  // the candidate multiplied last
    std::vector<double> entering_;
    std::vector<double> leaving_;
    std::vector<double> scaled_;
};

}  // namespace DOpt
