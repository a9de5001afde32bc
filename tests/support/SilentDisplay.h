#pragma once

#include <memory>
#include <string>

#include "foundation/util/NCProgress.h"

/// Watches the progress for the life of the object, and asks for a break from the given question
/// on.
class SilentDisplay {
  public:
    static constexpr int cNever = -1;

    /// @param breakAfter questions answered with no before the break
    explicit SilentDisplay(int breakAfter = cNever) : display_(std::make_shared<Display>()) {
        display_->left = breakAfter;
        NCProgress::SetDisplay(display_);
    }
    SilentDisplay(const SilentDisplay&) = delete;
    SilentDisplay& operator=(const SilentDisplay&) = delete;
    ~SilentDisplay() { NCProgress::SetDisplay(nullptr); }

    [[nodiscard]] bool WasHidden() const { return display_->hidden; }
    [[nodiscard]] double LargestShare() const { return display_->largest; }
    [[nodiscard]] const std::string& Title() const { return display_->title; }

  private:
    struct Display : NCProgressDisplay {
        void Begin(const std::string& title_, const std::string&, bool) override { title = title_; }
        void Show(double share, const std::string&) override {
            decreased = decreased || share < largest;
            largest = share > largest ? share : largest;
        }
        void Hide() override { hidden = true; }
        void End() override {}
        bool IsBreakPressed() const override {
            if (left > 0) {
                --left;
            }
            return left == 0;
        }

        mutable int left = cNever;
        bool hidden = false;
        bool decreased = false;
        double largest = 0;
        std::string title;
    };

    std::shared_ptr<Display> display_;
};
