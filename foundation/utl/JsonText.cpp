// Reading and writing of the text form of json_value.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "foundation/utl/Exceptions.h"
#include "foundation/utl/JsonValue.h"

namespace {

/// Deepest nesting that is read. Trees are walked by recursion, so this guards the stack.
constexpr std::size_t cMaxDepth = 200;

/// Characters of the text that are shown in front of a syntax error.
constexpr std::size_t cExcerptLength = 20;

/// Walks over the bytes of a text and reports how far it got, for the position of errors that the
/// text reader itself does not see.
class TrackedBytes {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    TrackedBytes(const char* at, const char** reached) : at_(at), reached_(reached) {}

    reference operator*() const { return *at_; }
    TrackedBytes& operator++() {
        *reached_ = ++at_;
        return *this;
    }
    TrackedBytes operator++(int) {
        TrackedBytes before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const TrackedBytes& a, const TrackedBytes& b) { return a.at_ == b.at_; }
    friend bool operator!=(const TrackedBytes& a, const TrackedBytes& b) { return !(a == b); }

  private:
    const char* at_;
    const char** reached_;
};

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The last characters of the line before `end`, with everything beyond plain ASCII masked so that
/// the message stays readable in any encoding.
std::string Excerpt(std::string_view text, std::size_t end) {
    const std::string_view before = text.substr(0, end);
    std::size_t begin = before.size() > cExcerptLength ? before.size() - cExcerptLength : 0;
    const std::size_t lineBreak = before.substr(0, end - 1).rfind('\n');
    if (lineBreak != std::string_view::npos) {
        begin = std::max(begin, lineBreak + 1);
    }
    std::string excerpt(before.substr(begin));
    for (char& c : excerpt) {
        if (c < ' ' || c > '~') {
            c = '?';
        }
    }
    return excerpt;
}

/// Raises the error at the byte in front of `end` (counted from 1).
[[noreturn]] void Fail(std::string_view text,
                       std::string_view source,
                       std::size_t end,
                       const ExceptionMessage& reason) {
    const std::string_view before = text.substr(0, std::min(end, text.size() + 1) - 1);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::string_view inLine = before.substr(before.rfind('\n') + 1);
    const auto column =
        std::count_if(
            inLine.begin(), inLine.end(), [](char byte) { return !IsContinuationByte(byte); }) +
        1;
    throw Exception(ExceptionMessage::translate("{1}, line {2}, column {3}: {4}.")
                    << source << line << column << reason.GetText());
}

std::string FloatText(double value) {
    if (!std::isfinite(value)) {
        throw InvalidOperationException("A number that is not finite has no JSON text.");
    }
    std::array<char, 32> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), result.ptr);
    if (text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text;
}

std::string Quoted(const std::string& value) {
    try {
        return nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::strict);
    } catch (const nlohmann::json::type_error&) {
        throw InvalidOperationException("A text that is not UTF-8 has no JSON text.");
    }
}

class Writer {
  public:
    explicit Writer(int indent) : indent_(indent) {}

    void Write(const json_value& value) {
        switch (value.kind()) {
            case json_value::Kind::Null:
                text_ += "null";
                break;
            case json_value::Kind::Bool:
                text_ += value.get_bool() ? "true" : "false";
                break;
            case json_value::Kind::Float:
                text_ += FloatText(value.get_float());
                break;
            case json_value::Kind::Integer:
                text_ += std::to_string(value.get_integer());
                break;
            case json_value::Kind::String:
                text_ += Quoted(value.get_string());
                break;
            case json_value::Kind::Array:
                WriteElements(value, '[', ']');
                break;
            case json_value::Kind::Object:
                WriteElements(value, '{', '}');
                break;
        }
    }

    [[nodiscard]] std::string TakeText() { return std::move(text_); }

  private:
    void WriteElements(const json_value& value, char open, char close) {
        text_ += open;
        ++level_;
        for (unsigned long long i = 0; i < value.get_length(); ++i) {
            if (i > 0) {
                text_ += ',';
            }
            BreakLine();
            if (value.is_object()) {
                text_ += Quoted(value.get_child_name(i));
                text_ += indent_ < 0 ? ":" : ": ";
            }
            Write(value.get_child(i));
        }
        --level_;
        if (value.get_length() > 0) {
            BreakLine();
        }
        text_ += close;
    }

