#include "foundation/utl/QvFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "foundation/utl/Exceptions.h"

namespace {

constexpr std::size_t cChunkBytes = std::size_t{1} << 16U;
/// More links than this in a row are taken for a circle, as the system does.
constexpr int cMaxLinks = 40;
/// Names tried for the new file before giving up.
constexpr int cMaxNames = 1000;

std::string SystemText(int error) {
    return std::generic_category().message(error);
}

[[noreturn]] void FailRead(const std::string& path, int error) {
    throw Exception(ExceptionMessage::translate("The file {1} cannot be read: {2}.")
                    << path << SystemText(error));
}

[[noreturn]] void FailWrite(const std::string& path, int error) {
    throw Exception(ExceptionMessage::translate("The file {1} cannot be written: {2}.")
                    << path << SystemText(error));
}

/// Owner of an open file.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { static_cast<void>(Close()); }

    [[nodiscard]] bool IsOpen() const { return number_ >= 0; }
    [[nodiscard]] int Number() const { return number_; }
    /// False when the system reports a late write error.
    [[nodiscard]] bool Close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

template <class Call>
auto Retry(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// False with errno set.
bool WriteFully(int file, std::string_view content) {
    while (!content.empty()) {
        const auto written = Retry([&] { return ::write(file, content.data(), content.size()); });
        if (written < 0) {
            return false;
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Some of what the system calls files cannot be brought to a disk; that is no failure.
bool Synchronize(int file) {
    return Retry([&] { return ::fsync(file); }) == 0 || errno == EINVAL || errno == ENOTSUP;
}

/// Links to open files ("/dev/stdout") must be written through, not replaced.
bool LeadsToOpenFile(const std::filesystem::path& path) {
    const std::string text = path.string();
    return text.rfind("/proc/", 0) == 0 || text.rfind("/dev/fd/", 0) == 0;
}

/// Where a write to `path` ends up, so that a link stays a link.
std::filesystem::path FollowLinks(const std::string& path) {
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < cMaxLinks; ++i) {
        if (LeadsToOpenFile(target) || !std::filesystem::is_symlink(target, error)) {
            return target;
        }
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
        if (error) {
            FailWrite(path, error.value());
        }
    }
    FailWrite(path, ELOOP);
}

void WriteDirectly(const std::string& path, std::string_view content) {
    Descriptor file(Retry([&] { return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC); }));
    if (!file.IsOpen() || !WriteFully(file.Number(), content) || !file.Close()) {
        FailWrite(path, errno);
    }
}

/// The new file beside the old one; removed again unless it took the old one's place.
class NewFile {
  public:
    /// `mode` is narrowed by the creation mask of the process.
    NewFile(const std::filesystem::path& folder, mode_t mode) : file_(Create(folder, mode)) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!name_.empty()) {
            ::unlink(name_.c_str());
        }
    }

    [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }
    [[nodiscard]] int Number() const { return file_.Number(); }
    /// False with errno set.
    [[nodiscard]] bool MoveTo(const std::filesystem::path& target) {
        if (!file_.Close() || ::rename(name_.c_str(), target.c_str()) != 0) {
            return false;
        }
        name_.clear();
        return true;
    }

  private:
    // Not mkstemp, which ignores the creation mask; the mask cannot be read without changing it for
    // all threads.
    int Create(const std::filesystem::path& folder, mode_t mode) {
        for (int i = 0; i < cMaxNames; ++i) {
            name_ = folder / (".new-" + std::to_string(::getpid()) + "-" + std::to_string(i));
            const int file = Retry([&] {
                return ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            });
            if (file >= 0) {
                return file;
            }
            if (errno != EEXIST) {
                break;
            }
        }
        name_.clear();  // before errno is looked at: it is not ours to remove
        return -1;
    }

    std::filesystem::path name_;
    Descriptor file_;
};

/// Gives the new file the owner and the permissions of the old one. The owner is a courtesy: only
/// some users may give files away, and the permissions are what protects the content.
bool TakeOver(int file, const struct stat& old) {
    if (::fchown(file, old.st_uid, old.st_gid) != 0) {
        errno = 0;
    }
    constexpr mode_t cPermissions = 07777;
    return ::fchmod(file, old.st_mode & cPermissions) == 0;
}

bool SynchronizeFolder(const std::filesystem::path& folder) {
    const Descriptor file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return file.IsOpen() ? Synchronize(file.Number()) : errno == EACCES;
}

void ReplaceRegularFile(const std::string& path,
                        const std::filesystem::path& target,
                        const struct stat* old,
                        std::string_view content) {
    const std::filesystem::path folder =
        target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    // Taking the place of a file needs no permission on the file itself; do not get round it.
    if (old != nullptr && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        FailWrite(path, errno);
    }
    // Nobody else may look into the new file before it has the old one's permissions.
    NewFile file(folder, old != nullptr ? 0600 : 0666);
    if (!file.IsOpen() || !WriteFully(file.Number(), content) ||
        (old != nullptr && !TakeOver(file.Number(), *old)) || !Synchronize(file.Number()) ||
        !file.MoveTo(target) || !SynchronizeFolder(folder)) {
        FailWrite(path, errno);
    }
}

}  // namespace

std::string QvFile::ReadAll(const std::string& path, std::size_t maxBytes) {
    const Descriptor file(Retry([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!file.IsOpen()) {
        FailRead(path, errno);
    }
    // In chunks, not by the size that the system gives: pipes have none and files grow.
    std::string content;
    for (std::size_t length = 0;;) {
        content.resize(length + cChunkBytes);
        const auto count =
            Retry([&] { return ::read(file.Number(), content.data() + length, cChunkBytes); });
        if (count < 0) {
            FailRead(path, errno);
        }
        length += static_cast<std::size_t>(count);
        if (length > maxBytes) {
            throw Exception(
                ExceptionMessage::translate("The file {1} cannot be read: it is larger than {2} "
                                            "bytes.")
                << path << maxBytes);
        }
        if (count == 0) {
            content.resize(length);
            return content;
        }
    }
}

void QvFile::ReplaceAll(const std::string& path, std::string_view content) {
    struct stat old {};
    const bool exists = ::stat(path.c_str(), &old) == 0;
    const std::filesystem::path target = FollowLinks(path);
    if (exists && (!S_ISREG(old.st_mode) || LeadsToOpenFile(target))) {
        WriteDirectly(path, content);
    } else {
        ReplaceRegularFile(path, target, exists ? &old : nullptr, content);
    }
}
