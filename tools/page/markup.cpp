// Escapes text, and writes numbers for people; see the header.

#include "page/markup.h"

std::string text_node(std::string_view text, std::size_t most_bytes, character_set set) {
    const std::string shown = printable_beginning(text, set, most_bytes);
    std::string result;
    result.reserve(shown.size());
    for (const char byte : shown) {
        switch (byte) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        default: result += byte;
        }
    }
    return result;
}

std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t left = digits.size(); left > 3; left -= 3) digits.insert(left - 3, 1, ',');
    return digits;
}

std::string counted(std::uint64_t number, const std::string& one, const std::string& several) {
    return grouped(number) + ' ' + (number == 1 ? one : several);
}

std::string place_text(std::uint32_t begin, std::uint32_t end) {
    return std::to_string(begin) + '-' + std::to_string(end);
}

std::string percent_text(std::uint64_t part, std::uint64_t whole) {
    if (part == whole) return "100 %";
    const std::uint64_t tenths = part * 1000 / whole;
    if (tenths == 0) return "under 0.1 %";
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + " %";
}
