// The transfer encodings that RFC 2045 section 6 defines, and those for uuencoded text.

#ifndef MAIL_STRUCTURE_FINDINGS_TRANSFER_ENCODING_H
#define MAIL_STRUCTURE_FINDINGS_TRANSFER_ENCODING_H

#include "../sections/ascii_case.h"

#include <cstdint>
#include <string_view>

namespace mail_structure_detail::findings {

enum class transfer_encoding : std::uint8_t {
    seven_bit,
    eight_bit,
    binary,
    base64,
    quoted_printable,
    uuencode,
    unknown
};

inline transfer_encoding encoding_of(std::string_view name) noexcept {
    const auto is = [name](std::string_view word) { return equal_ignoring_case(name, word); };
    if (is("7bit")) return transfer_encoding::seven_bit;
    if (is("8bit")) return transfer_encoding::eight_bit;
    if (is("binary")) return transfer_encoding::binary;
    if (is("base64")) return transfer_encoding::base64;
    if (is("quoted-printable")) return transfer_encoding::quoted_printable;
    if (is("x-uuencode") || is("uuencode") || is("x-uue")) return transfer_encoding::uuencode;
    return transfer_encoding::unknown;
}

/// Whether the body has to be decoded before its bytes mean anything.
constexpr bool is_decoded(transfer_encoding encoding) noexcept {
    return encoding == transfer_encoding::base64 || encoding == transfer_encoding::quoted_printable
           || encoding == transfer_encoding::uuencode;
}

} // namespace mail_structure_detail::findings

#endif
