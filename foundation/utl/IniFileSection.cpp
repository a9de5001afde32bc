#include "foundation/utl/IniFileSection.h"

#include <algorithm>
#include <boost/property_tree/ini_parser.hpp>
#include <cstddef>
#include <map>
#include <sstream>
#include <utility>

#include "foundation/utl/Exceptions.h"
#include "foundation/utl/NumberText.h"
#include "foundation/utl/QvFile.h"
#include "foundation/utl/QvStdString.h"

namespace {

/// A configuration file written by hand is far smaller.
constexpr std::size_t cMaxBytes = std::size_t{16} << 20U;

using Keys = std::vector<std::pair<std::string, std::string>>;
using boost::property_tree::ptree;

ptree ReadTree(std::string_view text, const std::string& source) {
    // Editors of some systems put a byte order mark in front, which is no part of the first line.
    constexpr std::string_view cByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, cByteOrderMark.size()) == cByteOrderMark) {
        text.remove_prefix(cByteOrderMark.size());
    }
    std::istringstream stream{std::string(text)};
    ptree tree;
    try {
        boost::property_tree::read_ini(stream, tree);
    } catch (const boost::property_tree::ini_parser_error& error) {
        throw Exception(ExceptionMessage::translate("{1}, line {2}: {3}.")
                        << source << error.line() << error.message());
    }
    return tree;
}

}  // namespace

struct IniFileSection::Content {
    Keys keys;  // in front of the first header
    std::map<std::string, Keys> sections;

    [[nodiscard]] const Keys& KeysOf(const std::string& section) const {
        return section.empty() ? keys : sections.at(section);
    }
};

namespace {

/// Walks the tree instead of asking it for names, since it would take a '.' in a name for a path.
IniFileSection::Content ReadContent(const ptree& tree, const std::string& source) {
    IniFileSection::Content content;
    for (const auto& [name, node] : tree) {
        if (node.empty()) {
            content.keys.emplace_back(name, node.data());
            continue;
        }
        if (name.empty()) {
            throw Exception(ExceptionMessage::translate("{1}: a section has no name.") << source);
        }
        Keys& keys = content.sections[name];
        for (const auto& [key, value] : node) {
            keys.emplace_back(key, value.data());
        }
    }
    return content;
}

const std::string* Find(const Keys& keys, const std::string& key) {
    const auto found = std::find_if(
        keys.begin(), keys.end(), [&](const auto& entry) { return entry.first == key; });
    return found != keys.end() ? &found->second : nullptr;
}

template <class Number>
bool ReadNumber(const Keys& keys, const std::string& key, Number* value) {
    const std::string* const text = Find(keys, key);
    return text != nullptr && QvNumberText::Parse(*text, *value);
}

}  // namespace

IniFileSection::IniFileSection(std::shared_ptr<const Content> content, std::string name)
    : content_(std::move(content)), name_(std::move(name)) {}

IniFileSection IniFileSection::LoadFromFile(const std::string& path) {
    return FromText(QvFile::ReadAll(path, cMaxBytes), path);
}

IniFileSection IniFileSection::FromText(std::string_view text, const std::string& source) {
    return IniFileSection(
        std::make_shared<const Content>(ReadContent(ReadTree(text, source), source)), "");
}

std::unique_ptr<IniFileSection> IniFileSection::OpenSection(const std::string& name) const {
    if (content_->sections.count(name) == 0) {
        return nullptr;
    }
    return std::unique_ptr<IniFileSection>(new IniFileSection(content_, name));
}

std::vector<std::string> IniFileSection::GetKeyNames() const {
    std::vector<std::string> names;
    for (const auto& [key, value] : content_->KeysOf(name_)) {
        names.push_back(key);
    }
    return names;
}

bool IniFileSection::ReadString(const std::string& key, std::string* value) const {
    const std::string* const text = Find(content_->KeysOf(name_), key);
    if (text == nullptr) {
        return false;
    }
    *value = *text;
    return true;
}

bool IniFileSection::ReadInt(const std::string& key, int* value) const {
    return ReadNumber(content_->KeysOf(name_), key, value);
}

bool IniFileSection::ReadFloat(const std::string& key, float* value) const {
    return ReadNumber(content_->KeysOf(name_), key, value);
}

bool IniFileSection::ReadDouble(const std::string& key, double* value) const {
    return ReadNumber(content_->KeysOf(name_), key, value);
}

bool IniFileSection::ReadBool(const std::string& key, bool* value) const {
    const std::string* const text = Find(content_->KeysOf(name_), key);
    if (text == nullptr) {
        return false;
    }
    const std::string word = QvStdString::ToLowerCase(*text, std::locale::classic());
    const bool yes = word == "1" || word == "true" || word == "yes";
    const bool no = word == "0" || word == "false" || word == "no";
    if (yes || no) {
        *value = yes;
    }
    return yes || no;
}
