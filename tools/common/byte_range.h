// A range of bytes in a file.

#ifndef TOOLS_COMMON_BYTE_RANGE_H
#define TOOLS_COMMON_BYTE_RANGE_H

#include <cstdint>

/// Consecutive bytes of a file; the offset counts from the file's first byte. A piece of a message
/// that has no lines, and so no place, has offset 0.
struct byte_range {
    std::uint32_t m_offset = 0;
    std::uint32_t m_length = 0;
};

#endif
