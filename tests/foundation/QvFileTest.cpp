#include "foundation/utl/QvFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "foundation/utl/Exceptions.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

constexpr std::size_t cLimit = 1000000;

std::string ErrorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no error";
}

std::string ReadError(const std::string& path) {
    return ErrorOf([&] { static_cast<void>(QvFile::ReadAll(path, cLimit)); });
}

std::string WriteError(const std::string& path) {
    return ErrorOf([&] { QvFile::ReplaceAll(path, "new"); });
}

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

}  // namespace

TEST(QvFile, WhatIsWrittenIsRead) {
    const TemporaryFolder folder;
    std::string content(300000, 'x');
    content[5] = '\0';
    content[200000] = '\n';
    QvFile::ReplaceAll(folder.File("a"), content);
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), cLimit), content);
}

TEST(QvFile, EmptyContentMakesAnEmptyFile) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), "");
    EXPECT_TRUE(fs::exists(folder.File("a")));
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), 0), "");
}

TEST(QvFile, ShorterContentReplacesTheWholeFile) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), "long content");
    QvFile::ReplaceAll(folder.File("a"), "short");
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), cLimit), "short");
    EXPECT_EQ(folder.CountEntries(), 1);
}

TEST(QvFile, LimitIsTheLastSizeThatIsRead) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), std::string(100, 'x'));
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), 100).size(), 100U);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(QvFile::ReadAll(folder.File("a"), 99)); }),
              "The file " + folder.File("a") + " cannot be read: it is larger than 99 bytes.");
}

TEST(QvFile, FileWithoutEndIsNotReadToTheEnd) {
    EXPECT_THAT(ReadError("/dev/zero"), HasSubstr("larger than"));
}

TEST(QvFile, MissingFileIsNamed) {
    EXPECT_EQ(ReadError("/no/such"),
              "The file /no/such cannot be read: No such file or directory.");
}

TEST(QvFile, FolderIsNoFile) {
    const TemporaryFolder folder;
    EXPECT_THAT(ReadError(folder.Path().string()), HasSubstr("Is a directory"));
    EXPECT_THAT(WriteError(folder.Path().string()), HasSubstr("Is a directory"));
}

TEST(QvFile, PipesAreReadAndWritten) {
    const TemporaryFolder folder;
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string content(200000, 'y');
    std::thread writer([&] { QvFile::ReplaceAll(pipe, content); });
    EXPECT_EQ(QvFile::ReadAll(pipe, cLimit), content);
    writer.join();
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(QvFile, FullDiskIsReported) {
    EXPECT_EQ(WriteError("/dev/full"),
              "The file /dev/full cannot be written: No space left on device.");
}

TEST(QvFile, DeviceStaysADevice) {
    QvFile::ReplaceAll("/dev/null", "content");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(QvFile, OpenFileIsWrittenThroughItsLink) {
    const TemporaryFolder folder;
    const std::string path = folder.File("out");
    std::FILE* const file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    const ino_t before = [&] {
        struct stat status {};
        ::fstat(::fileno(file), &status);
        return status.st_ino;
    }();
    QvFile::ReplaceAll("/dev/fd/" + std::to_string(::fileno(file)), "through");
    std::fclose(file);
    struct stat after {};
    ASSERT_EQ(::stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before);
    EXPECT_EQ(QvFile::ReadAll(path, cLimit), "through");
}

TEST(QvFile, MissingFolderIsReported) {
    EXPECT_EQ(WriteError("/no/such"),
              "The file /no/such cannot be written: No such file or directory.");
}

TEST(QvFile, FailureLeavesTheOldFileAndNoOther) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), "old");
    // A file cannot take the place of a folder, which is found at the last step only.
    fs::create_directory(folder.File("b"));
    EXPECT_NE(WriteError(folder.File("b") + "/../b/"), "no error");
    EXPECT_NE(WriteError(folder.File("a") + "/x"), "no error");
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), cLimit), "old");
    EXPECT_EQ(folder.CountEntries(), 2);
}

