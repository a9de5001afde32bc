#include "designs/optimal/DOptProgress.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/CandidateCases.h"

namespace {

// Notes what is shown, and asks to stop from one of its questions on.
class RecordingDisplay : public NCProgressDisplay {
  public:
    void Begin(const std::string& /*title*/, const std::string& text, bool /*cancel*/) override {
        texts.push_back(text);
    }
    void Show(double share, const std::string& text) override {
        shares.push_back(share);
        if (texts.empty() || texts.back() != text) {
            texts.push_back(text);
        }
    }
    void Hide() override { ++hidden; }
    void End() override { ++ended; }
    bool IsBreakPressed() const override { return ++questions >= stopAt && stopAt > 0; }

    std::vector<double> shares;
    std::vector<std::string> texts;
    int hidden = 0;
    int ended = 0;
    int stopAt = 0;
    mutable int questions = 0;
};

class DOptProgress : public testing::Test {
  protected:
    void SetUp() override { NCProgress::SetDisplay(display_); }
    void TearDown() override { NCProgress::SetDisplay(nullptr); }

    std::shared_ptr<RecordingDisplay> display_ = std::make_shared<RecordingDisplay>();
};

NCProgress MakeProgress() {
    return NCProgress("Searching", 0, 100, false, false, true, "");
}

TEST_F(DOptProgress, StepsTurnInTwentyOnesTimesFive) {
    NCProgress progress = MakeProgress();
    const DOpt::ProgressEvent report = DOpt::MakeProgressEvent(&progress, nullptr);
    for (const auto event : {DOpt::Step, DOpt::SubStep}) {
        EXPECT_EQ(report(event, 23.9F), DOpt::Success);
        EXPECT_NEAR(display_->shares.back(), 0.10, 1e-6);
    }
}

TEST_F(DOptProgress, RepetitionsAddToTheBase) {
    NCProgress progress = MakeProgress();
    const DOpt::ProgressEvent report = DOpt::MakeProgressEvent(&progress, nullptr);
    report(DOpt::Base, 20);
    EXPECT_NEAR(display_->shares.back(), 0.20, 1e-6);
    report(DOpt::RepetitionDone, 30);
    EXPECT_NEAR(*std::find_if(display_->shares.rbegin(),
                              display_->shares.rend(),
                              [](double share) { return share >= 0; }),
                0.50,
                1e-6);
    report(DOpt::Base, 0);
}

TEST_F(DOptProgress, AStopRequestIsPassedOn) {
    for (const auto event : {DOpt::RepetitionDone, DOpt::Round, DOpt::Step, DOpt::Base}) {
        NCProgress progress = MakeProgress();
        const DOpt::ProgressEvent report = DOpt::MakeProgressEvent(&progress, nullptr);
        display_->stopAt = 0;
        display_->questions = 0;
        EXPECT_EQ(report(event, 0), DOpt::Success);
        display_->stopAt = 2 * display_->questions;
        EXPECT_EQ(report(event, 0), DOpt::Stopped) << event;
    }
}

TEST_F(DOptProgress, TheCancelFlagNeedsNoDisplay) {
    bool cancel = false;
    const DOpt::ProgressEvent report = DOpt::MakeProgressEvent(nullptr, &cancel);
    EXPECT_EQ(report(DOpt::Round, 1), DOpt::Success);
    cancel = true;
    EXPECT_EQ(report(DOpt::Round, 1), DOpt::Stopped);
}

CandidateCases::Request Everything() {
    CandidateCases::Request request;
    request.process = EModel::Quadratic;
    request.mixture = EModel::Quadratic;
    request.constraints = {{{{3, 1}, {4, 1}}, 1, false}};
    return request;
}

TestFactors EverythingFactors() {
    return TestFactors()
        .Formulation(0, 0.8F)
        .Formulation()
        .Formulation()
        .Quantitatives(3)
        .Multilevel({1, 2, 3});
}

TEST_F(DOptProgress, GenerationTellsItsTwoSteps) {
    CandidateCases::Generate(EverythingFactors(), Everything());
    EXPECT_EQ(display_->texts.front(), "Computing Extreme Vertices...");
    EXPECT_NE(std::find(display_->texts.begin(), display_->texts.end(), "Computing Centroids..."),
              display_->texts.end());
    EXPECT_EQ(display_->ended, 1);
    EXPECT_EQ(display_->hidden, 0);
}

TEST_F(DOptProgress, GenerationStopsAtEveryQuestion) {
    CandidateCases::Generate(EverythingFactors(), Everything());
    const int questions = display_->questions;
    ASSERT_GT(questions, 50);
    for (int last = 1; last <= questions; ++last) {
        display_->questions = 0;
        display_->stopAt = last;
        display_->hidden = 0;
        EXPECT_THROW(CandidateCases::Generate(EverythingFactors(), Everything()), CancelException)
            << last;
        // Moving the display asks too; the next question of the engine's own comes soon.
        EXPECT_LE(display_->questions, last + 4) << last;
        EXPECT_EQ(display_->hidden, 1) << last;
    }
}

TEST_F(DOptProgress, AFailedGenerationHidesItsDisplay) {
    CandidateCases::Request request;
    request.limit = 1;
    EXPECT_THROW(CandidateCases::Generate(EverythingFactors(), request), Exception);
    EXPECT_EQ(display_->hidden, 1);
    EXPECT_EQ(display_->ended, 1);
}

}  // namespace
