#include "foundation/utl/JsonValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>

#include "foundation/utl/Exceptions.h"

namespace {

using Kind = json_value::Kind;
using testing::HasSubstr;

/// The message of the error that the text raises.
std::string ErrorOf(const std::string& text) {
    try {
        static_cast<void>(json_value::parse(text, "file.json"));
    } catch (const Exception& error) {
        return error.what();
    }
    return "no error";
}

std::string Nested(int depth) {
    return std::string(static_cast<std::size_t>(depth), '[') +
           std::string(static_cast<std::size_t>(depth), ']');
}

json_value RoundTrip(const json_value& value) {
    return json_value::parse(value.to_text());
}

}  // namespace

TEST(JsonValue, KindNumbersAreFixed) {
    EXPECT_EQ(static_cast<int>(json_value(1.0).kind()), 2);
    EXPECT_EQ(static_cast<int>(json_value(1).kind()), 3);
    EXPECT_EQ(static_cast<int>(json_value::make_object().kind()), 6);
}

TEST(JsonValue, ConstructorsGiveTheirKinds) {
    EXPECT_EQ(json_value().kind(), Kind::Null);
    EXPECT_EQ(json_value(true).kind(), Kind::Bool);
    EXPECT_EQ(json_value(5LL).kind(), Kind::Integer);
    EXPECT_EQ(json_value("text").kind(), Kind::String);
    EXPECT_EQ(json_value(std::string("text")).kind(), Kind::String);
    EXPECT_EQ((json_value{1, "a", 2.5}).kind(), Kind::Array);
}

TEST(JsonValue, InitializerListIsAnArrayOfItsElements) {
    const json_value value{1, "a", 2.5};
    EXPECT_EQ(value.get_length(), 3U);
    EXPECT_EQ(value.get_child(0).get_integer(), 1);
    EXPECT_EQ(value.get_child(1).get_string(), "a");
    EXPECT_EQ(value.get_array()[2].get_float(), 2.5);
}

TEST(JsonValue, IntegerAnswersAsFloatButNotTheOtherWay) {
    EXPECT_EQ(json_value(3).get_float(), 3.0);
    EXPECT_THROW(static_cast<void>(json_value(3.0).get_integer()), InvalidOperationException);
}

TEST(JsonValue, ReadingAnotherKindIsRefused) {
    const json_value value("text");
    EXPECT_THROW(static_cast<void>(value.get_bool()), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_float()), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_integer()), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_array()), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_child("a")), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_child(0)), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_child_name(0)), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(json_value(1).get_string()), InvalidOperationException);
}

TEST(JsonValue, CopiesAreDeep) {
    json_value original;
    original.put_child("a").push_back(1);
    const json_value copy = original;
    original.put_child("a").push_back(2);
    EXPECT_EQ(copy.get_child("a").get_length(), 1U);
}

TEST(JsonValue, PutChildMakesAMemberOnce) {
    json_value value;
    value.put_child("a") = 1;
    value.put_child("b") = 2;
    value.put_child("a") = 3;
    EXPECT_EQ(value.to_text(), R"({"a":3,"b":2})");
}

TEST(JsonValue, AppendChildMakesANullAnArray) {
    json_value value;
    value.append_child() = "x";
    value.append_child();
    EXPECT_EQ(value.to_text(), R"(["x",null])");
}

TEST(JsonValue, WritingIntoAnotherKindIsRefusedAndChangesNothing) {
    json_value value(1);
    EXPECT_THROW(value.put_child("a"), InvalidOperationException);
    EXPECT_THROW(value.append_child(), InvalidOperationException);
    json_value object = json_value::make_object();
    EXPECT_THROW(object.push_back(1), InvalidOperationException);
    EXPECT_EQ(value, json_value(1));
    EXPECT_EQ(object, json_value::make_object());
}

TEST(JsonValue, MembersKeepTheirOrder) {
    const json_value value = json_value::parse(R"({"z": 1, "a": 2, "m": 3})");
    EXPECT_EQ(value.get_child_name(0), "z");
    EXPECT_EQ(value.get_child_name(2), "m");
    EXPECT_EQ(value.get_child(1).get_integer(), 2);
}

TEST(JsonValue, HasChildIsFalseForAnythingButAnObjectWithIt) {
    EXPECT_TRUE(json_value::parse(R"({"a": null})").has_child("a"));
    EXPECT_FALSE(json_value::parse(R"({"a": null})").has_child("b"));
    EXPECT_FALSE((json_value{"a"}).has_child("a"));
    EXPECT_FALSE(json_value("a").has_child("a"));
}

