#include "foundation/util/UserMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(UserMessage, IsSilentWithoutAReporter) {
    EXPECT_NO_THROW(UserMessage::ShowError("nobody hears this"));
}

TEST(UserMessage, ReachesTheInstalledReporter) {
    std::vector<std::string> told;
    UserMessage::SetErrorReporter([&told](const std::string& text) { told.push_back(text); });
    UserMessage::ShowError("first");
    UserMessage::SetErrorReporter({});
    UserMessage::ShowError("second");
    EXPECT_THAT(told, ::testing::ElementsAre("first"));
}

TEST(UserMessage, ReporterMayInstallAnother) {
    int told = 0;
    UserMessage::SetErrorReporter([&told](const std::string&) {
        ++told;
        UserMessage::SetErrorReporter({});
    });
    UserMessage::ShowError("once");
    UserMessage::ShowError("no more");
    EXPECT_EQ(told, 1);
}

}  // namespace
