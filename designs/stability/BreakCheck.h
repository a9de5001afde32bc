#pragma once

#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"

/// Ends a long loop when the user has asked to stop, through the progress or a flag of the caller.
/// Without either nobody can ask.
class BreakCheck {
  public:
    explicit BreakCheck(const NCProgress* progress = nullptr, const bool* cancel = nullptr)
        : progress_(progress), cancel_(cancel) {}

    /// @throws CancelException
    void operator()() const {
        if ((cancel_ != nullptr && *cancel_) ||
            (progress_ != nullptr && progress_->IsBreakPressed())) {
            throw CancelException();
        }
    }

  private:
    const NCProgress* progress_;
    const bool* cancel_;
};