TEST(JsonValue, MissingElementsAreRefused) {
    const json_value value = json_value::parse(R"([1, {"a": 2}])");
    EXPECT_THROW(static_cast<void>(value.get_child(2)), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_child(1).get_child("b")), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(value.get_child(1).get_child_name(1)),
                 InvalidOperationException);
}

TEST(JsonValue, EqualityIgnoresTheOrderOfMembers) {
    EXPECT_EQ(json_value::parse(R"({"a": 1, "b": 2})"), json_value::parse(R"({"b": 2, "a": 1})"));
    EXPECT_FALSE(json_value::parse(R"({"a": 1, "b": 2})") ==
                 json_value::parse(R"({"b": 1, "a": 2})"));
    EXPECT_FALSE(json_value::parse(R"({"a": 1})") == json_value::parse(R"({"b": 1})"));
    EXPECT_FALSE(json_value::parse(R"({"a": 1})") == json_value::parse(R"({"a": 1, "b": 1})"));
}

TEST(JsonValue, EqualityTellsKindsApart) {
    EXPECT_FALSE(json_value(1) == json_value(1.0));
    EXPECT_FALSE(json_value() == json_value(false));
    EXPECT_FALSE(json_value::make_array() == json_value::make_object());
}

TEST(JsonText, ReadsAWholeText) {
    const json_value value = json_value::parse(
        " {\"name\": \"\\u00e9 \\ud83d\\ude00\\n\", \"list\": [true, false, null, -1, 1.5]} \n");
    EXPECT_EQ(value.get_child("name").get_string(), "\xC3\xA9 \xF0\x9F\x98\x80\n");
    EXPECT_EQ(value.get_child("list").to_text(), "[true,false,null,-1,1.5]");
}

TEST(JsonText, IndentationPutsElementsOnLinesOfTheirOwn) {
    EXPECT_EQ(json_value::parse(R"({"a": [1, {}], "b": []})").to_text(2),
              "{\n  \"a\": [\n    1,\n    {}\n  ],\n  \"b\": []\n}");
}

TEST(JsonText, ExtremeIntegersAreExact) {
    for (const long long value : {std::numeric_limits<long long>::min(),
                                  std::numeric_limits<long long>::max(),
                                  9007199254740993LL,
                                  0LL}) {
        EXPECT_EQ(RoundTrip(value), json_value(value)) << value;
    }
}

TEST(JsonText, IntegersBeyond64BitsBecomeFloats) {
    EXPECT_EQ(json_value::parse("9223372036854775808"), json_value(9223372036854775808.0));
    EXPECT_EQ(json_value::parse("-9223372036854775809"), json_value(-9223372036854775808.0));
    EXPECT_EQ(json_value::parse("123456789012345678901234567890"),
              json_value(123456789012345678901234567890.0));
}

TEST(JsonText, RandomDoublesReadBackExactly) {
    std::mt19937_64 engine(3);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(engine());
        if (std::isfinite(value)) {
            ASSERT_EQ(RoundTrip(value), json_value(value)) << "seed 3, draw " << i;
        }
    }
}

TEST(JsonText, FloatsKeepTheirKind) {
    for (const double value :
         {1.0, -1.0, 0.0, 1e5, 1e20, 1e22, 123456789.0, 5e-324, 1.7976931348623157e308}) {
        EXPECT_EQ(RoundTrip(value), json_value(value)) << value;
    }
    EXPECT_EQ(json_value(1.0).to_text(), "1.0");
    EXPECT_EQ(json_value(0.1).to_text(), "0.1");
}

TEST(JsonText, NegativeZeroKeepsItsSign) {
    const json_value value = RoundTrip(-0.0);
    EXPECT_TRUE(value.is_float());
    EXPECT_TRUE(std::signbit(value.get_float()));
}

TEST(JsonText, NumbersThatAreNotFiniteAreRefused) {
    EXPECT_THROW(static_cast<void>(json_value(std::nan("")).to_text()), InvalidOperationException);
    EXPECT_THROW(static_cast<void>(json_value(HUGE_VAL).to_text()), InvalidOperationException);
}

TEST(JsonText, TextsThatAreNotUtf8AreRefused) {
    EXPECT_THROW(static_cast<void>(json_value("\xC3").to_text()), InvalidOperationException);
    json_value value;
    value.put_child("\xFF") = 1;
    EXPECT_THROW(static_cast<void>(value.to_text()), InvalidOperationException);
}

TEST(JsonText, SpecialCharactersSurvive) {
    const std::string text("\0\x01\x1F\"\\/\b\f\n\r\t\x7F\xE2\x80\xA8", 15);
    EXPECT_EQ(RoundTrip(text), json_value(text));
}

