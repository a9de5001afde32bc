#include "designs/stability/SearchLimit.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr int cMostInt = std::numeric_limits<int>::max();

TEST(SearchLimit, BeginsWithAMillionUnderATimeLimit) {
    EXPECT_EQ(SearchLimit::GetInitial(3, 1, false), 1000000);
}

TEST(SearchLimit, BeginsWithAHundredASubsetWithoutOne) {
    EXPECT_EQ(SearchLimit::GetInitial(3, 0, false), 300);
    EXPECT_EQ(SearchLimit::GetInitial(3, -5, false), 300);
    EXPECT_EQ(SearchLimit::GetInitial(cMostInt, 0, false), cMostInt);
}

TEST(SearchLimit, IsOneWhereResultsMustRepeat) {
    EXPECT_EQ(SearchLimit::GetInitial(3, 45, true), 1);
    EXPECT_EQ(SearchLimit::GetInitial(3, 0, true), 1);
}

TEST(SearchLimit, IsMeasuredAfterFiveIterationsAndEveryThirty) {
    int measured = 0;
    for (int i = 0; i < 96; ++i) {
        if (SearchLimit::IsMeasuredBefore(i)) {
            ++measured;
            EXPECT_TRUE(i == 5 || i == 35 || i == 65 || i == 95) << i;
        }
    }
    EXPECT_EQ(measured, 4);
}

TEST(SearchLimit, TimeIsCountedInWholeMilliseconds) {
    EXPECT_EQ(SearchLimit::ToSeconds(std::chrono::microseconds(999)), 0);
    EXPECT_EQ(SearchLimit::ToSeconds(std::chrono::microseconds(2999)), 0.002);
}

TEST(SearchLimit, FitsTheTimeLimit) {
    // 0.01 s each.
    EXPECT_EQ(SearchLimit::GetAdjusted(1000000, 5, 0.05, 45), 4500);
}

TEST(SearchLimit, FitsTwoSecondsWithoutATimeLimit) {
    EXPECT_EQ(SearchLimit::GetAdjusted(150, 5, 0.05, 0), 200);
}

TEST(SearchLimit, KeepsTheCountWhereTwoSecondsHoldFewer) {
    EXPECT_EQ(SearchLimit::GetAdjusted(300, 5, 0.05, 0), 300);
}

TEST(SearchLimit, NeverFallsBelowWhatIsDone) {
    EXPECT_EQ(SearchLimit::GetAdjusted(1000000, 35, 70.0, 1), 35);
}

TEST(SearchLimit, OfDaysIsTheLargestThereIs) {
    EXPECT_EQ(SearchLimit::GetAdjusted(1000000, 1000, 0.001, cMostInt), cMostInt);
}

}  // namespace
