// How many bytes a body has when its transfer encoding is undone.

#ifndef TOOLS_COMMON_DECODED_SIZE_H
#define TOOLS_COMMON_DECODED_SIZE_H

#include <mail_sections.h>

#include "common/tree_source.h"

#include <cstdint>
#include <optional>

struct decoded_size {
    std::uint64_t m_bytes = 0; // of what can be decoded
    bool m_is_damaged = false; // the encoded text is damaged
};

/// The size of the section's bytes, decoded by the transfer encoding in effect. Nothing if that
/// encoding is unknown. Linear in the encoded bytes, of which nothing is kept.
/// @param body    the body of an entity
/// @param ranges  made for the same source
std::optional<decoded_size> decoded_size_of(const mail_sections::place& body,
                                            mail_sections::ranges& ranges,
                                            const tree_source& source);

#endif