TEST(JsonText, NestingUpTo200IsRead) {
    EXPECT_EQ(json_value::parse(Nested(200)).to_text(), Nested(200));
}

TEST(JsonText, DeeperNestingIsRefusedAtItsPlace) {
    EXPECT_EQ(ErrorOf(Nested(201)),
              "file.json, line 1, column 201: the nesting is deeper than 200.");
    EXPECT_THAT(ErrorOf(std::string(1000000, '[')), HasSubstr("deeper than 200"));
}

TEST(JsonText, NestingCountsObjectsToo) {
    std::string text = "1";
    for (int i = 0; i < 201; ++i) {
        text = "{\"a\":" + text + "}";
    }
    EXPECT_THAT(ErrorOf(text), HasSubstr("deeper than 200"));
}

TEST(JsonText, MemberThatOccursTwiceIsRefusedAtItsPlace) {
    EXPECT_EQ(ErrorOf("{\"a\": 1,\n \"b\": 2, \"a\": 3}"),
              "file.json, line 2, column 12: the member \"a\" occurs twice.");
}

TEST(JsonText, EscapedFormOfTheSameNameIsTheSameMember) {
    EXPECT_THAT(ErrorOf(R"({"a": 1, "\u0061": 2})"), HasSubstr("occurs twice"));
}

TEST(JsonText, OneNameInTwoObjectsIsAllowed) {
    EXPECT_EQ(ErrorOf(R"([{"a": {"a": 1}}, {"a": 2}])"), "no error");
}

TEST(JsonText, SyntaxErrorsNameThePlace) {
    EXPECT_EQ(ErrorOf("{\"a\": 1,\n  x}"),
              "file.json, line 2, column 3: syntax error after \"  x\".");
    EXPECT_EQ(ErrorOf("[1, 2] 3"), "file.json, line 1, column 8: syntax error after \"[1, 2] 3\".");
}

TEST(JsonText, ColumnsCountCharactersNotBytes) {
    EXPECT_THAT(ErrorOf("[\"\xC3\xA4\xC3\xB6\", x]"), HasSubstr("line 1, column 8:"));
}

TEST(JsonText, TruncatedTextsSaySo) {
    for (const char* const text :
         {"", " ", "{", "[1,", "\"abc", "{\"a\"", "{\"a\":", "tru", "-", "1e", "[1"}) {
        EXPECT_THAT(ErrorOf(text), HasSubstr("the text ends too early")) << text;
    }
}

TEST(JsonText, HostileTextsAreRefused) {
    for (const char* const text :
         {"nul", "nulll",  "[1,]",     "{,}",         "{\"a\":1,}", "[1 2]",
          "01",  "+1",     ".5",       "1.",          "NaN",        "Infinity",
          "'a'", "\"\t\"", "\"\\x\"",  "\"\\ud800\"", "/* */ 1",    "1 // a",
          "]",   "{1:2}",  "\xFE\xFF", "{\"a\":1]",   "[}"}) {
        EXPECT_THAT(ErrorOf(text), HasSubstr("file.json, line 1, column")) << text;
    }
}

TEST(JsonText, BytesThatAreNotUtf8AreRefused) {
    for (const char* const text : {"\"\xC3\"", "\"\xFF\"", "\"\xED\xA0\x80\"", "\"\xC0\xAF\""}) {
        EXPECT_THAT(ErrorOf(text), HasSubstr("the text is not UTF-8"));
    }
}

TEST(JsonText, NumberBeyondADoubleIsRefused) {
    EXPECT_EQ(ErrorOf("[1e999]"), "file.json, line 1, column 6: the number 1e999 is too large.");
}

TEST(JsonText, NothingHidesBehindAZeroByte) {
    EXPECT_THAT(ErrorOf(std::string("[1]\0[2]", 7)), HasSubstr("column 4: the text holds a zero"));
}

TEST(JsonText, ByteOrderMarkIsSkipped) {
    EXPECT_EQ(json_value::parse("\xEF\xBB\xBF[1]"), json_value::parse("[1]"));
}

TEST(JsonText, ErrorsDoNotNameALibrary) {
    for (const char* const text : {"", "{", "[1,]", "\"\xFF\"", "1e999"}) {
        EXPECT_EQ(ErrorOf(text).find("exception"), std::string::npos) << ErrorOf(text);
    }
}

TEST(JsonText, ManyMembersAreReadInLinearTime) {
    std::string text = "{";
    for (int i = 0; i < 100000; ++i) {
        text += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":0";
    }
    text += "}";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(json_value::parse(text).get_length(), 100000U);
    // A search per member would take ten seconds and more.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}
