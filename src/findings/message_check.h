// Follows the structure of a message by the standard rules, line by line, and reports what is wrong
// with it.
//
// The checks of one header block, of one body and of one boundary are in files of their own. Here
// is what concerns the structure: which entity a line belongs to, and what readers make of it.

#ifndef MAIL_STRUCTURE_FINDINGS_MESSAGE_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_MESSAGE_CHECK_H

#include "../parser/standard/delimiters.h"
#include "body_check.h"
#include "header_check.h"
#include "message_lines.h"
#include "open_multiparts.h"
#include "reporter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace mail_structure_detail::findings {

/// What the innermost entity takes now.
enum class phase : std::uint8_t { header, body, epilogue };

/// An entity that may still take lines.
struct open_entity {
    place m_begin;                // its first line, or the line that opened it
    place m_type_place;           // of its Content-Type field, or m_begin
    std::uint64_t m_children = 0; // parts, or the message within
    bool m_has_lines = false;
    bool m_is_multipart = false; // with a boundary
    bool m_is_closed = false;    // its closing line has come
    bool m_is_digest = false;
};

class message_check {
public:
    /// Begins a message.
    explicit message_check(const reporter& report);
    message_check(const message_check&) = delete;
    message_check& operator=(const message_check&) = delete;

    /// Takes the next line. @throws std::bad_alloc, and what the receiver throws
    void take(const message_line& line);
    /// Takes clean lines at the front of the rest, and passes over them there. False if there are
    /// none.
    bool take_clean_lines(message_lines& lines) noexcept;
    /// Ends the message. @throws what the receiver throws
    void end();

    /// The entities that are open, the root first.
    const std::vector<open_entity>& open() const noexcept { return m_open; }
    /// How many entities there have been.
    std::uint64_t entities() const noexcept { return m_entities; }

private:
    enum class line_end : std::uint8_t { none, lf, cr_lf };

    void check_line_end(const message_line& line, bool is_delimiter_line);
    void take_delimiter_line(const message_line& line, const standard::delimiter_match& match);
    void check_delimiter_line(const message_line& line);
    void take_header_line(const message_line& line);
    void take_body_line(const message_line& line);
    void take_epilogue_line(const message_line& line);
    void open_entity_at(header_of whose, const place& where);
    void end_header_blocks();
    void end_header_block();
    void begin_body_of(open_entity& entity, const content_type& type);
    void begin_multipart(open_entity& entity, const content_type& type);
    void begin_message_type(open_entity& entity, const content_type& type);
    void end_body();
    void close();

    const reporter& m_report;
    header_check m_header;
    body_check m_body;
    phase m_phase = phase::header;
    std::vector<open_entity> m_open; // never empty: the root comes first
    std::uint64_t m_entities = 0;
    standard::delimiters_in_force m_delimiters;
    open_multiparts m_multiparts; // those of m_delimiters
    std::string m_closed;         // in an epilogue: the boundary of its multipart
    bool m_has_text_after_close = false;
    line_end m_first_end = line_end::none;
    line_end m_last_end = line_end::none;
    bool m_has_mixed_ends = false;
    bool m_is_deep = false;
    place m_message_place; // where a message within begins that opens now
};

} // namespace mail_structure_detail::findings

#endif
