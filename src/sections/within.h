// Keeps a range within the bytes that it is of.

#ifndef MAIL_STRUCTURE_SECTIONS_WITHIN_H
#define MAIL_STRUCTURE_SECTIONS_WITHIN_H

#include <mail_sections.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

/// The part of the range that lies within the bytes, so that std::string_view::substr takes it. The
/// ranges of a tree reach beyond them if the tree was made of other bytes, or of 4 GiB or more.
inline mail_sections::byte_range within(std::string_view bytes,
                                        mail_sections::byte_range range) noexcept {
    const std::uint64_t begin = std::min<std::uint64_t>(range.m_offset, bytes.size());
    const std::uint64_t length = std::min<std::uint64_t>(range.m_length, bytes.size() - begin);
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(length)};
}

} // namespace mail_structure_detail

#endif
