#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <stdlib.h>

/// A folder of its own for one test, removed with its content.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "qorva-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] std::string File(const std::string& name) const {
        return (path_ / name).string();
    }

    /// Number of files and folders in it.
    [[nodiscard]] long CountEntries() const {
        return std::distance(std::filesystem::directory_iterator(path_), {});
    }

  private:
    std::filesystem::path path_;
};
