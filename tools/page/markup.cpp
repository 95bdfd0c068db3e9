// Escapes text, and writes numbers for people; see the header.

#include "page/markup.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

void append_escaped(std::string& out, std::string_view text) {
    for (const char byte : text) {
        switch (byte) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        default: out += byte;
        }
    }
}

} // namespace

std::string text_node(std::string_view text, std::size_t most_bytes, character_set set) {
    const std::string shown = printable_beginning(text, set, most_bytes);
    std::string result;
    result.reserve(shown.size());
    append_escaped(result, shown);
    return result;
}

std::string copied_text_node(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const utf8_character character = first_character(text);
        const bool is_shown = character.m_valid && character.m_code_point >= 0x20
                              && character.m_code_point != 0x7f
                              && !is_spelled_out(character.m_code_point);
        append_escaped(result, is_shown ? text.substr(0, character.m_bytes) : "\xef\xbf\xbd");
        text.remove_prefix(character.m_bytes);
    }
    return result;
}

std::string counted(std::uint64_t number, const std::string& one, const std::string& several) {
    return grouped(number) + ' ' + (number == 1 ? one : several);
}

std::string place_text(std::uint32_t begin, std::uint32_t end) {
    return std::to_string(begin) + '-' + std::to_string(end);
}

std::string percent_text(std::uint64_t part, std::uint64_t whole) {
    if (part == 0) return "0 %";
    if (part >= whole) return "100 %";
    // Beyond some petabytes, the last digits of the whole do not matter.
    constexpr std::uint64_t most_exact = std::numeric_limits<std::uint64_t>::max() / 1000;
    const std::uint64_t tenths = part <= most_exact
                                     ? part * 1000 / whole
                                     : std::min<std::uint64_t>(part / (whole / 1000), 999);
    if (tenths == 0) return "under 0.1 %";
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + " %";
}

std::string rounded_bytes(std::uint64_t bytes) {
    if (bytes < 1000) return counted(bytes, "byte", "bytes");
    constexpr std::array units = {"kB", "MB", "GB", "TB", "PB", "EB"};
    std::size_t unit = 0;
    for (; bytes >= 1000000; ++unit) bytes /= 1000;
    return std::to_string(bytes / 1000) + '.' + std::to_string(bytes % 1000 / 100) + ' '
           + units.at(unit);
}
