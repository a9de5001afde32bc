#include "foundation/utl/QvStdString.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/utl/QvString.h"

namespace {

using Parts = std::vector<std::string>;
const std::locale& classic = std::locale::classic();

int Sign(int value) {
    return (value > 0) - (value < 0);
}

}  // namespace

TEST(QvStdStringSplit, EverySeparatorSeparates) {
    EXPECT_EQ(QvStdString::Split("a;b,c", ";,"), (Parts{"a", "b", "c"}));
}

TEST(QvStdStringSplit, EmptyPartsAreKept) {
    EXPECT_EQ(QvStdString::Split(";a;;b;", ";"), (Parts{"", "a", "", "b", ""}));
}

TEST(QvStdStringSplit, EmptyTextGivesOneEmptyPart) {
    EXPECT_EQ(QvStdString::Split("", ";"), Parts{""});
}

TEST(QvStdStringSplit, WithoutSeparatorsTheTextIsOnePart) {
    EXPECT_EQ(QvStdString::Split("a;b", ""), Parts{"a;b"});
}

TEST(QvStdStringTokenize, GivesTheTokensThenEndsWithMinusOne) {
    const std::string_view text = "  A, BC,,D ";
    int position = 0;
    Parts tokens;
    for (;;) {
        const std::string token = QvStdString::Tokenize(text, " ,", position);
        if (position < 0) {
            EXPECT_EQ(token, "");
            break;
        }
        tokens.push_back(token);
    }
    EXPECT_EQ(tokens, (Parts{"A", "BC", "D"}));
}

TEST(QvStdStringTokenize, MovesBehindTheToken) {
    int position = 1;
    EXPECT_EQ(QvStdString::Tokenize("ab cd", " ", position), "b");
    EXPECT_EQ(position, 2);
}

TEST(QvStdStringTokenize, LastTokenEndsAtTheEnd) {
    int position = 0;
    EXPECT_EQ(QvStdString::Tokenize("abc", " ", position), "abc");
    EXPECT_EQ(position, 3);
}

TEST(QvStdStringTokenize, PositionOutsideTheTextGivesNothing) {
    for (const int start : {-1, 3, 4, 1000}) {
        int position = start;
        EXPECT_EQ(QvStdString::Tokenize("abc", " ", position), "") << start;
        EXPECT_EQ(position, -1) << start;
    }
}

TEST(QvStdStringToLowerCase, ChangesLettersOnly) {
    EXPECT_EQ(QvStdString::ToLowerCase("FF2 Res-IV \xC3\x84", classic), "ff2 res-iv \xC3\x84");
}

TEST(QvStdStringToLowerCase, EmptyTextStaysEmpty) {
    EXPECT_EQ(QvStdString::ToLowerCase("", classic), "");
}

TEST(QvStdStringToLowerCase, AsksTheLocale) {
    struct SwapA : std::ctype<char> {
        using std::ctype<char>::do_tolower;
        const char* do_tolower(char* begin, const char* end) const override {
            std::replace(begin, begin + (end - begin), 'A', 'z');
            return end;
        }
    };
    const std::locale special(classic, new SwapA);
    EXPECT_EQ(QvStdString::ToLowerCase("ABA", special), "zBz");
}

TEST(QvStdStringCompareNumber, SortsAsPeopleCount) {
    // Every text is less than all that follow, so each pair is tested both ways.
    const Parts ascending{"",
                          "-5",
                          "0",
                          "00",
                          "1",
                          "2",
                          "002",
                          "10",
                          "100",
                          "12345678901234567890123",
                          "12345678901234567890124",
                          "a",
                          "a0",
                          "a1b01",
                          "a01b1",
                          "a1b2",
                          "a2",
                          "a10",
                          "b",
                          "c2",
                          "c10",
                          "c10x",
                          "\xC3\xA4"};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            const int expected = i < j ? -1 : static_cast<int>(i > j);
            const int order = QvStdString::CompareNumber(ascending[i], ascending[j], classic);
            // "a1b01" and "a01b1" balance their zeros: the order among them is by code.
            if (ascending[i].size() == 5 && ascending[j].size() == 5 && i != j) {
                EXPECT_NE(order, 0) << ascending[i] << " " << ascending[j];
                continue;
            }
            EXPECT_EQ(Sign(order), expected) << ascending[i] << " " << ascending[j];
        }
    }
}

TEST(QvStdStringCompareNumber, BalancedLeadingZerosAreNotEqual) {
    EXPECT_LT(QvStdString::CompareNumber("a01b1", "a1b01", classic), 0);
    EXPECT_GT(QvStdString::CompareNumber("a1b01", "a01b1", classic), 0);
}

TEST(QvStringToFloat, ReadsDecimalNumbers) {
    const std::pair<const char*, float> cases[] = {{"1", 1.0F},
                                                   {"-2.5", -2.5F},
                                                   {"+3", 3.0F},
                                                   {".5", 0.5F},
                                                   {"5.", 5.0F},
                                                   {" 1e3\t", 1000.0F},
                                                   {"0.1", 0.1F},
                                                   {"1E-2", 0.01F},
                                                   {"1e-60", 0.0F},
                                                   {"-0", -0.0F},
                                                   {"3.4028235e38", 3.4028235e38F}};
    for (const auto& [text, expected] : cases) {
        float value = 7;
        EXPECT_TRUE(QvString::ToFloat(text, value)) << text;
        EXPECT_EQ(value, expected) << text;
    }
}

TEST(QvStringToFloat, RefusesEverythingElseAndLeavesTheValue) {
    for (const char* const text :
         {"",     " ",     "x",       "1x",   "1,5", "1 2", "inf", "-inf", "nan", "infinity",
          "1e60", "-1e60", "1e99999", "0x10", "+",   "-",   "+-1", "++1",  "1e",  "."}) {
        float value = 7;
        EXPECT_FALSE(QvString::ToFloat(text, value)) << text;
        EXPECT_EQ(value, 7) << text;
    }
}

TEST(QvStringToFloat, RefusesANullPointer) {
    float value = 7;
    EXPECT_FALSE(QvString::ToFloat(nullptr, value));
}
