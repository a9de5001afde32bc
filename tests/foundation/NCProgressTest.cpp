#include "foundation/util/NCProgress.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "foundation/utl/Exceptions.h"

namespace {

/// Writes down what it is told.
class RecordingDisplay final : public NCProgressDisplay {
  public:
    void Begin(const std::string& title, const std::string& text, bool cancellable) override {
        calls.push_back("begin " + title + "/" + text + (cancellable ? "/stop" : ""));
    }
    void Show(double share, const std::string& text) override {
        calls.push_back("show");
        shares.push_back(share);
        texts.push_back(text);
    }
    void Hide() override { calls.emplace_back("hide"); }
    void End() override {
        calls.emplace_back("end");
        if (endFails) {
            throw std::runtime_error("display lost");
        }
    }
    [[nodiscard]] bool IsBreakPressed() const override { return stop; }

    std::vector<std::string> calls;
    std::vector<double> shares;
    std::vector<std::string> texts;
    bool stop = false;
    bool endFails = false;
};

class Progress : public testing::Test {
  protected:
    void SetUp() override { NCProgress::SetDisplay(display); }
    void TearDown() override { NCProgress::SetDisplay(nullptr); }

    [[nodiscard]] double LastShare() const { return display->shares.back(); }

    std::shared_ptr<RecordingDisplay> display = std::make_shared<RecordingDisplay>();
};

using Calls = std::vector<std::string>;

}  // namespace

TEST_F(Progress, BeginsAndEndsTheDisplay) {
    { const NCProgress progress("text", 0, 100, false, false, true, "title"); }
    EXPECT_EQ(display->calls, (Calls{"begin title/text/stop", "end"}));
}

TEST_F(Progress, ObjectsNestOnTheDisplay) {
    {
        const NCProgress outer("a", 0, 100, false, false, true, "A");
        const NCProgress inner("b", 0, 100, false, false, false, "B");
    }
    EXPECT_EQ(display->calls, (Calls{"begin A/a/stop", "begin B/b", "end", "end"}));
}

TEST_F(Progress, ValuesMapOntoTheShareExactlyAtTheEnds) {
    NCProgress progress("", -3, 7, false, false, true, "");
    for (const auto& [value, share] : std::vector<std::pair<float, double>>{
             {-3.0F, 0.0}, {2.0F, 0.5}, {7.0F, 1.0}, {-99.0F, 0.0}, {1e9F, 1.0}}) {
        EXPECT_TRUE(progress.SetValue(value));
        EXPECT_EQ(LastShare(), share) << value;
    }
}

TEST_F(Progress, RangeThatFallsIsMappedToo) {
    NCProgress progress("", 10, 0, false, false, true, "");
    EXPECT_TRUE(progress.SetValue(10));
    EXPECT_EQ(LastShare(), 0.0);
    EXPECT_TRUE(progress.SetValue(2.5F));
    EXPECT_EQ(LastShare(), 0.75);
}

TEST_F(Progress, RangeWithoutWidthIsDone) {
    NCProgress progress("", 5, 5, false, false, true, "");
    EXPECT_TRUE(progress.SetValue(5));
    EXPECT_EQ(LastShare(), 1.0);
}

TEST_F(Progress, SubRangeIsAPartOfTheRange) {
    NCProgress progress("", 0, 10, false, false, true, "");
    EXPECT_TRUE(progress.PushSubRange(2, 4, "part"));
    EXPECT_EQ(LastShare(), 0.2);
    progress.SetRange(0, 1);
    EXPECT_TRUE(progress.SetValue(0.5F));
    EXPECT_NEAR(LastShare(), 0.3, 1e-12);
    EXPECT_TRUE(progress.SetValue(1));
    EXPECT_EQ(LastShare(), 0.4);
    EXPECT_EQ(display->texts.back(), "part");
}

TEST_F(Progress, LeavingASubRangeShowsItsEndAndTheTextBefore) {
    NCProgress progress("whole", 0, 10, false, false, true, "");
    EXPECT_TRUE(progress.PushSubRange(2, 4, "part"));
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_EQ(LastShare(), 0.4);
    EXPECT_EQ(display->texts.back(), "whole");
    EXPECT_TRUE(progress.SetValue(5));
    EXPECT_EQ(LastShare(), 0.5);
}

