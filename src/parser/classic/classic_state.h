// What the classic rules know while a message is read, beside the tree.

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_STATE_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_STATE_H

#include <mail_structure.h>

#include "../tree/growing_tree.h"
#include "boundary.h"
#include "field_trim.h"

#include <cstdint>

namespace mail_structure_detail::classic {

/// What the next line belongs to: a header block, a body or an epilogue.
enum class phase : std::uint8_t { header, body, epilogue };

/// What has become of a line. `again`: the phase has changed, and the line is looked at anew.
enum class verdict : std::uint8_t { consumed, again };

/// The last field of the header block that is being read. Begins anew with each field and block.
struct field_in_progress {
    MailStructure::header* m_record = nullptr; // null before the first field of the block
    bool m_is_content_type = false;            // its folded lines hold parameters
    bool m_is_multipart = false;               // its parameters may register boundaries
};

struct classic_state {
    classic_state(growing_tree& tree, parse_rooms* rooms)
        : m_tree(tree), m_open(tree.m_open), m_delimiters(rooms) {}
    classic_state(const classic_state&) = delete;
    classic_state& operator=(const classic_state&) = delete;

    /// Opens a child of the innermost entity. Its header block begins with the next line, or with
    /// the present line if that has yet to be looked at.
    void open_entity() {
        m_open.open();
        m_field = {};
        m_just_opened = true;
        m_phase = phase::header;
    }
    void end_header_block() noexcept { m_phase = phase::body; }
    void begin_epilogue() noexcept { m_phase = phase::epilogue; }

    growing_tree& m_tree;
    open_entities& m_open; // of the tree
    phase m_phase = phase::header;
    /// Independent of m_open: only a Content-Type field adds one, only a closing line removes one.
    delimiter_stack m_delimiters;
    field_in_progress m_field;
    MailStructure::header m_scratch; // of a field that has no record in the tree
    bool m_just_opened = false;      // an entity has just opened: an empty line is now dropped
    field_trim m_trim;
};

} // namespace mail_structure_detail::classic

#endif
