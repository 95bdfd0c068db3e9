// Classes of characters, as the classic locale has them. A host's setlocale changes nothing here,
// and bytes above 127 belong to no class.

#ifndef MAIL_STRUCTURE_PARSER_LINES_CHARACTER_CLASS_H
#define MAIL_STRUCTURE_PARSER_LINES_CHARACTER_CLASS_H

#include <cstdint>

namespace mail_structure_detail {

/// White space: SP, HTAB, LF, VT, FF or CR.
constexpr bool is_space(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr bool is_letter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

constexpr bool is_hex_digit(char c) noexcept {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// SP or HTAB.
constexpr bool is_blank(char c) noexcept { return c == ' ' || c == '\t'; }

/// Which characters a field name may hold; each set of rules chooses one of these.
enum class field_names : std::uint8_t {
    letters,  // letters and hyphens
    printable // every printable ASCII character but the colon (RFC 5322 section 2.2)
};

constexpr bool is_name_character(char c, field_names names) noexcept {
    if (names == field_names::letters) return is_letter(c) || c == '-';
    return c > ' ' && c < '\x7F' && c != ':'; // no byte above 127, whether char is signed or not
}

} // namespace mail_structure_detail

#endif
