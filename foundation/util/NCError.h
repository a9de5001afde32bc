#pragma once

#include <exception>
#include <string>

#include "foundation/stream/Export.h"
#include "foundation/utl/ExceptionMessage.h"

/// An error with a severity.
class QORVA_EXPORT NCError : public std::exception {
  public:
    enum Level { Information = 0, Warning = 1, Severe = 2 };

    NCError(const ExceptionMessage& message, Level level)
        : text_(message.GetText()), level_(level) {}
    ~NCError() override;
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }
    [[nodiscard]] Level GetLevel() const noexcept { return level_; }

  private:
    std::string text_;
    Level level_;
};
