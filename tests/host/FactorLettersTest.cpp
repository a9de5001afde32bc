#include "host/FactorLetters.h"

#include <gtest/gtest.h>

#include <set>

namespace {

TEST(FactorLetters, LeaveOutTheLetterOfTheMean) {
    EXPECT_EQ(FactorLetters::LetterOf(7), "H");
    EXPECT_EQ(FactorLetters::LetterOf(8), "J");
    EXPECT_EQ(FactorLetters::FactorOf('I', 40), -1);
}

TEST(FactorLetters, AreFiftyDifferentOnesBeforeTheNumbers) {
    std::set<std::string> letters;
    for (int factor = 0; factor < 50; ++factor) {
        EXPECT_EQ(FactorLetters::LetterOf(factor).size(), 1U) << factor;
        letters.insert(FactorLetters::LetterOf(factor));
    }
    EXPECT_EQ(letters.size(), 50U);
    EXPECT_EQ(FactorLetters::LetterOf(50), "[51]");
}

TEST(FactorLetters, LeadBackToTheFactor) {
    for (int factor = 0; factor < 50; ++factor) {
        EXPECT_EQ(FactorLetters::FactorOf(FactorLetters::LetterOf(factor).front(), 50), factor);
    }
}

TEST(FactorLetters, InLowerCaseStandForUpperCaseInSmallStudies) {
    EXPECT_EQ(FactorLetters::FactorOf('b', 25), 1);
    EXPECT_EQ(FactorLetters::FactorOf('b', 26), -1);
    EXPECT_EQ(FactorLetters::FactorOf('b', 27), 26);
}

TEST(FactorLetters, NameNoFactorBehindTheLast) {
    EXPECT_EQ(FactorLetters::FactorOf('D', 3), -1);
    EXPECT_EQ(FactorLetters::FactorOf('1', 3), -1);
}

TEST(FactorLetters, FormWords) {
    EXPECT_EQ(FactorLetters::WordOf({0, 1, 3}), "ABD");
    EXPECT_EQ(FactorLetters::WordOf({}), "mean");
}

}  // namespace
