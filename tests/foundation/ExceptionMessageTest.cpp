#include "foundation/utl/ExceptionMessage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include "foundation/util/NCError.h"
#include "foundation/util/NCInternalError.h"
#include "foundation/utl/Exceptions.h"

namespace {

/// Installs a translator for one test.
class Translation {
  public:
    explicit Translation(ExceptionMessage::Translator translator) {
        ExceptionMessage::SetTranslator(std::move(translator));
    }
    Translation(const Translation&) = delete;
    Translation& operator=(const Translation&) = delete;
    ~Translation() { ExceptionMessage::SetTranslator({}); }
};

}  // namespace

TEST(ExceptionMessage, ArgumentsFillSlotsByNumber) {
    const auto message = ExceptionMessage::translate("{2} before {1}") << "a" << std::string("b");
    EXPECT_EQ(message.GetText(), "b before a");
}

TEST(ExceptionMessage, RepeatedSlotIsFilledEachTime) {
    EXPECT_EQ((ExceptionMessage::translate("{1}{1}, {1}") << 7).GetText(), "77, 7");
}

TEST(ExceptionMessage, TenthSlotIsNotTheFirst) {
    auto message = ExceptionMessage::translate("{10}/{1}");
    for (int i = 1; i <= 10; ++i) {
        message << i;
    }
    EXPECT_EQ(message.GetText(), "10/1");
}

TEST(ExceptionMessage, ArgumentsAreNotExpanded) {
    EXPECT_EQ((ExceptionMessage::translate("{1} {2}") << "{2}"
                                                      << "{1}")
                  .GetText(),
              "{2} {1}");
}

TEST(ExceptionMessage, SlotWithoutArgumentStays) {
    EXPECT_EQ((ExceptionMessage::translate("{1} {2} {0}") << "a").GetText(), "a {2} {0}");
}

TEST(ExceptionMessage, ArgumentWithoutSlotIsNotShown) {
    EXPECT_EQ((ExceptionMessage::translate("{1}") << "a"
                                                  << "b")
                  .GetText(),
              "a");
}

TEST(ExceptionMessage, OtherBracesStay) {
    for (const char* const text : {"{",
                                   "}",
                                   "{}",
                                   "{{1",
                                   "{x}",
                                   "{1",
                                   "{-1}",
                                   "{ 1}",
                                   "{1 }",
                                   "{99999999999999999999}",
                                   "{+1}"}) {
        EXPECT_EQ((ExceptionMessage::translate(text) << "a").GetText(), text);
    }
}

TEST(ExceptionMessage, BraceInFrontOfSlotStays) {
    EXPECT_EQ((ExceptionMessage::translate("{{1}}") << "a").GetText(), "{a}");
}

TEST(ExceptionMessage, IntegersAreWrittenWithoutSeparators) {
    const auto message = ExceptionMessage::translate("{1} {2} {3} {4}")
                         << std::numeric_limits<long long>::min()
                         << std::numeric_limits<unsigned long long>::max() << -1L << 5U;
    EXPECT_EQ(message.GetText(), "-9223372036854775808 18446744073709551615 -1 5");
}

TEST(ExceptionMessage, FractionsHaveTheFewestDigitsThatReadBack) {
    const auto message = ExceptionMessage::translate("{1} {2} {3}") << 0.1F << 0.1 << 1.0 / 3.0;
    EXPECT_EQ(message.GetText(), "0.1 0.1 0.3333333333333333");
}

TEST(ExceptionMessage, TranslatorGetsTheTemplateAndMayReorderArguments) {
    const Translation translation([](std::string_view text) {
        return text == "{1} of {2}" ? std::string("von {2} {1}") : std::string("?");
    });
    EXPECT_EQ((ExceptionMessage::translate("{1} of {2}") << 3 << 4).GetText(), "von 4 3");
}

TEST(ExceptionMessage, ThrowingTranslatorFallsBackToEnglish) {
    const Translation translation(
        [](std::string_view) -> std::string { throw std::runtime_error("no catalogue"); });
    EXPECT_EQ((ExceptionMessage::translate("{1} runs") << 8).GetText(), "8 runs");
}

TEST(ExceptionMessage, EmptyTranslationFallsBackToEnglish) {
    const Translation translation([](std::string_view) { return std::string(); });
    EXPECT_EQ(ExceptionMessage::translate("runs").GetText(), "runs");
}

TEST(ExceptionMessage, EmptyTranslatorGoesBackToEnglish) {
    ExceptionMessage::SetTranslator([](std::string_view) { return std::string("x"); });
    ExceptionMessage::SetTranslator({});
    EXPECT_EQ(ExceptionMessage::translate("runs").GetText(), "runs");
}

TEST(ExceptionMessage, TranslatorMayMakeMessagesItself) {
    const Translation translation([](std::string_view text) {
        return text == "inner" ? std::string("innen")
                               : ExceptionMessage::translate("inner").GetText() + "!";
    });
    EXPECT_EQ(ExceptionMessage::translate("outer").GetText(), "innen!");
}

TEST(ExceptionMessage, TranslatorCanChangeWhileMessagesAreMade) {
    const Translation translation({});
    std::atomic<bool> stop = false;
    std::thread changing([&] {
        while (!stop) {
            ExceptionMessage::SetTranslator([](std::string_view) { return std::string("A"); });
            ExceptionMessage::SetTranslator([](std::string_view) { return std::string("B"); });
        }
    });
    int wrong = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::string text = ExceptionMessage::translate("English").GetText();
        wrong += text == "A" || text == "B" || text == "English" ? 0 : 1;
    }
    stop = true;
    changing.join();
    EXPECT_EQ(wrong, 0);
}

TEST(Exceptions, CarryTheirText) {
    EXPECT_STREQ(Exception(ExceptionMessage::translate("{1} runs") << 8).what(), "8 runs");
    EXPECT_STREQ(InvalidOperationException("misuse").what(), "misuse");
    EXPECT_STREQ(NCInternalError("Build").what(), "Build");
    EXPECT_STREQ(CancelException().what(), "Cancelled");
}

TEST(Exceptions, ErrorCarriesItsLevel) {
    const NCError error(ExceptionMessage::translate("broken"), NCError::Severe);
    EXPECT_STREQ(error.what(), "broken");
    EXPECT_EQ(error.GetLevel(), 2);
}

TEST(Exceptions, HandlerOfOneKindTakesNoOther) {
    // An "Exception" handler that swallowed a stop request would report a stop as a failure.
    EXPECT_FALSE((std::is_base_of_v<Exception, CancelException>));
    EXPECT_FALSE((std::is_base_of_v<Exception, InvalidOperationException>));
    EXPECT_FALSE((std::is_base_of_v<Exception, NCInternalError>));
    EXPECT_FALSE((std::is_base_of_v<Exception, NCError>));
}

TEST(Exceptions, ThrownInALibraryAreCaughtByKind) {
    EXPECT_THROW(throw Exception(ExceptionMessage::translate("x")), std::exception);
    EXPECT_THROW(throw CancelException(), std::exception);
}
