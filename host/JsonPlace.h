#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/utl/JsonValue.h"

/// One value of a JSON text and the way to it, for readers whose errors tell the user where to
/// look. Every error is an Exception that names the file, the path (factors[2].low), the value and
/// what is allowed. The JSON tree is borrowed.
class JsonPlace {
  public:
    /// The root of a tree that was read from `file`.
    JsonPlace(const json_value& root, const std::string& file);

    [[nodiscard]] const json_value& Value() const { return *value_; }
    /// "study.json: factors[2].low", for messages of one's own.
    [[nodiscard]] std::string Where() const;
    /// Raises the error that this value is not as `allowed` says ("must be a number").
    [[noreturn]] void Refuse(std::string_view allowed) const;
    /// Raises an error at this place in other words.
    [[noreturn]] void Fail(std::string_view problem) const;

    /// Refuses anything but an object whose members are all among `allowed`.
    void RequireMembers(const std::vector<std::string_view>& allowed) const;
    [[nodiscard]] bool Has(std::string_view member) const { return value_->has_child(member); }
    /// Fails when the member is missing.
    [[nodiscard]] JsonPlace Member(std::string_view member) const;
    /// Elements of an array of at least `least` and at most `most` of them.
    [[nodiscard]] std::vector<JsonPlace> Elements(unsigned long long least,
                                                  unsigned long long most) const;

    [[nodiscard]] bool Flag() const;
    /// Any text.
    [[nodiscard]] std::string Text() const;
    /// A text of 1 to 1000 bytes without control characters, and without the blanks around it.
    [[nodiscard]] std::string Name() const;
    /// A number that fits a 32-bit float and is not the engine's mark of no value, -99.
    [[nodiscard]] float Number() const;
    /// A finite number.
    [[nodiscard]] double WideNumber() const;
    /// A whole number without fraction or exponent.
    [[nodiscard]] long long WholeNumber(long long least, long long most) const;

  private:
    JsonPlace(const json_value& value, std::shared_ptr<const std::string> file, std::string path)
        : value_(&value), file_(std::move(file)), path_(std::move(path)) {}

    const json_value* value_;
    std::shared_ptr<const std::string> file_;
    std::string path_;
};

/// "a", "a and b", "a, b and c".
[[nodiscard]] std::string ListOf(const std::vector<std::string>& items,
                                 std::string_view conjunction);
