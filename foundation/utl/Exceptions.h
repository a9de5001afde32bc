#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "foundation/stream/Export.h"
#include "foundation/utl/ExceptionMessage.h"

// Deliberate: the exception classes are unrelated below std::exception, so that a handler for what
// a user can repair never swallows a stop request or a fault of our own.

/// A bad input or a state that the user can repair.
class QORVA_EXPORT Exception : public std::exception {
  public:
    explicit Exception(const ExceptionMessage& message) : text_(message.GetText()) {}
    ~Exception() override;
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// Misuse of an operation by the calling program.
class QORVA_EXPORT InvalidOperationException : public std::exception {
  public:
    explicit InvalidOperationException(std::string_view text) : text_(text) {}
    ~InvalidOperationException() override;
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// The user stopped the work. Never reported as a failure.
class QORVA_EXPORT CancelException : public std::exception {
  public:
    CancelException() = default;
    ~CancelException() override;
    [[nodiscard]] const char* what() const noexcept override { return "Cancelled"; }
};
