#include "field_text.h"

#include <array>

namespace mail_structure_detail::standard {

namespace {

/// For each byte, whether a token may hold it: any above 32 but DEL and the special characters of
/// RFC 2045.
constexpr std::array<bool, 256> make_token_characters() noexcept {
    std::array<bool, 256> held{};
    for (std::size_t byte = ' ' + 1; byte < held.size(); ++byte) held[byte] = byte != 127;
    for (const char special : std::string_view("()<>@,;:\\\"/[]?="))
        held[static_cast<unsigned char>(special)] = false;
    return held;
}

bool is_token_character(char c) noexcept {
    static constexpr std::array<bool, 256> held = make_token_characters();
    return held[static_cast<unsigned char>(c)];
}

} // namespace

std::string_view trimmed_at_end(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    return trimmed_at_end(text);
}

bool has_letters_of(std::string_view text, std::string_view word) noexcept {
    // The letters of the word have the bit that tells lower case from upper case. A digit or hyphen
    // with that bit changed is a byte that the text does not hold.
    constexpr int lower_case = 0x20;
    for (std::size_t at = 0; at < word.size(); ++at)
        if ((text[at] | lower_case) != word[at]) return false;
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
