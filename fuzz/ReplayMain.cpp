// Runs a fuzz target over every file of a folder.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::uint8_t> ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The regular files of the folder in the order of their names; none when there is no such folder.
std::set<std::filesystem::path> ListFiles(const char* folder) {
    std::set<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.is_regular_file()) {
            files.insert(entry.path());
        }
    }
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::set<std::filesystem::path> files = ListFiles(argv[1]);
    for (const auto& path : files) {
        // Before the run, so that the last line names the file that ended the program.
        std::printf("%s\n", path.c_str());
        std::fflush(stdout);
        const std::vector<std::uint8_t> bytes = ReadBytes(path);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu files\n", files.size());
    return files.empty() ? 1 : 0;
}
