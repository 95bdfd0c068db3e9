#include "field_text.h"

#include "../lines/character_class.h"

namespace mail_structure_detail::standard {

bool is_token_character(char c) noexcept {
    constexpr std::string_view specials = "()<>@,;:\\\"/[]?=";
    const auto byte = static_cast<unsigned char>(c);
    constexpr unsigned char del = 127;
    return byte > ' ' && byte != del && specials.find(c) == std::string_view::npos;
}

std::string_view trimmed_at_end(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    return trimmed_at_end(text);
}

bool same_word(std::string_view a, std::string_view b) noexcept {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
    };
    if (a.size() != b.size()) return false;
    for (std::size_t at = 0; at < a.size(); ++at)
        if (lower(a[at]) != lower(b[at])) return false;
    return true;
}

bool field_text::take(char c) noexcept {
    if (!is_at(c)) return false;
    ++m_at;
    return true;
}

std::string_view field_text::take_token() noexcept {
    const std::size_t begin = m_at;
    while (!at_end() && is_token_character(m_text[m_at])) ++m_at;
    return m_text.substr(begin, m_at - begin);
}

std::string_view field_text::take_to_semicolon_or_white_space() noexcept {
    const std::size_t begin = m_at;
    while (!at_end() && m_text[m_at] != ';' && !is_space(m_text[m_at])) ++m_at;
    return m_text.substr(begin, m_at - begin);
}

std::string_view field_text::take_white_space() noexcept {
    const std::size_t begin = m_at;
    while (!at_end() && is_space(m_text[m_at])) ++m_at;
    return m_text.substr(begin, m_at - begin);
}

void field_text::skip_white_space_and_comments() noexcept {
    for (;;) {
        take_white_space();
        if (!is_at('(')) return;
        skip_comment();
    }
}

void field_text::skip_comment() noexcept {
    std::size_t depth = 0;
    while (!at_end()) {
        const char c = m_text[m_at++];
        if (c == '(') ++depth;
        if (c == ')' && --depth == 0) return;
        if (c == '\\' && !at_end()) ++m_at;
    }
}

void field_text::take_quoted_string(std::string& value) {
    ++m_at;
    while (!at_end()) {
        char c = m_text[m_at++];
        if (c == '"') return;
        if (c == '\\' && !at_end()) c = m_text[m_at++];
        value += c;
    }
}

void field_text::skip_quoted_string() noexcept {
    ++m_at;
    while (!at_end()) {
        const char c = m_text[m_at++];
        if (c == '"') return;
        if (c == '\\' && !at_end()) ++m_at;
    }
}

void field_text::skip_to_semicolon() noexcept {
    while (!at_end() && !is_at(';')) {
        if (is_at('"'))
            skip_quoted_string();
        else if (is_at('('))
            skip_comment();
        else
            ++m_at;
    }
}

void field_text::skip_to_semicolon_outside_comments() noexcept {
    while (!at_end() && !is_at(';')) {
        if (is_at('('))
            skip_comment();
        else
            ++m_at;
    }
}

} // namespace mail_structure_detail::standard
