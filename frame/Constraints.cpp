#include "frame/Constraints.h"

#include <algorithm>

#include "foundation/utl/Exceptions.h"

namespace NCDOE {

bool Constraint::IsConstrained(const NCDataVector<float>& run) const {
    double sum = 0.0;
    for (const Term& term : terms) {
        if (term.factor < 0 || term.factor >= run.Size()) {
            throw Exception(ExceptionMessage::translate("Constraint is out of bounds."));
        }
        const float setting = run(term.factor + 1);
        if (setting == NCDataMatrix<float>::cMissing) {
            return true;
        }
        sum += static_cast<double>(setting) * term.coefficient;
    }
    return greaterOrEqual ? value > sum : sum > value;
}

bool Constraints::IsConstrained(const NCDataVector<float>& run) const {
    return std::any_of(constraints_.begin(), constraints_.end(), [&run](const Constraint& one) {
        return one.IsConstrained(run);
    });
}

unsigned long long Constraints::NumOK(const NCDataMatrix<float>& runs) const {
    unsigned long long count = 0;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        count += IsConstrained(runs.GetRow(row)) ? 0U : 1U;
    }
    return count;
}

}  // namespace NCDOE
