#include "boundary.h"

#include "../lines/character_class.h"
#include "field_text.h"

#include <algorithm>
#include <cstddef>

namespace mail_structure_detail::standard {

namespace {

constexpr char boundary_name[] = "boundary";
constexpr std::size_t name_bytes = sizeof boundary_name - 1;

/// The value of a hexadecimal digit; -1 for any other character.
int hex_digit(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Appends the text, with the byte that it encodes in place of each "%41" and the like. A "%"
/// without two hexadecimal digits behind it stays.
void append_decoded(room_text& out, std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '%' && text.size() - at > 2) {
            const int high = hex_digit(text[at + 1]);
            const int low = hex_digit(text[at + 2]);
            if (high >= 0 && low >= 0) {
                out += static_cast<char>(high * 16 + low);
                at += 2;
                continue;
            }
        }
        out += text[at];
    }
}

/// The text without its charset and language, which end with the second quote: "us-ascii'en'ab"
/// gives "ab". Neither is applied: a boundary is compared byte for byte.
std::string_view without_charset(std::string_view text) noexcept {
    const std::size_t first = text.find('\'');
    if (first == std::string_view::npos) return text;
    const std::size_t second = text.find('\'', first + 1);
    return second == std::string_view::npos ? text : text.substr(second + 1);
}

bool is_number(std::string_view text) noexcept {
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

} // namespace

void boundary_parameter::take(std::string_view name, std::string_view value) {
    if (m_is_plain || !is_word(name.substr(0, name_bytes), boundary_name)) return;
    name.remove_prefix(name_bytes);
    if (name.empty()) {
        m_value = value;
        m_is_plain = true;
    } else if (name == "*") {
        if (!m_extended) m_extended = value;
    } else if (name.front() == '*') {
        take_section(name.substr(1), value);
    }
}

void boundary_parameter::take_section(std::string_view number, std::string_view value) {
    const bool encoded = number.ends_with('*');
    if (encoded) number.remove_suffix(1);
    if (!is_number(number)) return;
    while (number.starts_with('0')) number.remove_prefix(1);
    m_sections.push_back({std::string(number), std::string(value), encoded});
}

std::optional<std::string_view> boundary_parameter::value() {
    if (!m_is_plain) {
        if (!m_extended && m_sections.empty()) return std::nullopt;
        if (m_extended)
            append_decoded(m_value, without_charset(*m_extended));
        else
            join_sections();
    }
    return trimmed_at_end(m_value);
}

/// Puts the values of the sections together in the order of their numbers, which may leave gaps.
/// Where several sections have the same number, the first of them counts.
void boundary_parameter::join_sections() {
    const auto is_before = [](const section& a, const section& b) {
        if (a.m_number.size() != b.m_number.size()) return a.m_number.size() < b.m_number.size();
        return a.m_number < b.m_number;
    };
    std::stable_sort(m_sections.begin(), m_sections.end(), is_before);
    const section* last = nullptr;
    for (const section& present : m_sections) {
        if (last != nullptr && last->m_number == present.m_number) continue;
        if (!present.m_encoded)
            m_value += present.m_value;
        else
            append_decoded(m_value,
                           last == nullptr ? without_charset(present.m_value) : present.m_value);
        last = &present;
    }
}

} // namespace mail_structure_detail::standard
