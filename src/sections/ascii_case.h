// Comparison of words and field names in which the case of ASCII letters does not matter.

#ifndef MAIL_STRUCTURE_SECTIONS_ASCII_CASE_H
#define MAIL_STRUCTURE_SECTIONS_ASCII_CASE_H

#include <algorithm>
#include <string_view>

namespace mail_structure_detail {

constexpr char in_lower_case(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

inline bool equal_ignoring_case(std::string_view one, std::string_view other) noexcept {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return in_lower_case(a) == in_lower_case(b); });
}

inline bool less_ignoring_case(std::string_view one, std::string_view other) noexcept {
    return std::lexicographical_compare(
        one.begin(), one.end(), other.begin(), other.end(),
        [](char a, char b) { return in_lower_case(a) < in_lower_case(b); });
}

} // namespace mail_structure_detail

#endif
