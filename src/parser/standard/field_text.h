// Reads the value of a structured field from left to right: white space, comments, tokens and
// quoted strings (RFC 5322 section 3.2, RFC 2045 section 5.1).

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_FIELD_TEXT_H
#define MAIL_STRUCTURE_PARSER_STANDARD_FIELD_TEXT_H

#include "../lines/character_class.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace mail_structure_detail::standard {

/// Without white space at both ends.
std::string_view trimmed(std::string_view text) noexcept;
/// Without white space at its end.
std::string_view trimmed_at_end(std::string_view text) noexcept;

/// Does what is_word does, for a text that is as long as the word.
bool has_letters_of(std::string_view text, std::string_view word) noexcept;
/// Whether the text is the word, ASCII case ignored.
/// @param text  holds no byte below 33
/// @param word  of lower-case letters, digits and hyphens
inline bool is_word(std::string_view text, std::string_view word) noexcept {
    return text.size() == word.size() && has_letters_of(text, word);
}

/// A text and a place in it. The take and skip functions move the place on from where it is; none
/// moves it back.
class field_text {
public:
    explicit field_text(std::string_view text) noexcept : m_text(text) {}

    bool at_end() const noexcept { return m_at == m_text.size(); }
    bool is_at(char c) const noexcept { return !at_end() && m_text[m_at] == c; }
    std::size_t place() const noexcept { return m_at; }

    /// Passes over the byte at the place if it is c. Returns whether it was.
    bool take(char c) noexcept;
    /// The longest run of token characters at the place.
    std::string_view take_token() noexcept;
    /// The text up to the semicolon or white space that comes next, or up to the end.
    std::string_view take_to_semicolon_or_white_space() noexcept;
    /// The white space at the place.
    std::string_view take_white_space() noexcept;

    void skip_white_space_and_comments() noexcept {
        while (!at_end() && (is_space(m_text[m_at]) || m_text[m_at] == '(')) {
            if (m_text[m_at] == '(')
                skip_comment();
            else
                ++m_at;
        }
    }
    /// Passes over a comment, which must begin at the place. Comments nest, and a backslash quotes
    /// the byte behind it. A comment that is not finished ends with the text.
    void skip_comment() noexcept;
    /// Passes over a quoted string, which must begin at the place, and appends what it stands for
    /// to `value`, without quotes and backslashes. A quoted string that is not finished ends with
    /// the text. @throws std::bad_alloc
    void take_quoted_string(std::string& value);
    /// Moves to the next semicolon outside quoted strings and comments, or to the end.
    void skip_to_semicolon() noexcept;
    /// Moves to the next semicolon outside comments, or to the end.
    void skip_to_semicolon_outside_comments() noexcept;

private:
    void skip_quoted_string() noexcept;

    std::string_view m_text;
    std::size_t m_at = 0;
};

} // namespace mail_structure_detail::standard

#endif
