// Finds the bytes of a section from the recorded ranges and the lines at their ends; see the
// header.

#include "range_finder.h"

#include "numbering.h"
#include "within.h"

#include <algorithm>

namespace mail_structure_detail {

using mail_sections::byte_range;
using mail_sections::piece;
using mail_sections::place;
using MimeObj = MailStructure::MimeObj;

namespace {

/// Where the lines begin and end that are recorded for an entity and its descendants. A part may
/// have no lines at all.
struct recorded_lines {
    bool m_any = false;
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0;

    void add(std::uint32_t offset, std::uint32_t length) {
        if (length == 0) return;
        m_begin = m_any ? std::min(m_begin, offset) : offset;
        m_end = std::max(m_end, offset + length);
        m_any = true;
    }
};

/// Those of an entity that holds a message can reach too far; see last_holding_lines.
recorded_lines recorded_lines_of(const MimeObj& entity) {
    recorded_lines lines;
    lines.add(entity.m_header_beg, entity.m_header_len);
    lines.add(entity.m_contents_beg, entity.m_contents_len);
    // The body alone holds the closing line of a multipart without parts.
    lines.add(entity.m_body_beg, entity.m_body_len);
    lines.add(entity.m_epilogue_beg, entity.m_epilogue_len);
    return lines;
}

byte_range between(std::uint32_t begin, std::uint32_t end) {
    return {begin, std::max(begin, end) - begin};
}

} // namespace

byte_range range_finder::of(const place& wanted) noexcept {
    if (wanted.m_entity == nullptr) return {};
    switch (wanted.m_piece) {
    case piece::whole:
        return within(m_source.m_bytes, between(m_source.m_message_start, end_of_bytes()));
    case piece::header_block: return within(m_source.m_bytes, header_block_of(wanted));
    case piece::body: break;
    }
    return within(m_source.m_bytes, body_of(wanted));
}

byte_range range_finder::header_block_of(const place& wanted) noexcept {
    const MimeObj& entity = *wanted.m_entity;
    if (entity.m_header_len == 0) return unrecorded_header_block_of(wanted);
    const std::uint32_t begin = entity.m_header_beg;
    std::uint32_t end = begin + entity.m_header_len;
    if (!ends_with_empty_line(begin, end)) end += dropped_line_at(end);
    // A message within ends where the part that holds it ends.
    return between(begin, wanted.m_is_message ? std::min(end, end_of(entity)) : end);
}

/// The header block of an entity for which none is recorded: the empty line that was dropped, or
/// nothing.
byte_range range_finder::unrecorded_header_block_of(const place& wanted) const noexcept {
    const MimeObj& entity = *wanted.m_entity;
    if (&entity == m_root) return {m_source.m_message_start, 0};
    const std::uint32_t begin = recorded_lines_of(entity).m_begin;
    // The message within begins with its first line, before which nothing is dropped.
    const std::uint32_t dropped = wanted.m_is_message ? 0 : dropped_line_before(begin);
    return {begin - dropped, dropped};
}

byte_range range_finder::body_of(const place& wanted) noexcept {
    const byte_range block = header_block_of(wanted);
    return between(block.m_offset + block.m_length, end_of(*wanted.m_entity));
}

/// Where the entity ends: at the end of the bytes, or where the line terminator before a delimiter
/// line begins.
std::uint32_t range_finder::end_of(const MimeObj& entity) noexcept {
    if (&entity == m_root) return end_of_bytes();
    const MimeObj& last = last_holding_lines(entity);
    recorded_lines lines = recorded_lines_of(last);
    if (!lines.m_any) return 0;
    if (message_within(last) != nullptr)
        lines.m_end = last.m_header_beg + last.m_header_len; // its message has no lines
    const std::uint32_t next_line = lines.m_end + dropped_line_at(lines.m_end);
    if (next_line >= end_of_bytes()) return end_of_bytes();
    // Nothing but a delimiter line ends an entity before the bytes do.
    return std::max(lines.m_begin, next_line - line_terminator_before(next_line));
}

/// The innermost of the messages within messages that has lines. An entity that holds a message
/// ends where that message ends, but its own ranges can go on: a delimiter line does not close all
/// the entities that it should.
const MimeObj& range_finder::last_holding_lines(const MimeObj& entity) noexcept {
    // A walk asks for each message of a chain in turn, and the chain can be long.
    const bool known = m_asked_last == &entity
                       || (m_asked_last != m_innermost && message_within(*m_asked_last) == &entity);
    m_asked_last = &entity;
    if (known) return *m_innermost;
    m_innermost = &entity;
    while (const MimeObj* const message = message_within(*m_innermost)) {
        if (!recorded_lines_of(*message).m_any) break;
        m_innermost = message;
    }
    return *m_innermost;
}

/// The length of the empty line, terminator included, that begins where recorded lines end; 0 if
/// another line begins there.
std::uint32_t range_finder::dropped_line_at(std::uint32_t offset) const noexcept {
    if (m_source.m_rules == MailStructure::rules::standard) return 0;
    const std::string_view rest =
        m_source.m_bytes.substr(std::min<std::size_t>(offset, m_source.m_bytes.size()));
    if (rest.substr(0, 1) == "\n") return 1;
    return rest.substr(0, 2) == "\r\n" || rest == "\r"
               ? static_cast<std::uint32_t>(rest.substr(0, 2).size())
               : 0;
}

/// The length of the empty line that ends where the recorded lines of a part begin; 0 if the line
/// before is the separator, which is never empty.
std::uint32_t range_finder::dropped_line_before(std::uint32_t offset) const noexcept {
    if (m_source.m_rules == MailStructure::rules::standard) return 0;
    const std::uint32_t terminator = line_terminator_before(offset);
    return terminator != 0 && line_terminator_before(offset - terminator) != 0 ? terminator : 0;
}

/// Whether the last of the lines between the two offsets is empty.
bool range_finder::ends_with_empty_line(std::uint32_t begin, std::uint32_t end) const noexcept {
    const std::uint32_t terminator = line_terminator_before(end);
    const std::uint32_t text_end = end - terminator;
    return terminator != 0 && (text_end == begin || line_terminator_before(text_end) != 0);
}

/// The length of the line terminator that ends there; 0 if none does.
std::uint32_t range_finder::line_terminator_before(std::uint32_t offset) const noexcept {
    const std::string_view before = m_source.m_bytes.substr(0, offset);
    if (before.empty() || before.back() != '\n') return 0;
    return before.size() > 1 && before[before.size() - 2] == '\r' ? 2 : 1;
}

} // namespace mail_structure_detail
