// Decodes and counts, and only counts where the encoded text is sound base64 or quoted-printable;
// see the header.

#include "common/decoded_size.h"

#include "common/base64_front.h"
#include "common/field_lookup.h"
#include "common/quoted_printable_size.h"
#include "common/transfer_decoding.h"

#include <string_view>

std::optional<decoded_size> decoded_size_of(const mail_sections::place& body,
                                            mail_sections::ranges& ranges,
                                            const tree_source& source) {
    const std::optional<transfer_encoding> encoding =
        transfer_encoding_named(encoding_in_effect(*body.m_entity, source.m_rules));
    if (!encoding) return std::nullopt;
    const mail_sections::byte_range range = ranges.of(body);
    decoded_size size;
    std::string_view text = source.m_bytes.substr(range.m_offset, range.m_length);
    if (*encoding == transfer_encoding::quoted_printable) {
        const quoted_printable_size counted = quoted_printable_size_of(text);
        return decoded_size{counted.m_bytes, counted.m_is_damaged};
    }
    if (*encoding == transfer_encoding::base64) {
        const base64_front front = base64_front_of(text);
        size.m_bytes = front.m_decoded_bytes;
        text.remove_prefix(front.m_bytes);
    }
    const auto damage = decode(*encoding, text, [&size](std::string_view bytes) {
        size.m_bytes += bytes.size();
        return true;
    });
    size.m_is_damaged = damage.has_value();
    return size;
}
