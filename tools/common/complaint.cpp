// Messages on standard error, and the check that standard output took what it was given.

#include "common/complaint.h"

#include <cerrno>
#include <cstddef>
#include <iostream>
#include <system_error>

namespace {

/// U+0080 to U+009F are control characters too; UTF-8 writes them C2 80 to C2 9F.
bool begins_wide_control(std::string_view text) {
    return text.size() >= 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) <= 0x9F;
}

void append_hex(std::string& to, char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    to += "\\x";
    to += digits[value / 16];
    to += digits[value % 16];
}

} // namespace

std::string escaped(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte == '\\') {
            result += "\\\\";
        } else if (begins_wide_control(text.substr(at))) {
            append_hex(result, byte);
            append_hex(result, text[++at]);
        } else if (static_cast<unsigned char>(byte) < 0x20 || byte == '\x7F') {
            append_hex(result, byte);
        } else {
            result += byte;
        }
    }
    return result;
}

std::string display_name(const std::string& file_name) {
    return file_name == "-" ? "standard input" : escaped(file_name);
}

void complain(const std::string& what) { std::cerr << "mailstructure: " + what + '\n' << std::flush; }

void complain_about_input(const std::string& file_name, const std::string& what, std::uint64_t offset) {
    complain(display_name(file_name) + ": " + what + " at byte " + std::to_string(offset));
}

std::string system_error_text(int error) { return std::generic_category().message(error); }

bool output_got_out() {
    if (std::cout.flush()) return true;
    const int error = errno;
    const std::string reason = error != 0 ? system_error_text(error) : "output error";
    if (error != EPIPE) complain("standard output: cannot write: " + reason);
    return false;
}
