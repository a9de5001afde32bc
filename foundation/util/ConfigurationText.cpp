#include "foundation/util/ConfigurationText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include "foundation/utl/Exceptions.h"
#include "foundation/utl/JsonValue.h"

namespace {

using Node = ConfigurationStore::Node;

constexpr const char* cFormat = "QORVA configuration";
constexpr long long cVersion = 1;

/// Without the sign of not-a-number, which means nothing and would make another word of it.
template <class Number>
Number Plain(Number number) {
    if constexpr (std::is_floating_point_v<Number>) {
        return std::isnan(number) ? std::numeric_limits<Number>::quiet_NaN() : number;
    }
    return number;
}

template <class Range>
std::string NumbersText(const Range& numbers) {
    std::string text;
    std::array<char, 32> buffer;
    for (const auto number : numbers) {
        if (!text.empty()) {
            text += ' ';
        }
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), Plain(number));
        text.append(buffer.data(), end.ptr);
    }
    return text;
}

struct ValueWriter {
    json_value operator()(bool value) const { return Of("bool", value); }
    json_value operator()(int value) const { return Of("int", value); }
    json_value operator()(double value) const {
        // JSON has no such numbers.
        return std::isfinite(value) ? Of("double", value)
                                    : Of("double", NumbersText(std::array{value}));
    }
    json_value operator()(const std::string& value) const { return Of("string", value); }
    json_value operator()(const std::vector<std::string>& value) const {
        json_value items = json_value::make_array();
        for (const std::string& item : value) {
            items.push_back(item);
        }
        return Of("stringList", std::move(items));
    }
    json_value operator()(const std::vector<int>& value) const {
        return Of("intVector", NumbersText(value));
    }
    json_value operator()(const std::vector<float>& value) const {
        return Of("floatVector", NumbersText(value));
    }
    json_value operator()(const NCDataMatrix<float>& value) const {
        json_value parts = json_value::make_array();
        parts.push_back(value.SizeRows());
        parts.push_back(value.SizeColumns());
        parts.push_back(NumbersText(value.Cells()));
        return Of("matrix", std::move(parts));
    }

    static json_value Of(const char* kind, json_value value) {
        json_value entry;
        entry.put_child(kind) = std::move(value);
        return entry;
    }
};

void WriteNode(const Node& node, json_value& target) {
    if (!node.keys.empty()) {
        json_value& keys = target.put_child("keys");
        for (const auto& [key, value] : node.keys) {
            keys.put_child(key) = std::visit(ValueWriter(), value);
        }
    }
    if (!node.sections.empty()) {
        json_value& sections = target.put_child("sections");
        for (const auto& [name, children] : node.sections) {
            for (const auto& child : children) {
                json_value& section = sections.append_child();
                section.put_child("name") = name;
                WriteNode(*child, section);
            }
        }
    }
}

/// Where in the tree the reader stands, for errors: a chain through the calls, so that nothing is
/// put together as long as all goes well.
struct Place {
    const Place* above;
    std::string_view name;
    int index = 1;

    [[nodiscard]] std::string Path() const {
        if (above == nullptr) {
            return std::string(name);
        }
        std::string path = above->Path() + '/' + std::string(name);
        if (index > 1) {
            path += '[' + std::to_string(index) + ']';
        }
        return path;
    }
};

class Reader {
  public:
    explicit Reader(std::string_view source) : source_(source) {}

    void ReadRoot(const json_value& text, const std::shared_ptr<Node>& root) const {
        if (!text.is_object() || !Holds(text, "format", cFormat)) {
            throw Exception(ExceptionMessage::translate("{1} is not a configuration file.")
                            << source_);
        }
        if (!Holds(text, "version", cVersion)) {
            throw Exception(
                ExceptionMessage::translate("{1} is a configuration file of another version than "
                                            "{2}.")
                << source_ << cVersion);
        }
        const Place top{nullptr, ""};
        if (!text.has_child("root") || text.get_length() != 3) {
            Fail(top, R"("format", "version" and "root" must stand here and nothing else)");
        }
        ReadNode(text.get_child("root"), root, top);
    }

  private:
    static bool Holds(const json_value& text, const char* member, const json_value& value) {
        return text.has_child(member) && text.get_child(member) == value;
    }

    [[noreturn]] void Fail(const Place& place, const char* reason) const {
        const std::string path = place.Path();
        throw Exception(ExceptionMessage::translate("{1}, at {2}: {3}.")
                        << source_ << (path.empty() ? "/" : path)
                        << ExceptionMessage::translate(reason).GetText());
    }

    void Require(bool condition, const Place& place, const char* reason) const {
        if (!condition) {
            Fail(place, reason);
        }
    }

    void ReadNode(const json_value& text,
                  const std::shared_ptr<Node>& node,
                  const Place& at) const {
        Require(text.is_object(), at, "a section must be an object");
        for (unsigned long long i = 0; i < text.get_length(); ++i) {
            const std::string& member = text.get_child_name(i);
            const json_value& content = text.get_child(i);
            if (member == "keys") {
                ReadKeys(content, *node, at);
            } else if (member == "sections") {
                ReadSections(content, node, at);
            } else {
                // The name of a section was read by the section above.
                Require(member == "name" && node->depth > 0,
                        at,
                        R"(a section holds "keys" and "sections" only)");
            }
        }
    }

