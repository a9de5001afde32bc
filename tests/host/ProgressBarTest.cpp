#include "host/ProgressBar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <sstream>

#include "QORVAncdoe.h"
#include "host/Cli.h"
#include "host/Interrupt.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using std::chrono::milliseconds;
using testing::EndsWith;
using testing::HasSubstr;

class ProgressBarTest : public testing::Test {
  protected:
    std::shared_ptr<ProgressBar> Bar(bool visible) {
        return std::make_shared<ProgressBar>(
            out_, visible, [this] { return pressed_; }, [this] { return now_; });
    }

    void Wait(int time) { now_ += milliseconds(time); }

    std::ostringstream out_;
    bool pressed_ = false;
    std::chrono::steady_clock::time_point now_;
};

TEST_F(ProgressBarTest, StaysHiddenForShortWork) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(299);
    bar->Show(0.5, "runs");
    bar->End();
    EXPECT_EQ(out_.str(), "");
}

TEST_F(ProgressBarTest, AppearsForLongWork) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(300);
    bar->Show(0.5, "runs");
    EXPECT_EQ(out_.str(), "\r\x1b[K[###############               ]  50 % runs");
}

TEST_F(ProgressBarTest, IsWipedOutAtTheEnd) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(300);
    bar->Show(0.5, "runs");
    bar->End();
    EXPECT_THAT(out_.str(), EndsWith("runs\r\x1b[K"));
}

TEST_F(ProgressBarTest, StaysUntilTheOutermostOperationEnds) {
    const auto bar = Bar(true);
    bar->Begin("Outer", "", true);
    bar->Begin("Inner", "", true);
    Wait(300);
    bar->Show(0.25, "");
    bar->End();
    EXPECT_THAT(out_.str(), EndsWith("25 % Outer"));
    bar->End();
    EXPECT_THAT(out_.str(), EndsWith("\r\x1b[K"));
}

TEST_F(ProgressBarTest, IsDrawnTenTimesASecondAtMost) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(300);
    bar->Show(0.1, "first");
    Wait(99);
    bar->Show(0.2, "second");
    Wait(1);
    bar->Show(0.3, "third");
    EXPECT_THAT(out_.str(), HasSubstr("first"));
    EXPECT_THAT(out_.str(), testing::Not(HasSubstr("second")));
    EXPECT_THAT(out_.str(), HasSubstr("third"));
}

TEST_F(ProgressBarTest, ShowsActivityWithoutAKnownEnd) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(300);
    bar->Show(-1, "");
    EXPECT_THAT(out_.str(), EndsWith("working Search"));
}

TEST_F(ProgressBarTest, TellsTheTimeLeftOnceItCanBeGuessed) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(2999);
    bar->Show(0.5, "runs");
    EXPECT_THAT(out_.str(), EndsWith("50 % runs"));
    Wait(1001);
    bar->Show(0.1, "runs");
    EXPECT_THAT(out_.str(), EndsWith("10 % runs, about 36 s left"));
    Wait(4000);
    bar->Show(0.01, "runs");
    EXPECT_THAT(out_.str(), EndsWith("about 14 min left"));
    Wait(300'000);
    bar->Show(0.02, "runs");
    EXPECT_THAT(out_.str(), EndsWith("about 5 h left"));
}

TEST_F(ProgressBarTest, NestedOperationsTellNothingAboutTheTimeLeft) {
    const auto bar = Bar(true);
    bar->Begin("Outer", "", true);
    Wait(4000);
    bar->Show(0.5, "");
    bar->Begin("Inner", "", true);
    Wait(1000);
    bar->Show(0.01, "");
    EXPECT_THAT(out_.str(), EndsWith("1 % Outer, about 5 s left"));
}

TEST_F(ProgressBarTest, WithoutAShareThereIsNoTimeLeft) {
    const auto bar = Bar(true);
    bar->Begin("Search", "", true);
    Wait(5000);
    bar->Show(0.001, "runs");
    bar->Show(-1, "runs");
    Wait(5000);
    bar->Show(-1, "runs");
    EXPECT_THAT(out_.str(), testing::Not(HasSubstr("left")));
}

TEST_F(ProgressBarTest, WritesNothingWhereThereIsNoTerminal) {
    const auto bar = Bar(false);
    bar->Begin("Search", "", true);
    Wait(1000);
    bar->Show(0.5, "runs");
    bar->Hide();
    bar->End();
    EXPECT_EQ(out_.str(), "");
}

TEST_F(ProgressBarTest, TellsTheEngineToStopEvenWithoutATerminal) {
    NCProgress::SetDisplay(Bar(false));
    NCProgress progress("runs", 0, 100, false, false, true, "Search");
    EXPECT_TRUE(progress.SetValue(1));
    pressed_ = true;
    EXPECT_FALSE(progress.SetValue(2));
    NCProgress::SetDisplay(nullptr);
}

TEST(Interrupt, IsNotedOnCtrlC) {
    Interrupt::Set(false);
    Interrupt::Install();
    ASSERT_EQ(std::raise(SIGINT), 0);
    EXPECT_TRUE(Interrupt::IsRequested());
    Interrupt::Set(false);
}

TEST(Interrupt, EndsTheProgramAtOnceTheSecondTime) {
    EXPECT_EXIT(
        {
            Interrupt::Install();
            std::raise(SIGINT);
            std::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT),
        "");
}

TEST(Interrupt, EndsABuildWithItsExitCodeAndLeavesTheFile) {
    const TemporaryFolder folder;
    HostTesting::WriteFile(folder.File("s.json"), HostTesting::Quantitatives(2));
    HostTesting::WriteFile(folder.File("w.csv"), "old");
    std::ostringstream out;
    std::ostringstream err;
    Interrupt::Set(true);
    const int code = RunCommandLine(
        {"build", folder.File("s.json"), "--design", "FF2", "-o", folder.File("w.csv")}, out, err);
    Interrupt::Set(false);
    EXPECT_EQ(code, ExitCode::cStopped);
    EXPECT_EQ(HostTesting::ReadFile(folder.File("w.csv")), "old");
}

}  // namespace
