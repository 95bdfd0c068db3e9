// Reads files, choices and numbers from a command line; see the header.

#include "mailstructure/command_line.h"

#include "common/ascii_case.h"
#include "common/byte_count.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <functional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

} // namespace

bool names_a_file(const std::string& name) {
    struct stat there = {};
    return ::lstat(name.c_str(), &there) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::string standard_input() {
    if (::isatty(STDIN_FILENO) == 0) return "-";
    throw CLI::ValidationError("no file is named, and standard input is a terminal");
}

void describe_files(CLI::App& command, std::vector<std::string>& files) {
    command
        .add_option(
            "FILE", files,
            "Messages: files, or SOURCE@OFFSET in a mailbox; - is standard input, which is also "
            "read when none is named")
        ->type_name("");
    command.final_callback([&files] {
        if (files.empty()) files.push_back(standard_input());
    });
}

CLI::Option* describe_file(CLI::App& command, std::string& file) {
    return command
        .add_option(
            "FILE", file,
            "The message: a file, or SOURCE@OFFSET in a mailbox; - is standard input, which "
            "is also read when none is named")
        ->type_name("");
}

CLI::Option* describe_choice(CLI::App& command, const std::string& option,
                             const std::vector<std::string>& words, const std::string& placeholder,
                             const std::function<void(std::size_t)>& take,
                             const std::string& description) {
    const auto place = [words](const std::string& word) {
        const auto found =
            std::find_if(words.begin(), words.end(), [&word](const std::string& each) {
                return equal_ignoring_case(each, word);
            });
        return static_cast<std::size_t>(found - words.begin());
    };
    return command
        .add_option_function<std::string>(
            option, [take, place](const std::string& word) { take(place(word)); }, description)
        ->check([words, place](const std::string& word) {
            return place(word) < words.size() ? "" : "not one of " + joined(words) + ": " + word;
        })
        ->type_name(placeholder);
}

void describe_rules(CLI::App& command, MailStructure::rules& by) {
    describe_choice(
        command, "--rules", {"standard", "classic"}, "RULES",
        [&by](std::size_t choice) {
            by = choice == 0 ? MailStructure::rules::standard : MailStructure::rules::classic;
        },
        "Rules to read messages by: standard, as mail readers do (the default), or classic, the "
        "older rules of the library");
}

void describe_max_size(CLI::App& command, std::uint64_t& limit) {
    command
        .add_option_function<std::string>(
            "--max-size",
            [&limit](const std::string& text) { limit = parse_byte_count(text).value(); },
            "Refuse messages of more bytes than this: 65536, 64K, 25M, 1G, in powers of 1024")
        ->check([](const std::string& text) {
            return parse_byte_count(text) ? "" : "not a size, as 65536, 64K, 25M or 1G: " + text;
        })
        ->type_name("SIZE");
}

std::optional<std::uint32_t> parse_number(std::string_view text) {
    const bool hex = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    if (hex) text.remove_prefix(2);
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

std::string number_complaint(const std::string& text) {
    return parse_number(text) ? "" : "not a number from 0 to 4294967295: " + text;
}
