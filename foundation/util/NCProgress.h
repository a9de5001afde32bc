#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"

/// What a host shows of a long operation. Called from the working thread only.
class QORVA_EXPORT NCProgressDisplay {
  public:
    virtual ~NCProgressDisplay();

    /// A new operation begins; operations nest.
    virtual void Begin(const std::string& title, const std::string& text, bool cancellable) = 0;
    /// `share` is the part done, from 0 to 1, or negative for an activity without a known end.
    virtual void Show(double share, const std::string& text) = 0;
    virtual void Hide() = 0;
    /// The innermost operation has ended.
    virtual void End() = 0;
    /// True when the user has asked to stop.
    [[nodiscard]] virtual bool IsBreakPressed() const = 0;
};

/// Reports the progress of one long operation to the display that the host installed, or to nobody.
/// Set the range once, then set values or push and pop sub-ranges in balanced pairs, and test after
/// each step whether the user asked to stop.
class QORVA_EXPORT NCProgress {
  public:
    /// Installs the display of the whole process, shared with the host; null makes progress silent.
    /// An operation keeps the display it began with.
    static void SetDisplay(std::shared_ptr<NCProgressDisplay> display);

    /// @param hidden  begins without a display; nothing is shown until the end
    /// @param uninterruptible  a stop request is not looked at
    /// @param cancellable  the display may offer a way to stop
    NCProgress(std::string text,
               float min,
               float max,
               bool hidden,
               bool uninterruptible,
               bool cancellable,
               std::string title);
    NCProgress(const NCProgress&) = delete;
    NCProgress& operator=(const NCProgress&) = delete;
    /// Ends the display.
    ~NCProgress();

    /// The range of the values to come, within the present sub-range.
    void SetRange(float min, float max);
    /// Values outside the range count as its nearer end. Returns false when the user has asked to
    /// stop, as do all the operations below that give a bool.
    bool SetValue(float value);
    /// Maps the next range into the part from `from` to `to` of the present one.
    bool PushSubRange(float from, float to, std::string text);
    /// Back to the range before; its value becomes the sub-range's end.
    /// @throws InvalidOperationException without a sub-range.
    bool PopSubRange();
    void SetText(std::string text);
    /// Shows activity without a known end.
    bool NextSpin();
    bool SpinDone();
    void Hide();
    [[nodiscard]] bool IsBreakPressed() const;

  private:
    struct Range {
        float min = 0;
        float max = 100;
        double shareFrom = 0;  // where the range lies in the whole operation, 0 to 1
        double shareTo = 1;
        std::string text;
    };

    bool Show(double share);
    [[nodiscard]] double ShareOf(float value) const;

    std::shared_ptr<NCProgressDisplay> display_;
    bool uninterruptible_;
    double share_ = 0;
    std::vector<Range> ranges_;
};
