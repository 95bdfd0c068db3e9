// Undoes the transfer encodings of MIME (RFC 2045 section 6), and uuencode, which is older.

#ifndef TOOLS_COMMON_TRANSFER_DECODING_H
#define TOOLS_COMMON_TRANSFER_DECODING_H

#include "common/strictness.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

enum class transfer_encoding : std::uint8_t { none, base64, quoted_printable, uuencode };

/// The encoding of that name, ASCII case ignored: "7bit", "8bit", "binary" and "" are none. To
/// lenient readers, "x-uuencode", "uuencode", "x-uue" and "uue" are known, too. Nothing for any
/// other name.
std::optional<transfer_encoding> transfer_encoding_named(std::string_view name,
                                                         strictness how = strictness::strict);

/// What is wrong with an encoded text, and where.
struct decoding_damage {
    std::string m_what;       // of the first damage
    std::size_t m_offset = 0; // of the first damage, in the encoded text
    std::size_t m_bytes = 1;  // how many bytes of the encoded text are at fault, as far as decoded
};

/// Takes the decoded bytes in order, a block at a time. It returns false to stop the decoding.
using byte_sink = std::function<bool(std::string_view)>;

/// Hands the decoded text to the sink. Linear; takes 64 KiB of memory, whatever the length of the
/// text.
///
/// Base64: white space may stand anywhere. The first other byte that is not base64 ends the
/// decoding, and so do text after the padding, misplaced padding, and the end of the text within a
/// group of four characters. The complete bytes before that are handed over.
///
/// Lenient base64: such bytes are passed over, and what follows them is decoded. After padding that
/// ends a group, decoding goes on only with a line that is base64 to its end, as it stands where
/// several encoded texts were joined; other lines, such as a footer that was added, are passed
/// over. The last group may lack its padding.
///
/// Quoted-printable, strict or lenient: blanks at the end of a line are left out, line ends stay as
/// they are, and lower-case digits are allowed. An equals sign without digits or a line end after
/// it stays as it is, and the decoding goes on.
///
/// Uuencode, always lenient: the lines between "begin" and "end" are decoded. Text without a line
/// that begins so stays as it is.
/// @return the first damage; nothing if there is none, or if the sink has stopped the decoding
std::optional<decoding_damage> decode(transfer_encoding encoding, std::string_view text,
                                      const byte_sink& sink, strictness how = strictness::strict);

#endif
