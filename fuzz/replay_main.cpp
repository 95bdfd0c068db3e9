// A plain main for a fuzz target: runs the target with each file given, and with all files in each
// folder given. A fault that the target finds ends the process. A file that cannot be read, or a
// folder without files, is a failure too.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay_file(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path.string() + ": cannot be read");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    // The input is copied to a block of exactly its size, so that a sanitizer reports a read past
    // its end.
    const auto bytes = std::make_unique<std::uint8_t[]>(text.size());
    for (std::size_t index = 0; index < text.size(); ++index)
        bytes[index] = static_cast<std::uint8_t>(text[index]);
    std::cout << path.string() << '\n'
              << std::flush; // the last name printed is the one that failed
    LLVMFuzzerTestOneInput(bytes.get(), text.size());
}

/// Returns how many files there were.
std::size_t replay(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        replay_file(path);
        return 1;
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file()) {
            replay_file(entry.path());
            ++files;
        }
    if (files == 0) throw std::runtime_error(path.string() + ": holds no files");
    std::cout << path.string() << ": " << files << " files replayed\n";
    return files;
}

} // namespace

int main(int count, char** arguments) {
    try {
        std::size_t files = 0;
        for (int index = 1; index < count; ++index) files += replay(arguments[index]);
        if (files == 0) throw std::runtime_error("name files or folders to replay");
        std::cout << files << " files replayed in all\n";
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
