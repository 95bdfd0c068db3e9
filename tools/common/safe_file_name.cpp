// Takes a sender's name character by character; see the header.

#include "common/safe_file_name.h"

#include "common/ascii_case.h"
#include "common/character_class.h"
#include "common/printable.h"

#include <algorithm>
#include <array>

namespace {

/// A longer text after the last dot is no extension but part of the name.
constexpr std::size_t longest_extension = 20;

/// Whether the character is a space, but not that of ASCII.
bool is_other_space(char32_t code_point) {
    return code_point == 0xA0 || code_point == 0x1680
           || (code_point >= 0x2000 && code_point <= 0x200A) || code_point == 0x202F
           || code_point == 0x205F || code_point == 0x3000;
}

void append_safe_character(std::string& to, std::string_view text,
                           const utf8_character& character) {
    const char32_t code_point = character.m_code_point;
    constexpr std::string_view special = "<>:\"|?*";
    if (!character.m_valid || is_spelled_out(code_point)
        || (code_point < 0x80
            && special.find(static_cast<char>(code_point)) != std::string_view::npos)) {
        to += '_';
    } else if (is_other_space(code_point)) {
        to += ' ';
    } else {
        to += text.substr(0, character.m_bytes);
    }
}

void trim_end(std::string& name) { name.erase(name.find_last_not_of(". ") + 1); }

void trim(std::string& name) {
    trim_end(name);
    name.erase(0, name.find_first_not_of(' '));
}

/// Where the extension begins, with its dot; the size of the name if it has none.
std::size_t extension_of(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const bool is_extension = dot != std::string_view::npos && dot != 0
                              && name.size() - dot <= longest_extension
                              && name.find(' ', dot) == std::string_view::npos;
    return is_extension ? dot : name.size();
}

/// Whether Windows takes the name for that of a device, whatever its extension.
bool is_device(std::string_view name) {
    std::string_view stem = name.substr(0, name.find('.'));
    stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
    constexpr std::array<std::string_view, 7> devices = {"con",    "prn",     "aux",   "nul",
                                                         "conin$", "conout$", "clock$"};
    if (std::any_of(devices.begin(), devices.end(),
                    [stem](std::string_view device) { return equal_ignoring_case(stem, device); }))
        return true;
    const std::string_view port = stem.substr(0, 3);
    if (!equal_ignoring_case(port, "com") && !equal_ignoring_case(port, "lpt")) return false;
    // The superscripts one, two and three count as digits.
    constexpr std::array<std::string_view, 3> superscripts = {"\u00b9", "\u00b2", "\u00b3"};
    const std::string_view number = stem.substr(3);
    return (number.size() == 1 && is_digit(number.front()))
           || std::find(superscripts.begin(), superscripts.end(), number) != superscripts.end();
}

/// Cuts the part of the name before its extension.
void shorten(std::string& name) {
    if (name.size() <= longest_safe_name) return;
    const std::string extension = name.substr(extension_of(name));
    name.resize(name.size() - extension.size());
    std::size_t end = longest_safe_name - extension.size();
    while ((static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80) --end; // within a character
    name.resize(end);
    trim_end(name);
    name += extension;
}

} // namespace

std::string safe_file_name(std::string_view name) {
    const std::size_t separator = name.find_last_of("/\\");
    if (separator != std::string_view::npos) name.remove_prefix(separator + 1);
    std::string safe;
    while (!name.empty()) {
        const utf8_character character = first_character(name);
        append_safe_character(safe, name, character);
        name.remove_prefix(character.m_bytes);
    }
    trim(safe);
    if (safe.empty()) return safe;
    if (safe.front() == '.' || safe.front() == '-') safe.front() = '_';
    shorten(safe); // this may leave the name of a device
    if (is_device(safe)) safe.insert(0, 1, '_');
    shorten(safe);
    return safe;
}

std::string numbered_file_name(const std::string& name, std::uint64_t number) {
    std::string numbered = name;
    return numbered.insert(extension_of(name), '-' + std::to_string(number));
}
