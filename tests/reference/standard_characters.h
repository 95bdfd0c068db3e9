// The small rules of the rule set "standard": what single bytes are, and how texts are compared and
// cut. Nothing here depends on the locale. Bytes are taken as unsigned: those above 127 come after
// DEL.

#ifndef TESTS_REFERENCE_STANDARD_CHARACTERS_H
#define TESTS_REFERENCE_STANDARD_CHARACTERS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace reference::standard {

inline bool is_blank(char c) { return c == ' ' || c == '\t'; }

inline bool is_white_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Printable ASCII but the colon.
inline bool is_field_name_byte(char c) { return c >= 33 && c <= 126 && c != ':'; }

/// What types, subtypes, encodings and parameter names are made of. An 8-bit byte is one of them.
inline bool is_token_byte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_special = std::string_view("()<>@,;:\\\"/[]?=").find(c) != std::string_view::npos;
    return byte > 32 && byte != 127 && !is_special;
}

inline char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whole names are compared, ASCII case ignored.
inline bool same_name(std::string_view name, std::string_view other) {
    if (name.size() != other.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i)
        if (lower_case(name[i]) != lower_case(other[i])) return false;
    return true;
}

inline std::string without_white_space_at_its_end(std::string text) {
    while (!text.empty() && is_white_space(text.back())) text.pop_back();
    return text;
}

inline std::string without_white_space_around(std::string text) {
    std::size_t first = 0;
    while (first < text.size() && is_white_space(text[first])) ++first;
    return without_white_space_at_its_end(text.substr(first));
}

} // namespace reference::standard

#endif
