// What the standard rules know while a message is read, beside the tree.

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_STANDARD_STATE_H
#define MAIL_STRUCTURE_PARSER_STANDARD_STANDARD_STATE_H

#include <mail_structure.h>

#include "../tree/growing_tree.h"
#include "delimiters.h"

#include <cstdint>

namespace mail_structure_detail::standard {

/// Which kind of lines the innermost entity takes now.
enum class phase : std::uint8_t { header, body, epilogue };

/// What the last line of a header block belongs to. A folded line continues it.
enum class field_kind : std::uint8_t {
    none, // no field: the block's beginning, or a line that was passed over
    content_type,
    transfer_encoding,
    other
};

/// The header block that is being read. Begins anew with each entity.
struct header_block_state {
    field_kind m_kind = field_kind::none;
    MailStructure::header* m_record = nullptr; // of the last field; null where that has none
    bool m_has_content_type = false;           // one has been read; later ones do not count
    bool m_has_encoding = false;               // the same for Content-Transfer-Encoding
    bool m_has_boundary = false;               // it is a multipart with that of the state
};

struct standard_state {
    standard_state(growing_tree& tree, parse_rooms* rooms)
        : m_tree(tree), m_open(tree.m_open), m_delimiters(rooms),
          m_field_text(text_in(room_in(rooms, &parse_rooms::m_field_text))),
          m_boundary(text_in(room_in(rooms, &parse_rooms::m_boundary))) {}
    standard_state(const standard_state&) = delete;
    standard_state& operator=(const standard_state&) = delete;

    /// Opens a child of the innermost entity, which begins with its header block.
    /// @throws std::bad_alloc, and then nothing has changed
    void open_entity() {
        m_open.open();
        m_block = {};
        m_phase = phase::header;
    }

    growing_tree& m_tree;
    open_entities& m_open; // of the tree
    phase m_phase = phase::header;
    delimiters_in_force m_delimiters;
    header_block_state m_block;
    /// The text of the Content-Type field, or of a Content-Transfer-Encoding field, so far: from
    /// just past the colon on, without line ends.
    room_text m_field_text;
    room_text m_boundary; // of the last multipart that has one
};

} // namespace mail_structure_detail::standard

#endif
