#pragma once

#include <exception>
#include <string>

#include "foundation/stream/Export.h"

/// A condition that must not happen; the text is usually the name of the function.
class QORVA_EXPORT NCInternalError : public std::exception {
  public:
    explicit NCInternalError(std::string text) : text_(std::move(text)) {}
    ~NCInternalError() override;
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};
