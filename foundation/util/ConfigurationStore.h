#pragma once

#include <memory>
#include <string>

#include "foundation/stream/Export.h"
#include "foundation/utl/ConfigurationSection.h"

/// A tree of configuration sections in memory, saved to and loaded from one text file.
///
/// Saving goes through a second file that takes the place of the first in one step, so a reader
/// sees either the old content or the new one, and a failed save (a full disk, say) leaves the old
/// file as it was. Not for use from two threads at once.
class QORVA_EXPORT ConfigurationStore {
  public:
    ConfigurationStore();
    ConfigurationStore(ConfigurationStore&&) noexcept;
    ConfigurationStore& operator=(ConfigurationStore&&) noexcept;
    ~ConfigurationStore();

    /// Handle of the root section. Handles share the tree and may outlive the store; Flush on them
    /// does nothing, since only `SaveToFile` knows a file.
    [[nodiscard]] std::unique_ptr<ConfigurationSection> OpenRoot();
    [[nodiscard]] std::unique_ptr<const ConfigurationSection> OpenRoot() const;

    /// @throws Exception naming the file and the reason; the old file stays.
    void SaveToFile(const std::string& path) const;
    /// @throws Exception naming the file, the place and the reason: unreadable, truncated, of
    ///         another format or version, or with a value that does not fit its kind.
    [[nodiscard]] static ConfigurationStore LoadFromFile(const std::string& path);

    /// The same text form without a file; `source` names it in errors.
    [[nodiscard]] std::string ToText() const;
    [[nodiscard]] static ConfigurationStore FromText(const std::string& text,
                                                     const std::string& source);

    /// Sections, keys, kinds and values are the same.
    friend QORVA_EXPORT bool operator==(const ConfigurationStore& a, const ConfigurationStore& b);

    struct Node;

  private:
    std::shared_ptr<Node> root_;
};
