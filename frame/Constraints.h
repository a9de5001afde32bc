#pragma once

#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/NCDataVector.h"
#include "foundation/stream/Export.h"

namespace NCDOE {

/// One linear inequality over the factors of a design, in real units.
struct QORVA_EXPORT Constraint {
    struct Term {
        int factor = 0;  // counted from 0
        double coefficient = 0.0;

        friend bool operator==(const Term&, const Term&) = default;
    };

    std::vector<Term> terms;
    double value = 0.0;          // the bound
    bool greaterOrEqual = true;  // true: the sum must be at least the bound; false: at most

    /// True when the run breaks the inequality; a run on the bound passes, one with a missing (-99)
    /// value in a term does not.
    /// @param run real values, one a factor, in factor order
    /// @throws Exception when a term's factor lies outside the run
    [[nodiscard]] bool IsConstrained(const NCDataVector<float>& run) const;

    friend bool operator==(const Constraint&, const Constraint&) = default;
};

/// The inequalities that a run has to keep, all of them.
class QORVA_EXPORT Constraints {
  public:
    Constraints() = default;
    explicit Constraints(std::vector<Constraint> constraints)
        : constraints_(std::move(constraints)) {}

    [[nodiscard]] const std::vector<Constraint>& GetConstraints() const { return constraints_; }
    [[nodiscard]] bool IsEmpty() const { return constraints_.empty(); }

    /// True when the run breaks any of the inequalities.
    [[nodiscard]] bool IsConstrained(const NCDataVector<float>& run) const;
    /// Number of rows [runs x factors] that break none.
    [[nodiscard]] unsigned long long NumOK(const NCDataMatrix<float>& runs) const;

    friend bool operator==(const Constraints&, const Constraints&) = default;

  private:
    std::vector<Constraint> constraints_;
};

}  // namespace NCDOE
