// What every set of rules needs while a message is read: the open entities, the limit on what
// header fields may take, and the text that is kept. Built when Fill starts, gone when Fill returns
// or throws.

#ifndef MAIL_STRUCTURE_PARSER_TREE_GROWING_TREE_H
#define MAIL_STRUCTURE_PARSER_TREE_GROWING_TREE_H

#include <mail_structure.h>

#include "../lines/line_run.h"
#include "open_entities.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace mail_structure_detail {

/// An estimate of the memory that the header fields take, compared with the host's limit.
// Kept: the estimate is 32-bit and wraps, and so does its sum with a line.
// keeps_estimate_that_wraps
struct header_memory {
    std::uint32_t m_estimate = 0; // of the whole message: it is never reset
    std::uint32_t m_limit;        // MailStructure::m_memlimit

    explicit header_memory(std::uint32_t limit) : m_limit(limit) {}

    bool has_room_for(std::uint32_t bytes) const noexcept { return m_estimate + bytes < m_limit; }
    bool has_room() const noexcept { return m_estimate < m_limit; }
    void add(std::uint32_t bytes) noexcept { m_estimate += record_overhead + bytes; }

    static constexpr std::uint32_t record_overhead = 64;
};

class growing_tree {
public:
    /// Takes over the message's old tree and clears its root. Reads m_keep_text and m_memlimit; a
    /// later change of them has no effect on this parse.
    /// @param unset_body  what tells that a body range has not been set yet
    /// @throws std::bad_alloc
    growing_tree(MailStructure& message, unset_by unset_body, parse_rooms* rooms)
        : m_open(message.m_root, unset_body, &message.m_spare, rooms),
          m_memory(MailStructure::m_memlimit), m_keep_text(message.m_keep_text) {}

    /// Counts a field of the innermost entity, adds its record and returns it. Returns null, and
    /// adds none, where the limit leaves no room.
    /// @param line_bytes  bytes of the field's first line, its terminator included
    /// @throws std::bad_alloc
    MailStructure::header* add_field(std::uint32_t line_bytes);

    /// Appends the line's text and CR LF to a kept text, if text is kept.
    /// @throws std::bad_alloc
    void keep_line(const kept_text& kept, std::string_view text);
    /// Reserves what keep_run will need. Returns the run's text in the form in which it is kept;
    /// an empty text if none is kept. @throws std::bad_alloc
    std::string_view make_room(const kept_text& kept, const line_run& lines);
    /// Appends what make_room returned to a kept text, if text is kept. Cannot fail.
    void keep_run(const kept_text& kept, std::string_view text);

    open_entities m_open;
    header_memory m_memory;

private:
    const bool m_keep_text;
    std::string m_room; // for lines in the form in which they are kept
};

inline MailStructure::header* growing_tree::add_field(std::uint32_t line_bytes) {
    // Kept: with kept text the limit is not asked for, so every field has its record.
    // keeps_all_fields_where_text_is_kept
    const bool has_room = m_keep_text || m_memory.has_room_for(line_bytes);
    // Kept: a field without a record counts too. keeps_count_of_fields_left_out
    m_memory.add(line_bytes);
    return has_room ? &m_open.add_field() : nullptr;
}

} // namespace mail_structure_detail

#endif
