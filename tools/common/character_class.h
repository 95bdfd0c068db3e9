// Classes of ASCII characters. No locale changes them, and bytes above 127 belong to none.

#ifndef TOOLS_COMMON_CHARACTER_CLASS_H
#define TOOLS_COMMON_CHARACTER_CLASS_H

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_capital(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool is_letter(char c) { return is_capital(c) || (c >= 'a' && c <= 'z'); }

/// SP or HTAB.
constexpr bool is_blank(char c) { return c == ' ' || c == '\t'; }
/// SP, HTAB, LF, VT, FF or CR.
constexpr bool is_white_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

#endif
