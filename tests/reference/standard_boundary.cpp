#include "reference/standard_boundary.h"

#include "reference/standard_characters.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace reference::standard {

namespace {

/// The value of a hexadecimal digit, or -1 where the character is none.
int hexadecimal(char c) {
    if (is_digit(c)) return c - '0';
    const char letter = lower_case(c);
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    return -1;
}

/// A percent sign without two hexadecimal digits behind it stays.
std::string percent_decoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexadecimal(text[i + 1]) : -1;
        const int low = high >= 0 ? hexadecimal(text[i + 2]) : -1;
        if (low < 0) {
            decoded += text[i];
        } else {
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        }
    }
    return decoded;
}

/// Without "charset'language'". A text with fewer than two apostrophes has no such prefix.
std::string without_charset_and_language(const std::string& text) {
    const std::size_t first = text.find('\'');
    if (first == std::string::npos) return text;
    const std::size_t second = text.find('\'', first + 1);
    if (second == std::string::npos) return text;
    return text.substr(second + 1);
}

/// One of the parameters "boundary*0", "boundary*1*" and so on.
struct section {
    std::string m_number; // without leading zeros, so the number 0 is empty
    bool m_extended = false;
    std::string m_value;
};

/// Nothing where the parameter is no section of a boundary.
std::optional<section> section_of(const parameter& given) {
    const std::string_view prefix = "boundary*";
    std::string_view name = given.first;
    if (!same_name(name.substr(0, prefix.size()), prefix)) return std::nullopt;
    name.remove_prefix(prefix.size());
    section found;
    found.m_extended = !name.empty() && name.back() == '*';
    if (found.m_extended) name.remove_suffix(1);
    if (name.empty() || !std::all_of(name.begin(), name.end(), is_digit)) return std::nullopt;
    while (!name.empty() && name.front() == '0') name.remove_prefix(1);
    found.m_number = name;
    found.m_value = given.second;
    return found;
}

/// Whether the number of one section is lower. Numbers may have any count of digits.
bool comes_before(const section& one, const section& other) {
    if (one.m_number.size() != other.m_number.size())
        return one.m_number.size() < other.m_number.size();
    return one.m_number < other.m_number;
}

std::optional<std::string> joined_sections(const std::vector<parameter>& parameters) {
    std::vector<section> sections;
    for (const parameter& given : parameters) {
        const std::optional<section> next = section_of(given);
        if (next) sections.push_back(*next);
    }
    if (sections.empty()) return std::nullopt;
    std::stable_sort(sections.begin(), sections.end(), comes_before);

    std::string joined;
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const section& here = sections[i];
        const bool is_lowest = i == 0;
        if (!is_lowest && here.m_number == sections[i - 1].m_number) continue; // the first counts
        std::string value = here.m_value;
        if (here.m_extended && is_lowest) value = without_charset_and_language(value);
        if (here.m_extended) value = percent_decoded(value);
        joined += value;
    }
    return joined;
}

/// The value of the first parameter of this name.
std::optional<std::string> first_value(const std::vector<parameter>& parameters,
                                       std::string_view name) {
    for (const parameter& given : parameters)
        if (same_name(given.first, name)) return given.second;
    return std::nullopt;
}

std::optional<std::string> boundary_as_given(const std::vector<parameter>& parameters) {
    const std::optional<std::string> plain = first_value(parameters, "boundary");
    if (plain) return plain;
    const std::optional<std::string> extended = first_value(parameters, "boundary*");
    if (extended) return percent_decoded(without_charset_and_language(*extended));
    return joined_sections(parameters);
}

} // namespace

std::optional<std::string> boundary_of(const std::vector<parameter>& parameters) {
    const std::optional<std::string> given = boundary_as_given(parameters);
    if (!given) return std::nullopt;
    return without_white_space_at_its_end(*given);
}

} // namespace reference::standard
