// Chooses between three ways to write a word; see the header.

#include "common/shell_word.h"

#include "common/character_class.h"
#include "common/printable.h"

#include <algorithm>

namespace {

bool is_plain(char byte) {
    constexpr std::string_view others = "_./:,@%+=-";
    return is_letter(byte) || is_digit(byte) || others.find(byte) != std::string_view::npos;
}

bool is_shown(const utf8_character& character) {
    return character.m_valid && character.m_code_point >= 0x20 && character.m_code_point != 0x7f
           && !is_spelled_out(character.m_code_point);
}

bool all_is_shown(std::string_view text) {
    while (!text.empty()) {
        const utf8_character character = first_character(text);
        if (!is_shown(character)) return false;
        text.remove_prefix(character.m_bytes);
    }
    return true;
}

/// "it's" becomes 'it'\''s'.
std::string in_quotes(std::string_view text) {
    std::string word = "'";
    for (const char byte : text) {
        if (byte == '\'')
            word += "'\\''";
        else
            word += byte;
    }
    return word + '\'';
}

/// "a\n" becomes $'a\x0a'.
std::string spelled_out(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string word = "$'";
    while (!text.empty()) {
        const utf8_character character = first_character(text);
        for (const char byte : text.substr(0, character.m_bytes)) {
            const auto value = static_cast<unsigned char>(byte);
            if (!is_shown(character)) {
                word += "\\x";
                word += digits[value >> 4U];
                word += digits[value & 15U];
            } else {
                if (byte == '\'' || byte == '\\') word += '\\';
                word += byte;
            }
        }
        text.remove_prefix(character.m_bytes);
    }
    return word + '\'';
}

} // namespace

std::string shell_word(std::string_view name) {
    std::string whole = (!name.empty() && name.front() == '-' ? "./" : "") + std::string(name);
    const bool is_plain_word = !whole.empty() && std::all_of(whole.begin(), whole.end(), is_plain)
                               && whole.front() != '='; // zsh looks up "=tar" among the programs
    if (is_plain_word) return whole;
    return all_is_shown(whole) ? in_quotes(whole) : spelled_out(whole);
}
