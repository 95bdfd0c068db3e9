// Where the two rule sets of the library give a message different trees.

#ifndef TOOLS_MAILSTRUCTURE_RULES_DIFFERENCE_H
#define TOOLS_MAILSTRUCTURE_RULES_DIFFERENCE_H

#include "common/message_file.h"

#include <cstdint>
#include <optional>
#include <string_view>

struct rules_difference {
    std::uint64_t m_offset = 0;     // of the first entity that only one of the trees has there
    std::string_view m_explanation; // one sentence
    bool m_has_trees = true;        // false where the classic rules refuse the message
};

/// Parses the message by the classic rules into `classic`, and compares its entities with those of
/// the other tree: how they are nested, their types, and whether they hold parts or a message.
/// Ranges are not compared: in some places they mean other lines by the one rules than by the
/// other. Linear.
/// @param standard  the tree of the same file by the standard rules
/// @throws std::bad_alloc
std::optional<rules_difference> find_rules_difference(const message_file& file,
                                                      const MailStructure::MimeObj& standard,
                                                      MailStructure& classic);

#endif
