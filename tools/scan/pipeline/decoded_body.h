// What there is to say about a body when its transfer encoding is undone.

#ifndef TOOLS_SCAN_PIPELINE_DECODED_BODY_H
#define TOOLS_SCAN_PIPELINE_DECODED_BODY_H

#include "common/transfer_decoding.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct decoded_body {
    std::uint64_t m_size = 0;
    std::string m_digest;                    ///< SHA-256 in hexadecimal.
    std::optional<decoding_damage> m_damage; ///< The first damage of the encoded body.
};

/// Decodes the body leniently. Nothing of it is kept.
/// @throws std::bad_alloc
decoded_body decode_and_hash(transfer_encoding encoding, std::string_view body);

#endif
