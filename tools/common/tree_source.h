// Where a tree comes from.

#ifndef TOOLS_COMMON_TREE_SOURCE_H
#define TOOLS_COMMON_TREE_SOURCE_H

#include <mail_structure.h>

#include <cstdint>
#include <string_view>

/// The bytes that a tree was made of, and the rules by which it was made. The offsets in the tree
/// count from the first of these bytes.
struct tree_source {
    std::string_view m_bytes; // the whole file
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint32_t m_message_start = 0; // where in the file the message begins
};

#endif
