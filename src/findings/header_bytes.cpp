#include "header_bytes.h"

#include "../parser/lines/character_class.h"
#include "../parser/standard/field_text.h"
#include "line_bytes.h"

#include <array>

namespace mail_structure_detail::findings {

namespace {

/// The most bytes of an encoded word (RFC 2047 section 2).
constexpr std::size_t longest_encoded_word = 75;

unsigned char byte_at(std::string_view text, std::size_t at) noexcept {
    return static_cast<unsigned char>(text[at]);
}

/// The length of the UTF-8 sequence that begins with the byte; 0 if none does. The sequence is
/// looked at by its first two bytes, which rule out longer forms than needed, surrogates, and
/// characters past the last one (RFC 3629 section 4).
std::size_t sequence_length(std::string_view text, std::size_t at) noexcept {
    struct sequence {
        unsigned char m_first_from, m_first_to, m_second_from, m_second_to;
        std::size_t m_length;
    };
    constexpr std::array<sequence, 9> sequences{{{0x00, 0x7F, 0x00, 0xFF, 1},
                                                 {0xC2, 0xDF, 0x80, 0xBF, 2},
                                                 {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                                 {0xE1, 0xEC, 0x80, 0xBF, 3},
                                                 {0xED, 0xED, 0x80, 0x9F, 3},
                                                 {0xEE, 0xEF, 0x80, 0xBF, 3},
                                                 {0xF0, 0xF0, 0x90, 0xBF, 4},
                                                 {0xF1, 0xF3, 0x80, 0xBF, 4},
                                                 {0xF4, 0xF4, 0x80, 0x8F, 4}}};
    const unsigned char first = byte_at(text, at);
    for (const sequence& known : sequences) {
        if (first < known.m_first_from || first > known.m_first_to) continue;
        if (known.m_length == 1) return 1;
        if (text.size() - at < known.m_length) return 0;
        const unsigned char second = byte_at(text, at + 1);
        return second >= known.m_second_from && second <= known.m_second_to ? known.m_length : 0;
    }
    return 0;
}

bool is_utf8(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t length = sequence_length(text, at);
        if (length == 0) return false;
        for (std::size_t next = at + 2; next < at + length; ++next)
            if (byte_at(text, next) < 0x80 || byte_at(text, next) > 0xBF) return false;
        at += length;
    }
    return true;
}

/// The text that begins as an encoded word, with charset and encoding, at the front; empty if none
/// does. It ends with "?=", with white space, or with the line.
struct encoded_word {
    std::string_view m_text;
    bool m_is_good = false;
};

std::size_t token_length(std::string_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size()
           && standard::token_characters[static_cast<unsigned char>(text[count])])
        ++count;
    return count;
}

/// @param text  begins with "=?"
encoded_word encoded_word_at(std::string_view text) noexcept {
    const std::size_t encoding = 2 + token_length(text.substr(2)) + 1; // past the second "?"
    if (encoding == 3 || text.size() < encoding + 2 || text[encoding - 1] != '?'
        || text[encoding + 1] != '?'
        || std::string_view("BbQq").find(text[encoding]) == std::string_view::npos)
        return {};
    std::size_t end = encoding + 2;
    while (end < text.size() && text[end] != '?' && !is_space(text[end])) ++end;
    const bool is_closed = text.substr(end).starts_with("?=");
    if (is_closed) end += 2;
    return {text.substr(0, end), is_closed && end <= longest_encoded_word};
}

/// Reports the first encoded word that is none.
void check_encoded_words(const message_line& line, const reporter& report) {
    const std::string_view text = line.m_text;
    std::size_t at = text.find("=?");
    while (at != not_found) {
        const encoded_word found = encoded_word_at(text.substr(at));
        if (!found.m_text.empty() && !found.m_is_good)
            return report.give(name::encoded_word_invalid, line.at(at, found.m_text.size()));
        at = text.find("=?", at + (found.m_text.empty() ? 2 : found.m_text.size()));
    }
}

} // namespace

void check_header_bytes(const message_line& line, const reporter& report) {
    const line_bytes bytes = bytes_of(line);
    if (bytes.m_nul != not_found) report.give(name::nul, line.at(bytes.m_nul, 1));
    if (bytes.m_bare_cr != not_found) report.give(name::bare_cr, line.at(bytes.m_bare_cr, 1));
    if (bytes.m_8_bit != not_found)
        report.give(name::header_not_ascii, is_utf8(line.m_text) ? level::note : level::fault,
                    line.at(bytes.m_8_bit, bytes.m_8_bit_length));
    if (line.m_text.size() > longest_line) report.give(name::line_too_long, line.whole());
    check_encoded_words(line, report);
}

} // namespace mail_structure_detail::findings
