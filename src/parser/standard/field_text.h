// Reads the value of a structured field from left to right: white space, comments, tokens and
// quoted strings (RFC 5322 section 3.2, RFC 2045 section 5.1).

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_FIELD_TEXT_H
#define MAIL_STRUCTURE_PARSER_STANDARD_FIELD_TEXT_H

#include "../lines/character_class.h"
#include "../tree/first_room.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace mail_structure_detail::standard {

/// Without white space at both ends.
std::string_view trimmed(std::string_view text) noexcept;
/// Without white space at its end.
std::string_view trimmed_at_end(std::string_view text) noexcept;

/// Whether two texts of the size of Word hold the same letters, digits and hyphens.
/// @param text  see is_word
/// @param word  see is_word
template <class Word>
bool has_letters_of(const char* text, const char* word) noexcept {
    // The letters of the word have the bit that tells lower case from upper case. A digit or hyphen
    // with that bit changed is a byte that the text does not hold.
    constexpr auto lower_case = static_cast<Word>(0x2020202020202020);
    Word text_bytes = 0;
    Word word_bytes = 0;
    std::memcpy(&text_bytes, text, sizeof text_bytes);
    std::memcpy(&word_bytes, word, sizeof word_bytes);
    return (text_bytes | lower_case) == word_bytes;
}

/// Whether the text is the word, ASCII case ignored.
/// @param text  holds no byte below 33
/// @param word  at least 4 lower-case letters, digits and hyphens, and a NUL
template <std::size_t Size>
bool is_word(std::string_view text, const char (&word)[Size]) noexcept {
    constexpr std::size_t length = Size - 1;
    using piece = std::conditional_t<length >= 8, std::uint64_t, std::uint32_t>;
    static_assert(length >= sizeof(piece));
    if (text.size() != length) return false;
    for (std::size_t at = 0; at < length - sizeof(piece); at += sizeof(piece))
        if (!has_letters_of<piece>(text.data() + at, word + at)) return false;
    // The last piece may overlap the one before.
    constexpr std::size_t last = length - sizeof(piece);
    return has_letters_of<piece>(text.data() + last, word + last);
}

/// For each byte, whether a token may hold it: any above 32 but DEL and the special characters of
/// RFC 2045.
constexpr std::array<bool, 256> make_token_characters() noexcept {
    std::array<bool, 256> held{};
    for (std::size_t byte = ' ' + 1; byte < held.size(); ++byte) held[byte] = byte != 127;
    for (const char special : std::string_view("()<>@,;:\\\"/[]?="))
        held[static_cast<unsigned char>(special)] = false;
    return held;
}
inline constexpr std::array<bool, 256> token_characters = make_token_characters();

/// A text and a place in it. The take and skip functions move the place on from where it is; none
/// moves it back.
class field_text {
public:
    explicit field_text(std::string_view text) noexcept : m_text(text) {}

    bool at_end() const noexcept { return m_at == m_text.size(); }
    bool is_at(char c) const noexcept { return !at_end() && m_text[m_at] == c; }
    std::size_t place() const noexcept { return m_at; }

    /// Passes over the byte at the place if it is c. Returns whether it was.
    bool take(char c) noexcept {
        if (!is_at(c)) return false;
        ++m_at;
        return true;
    }
    /// The longest run of token characters at the place.
    std::string_view take_token() noexcept {
        return take_while([](char c) { return token_characters[static_cast<unsigned char>(c)]; });
    }
    /// The text up to the semicolon or white space that comes next, or up to the end.
    std::string_view take_to_semicolon_or_white_space() noexcept;
    /// The white space at the place.
    std::string_view take_white_space() noexcept { return take_while(is_space); }

    void skip_white_space_and_comments() noexcept {
        take_white_space();
        while (is_at('(')) {
            skip_comment();
            take_white_space();
        }
    }
    /// Passes over a comment, which must begin at the place. Comments nest, and a backslash quotes
    /// the byte behind it. A comment that is not finished ends with the text.
    void skip_comment() noexcept;
    /// Passes over a quoted string, which must begin at the place, and appends what it stands for
    /// to `value`, without quotes and backslashes. A quoted string that is not finished ends with
    /// the text. @throws std::bad_alloc
    void take_quoted_string(room_text& value);
    /// Moves to the next semicolon outside quoted strings and comments, or to the end.
    void skip_to_semicolon() noexcept;
    /// Moves to the next semicolon outside comments, or to the end.
    void skip_to_semicolon_outside_comments() noexcept;

private:
    /// The longest run of characters at the place that fulfil the test.
    template <class Test>
    std::string_view take_while(Test test) noexcept {
        const std::string_view rest = m_text.substr(m_at);
        std::size_t count = 0; // kept in a register, as m_at would not be
        while (count < rest.size() && test(rest[count])) ++count;
        m_at += count;
        return rest.substr(0, count);
    }
    void skip_quoted_string() noexcept;

    std::string_view m_text;
    std::size_t m_at = 0;
};

} // namespace mail_structure_detail::standard

#endif
