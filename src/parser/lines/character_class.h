// Classes of characters in header lines, as the classic locale has them. A host's setlocale changes
// nothing here, and bytes above 127 belong to no class.

#ifndef MAIL_STRUCTURE_PARSER_LINES_CHARACTER_CLASS_H
#define MAIL_STRUCTURE_PARSER_LINES_CHARACTER_CLASS_H

namespace mail_structure_detail {

constexpr bool is_space(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr bool is_letter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// What a field name may hold here: letters and hyphens.
constexpr bool is_name_character(char c) noexcept { return is_letter(c) || c == '-'; }

} // namespace mail_structure_detail

#endif
