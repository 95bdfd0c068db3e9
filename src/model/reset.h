// Resets an entity's own members, for MimeObj::clear and for the parser, which uses old entities
// again.

#ifndef MAIL_STRUCTURE_MODEL_RESET_H
#define MAIL_STRUCTURE_MODEL_RESET_H

#include <mail_structure.h>

namespace mail_structure_detail {

/// Gives flags, ranges, counts and kept texts the values of a new entity. Children, fields, type
/// strings and m_parent stay as they are. Allocates nothing and frees nothing.
inline void reset_own_members(MailStructure::MimeObj& entity) noexcept {
    entity.m_header_beg = entity.m_header_len = 0;
    entity.m_mime_beg = entity.m_mime_len = 0;
    entity.m_body_beg = entity.m_body_len = 0;
    entity.m_epilogue_beg = entity.m_epilogue_len = 0;
    entity.m_contents_beg = entity.m_contents_len = 0;
    entity.m_message = entity.m_multipart = false;
    entity.m_epilogue_last_empty = entity.m_body_last_empty = false;
    entity.m_lines = 0;
    entity.m_body_text.clear();
    entity.m_epilogue_text.clear();
}

inline void empty_type_strings(MailStructure::MimeObj& entity) noexcept {
    // Kept: the three type strings become empty, not "text", "plain" and "7bit" as in a new child.
    // Fill does this to the root, so under the classic rules the root's m_encoding is empty until a
    // field sets it.
    // keeps_type_strings_empty keeps_defaults_in_the_children_of_a_cleared_entity
    // keeps_root_without_an_encoding
    entity.m_type.clear();
    entity.m_subtype.clear();
    entity.m_encoding.clear();
}

} // namespace mail_structure_detail

#endif
