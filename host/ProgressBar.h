#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <string>

#include "foundation/util/NCProgress.h"

/// One line on a terminal that shows how far a long operation is, and once it has lasted some
/// seconds how long it is likely to go on. It appears only once the operation has lasted a while,
/// and is wiped out at its end. It also tells the engine when the
/// user has asked to stop, whether it is visible or not.
class ProgressBar : public NCProgressDisplay {
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// @param out      the terminal, borrowed
    /// @param visible  false where the output is no terminal: nothing is written at all
    /// @param isBreakPressed  answers whether the user has asked to stop
    ProgressBar(std::ostream& out,
                bool visible,
                std::function<bool()> isBreakPressed,
                Clock clock = std::chrono::steady_clock::now);

    void Begin(const std::string& title, const std::string& text, bool cancellable) override;
    void Show(double share, const std::string& text) override;
    void Hide() override;
    void End() override;
    bool IsBreakPressed() const override { return isBreakPressed_(); }

  private:
    void Draw(double share, const std::string& text);
    [[nodiscard]] std::string TimeLeft() const;

    std::ostream& out_;
    bool visible_;
    std::function<bool()> isBreakPressed_;
    Clock clock_;
    int depth_ = 0;  // of nested operations
    bool drawn_ = false;
    double outerShare_ = 0;  // of the outermost operation
    std::string lastTitle_;
    std::chrono::steady_clock::time_point begun_;
    std::chrono::steady_clock::time_point lastDrawn_;
};
