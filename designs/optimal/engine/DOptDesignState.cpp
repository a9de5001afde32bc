#include "designs/optimal/engine/DOptDesignState.h"

#include <cmath>

namespace DOpt {

StateUpdate::StateUpdate(const ExchangeModel& model)
    : model_(model),
      kernels_(BestTileKernels()),
      entering_(SquareMatrix::PaddedSize(static_cast<std::size_t>(model.Columns()))),
      leaving_(entering_.size()),
      scaled_(entering_.size()) {}

void StateUpdate::Multiply(const SquareMatrix& inverse, int candidate, std::vector<double>& u) {
    model_.WidenRow(candidate, x_);
    kernels_.multiply(inverse.Row(0), inverse.Size(), inverse.Stride(), x_.data(), u.data());
}

double StateUpdate::ProductWithRow(const std::vector<double>& u) const {
    double sum = 0;
    const auto columns = static_cast<std::size_t>(model_.Columns());
    for (std::size_t j = 0; j < columns; ++j) {
        sum += x_[j] * u[j];
    }
    return sum;
}

void StateUpdate::Scale(const std::vector<double>& u, double divisor) {
    for (std::size_t j = 0; j < u.size(); ++j) {
        scaled_[j] = u[j] / divisor;
    }
}

void StateUpdate::Enter(int candidate, DOptDesignState& state) {
    Multiply(state.inverse, candidate, entering_);
    const RankOne point{entering_.data(), 1 + ProductWithRow(entering_)};
    const double variance = state.variances[static_cast<std::size_t>(candidate)];
    kernels_.subtractSquare(
        state.inverse.Row(0), state.inverse.Size(), state.inverse.Stride(), point);
    state.logDeterminant =
        static_cast<float>(static_cast<double>(state.logDeterminant) + std::log10(1 + variance));
    kernels_.enter(model_.Tiles(), point, state.variances.data());
    state.rows.push_back(candidate);
}

void StateUpdate::Exchange(const DOptExchangeStep& step, DOptDesignState& state) {
    const auto update = [&state, this](const std::vector<double>& u) {
        kernels_.addProduct(state.inverse.Row(0),
                            state.inverse.Size(),
                            state.inverse.Stride(),
                            scaled_.data(),
                            u.data());
    };
    state.logDeterminant = static_cast<float>(static_cast<double>(state.logDeterminant) +
                                              std::log10(static_cast<double>(step.gain) + 1));
    Multiply(state.inverse, step.to, entering_);
    const RankOne entering{entering_.data(), 1 + ProductWithRow(entering_)};
    Scale(entering_, -entering.t);
    update(entering_);
    // The leaving point is judged by the inverse that already holds the entering one.
    Multiply(state.inverse, step.from, leaving_);
    const RankOne leaving{leaving_.data(), 1 - ProductWithRow(leaving_)};
    Scale(leaving_, leaving.t);
    update(leaving_);
    kernels_.exchange(model_.Tiles(), entering, leaving, state.variances.data());
}

}  // namespace DOpt