TEST_F(Progress, SubRangesCompose) {
    NCProgress progress("", 0, 100, false, false, true, "");
    EXPECT_TRUE(progress.PushSubRange(50, 100, ""));
    progress.SetRange(0, 4);
    EXPECT_TRUE(progress.PushSubRange(1, 3, ""));
    EXPECT_EQ(LastShare(), 0.625);
    progress.SetRange(0, 1);
    EXPECT_TRUE(progress.SetValue(1));
    EXPECT_EQ(LastShare(), 0.875);
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_EQ(LastShare(), 1.0);
}

TEST_F(Progress, LeavingNoSubRangeIsRefused) {
    NCProgress progress("", 0, 100, false, false, true, "");
    EXPECT_THROW(progress.PopSubRange(), InvalidOperationException);
}

TEST_F(Progress, TextChangesAtOnceAndKeepsTheShare) {
    NCProgress progress("a", 0, 100, false, false, true, "");
    EXPECT_TRUE(progress.SetValue(25));
    progress.SetText("b");
    EXPECT_EQ(LastShare(), 0.25);
    EXPECT_EQ(display->texts.back(), "b");
}

TEST_F(Progress, SpinShowsANegativeShareUntilItIsDone) {
    NCProgress progress("", 0, 100, false, false, true, "");
    EXPECT_TRUE(progress.SetValue(25));
    EXPECT_TRUE(progress.NextSpin());
    EXPECT_LT(LastShare(), 0);
    EXPECT_TRUE(progress.SpinDone());
    EXPECT_EQ(LastShare(), 0.25);
}

TEST_F(Progress, HideReachesTheDisplay) {
    NCProgress progress("", 0, 100, false, false, true, "");
    progress.Hide();
    EXPECT_EQ(display->calls.back(), "hide");
}

TEST_F(Progress, StopRequestIsAnsweredByEveryStep) {
    NCProgress progress("", 0, 100, false, false, true, "");
    EXPECT_FALSE(progress.IsBreakPressed());
    display->stop = true;
    EXPECT_TRUE(progress.IsBreakPressed());
    EXPECT_FALSE(progress.SetValue(1));
    EXPECT_FALSE(progress.PushSubRange(1, 2, ""));
    EXPECT_FALSE(progress.PopSubRange());
    EXPECT_FALSE(progress.NextSpin());
    EXPECT_FALSE(progress.SpinDone());
}

TEST_F(Progress, UninterruptibleWorkDoesNotSeeTheStopRequest) {
    NCProgress progress("", 0, 100, false, true, true, "");
    display->stop = true;
    EXPECT_FALSE(progress.IsBreakPressed());
    EXPECT_TRUE(progress.SetValue(1));
}

TEST_F(Progress, HiddenWorkShowsNothing) {
    {
        NCProgress progress("", 0, 100, true, false, true, "");
        EXPECT_TRUE(progress.SetValue(50));
        EXPECT_TRUE(progress.NextSpin());
    }
    EXPECT_EQ(display->calls, Calls{});
}

TEST_F(Progress, DisplayThatFailsAtTheEndDoesNotEndTheProgram) {
    display->endFails = true;
    EXPECT_NO_THROW({ const NCProgress progress("", 0, 100, false, false, true, ""); });
    EXPECT_EQ(display->calls.back(), "end");
}

TEST_F(Progress, OperationKeepsTheDisplayItBeganWith) {
    {
        NCProgress progress("", 0, 100, false, false, true, "");
        NCProgress::SetDisplay(nullptr);
        EXPECT_TRUE(progress.SetValue(50));
    }
    EXPECT_EQ(display->calls.back(), "end");
    EXPECT_EQ(LastShare(), 0.5);
}

TEST(NCProgress, WithoutADisplayEveryStepGoesOn) {
    NCProgress progress("", 0, 100, false, false, true, "");
    EXPECT_TRUE(progress.SetValue(50));
    EXPECT_TRUE(progress.PushSubRange(50, 100, ""));
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_TRUE(progress.NextSpin());
    EXPECT_TRUE(progress.SpinDone());
    progress.Hide();
    EXPECT_FALSE(progress.IsBreakPressed());
}
