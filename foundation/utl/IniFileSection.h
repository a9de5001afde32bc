#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/stream/Export.h"

/// A section of a text configuration file: "[Section]" headers, "key=value" lines, comment lines
/// beginning with ';' or '#'. A name that occurs twice, among the sections or among the keys of one
/// section, is an error. Read only.
class QORVA_EXPORT IniFileSection {
  public:
    /// The whole file: its keys are those in front of the first header.
    /// @throws Exception naming the file, the line and the reason.
    [[nodiscard]] static IniFileSection LoadFromFile(const std::string& path);
    [[nodiscard]] static IniFileSection FromText(std::string_view text, const std::string& source);

    /// The section of that name, or a null handle. Sections do not nest; one without keys counts as
    /// absent.
    [[nodiscard]] std::unique_ptr<IniFileSection> OpenSection(const std::string& name) const;
    /// Keys in the order of the file.
    [[nodiscard]] std::vector<std::string> GetKeyNames() const;

    // Typed reads: false, with the destination untouched, when the key is missing or its text is
    // not such a value. Bool: "1", "0", "true", "false", "yes", "no", in either case.
    bool ReadString(const std::string& key, std::string* value) const;
    bool ReadInt(const std::string& key, int* value) const;
    bool ReadFloat(const std::string& key, float* value) const;
    bool ReadDouble(const std::string& key, double* value) const;
    bool ReadBool(const std::string& key, bool* value) const;

    struct Content;

  private:
    explicit IniFileSection(std::shared_ptr<const Content> content, std::string name);

    std::shared_ptr<const Content> content_;
    std::string name_;  // empty for the whole file
};
