// Numbers of bytes as users write them.

#ifndef TOOLS_COMMON_BYTE_COUNT_H
#define TOOLS_COMMON_BYTE_COUNT_H

#include <cstdint>
#include <optional>
#include <string_view>

/// Reads a number of bytes: "65536"; "64K", "25M" and "1G", whose letters stand for powers of 1024,
/// also written "64KiB"; or "64KB", with powers of 1000. Lower-case letters are allowed.
/// @return nothing for any other text; the largest number there is for a larger one
std::optional<std::uint64_t> parse_byte_count(std::string_view text);

#endif
