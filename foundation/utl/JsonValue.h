#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/stream/Export.h"

/// A JSON tree node with value semantics: copies are deep. Members of an object keep the order in
/// which they were put.
class QORVA_EXPORT json_value {
  public:
    /// The numbers are fixed: hosts test them.
    enum class Kind {
        Null = 0,
        Bool = 1,
        Float = 2,
        Integer = 3,
        String = 4,
        Array = 5,
        Object = 6
    };

    json_value() = default;
    json_value(bool value);                                  // NOLINT(google-explicit-constructor)
    json_value(int value);                                   // NOLINT(google-explicit-constructor)
    json_value(long long value);                             // NOLINT(google-explicit-constructor)
    json_value(double value);                                // NOLINT(google-explicit-constructor)
    json_value(const char* value);                           // NOLINT(google-explicit-constructor)
    json_value(std::string value);                           // NOLINT(google-explicit-constructor)
    json_value(std::initializer_list<json_value> elements);  // an array

    /// An empty object or array; a default-constructed value is null and becomes either on demand.
    [[nodiscard]] static json_value make_object();
    [[nodiscard]] static json_value make_array();

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] bool is_null() const { return kind_ == Kind::Null; }
    [[nodiscard]] bool is_bool() const { return kind_ == Kind::Bool; }
    [[nodiscard]] bool is_float() const { return kind_ == Kind::Float; }
    [[nodiscard]] bool is_integer() const { return kind_ == Kind::Integer; }
    [[nodiscard]] bool is_number() const { return is_float() || is_integer(); }
    [[nodiscard]] bool is_string() const { return kind_ == Kind::String; }
    [[nodiscard]] bool is_array() const { return kind_ == Kind::Array; }
    [[nodiscard]] bool is_object() const { return kind_ == Kind::Object; }

    // Readers. Asking for another kind raises InvalidOperationException; an integer also answers
    // get_float.
    [[nodiscard]] bool get_bool() const;
    [[nodiscard]] double get_float() const;
    [[nodiscard]] long long get_integer() const;
    [[nodiscard]] const std::string& get_string() const;
    [[nodiscard]] const std::vector<json_value>& get_array() const;

    /// Number of elements of an array or members of an object, 0 for a scalar.
    [[nodiscard]] unsigned long long get_length() const;
    /// False for anything but an object that has the member.
    [[nodiscard]] bool has_child(std::string_view name) const;
    /// Member of an object; raises InvalidOperationException when there is none.
    [[nodiscard]] const json_value& get_child(std::string_view name) const;
    /// Element of an array (or member of an object, in order), counted from 0; raises
    /// InvalidOperationException outside the range.
    [[nodiscard]] const json_value& get_child(unsigned long long index) const;
    /// Name of an object's member, counted from 0.
    [[nodiscard]] const std::string& get_child_name(unsigned long long index) const;

    /// Member for writing, made if missing; a null value becomes an object.
    json_value& put_child(std::string_view name);
    /// New last element for writing; a null value becomes an array.
    json_value& append_child();
    void push_back(json_value value);

    /// Reads a JSON text (RFC 8259, UTF-8). Integers of 64 bits and doubles are kept exactly; an
    /// integer beyond 64 signed bits becomes a float.
    /// @throws Exception naming `source`, the position and the reason: bad syntax, nesting deeper
    ///         than 200, a member that occurs twice in one object, text after the value.
    [[nodiscard]] static json_value parse(std::string_view text, std::string_view source = "JSON");

    /// The JSON text. `indent` blanks a level, or everything in one line when negative. A float
    /// keeps a fraction or an exponent, so that its kind survives.
    /// @throws InvalidOperationException for a number that is not finite or a text that is not
    /// UTF-8.
    [[nodiscard]] std::string to_text(int indent = -1) const;

    /// The same kinds and values; the order of an object's members does not count.
    friend QORVA_EXPORT bool operator==(const json_value& a, const json_value& b);

  private:
    struct Builder;

    Kind kind_ = Kind::Null;
    union {
        bool bool_;
        long long integer_ = 0;
        double float_;
    };
    std::string string_;
    std::vector<json_value> elements_;  // of an array, or the member values of an object
    std::vector<std::string> names_;    // the member names of an object, in step with elements_
};
