// Spells out what a terminal would act on or not show; see the header.

#include "common/printable.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

struct code_point_range {
    char32_t m_first;
    char32_t m_last;
};

/// What is spelled out even if the output is UTF-8, in rising order: controls, format characters,
/// line and paragraph separators, everything that Unicode wants displays to ignore, and the
/// noncharacters of the first plane.
constexpr std::array spelled_out = {
    code_point_range{0x00, 0x1F},       code_point_range{0x7F, 0x9F},
    code_point_range{0xAD, 0xAD},       code_point_range{0x34F, 0x34F},
    code_point_range{0x600, 0x605},     code_point_range{0x61C, 0x61C},
    code_point_range{0x6DD, 0x6DD},     code_point_range{0x70F, 0x70F},
    code_point_range{0x890, 0x891},     code_point_range{0x8E2, 0x8E2},
    code_point_range{0x115F, 0x1160},   code_point_range{0x17B4, 0x17B5},
    code_point_range{0x180B, 0x180F},   code_point_range{0x200B, 0x200F},
    code_point_range{0x2028, 0x202E},   code_point_range{0x2060, 0x206F},
    code_point_range{0x3164, 0x3164},   code_point_range{0xFDD0, 0xFDEF},
    code_point_range{0xFE00, 0xFE0F},   code_point_range{0xFEFF, 0xFEFF},
    code_point_range{0xFFA0, 0xFFA0},   code_point_range{0xFFF0, 0xFFFB},
    code_point_range{0x110BD, 0x110BD}, code_point_range{0x110CD, 0x110CD},
    code_point_range{0x13430, 0x1343F}, code_point_range{0x1BCA0, 0x1BCA3},
    code_point_range{0x1D173, 0x1D17A}, code_point_range{0xE0000, 0xE0FFF},
};

} // namespace

bool is_spelled_out(char32_t code_point) {
    if (code_point >= ' ' && code_point < 0x7F) return false; // as most are
    const auto* const range = std::lower_bound(
        spelled_out.begin(), spelled_out.end(), code_point,
        [](const code_point_range& each, char32_t value) { return each.m_last < value; });
    const bool in_range = range != spelled_out.end() && range->m_first <= code_point;
    return in_range
           || (code_point & 0xFFFEU) == 0xFFFE; // the last two of each plane are noncharacters
}

namespace {

void append_byte(std::string& to, char32_t byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    to += "\\x";
    to += digits[byte / 16];
    to += digits[byte % 16];
}

void append_code_point(std::string& to, char32_t code_point) {
    std::array<char, 8> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(),
                                            static_cast<std::uint32_t>(code_point), 16);
    to.append("\\u{").append(digits.data(), end).append("}");
}

void append_printable(std::string& to, std::string_view text, const utf8_character& character,
                      character_set set) {
    const char32_t code_point = character.m_code_point;
    if (!character.m_valid || code_point < 0x20 || code_point == 0x7F) {
        append_byte(to, code_point);
    } else if (code_point == '\\') {
        to += "\\\\";
    } else if (is_spelled_out(code_point) || (set == character_set::ascii && code_point >= 0x80)) {
        append_code_point(to, code_point);
    } else {
        to.append(text.substr(0, character.m_bytes));
    }
}

/// The number of bytes at the front of the text that are printed as they are, each a character:
/// those of ASCII, except for controls and the backslash.
std::size_t plain_front(std::string_view text) {
    const auto is_plain = [](char c) { return c >= ' ' && c < 0x7F && c != '\\'; };
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_plain)
                                    - text.begin());
}

/// How many bytes a character has that begins with this byte; 0 if no character begins so.
std::size_t expected_bytes(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

/// Whether UTF-8 writes the code point in that number of bytes.
bool is_shortest_form(char32_t code_point, std::size_t bytes) {
    constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
    return code_point >= smallest[bytes] && !surrogate && code_point <= 0x10FFFF;
}

} // namespace

utf8_character first_character(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const utf8_character stray = {first, 1, false};
    const std::size_t bytes = expected_bytes(first);
    if (bytes == 1) return {first, 1, true};
    if (bytes == 0 || bytes > text.size()) return stray;
    char32_t code_point = first & (0x7FU >> bytes);
    for (std::size_t at = 1; at < bytes; ++at) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next & 0xC0U) != 0x80) return stray;
        code_point = code_point << 6U | (next & 0x3FU);
    }
    return is_shortest_form(code_point, bytes) ? utf8_character{code_point, bytes, true} : stray;
}

bool is_utf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const bool ascii = static_cast<unsigned char>(text[at]) < 0x80;
        const utf8_character character =
            ascii ? utf8_character{0, 1, true} : first_character(text.substr(at));
        if (!character.m_valid) return false;
        at += character.m_bytes;
    }
    return true;
}

std::string printable(std::string_view text, character_set set) {
    return printable_beginning(text, set, std::string_view::npos);
}

std::string printable_beginning(std::string_view text, character_set set, std::size_t most_bytes) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t plain = plain_front(text.substr(at, most_bytes - at));
        result += text.substr(at, plain);
        at += plain;
        if (at == text.size()) break;
        const utf8_character character = first_character(text.substr(at));
        if (character.m_bytes > most_bytes - at)
            return result + (set == character_set::utf8 ? "\u2026" : "...");
        append_printable(result, text.substr(at), character, set);
        at += character.m_bytes;
    }
    return result;
}
