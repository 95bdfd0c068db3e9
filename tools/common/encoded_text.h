// Text of header fields that is not ASCII: encoded words and percent signs. Their charsets are
// converted by charset_conversion.h.

#ifndef TOOLS_COMMON_ENCODED_TEXT_H
#define TOOLS_COMMON_ENCODED_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

/// The text with its encoded words (RFC 2047: "=?utf-8?q?caf=c3=a9?=") decoded to UTF-8 and the
/// white space between two decoded ones left out. One character may be spread over several words of
/// the same charset. What cannot be decoded stays as written, the white space around it too.
/// Linear.
std::string decode_encoded_words(std::string_view text);

/// The length of the encoded word at the beginning of the text; 0 if the text begins with none.
std::size_t encoded_word_size(std::string_view text);

/// The text with each percent sign and the two hexadecimal digits after it replaced by the byte
/// that they stand for.
std::string decode_percent_signs(std::string_view text);

#endif
