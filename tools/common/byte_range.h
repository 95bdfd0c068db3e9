// A stretch of a file.

#ifndef TOOLS_COMMON_BYTE_RANGE_H
#define TOOLS_COMMON_BYTE_RANGE_H

#include <cstdint>

/// Some bytes of a file, counted from its start. A piece that has no lines, and so no place, is at
/// offset 0.
struct byte_range {
    std::uint32_t m_offset = 0;
    std::uint32_t m_length = 0;
};

#endif
