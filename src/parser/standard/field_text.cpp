#include "field_text.h"

namespace mail_structure_detail::standard {

std::string_view trimmed_at_end(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    return trimmed_at_end(text);
}

std::string_view field_text::take_to_semicolon_or_white_space() noexcept {
    return take_while([](char c) { return c != ';' && !is_space(c); });
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

void field_text::take_quoted_string(room_text& value) {
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
