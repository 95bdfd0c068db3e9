// Text that header fields carry in other characters than ASCII: encoded words and charsets.

#ifndef TOOLS_COMMON_ENCODED_TEXT_H
#define TOOLS_COMMON_ENCODED_TEXT_H

#include <optional>
#include <string>
#include <string_view>

/// The text in UTF-8, or nothing where it is not valid in its charset or the charset is none of the
/// usual ones of mail. The sender names the charset, so it is looked up in a list before the
/// system's converter gets to see it.
std::optional<std::string> to_utf8(std::string_view text, std::string_view charset);

/// The text with its encoded words (RFC 2047: "=?utf-8?q?caf=c3=a9?=") decoded to UTF-8 and the
/// blanks between two of them left out. A character may be spread over words of one charset. What
/// cannot be decoded stays as written. Linear.
std::string decode_encoded_words(std::string_view text);

/// The text with each percent sign and the two hexadecimal digits after it replaced by the byte
/// that they stand for.
std::string decode_percent_signs(std::string_view text);

#endif
