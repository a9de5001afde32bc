#include "designs/optimal/DOptErrors.h"

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/engine/DOptStatus.h"
#include "foundation/utl/ExceptionMessage.h"

namespace DOpt {

namespace {

constexpr int cFirstMatrixError = 5000;
constexpr int cLastMatrixError = 5999;

const char* Text(int code, bool balancedOnly) {
    switch (code) {
        case OutOfMemory:
            return "Not enough memory.";
        case Singular:
            return "Matrix is singular. The current candidate set might not be rich enough to "
                   "support your model or the problem.";
        case NotInvertible:
            return "Non-invertible matrix.";
        case Inconsistent:
            return "The constraints are inconsistent.";
        case TooManyVertices:
            return "Too many vertices were generated for the candidate set. Please reduce problem "
                   "complexity.";
        case NotConverged:
            return "Convergence problem. No D-Optimal design was found within the maximum number "
                   "of iterations.";
        case IllegalFace:
            return "No proper design with potential terms could be generated. Uncheck 'Use "
                   "potential terms' and try again.";
        case TooManyCentroids:
            return "Centroid computation failed.";
        case Cancelled:
        case Stopped:
            return "User break in computations, no design generated.";
        case NoResult:
            if (balancedOnly) {
                return "A balanced D-Optimal design could not be generated. Try unchecking the "
                       "'Use balanced only' option.";
            }
            [[fallthrough]];
        case NoDeterminant:
            return "No proper design could be generated. The current candidate set is not rich "
                   "enough or the model is too complex.";
        case IllegalInclusions:
            return "Edit your inclusions and try again.";
        case OverLimit:
            return "The candidate set will exceed the limit of runs.";
        case IllegalFile:
            return "The current candidate set file is empty or incorrect. It has been deleted to "
                   "prevent further problems.";
        default:
            return code >= cFirstMatrixError && code <= cLastMatrixError
                       ? "Internal MAT error number {}."
                       : "No design for the problem. Internal D-Optimal error number {}.";
    }
}

}  // namespace

std::string GetErrorString(int code, const D_OptimalOptions* options) {
    const bool balancedOnly =
        options != nullptr && options->GetOnlyAllowBalanced() && options->GetBalanceOnFactor() >= 0;
    std::string text = ExceptionMessage::translate(Text(code, balancedOnly)).GetText();
    const std::size_t number = text.find("{}");
    if (number != std::string::npos) {
        text.replace(number, 2, std::to_string(code));
    }
    return text;
}

}  // namespace DOpt
