#include "body.h"

#include "../tree/kept_text.h"
#include "content_type.h"

namespace mail_structure_detail {

namespace {

/// Closes the innermost part and, if that was an encapsulated message, the part that holds it.
// Kept: no more than these two are closed, also when a message lies within a message. Whatever is
// then innermost takes the next part. The root is never closed: a part that would replace it
// becomes its child.
void close_part(open_entities& open) {
    open.close();
    if (open.top().m_message) open.close();
}

/// A separator line begins a part of the innermost open entity.
void open_part(fill_state& state, const input_line& line) {
    state.open_entity();
    state.m_open.add_contents_line_below_top(line.m_start, line.m_end);
}

line_run as_run(const input_line& line) noexcept {
    return one_line(line.m_start, line.m_end, line.m_text.empty());
}

void keep_text(fill_state& state, const input_line& line,
               std::string MailStructure::MimeObj::*kept) {
    if (state.m_keep_text)
        state.m_open.keep_text(kept, state.m_room.assign(line.m_text).append("\r\n"));
}

/// Where the text of the present phase's lines is kept.
std::string MailStructure::MimeObj::*kept_now(const fill_state& state) noexcept {
    return state.m_phase == phase::body ? &MailStructure::MimeObj::m_body_text
                                        : &MailStructure::MimeObj::m_epilogue_text;
}

void add_body_line(fill_state& state, const input_line& line) {
    state.m_open.add_body_lines(as_run(line));
    keep_text(state, line, &MailStructure::MimeObj::m_body_text);
}

void add_epilogue_line(fill_state& state, const input_line& line) {
    state.m_open.add_epilogue_lines(as_run(line));
    keep_text(state, line, &MailStructure::MimeObj::m_epilogue_text);
}

/// The closing line counts in the body of its multipart.
void close_multipart(fill_state& state, const input_line& line) {
    state.m_open.add_contents_line_below_top(line.m_start, line.m_end);
    // Kept: right after the preamble nothing is closed and the delimiter stays, so it is met again
    // in the epilogue.
    if (!state.m_open.top().m_multipart) {
        close_part(state.m_open);
        state.m_delimiters.pop_back();
    }
    add_body_line(state, line);
    state.m_phase = phase::epilogue;
}

/// Kept: a closing line met in an epilogue is an epilogue line of the enclosing entity, in no body
/// and no contents.
void close_multipart_in_epilogue(fill_state& state, const input_line& line) {
    state.m_open.close();
    state.m_delimiters.pop_back();
    add_epilogue_line(state, line);
}

} // namespace

void on_body_line(fill_state& state, const input_line& line) {
    default_type(state.m_open.top());
    switch (match_innermost(line.m_text, state.m_delimiters)) {
    case boundary_match::none:
        state.m_open.add_contents_lines(as_run(line));
        add_body_line(state, line);
        break;
    case boundary_match::separator:
        if (!state.m_open.top().m_multipart)
            close_part(state.m_open); // else this ends the preamble
        open_part(state, line);
        break;
    case boundary_match::closing: close_multipart(state, line); break;
    }
}

void on_epilogue_line(fill_state& state, const input_line& line) {
    switch (match_innermost(line.m_text, state.m_delimiters)) {
    case boundary_match::none: add_epilogue_line(state, line); break;
    case boundary_match::separator:
        close_part(state.m_open);
        open_part(state, line);
        break;
    case boundary_match::closing: close_multipart_in_epilogue(state, line); break;
    }
}

void make_room_for_text(fill_state& state, const line_run& lines) {
    if (!state.m_keep_text) return;
    state.m_kept_form = kept_form(lines.m_bytes, state.m_room);
    state.m_open.make_room(kept_now(state), state.m_kept_form.size());
}

void add_run(fill_state& state, const line_run& lines) {
    if (state.m_phase == phase::body) {
        default_type(state.m_open.top());
        state.m_open.add_contents_lines(lines);
        state.m_open.add_body_lines(lines);
    } else {
        state.m_open.add_epilogue_lines(lines);
    }
    if (state.m_keep_text) state.m_open.keep_text(kept_now(state), state.m_kept_form);
}

} // namespace mail_structure_detail
