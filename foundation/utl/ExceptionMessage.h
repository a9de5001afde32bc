#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/stream/Export.h"

/// A translated text with the positional arguments "{1}", "{2}" and so on, filled in order by
/// streaming values into it.
class QORVA_EXPORT ExceptionMessage {
  public:
    /// Gives the translation of an English template, slots included.
    using Translator = std::function<std::string(std::string_view)>;

    /// Makes a message from an English template, passed through the installed translator.
    [[nodiscard]] static ExceptionMessage translate(const char* text);

    /// Installs the translation of the whole process; an empty function goes back to English.
    static void SetTranslator(Translator translator);

    ExceptionMessage& operator<<(std::string_view value);
    ExceptionMessage& operator<<(const char* value) { return *this << std::string_view(value); }
    ExceptionMessage& operator<<(const std::string& value) {
        return *this << std::string_view(value);
    }
    ExceptionMessage& operator<<(char value) { return *this << std::string_view(&value, 1); }
    ExceptionMessage& operator<<(bool) = delete;
    ExceptionMessage& operator<<(int value) { return *this << static_cast<long long>(value); }
    ExceptionMessage& operator<<(unsigned value) {
        return *this << static_cast<unsigned long long>(value);
    }
    ExceptionMessage& operator<<(long value) { return *this << static_cast<long long>(value); }
    ExceptionMessage& operator<<(unsigned long value) {
        return *this << static_cast<unsigned long long>(value);
    }
    ExceptionMessage& operator<<(long long value);
    ExceptionMessage& operator<<(unsigned long long value);
    /// Numbers with a fraction are written with the fewest digits that read back as the same value.
    ExceptionMessage& operator<<(float value);
    ExceptionMessage& operator<<(double value);

    /// The message with its arguments in place. A slot without an argument stays as it is;
    /// an argument without a slot is not shown; arguments are never expanded themselves.
    [[nodiscard]] std::string GetText() const;

  private:
    explicit ExceptionMessage(std::string text) : template_(std::move(text)) {}

    std::string template_;
    std::vector<std::string> arguments_;
};
