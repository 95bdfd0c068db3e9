// Undoes the transfer encodings of MIME (RFC 2045 section 6).

#ifndef TOOLS_COMMON_TRANSFER_DECODING_H
#define TOOLS_COMMON_TRANSFER_DECODING_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

enum class transfer_encoding : std::uint8_t { none, base64, quoted_printable };

/// The encoding of that name, ASCII case ignored: "7bit", "8bit", "binary" and "" are none. Nothing
/// for any other name.
std::optional<transfer_encoding> transfer_encoding_named(std::string_view name);

/// What kept a text from being decoded as it should be.
struct decoding_damage {
    std::string m_what;
    std::size_t m_offset = 0; // in the encoded text
};

/// Takes decoded bytes, some at a time, in order. False stops the decoding.
using byte_sink = std::function<bool(std::string_view)>;

/// Hands the decoded text to the sink. Linear; takes 64 KiB of memory, whatever the length of the
/// text.
///
/// Base64: blanks and line ends may stand anywhere. The first other byte that is no base64 ends the
/// decoding, as does one behind the padding, padding in a wrong place, or the end of the text
/// within a group of four; what was complete before is handed over. Quoted-printable: blanks at the
/// end of a line are no part of the text, line ends stay as they are, hexadecimal digits may be
/// small. An equals sign that says nothing stays as it is, and the decoding goes on.
/// @return the first damage, or nothing; nothing too where the sink has stopped it
std::optional<decoding_damage> decode(transfer_encoding encoding, std::string_view text,
                                      const byte_sink& sink);

#endif
