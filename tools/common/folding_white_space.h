// The white space between the words of a header field, that of folded lines included.

#ifndef TOOLS_COMMON_FOLDING_WHITE_SPACE_H
#define TOOLS_COMMON_FOLDING_WHITE_SPACE_H

#include <string_view>

constexpr std::string_view folding_white_space = " \t\r\n";

constexpr bool is_folding_white_space(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

/// The text without white space at its two ends.
constexpr std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_folding_white_space(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_folding_white_space(text.back())) text.remove_suffix(1);
    return text;
}

#endif
