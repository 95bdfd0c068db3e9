#include "message_check.h"

#include "../parser/standard/field_text.h"
#include "line_bytes.h"

#include <utility>

namespace mail_structure_detail::findings {

using standard::delimiter_kind;
using standard::is_word;

namespace {

constexpr std::size_t deep = 64;     // the least depth at which a reader stops
constexpr std::uint64_t many = 1000; // the least number of entities at which one stops

/// The message types that hold a message by the standard rules.
bool holds_message(const content_type& type) noexcept {
    return is_word(type.m_type, "message")
           && (is_word(type.m_subtype, "rfc822") || is_word(type.m_subtype, "rfc2822")
               || is_word(type.m_subtype, "global") || is_word(type.m_subtype, "news"));
}

} // namespace

message_check::message_check(const reporter& report)
    : m_report(report), m_header(report), m_body(report) {
    open_entity_at(header_of::root, {});
}

void message_check::take(const message_line& line) {
    const auto match = m_delimiters.match(line.m_text);
    check_line_end(line, match.has_value());
    const place behind{line.m_offset + line.m_bytes.size(), 0, line.m_number + 1};
    if (match) {
        m_message_place = {line.m_offset, 0, line.m_number};
        take_delimiter_line(line, *match);
    } else {
        m_message_place = behind;
        const place near = m_multiparts.near_delimiter(line);
        if (near.m_length != 0) m_report.give(name::near_delimiter, near);
        switch (m_phase) {
        case phase::header: take_header_line(line); break;
        case phase::body: take_body_line(line); break;
        case phase::epilogue: take_epilogue_line(line); break;
        }
    }
    m_message_place = behind;
}

bool message_check::take_clean_lines(message_lines& lines) noexcept {
    if (m_phase != phase::body || !m_body.takes_clean_lines()) return false;
    // Lines that end as the last one did tell nothing new of mixed ends.
    if (m_last_end == line_end::none) return false;
    const clean_lines clean =
        clean_lines_at_front(lines.rest(), m_body.encoding(), m_last_end == line_end::cr_lf);
    if (clean.m_bytes == 0) return false;
    m_body.take_clean(lines.rest().substr(0, clean.m_bytes), lines.rest_place(), clean.m_lines);
    lines.pass(clean);
    return true;
}

void message_check::end() {
    end_header_blocks();
    end_body();
    while (!m_open.empty()) close();
}

/// Compares the line end with those before it.
void message_check::check_line_end(const message_line& line, bool is_delimiter_line) {
    const line_end before = m_last_end;
    m_last_end = line_end::none;
    if (line.m_bytes.ends_with('\n'))
        m_last_end = line.m_bytes.ends_with("\r\n") ? line_end::cr_lf : line_end::lf;
    if (m_first_end == line_end::none) m_first_end = m_last_end;
    const bool differs = m_last_end != line_end::none && m_last_end != m_first_end;
    if (differs && !std::exchange(m_has_mixed_ends, true))
        m_report.give(name::mixed_line_ends, line.whole());
    // A delimiter line that ends with the input is read as one that ends with LF.
    const bool ends_alike = (before == line_end::cr_lf) == (m_last_end == line_end::cr_lf);
    if (is_delimiter_line && m_phase == phase::body && !ends_alike)
        m_report.give(name::delimiter_line_end, line.whole());
}

/// A delimiter line ends all that is open within its multipart.
void message_check::take_delimiter_line(const message_line& line,
                                        const standard::delimiter_match& match) {
    check_delimiter_line(line);
    end_header_blocks();
    end_body();
    const std::size_t depth = m_delimiters.depth_of(match.m_index);
    m_delimiters.pop_from(match.m_index + 1);
    m_multiparts.keep(match.m_index + 1);
    while (m_open.size() > depth) close();
    if (match.m_kind == delimiter_kind::separator) {
        ++m_open.back().m_children;
        open_entity_at(header_of::part, line.whole());
        return;
    }
    m_phase = phase::epilogue;
    m_open.back().m_is_closed = true;
    m_closed = m_multiparts.innermost();
    m_has_text_after_close = false;
    m_delimiters.pop_from(match.m_index);
    m_multiparts.keep(match.m_index);
}

void message_check::check_delimiter_line(const message_line& line) {
    const line_bytes bytes = bytes_of(line);
    if (bytes.m_bare_cr != not_found) m_report.give(name::bare_cr, line.at(bytes.m_bare_cr, 1));
    const std::size_t last = line.m_text.find_last_not_of(" \t\r");
    if (last + 1 != line.m_text.size())
        m_report.give(name::delimiter_padded, line.at(last + 1, line.m_text.size() - last - 1));
}

void message_check::take_header_line(const message_line& line) {
    if (!std::exchange(m_open.back().m_has_lines, true)) m_open.back().m_begin = line.whole();
    if (m_header.take(line)) end_header_block();
}

void message_check::take_body_line(const message_line& line) {
    m_body.take(line, !m_multiparts.empty());
}

void message_check::take_epilogue_line(const message_line& line) {
    m_body.take(line, !m_multiparts.empty());
    if (!m_closed.empty() && begins_as_delimiter(line.m_text, m_closed))
        m_report.give(name::delimiter_of_closed_multipart, line.whole());
    if (line.m_text.find_first_not_of(" \t\r") == not_found) return;
    if (!std::exchange(m_has_text_after_close, true))
        m_report.give(name::text_after_close, line.whole());
}

/// Opens an entity, which begins with its header block.
/// @param where  the line that opens it
void message_check::open_entity_at(header_of whose, const place& where) {
    m_open.push_back({where, where});
    m_header.begin(whose);
    m_phase = phase::header;
    if (++m_entities == many + 1) m_report.give(name::many_parts, where);
    if (m_open.size() > deep && !std::exchange(m_is_deep, true))
        m_report.give(name::deep_nesting, where);
}

/// Ends the header block that is being read, if there is one, without an empty line. Where this
/// opens a message within, the header block of that message is ended too.
void message_check::end_header_blocks() {
    while (m_phase == phase::header) {
        if (m_open.back().m_has_lines) m_report.give(name::header_not_ended, m_open.back().m_begin);
        end_header_block();
    }
}

/// Ends the header block, after which the type of the entity is known.
void message_check::end_header_block() {
    open_entity& entity = m_open.back();
    m_header.end(entity.m_begin);
    m_phase = phase::body;
    m_body.begin(m_header.encoding());
    if (m_header.type()) {
        entity.m_type_place = m_header.type()->m_field;
        begin_body_of(entity, *m_header.type());
    } else if (m_open.size() > 1 && m_open[m_open.size() - 2].m_is_digest) {
        content_type type;
        type.m_type = "message";
        type.m_subtype = "rfc822";
        begin_body_of(entity, type);
    }
}

void message_check::begin_body_of(open_entity& entity, const content_type& type) {
    if (is_word(type.m_type, "multipart")) begin_multipart(entity, type);
    if (is_word(type.m_type, "message")) begin_message_type(entity, type);
    if (is_word(type.m_type, "text") && is_word(type.m_subtype, "rfc822-headers"))
        m_report.give(name::message_not_entered, level::note, entity.m_type_place);
}

void message_check::begin_multipart(open_entity& entity, const content_type& type) {
    if (is_decoded(m_header.encoding()))
        m_report.give(name::multipart_encoded, m_header.encoding_place());
    m_body.begin(transfer_encoding::seven_bit); // its own lines are never encoded
    if (!type.m_boundary) {
        m_report.give(name::multipart_without_boundary, entity.m_type_place);
        return;
    }
    m_delimiters.push(*type.m_boundary, m_open.size());
    m_multiparts.push(*type.m_boundary, type.m_boundary_place, m_report);
    entity.m_is_multipart = true;
    entity.m_is_digest = is_word(type.m_subtype, "digest");
}

void message_check::begin_message_type(open_entity& entity, const content_type& type) {
    const bool is_encoded = is_decoded(m_header.encoding());
    if (is_encoded) m_report.give(name::message_encoded, m_header.encoding_place());
    if (!is_word(type.m_subtype, "rfc822"))
        m_report.give(name::message_not_entered, entity.m_type_place);
    if (is_encoded || !holds_message(type)) return;
    ++entity.m_children;
    open_entity_at(header_of::message_within, m_message_place);
}

/// Ends the lines of the innermost entity.
void message_check::end_body() {
    m_body.end();
    m_body.begin(transfer_encoding::seven_bit);
}

/// Closes the innermost entity.
void message_check::close() {
    const open_entity& entity = m_open.back();
    if (!entity.m_has_lines) m_report.give(name::part_without_lines, entity.m_begin);
    if (entity.m_is_multipart && entity.m_children == 0)
        m_report.give(name::multipart_without_parts, entity.m_type_place);
    if (entity.m_is_multipart && !entity.m_is_closed)
        m_report.give(name::multipart_not_closed, entity.m_type_place);
    m_open.pop_back();
}

} // namespace mail_structure_detail::findings
