#pragma once

#include <span>

#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/ExchangeModel.h"

namespace DOpt {

/// Figures of merit of a design for the primary columns of its model, -99 where one cannot be
/// formed. With X1 the design [runs x p1] and d a candidate's variance x'(X1'X1)^-1 x:
struct ExchangeFigures {
    float conditionNumber = -99.0F;     // of X1, below cMaxConditionNumber
    float gEfficiency = -99.0F;         // 100 p1 / (runs * largest d), percent
    float logDeterminant = -99.0F;      // log10 |X1'X1|
    float normLogDeterminant = -99.0F;  // that / p1 - log10(runs)
    /// runs * mean d; NaN when X1'X1 has a condition number above cMaxConditionNumber.
    float iValue = -99.0F;
};

inline constexpr float cMaxConditionNumber = 100000.0F;

/// @param rows candidates of the design, counted from 0, inclusions among them
/// Success, Singular, NoDeterminant for a log determinant of exactly 0, or Cancelled.
[[nodiscard]] Status ComputeFigures(const ExchangeModel& model,
                                    std::span<const int> rows,
                                    bool* cancel,
                                    ExchangeFigures& figures);

}  // namespace DOpt
