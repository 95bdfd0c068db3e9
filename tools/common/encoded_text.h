// Text of header fields that is not ASCII: encoded words, percent signs and charsets.

#ifndef TOOLS_COMMON_ENCODED_TEXT_H
#define TOOLS_COMMON_ENCODED_TEXT_H

#include <optional>
#include <string>
#include <string_view>

/// The text in UTF-8; nothing if the text is not valid in its charset, or if that charset is not in
/// common use in mail. The name of the charset comes from the sender, so it is looked up in a list
/// and never handed to the system's converter.
std::optional<std::string> to_utf8(std::string_view text, std::string_view charset);

/// The text with its encoded words (RFC 2047: "=?utf-8?q?caf=c3=a9?=") decoded to UTF-8 and the
/// white space between two of them left out. One character may be spread over several words of the
/// same charset. What cannot be decoded stays as written. Linear.
std::string decode_encoded_words(std::string_view text);

/// The text with each percent sign and the two hexadecimal digits after it replaced by the byte
/// that they stand for.
std::string decode_percent_signs(std::string_view text);

#endif
