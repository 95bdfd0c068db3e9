// Looks for lines that begin with "From ", as fast as memory is read.

#ifndef TOOLS_SCAN_MBOX_FROM_SEARCH_H
#define TOOLS_SCAN_MBOX_FROM_SEARCH_H

#include <cstddef>
#include <string_view>

/// The place of the first LF at or after `begin` that "From " follows; npos if there is none.
std::size_t find_from_line(std::string_view text, std::size_t begin);

#endif
