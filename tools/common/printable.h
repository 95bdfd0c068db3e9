// Makes text from a message, or a file's name, safe to print on a terminal: whatever a terminal
// would act on, or would not show, is spelled out.

#ifndef TOOLS_COMMON_PRINTABLE_H
#define TOOLS_COMMON_PRINTABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The characters that the output may hold.
enum class character_set : std::uint8_t { ascii, utf8 };

/// The text with these replaced:
/// - a backslash by two backslashes;
/// - an ASCII control character, and each byte that is not part of valid UTF-8, by \xNN (two
///   hexadecimal digits);
/// - a character that is not shown, or that changes the order or the lines of the text around it,
///   by \u{N} (its code point in hexadecimal): the controls U+0080 to U+009F, direction marks and
///   overrides, line and paragraph separators, zero-width and other invisible characters, and code
///   points that are no characters;
/// - with character_set::ascii, every other character outside ASCII by \u{N} too.
/// The result is valid UTF-8 and one line, and the text can be reconstructed from it. Linear.
std::string printable(std::string_view text, character_set set);

/// As printable(), but a text of more than that many bytes is cut and ends with "..." (an ellipsis
/// in UTF-8). No character is cut in two.
std::string printable_beginning(std::string_view text, character_set set, std::size_t most_bytes);

/// Whether the character is spelled out even if the output is UTF-8.
bool is_spelled_out(char32_t code_point);

/// A character and the number of its bytes. A byte that is not part of valid UTF-8 counts as a
/// character of its own, which is not valid.
struct utf8_character {
    char32_t m_code_point = 0; // the byte itself if not valid
    std::size_t m_bytes = 1;
    bool m_valid = false;
};
/// The first character of a text that is not empty. Valid is what RFC 3629 allows: the shortest
/// form, no surrogates, at most U+10FFFF.
utf8_character first_character(std::string_view text);

/// Whether all of the text is valid UTF-8.
bool is_utf8(std::string_view text);

#endif
