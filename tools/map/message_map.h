// The map of a message: which bytes of the file belong to what, as a picture, or as a page with the
// picture, the parts, the findings and the header fields. One document that loads and runs
// nothing.

#ifndef TOOLS_MAP_MESSAGE_MAP_H
#define TOOLS_MAP_MESSAGE_MAP_H

#include <mail_structure.h>

#include "common/tree_source.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

enum class map_format : std::uint8_t { svg, html };

struct mapped_message {
    std::string_view m_file_name; // as the heading has it
    const MailStructure::MimeObj& m_root;
    const tree_source& m_source;
};

/// No map is larger, whatever the message: small pieces are folded, and long tables are cut, which
/// the map says.
constexpr std::size_t most_map_bytes = std::size_t{1024} * 1024;

/// Linear in the message, but for the sorting of findings. Does not recurse. The same
/// message gives the same bytes.
/// @throws std::bad_alloc
std::string map_of(const mapped_message& message, map_format format);

#endif
