#pragma once

#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"

/// Ends a long loop when the user has asked to stop. Without a progress nobody can ask.
class BreakCheck {
  public:
    explicit BreakCheck(const NCProgress* progress = nullptr) : progress_(progress) {}

    /// @throws CancelException
    void operator()() const {
        if (progress_ != nullptr && progress_->IsBreakPressed()) {
            throw CancelException();
        }
    }

  private:
    const NCProgress* progress_;
};
