// Comparison of names in which the case of letters does not matter: those of fields, parameters,
// encodings and charsets.

#ifndef TOOLS_COMMON_ASCII_CASE_H
#define TOOLS_COMMON_ASCII_CASE_H

#include <algorithm>
#include <string_view>

constexpr char lower_case(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Whether the two are equal but for the case of ASCII letters.
constexpr bool equal_ignoring_case(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lower_case(a) == lower_case(b); });
}

#endif