    void ReadSections(const json_value& text,
                      const std::shared_ptr<Node>& node,
                      const Place& at) const {
        Require(text.is_array(), at, "\"sections\" must be an array");
        for (const json_value& section : text.get_array()) {
            Require(section.has_child("name") && section.get_child("name").is_string(),
                    at,
                    "a section must have a name");
            Require(node->depth < Node::cMaxDepth, at, "the sections nest too deeply");
            const std::string& name = section.get_child("name").get_string();
            const std::shared_ptr<Node> child = AppendSection(node, name);
            const auto index = static_cast<int>(node->sections.at(name).size());
            ReadNode(section, child, {&at, name, index});
        }
    }

    void ReadKeys(const json_value& text, Node& node, const Place& at) const {
        Require(text.is_object(), at, "\"keys\" must be an object");
        for (unsigned long long i = 0; i < text.get_length(); ++i) {
            const std::string& key = text.get_child_name(i);
            node.keys.insert_or_assign(key, ReadValue(text.get_child(i), {&at, key}));
        }
    }

    ConfigurationValue ReadValue(const json_value& entry, const Place& at) const {
        Require(entry.is_object() && entry.get_length() == 1,
                at,
                "a value must be an object with its kind as the only member");
        const std::string& kind = entry.get_child_name(0);
        const json_value& value = entry.get_child(0ULL);
        if (kind == "bool") {
            Require(value.is_bool(), at, "a bool must be true or false");
            return value.get_bool();
        }
        if (kind == "int") {
            Require(FitsInt(value), at, "an int must be a whole number of 32 bits");
            return static_cast<int>(value.get_integer());
        }
        if (kind == "double") {
            return ReadDouble(value, at);
        }
        if (kind == "string") {
            Require(value.is_string(), at, "a string must be a text");
            return value.get_string();
        }
        if (kind == "stringList") {
            return ReadStringList(value, at);
        }
        if (kind == "intVector") {
            return ReadNumbers<int>(value, at);
        }
        if (kind == "floatVector") {
            return ReadNumbers<float>(value, at);
        }
        Require(kind == "matrix", at, "there is no such kind of value");
        return ReadMatrix(value, at);
    }

    static bool FitsInt(const json_value& value) {
        return value.is_integer() && value.get_integer() >= std::numeric_limits<int>::min() &&
               value.get_integer() <= std::numeric_limits<int>::max();
    }

    double ReadDouble(const json_value& value, const Place& at) const {
        if (value.is_number()) {
            return value.get_float();
        }
        Require(value.is_string(), at, "a double must be a number");
        for (const double number : {std::numeric_limits<double>::quiet_NaN(),
                                    std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity()}) {
            if (value.get_string() == NumbersText(std::array{number})) {
                return number;
            }
        }
        Fail(at, R"(a double must be a number, or "nan", "inf" or "-inf")");
    }

    std::vector<std::string> ReadStringList(const json_value& value, const Place& at) const {
        Require(value.is_array(), at, "a string list must be an array");
        std::vector<std::string> items;
        for (const json_value& item : value.get_array()) {
            Require(item.is_string(), at, "every item of a string list must be a text");
            items.push_back(item.get_string());
        }
        return items;
    }

    template <class Number>
    std::vector<Number> ReadNumbers(const json_value& value, const Place& at) const {
        Require(value.is_string(), at, "numbers must be a text");
        const std::string_view text = value.get_string();
        std::vector<Number> numbers;
        const char* next = text.data();
        const char* const end = next + text.size();
        while (next != end) {
            if (!numbers.empty()) {
                Require(*next == ' ', at, "numbers must be separated by one blank");
                ++next;
            }
            Number number{};
            const auto [rest, error] = std::from_chars(next, end, number);
            Require(error == std::errc(), at, "the text holds something that is not such a number");
            numbers.push_back(number);
            next = rest;
        }
        return numbers;
    }

    NCDataMatrix<float> ReadMatrix(const json_value& value, const Place& at) const {
        Require(value.is_array() && value.get_length() == 3,
                at,
                "a matrix must be an array of rows, columns and numbers");
        const json_value& rows = value.get_child(0ULL);
        const json_value& columns = value.get_child(1ULL);
        Require(FitsInt(rows) && FitsInt(columns) && rows.get_integer() >= 0 &&
                    columns.get_integer() >= 0,
                at,
                "the size of a matrix must be two whole numbers from 0 on");
        // The numbers come first: a size alone must not take memory.
        const std::vector<float> cells = ReadNumbers<float>(value.get_child(2ULL), at);
        Require(rows.get_integer() * columns.get_integer() == static_cast<long long>(cells.size()),
                at,
                "the size of the matrix does not fit its numbers");
        NCDataMatrix<float> matrix(static_cast<int>(rows.get_integer()),
                                   static_cast<int>(columns.get_integer()));
        std::copy(cells.begin(), cells.end(), matrix.Cells().begin());
        return matrix;
    }

    std::string_view source_;
};

}  // namespace

std::string WriteConfigurationText(const Node& root) {
    json_value text;
    text.put_child("format") = cFormat;
    text.put_child("version") = cVersion;
    json_value& tree = text.put_child("root");
    tree = json_value::make_object();
    WriteNode(root, tree);
    return text.to_text(1) + '\n';
}

void ReadConfigurationText(const std::string& text,
                           const std::string& source,
                           const std::shared_ptr<Node>& root) {
    Reader(source).ReadRoot(json_value::parse(text, source), root);
}