    void BreakLine() {
        if (indent_ >= 0) {
            text_ += '\n';
            text_.append(static_cast<std::size_t>(indent_) * level_, ' ');
        }
    }

    int indent_;
    std::size_t level_ = 0;
    std::string text_;
};

}  // namespace

/// Builds the tree from the events of the text reader. It appends members without searching for
/// them: put_child would make large objects quadratic.
struct json_value::Builder {
    Builder(std::string_view text_, std::string_view source_)
        : text(text_), source(source_), reached(text_.data()) {}

    // The events. Their names and parameters are those that the text reader calls.
    bool null() { return Add(json_value()); }
    bool boolean(bool value) { return Add(json_value(value)); }
    bool number_integer(std::int64_t value) {
        return Add(json_value(static_cast<long long>(value)));
    }
    bool number_unsigned(std::uint64_t value) {
        return value <= static_cast<std::uint64_t>(INT64_MAX)
                   ? Add(json_value(static_cast<long long>(value)))
                   : Add(json_value(static_cast<double>(value)));
    }
    bool number_float(double value, const std::string&) { return Add(json_value(value)); }
    bool string(std::string& value) { return Add(json_value(std::move(value))); }
    bool binary(nlohmann::json::binary_t&) { return false; }  // never in a text
    bool start_object(std::size_t) { return Open(make_object()); }
    bool start_array(std::size_t) { return Open(make_array()); }
    bool end_object() { return Close(); }
    bool end_array() { return Close(); }

    bool key(std::string& name) {
        Level& level = open.back();
        if (!level.names.insert(name).second) {
            Fail(ExceptionMessage::translate("the member \"{1}\" occurs twice") << name);
        }
        level.node->names_.push_back(std::move(name));
        return true;
    }

    bool parse_error(std::size_t position,
                     const std::string& token,
                     const nlohmann::json::exception& error) {
        if (position > text.size()) {
            ::Fail(text, source, position, ExceptionMessage::translate("the text ends too early"));
        }
        if (dynamic_cast<const nlohmann::json::out_of_range*>(&error) != nullptr) {
            ::Fail(text,
                   source,
                   position,
                   ExceptionMessage::translate("the number {1} is too large")
                       << std::string_view(token).substr(0, cExcerptLength));
        }
        if (std::string_view(error.what()).find("UTF-8") != std::string_view::npos) {
            ::Fail(text, source, position, ExceptionMessage::translate("the text is not UTF-8"));
        }
        ::Fail(text,
               source,
               position,
               ExceptionMessage::translate("syntax error after \"{1}\"")
                   << Excerpt(text, position));
    }

    struct Level {
        json_value* node;  // stays in place while it is open: its parent does not grow meanwhile
        std::unordered_set<std::string> names;
    };

    json_value& Place(json_value value) {
        if (open.empty()) {
            return root = std::move(value);
        }
        return open.back().node->elements_.emplace_back(std::move(value));
    }

    bool Add(json_value value) {
        Place(std::move(value));
        return true;
    }

    bool Open(json_value value) {
        if (open.size() >= cMaxDepth) {
            Fail(ExceptionMessage::translate("the nesting is deeper than {1}") << cMaxDepth);
        }
        json_value& node = Place(std::move(value));
        open.push_back({&node, {}});
        return true;
    }

    bool Close() {
        open.pop_back();
        return true;
    }

    [[noreturn]] void Fail(const ExceptionMessage& reason) const {
        ::Fail(text, source, static_cast<std::size_t>(reached - text.data()), reason);
    }

    std::string_view text;
    std::string_view source;
    const char* reached;
    json_value root;
    std::vector<Level> open;
};

json_value json_value::parse(std::string_view text, std::string_view source) {
    // The text reader takes a zero byte for the end of the text and would pass what follows.
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
        Fail(text, source, zero + 1, ExceptionMessage::translate("the text holds a zero byte"));
    }
    Builder builder(text, source);
    nlohmann::json::sax_parse(TrackedBytes(text.data(), &builder.reached),
                              TrackedBytes(text.data() + text.size(), &builder.reached),
                              &builder);
    return std::move(builder.root);
}

std::string json_value::to_text(int indent) const {
    Writer writer(indent);
    writer.Write(*this);
    return writer.TakeText();
}
