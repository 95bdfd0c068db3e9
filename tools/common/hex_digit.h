// Hexadecimal digits.

#ifndef TOOLS_COMMON_HEX_DIGIT_H
#define TOOLS_COMMON_HEX_DIGIT_H

#include <optional>
#include <string_view>

/// The value of a hexadecimal digit, of which lower-case ones are allowed; nothing for any other
/// character.
constexpr std::optional<unsigned> hex_digit_value(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    return std::nullopt;
}

/// The byte that the two hexadecimal digits at the beginning of the text stand for; nothing if the
/// text does not begin with two.
constexpr std::optional<char> hex_byte(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    const std::optional<unsigned> high = hex_digit_value(text[0]);
    const std::optional<unsigned> low = hex_digit_value(text[1]);
    if (!high || !low) return std::nullopt;
    return static_cast<char>(*high * 16 + *low);
}

#endif