TEST(QvFile, WriteThatFailsHalfwayLeavesTheOldFileAndNoOther) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), "old");
    // A limit on file sizes stands for a disk that fills up.
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit tight = before;
    tight.rlim_cur = 1000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const std::string error =
        ErrorOf([&] { QvFile::ReplaceAll(folder.File("a"), std::string(100000, 'x')); });
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(error, "The file " + folder.File("a") + " cannot be written: File too large.");
    EXPECT_EQ(QvFile::ReadAll(folder.File("a"), cLimit), "old");
    EXPECT_EQ(folder.CountEntries(), 1);
}

TEST(QvFile, OverlongNameLeavesNoOtherFile) {
    const TemporaryFolder folder;
    // The new file is complete when its name turns out to be too long.
    EXPECT_THAT(WriteError(folder.File(std::string(300, 'n'))), HasSubstr("File name too long"));
    EXPECT_EQ(folder.CountEntries(), 0);
}

TEST(QvFile, PermissionsOfTheOldFileStay) {
    const TemporaryFolder folder;
    QvFile::ReplaceAll(folder.File("a"), "old");
    fs::permissions(folder.File("a"), static_cast<fs::perms>(0640));
    QvFile::ReplaceAll(folder.File("a"), "new");
    EXPECT_EQ(ModeOf(folder.File("a")), 0640U);
}

TEST(QvFile, NewFileFollowsTheCreationMask) {
    const TemporaryFolder folder;
    const mode_t before = ::umask(027);
    QvFile::ReplaceAll(folder.File("a"), "new");
    ::umask(before);
    EXPECT_EQ(ModeOf(folder.File("a")), 0640U);
}

TEST(QvFile, WriteProtectedFileIsNotReplaced) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a");
    QvFile::ReplaceAll(path, "old");
    fs::permissions(path, static_cast<fs::perms>(0444));
    // The super-user may write every file, so somebody else must try.
    constexpr uid_t cNobody = 65534;
    const bool isSuperUser = ::geteuid() == 0;
    if (isSuperUser) {
        ASSERT_EQ(::chown(folder.Path().c_str(), cNobody, cNobody), 0);
        ASSERT_EQ(::chown(path.c_str(), cNobody, cNobody), 0);
        ASSERT_EQ(::seteuid(cNobody), 0);
    }
    const std::string error = WriteError(path);
    if (isSuperUser) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    EXPECT_THAT(error, HasSubstr("Permission denied"));
    EXPECT_EQ(QvFile::ReadAll(path, cLimit), "old");
}

TEST(QvFile, LinkStaysALink) {
    const TemporaryFolder folder;
    fs::create_directory(folder.File("sub"));
    QvFile::ReplaceAll(folder.File("sub/target"), "old");
    fs::create_symlink("sub/target", folder.File("middle"));
    fs::create_symlink(folder.File("middle"), folder.File("link"));
    QvFile::ReplaceAll(folder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("link")));
    EXPECT_TRUE(fs::is_symlink(folder.File("middle")));
    EXPECT_EQ(QvFile::ReadAll(folder.File("sub/target"), cLimit), "new");
}

TEST(QvFile, LinkToNothingMakesItsTarget) {
    const TemporaryFolder folder;
    fs::create_symlink("target", folder.File("link"));
    QvFile::ReplaceAll(folder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("link")));
    EXPECT_EQ(QvFile::ReadAll(folder.File("target"), cLimit), "new");
}

TEST(QvFile, CircleOfLinksIsReported) {
    const TemporaryFolder folder;
    fs::create_symlink("b", folder.File("a"));
    fs::create_symlink("a", folder.File("b"));
    EXPECT_THAT(WriteError(folder.File("a")), HasSubstr("Too many levels of symbolic links"));
    EXPECT_EQ(folder.CountEntries(), 2);
}

TEST(QvFile, ReadersSeeTheOldOrTheNewContentOnly) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a");
    QvFile::ReplaceAll(path, std::string(100000, '0'));
    std::thread writer([&] {
        for (int i = 1; i < 20; ++i) {
            QvFile::ReplaceAll(path, std::string(100000, static_cast<char>('0' + i % 10)));
        }
    });
    int torn = 0;
    for (int i = 0; i < 200; ++i) {
        const std::string content = QvFile::ReadAll(path, cLimit);
        torn += content == std::string(100000, content.empty() ? '?' : content[0]) ? 0 : 1;
    }
    writer.join();
    EXPECT_EQ(torn, 0);
}
