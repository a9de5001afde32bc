#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// No design fits the study. The text says which condition stands in the way. Ends the program
/// with its own exit code, since the input as such is in order.
class NoValidDesign : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The user stopped the work, and there is more to say about it than that.
class StoppedWork : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Raises an Exception, that is an error the user can repair, with exactly this text.
[[noreturn]] void FailWith(const std::string& text);

/// A text from outside in double quotes for a message: control characters as \xNN, and no more than
/// some 60 characters of it.
[[nodiscard]] std::string Quoted(std::string_view text);

/// The text without blanks (space, tab, line ends) at either end.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// Equal but for the case of ASCII letters.
[[nodiscard]] bool EqualsIgnoringCase(std::string_view a, std::string_view b);
