#include "body.h"

#include "content_type.h"

#include <cassert>

namespace mail_structure_detail::classic {

namespace {

/// The epilogue lines of an entity are those of all its ancestors too.
constexpr kept_text epilogue_text{&MailStructure::MimeObj::m_epilogue_text, keepers::all_open};

/// Closes the innermost part and, if that was an encapsulated message, the part that holds it.
// Kept: no third entity is closed, even where a message lies directly within a message. The entity
// that is then innermost takes the next part. keeps_two_pops_for_one_line_at_most
void close_part(open_entities& open) {
    open.close();
    if (open.innermost().m_message) open.close();
}

/// A separator begins a part of the innermost entity.
void open_part(classic_state& state, const input_line& line) {
    // Kept: until a field says otherwise the part is text/plain, in a multipart/digest too.
    // keeps_part_of_a_digest_as_plain_text
    state.open_entity();
    // Kept: a separator extends the contents of the multipart and its ancestors, and no other
    // range. keeps_separator_in_the_contents_of_the_enclosing_entities_alone
    state.m_open.add_contents_line_to_ancestors(line.m_start, line.m_end);
}

void add_body_line(classic_state& state, const input_line& line) {
    state.m_open.add_body_lines(as_run(line));
    state.m_tree.keep_line(body_text, line.m_text);
}

void add_epilogue_line(classic_state& state, const input_line& line) {
    state.m_open.add_epilogue_lines(as_run(line));
    state.m_tree.keep_line(epilogue_text, line.m_text);
}

/// Kept: a closing line is a body line of its multipart. keeps_closing_line_as_a_body_line
void close_multipart(classic_state& state, const input_line& line) {
    state.m_open.add_contents_line_to_ancestors(line.m_start, line.m_end);
    // Kept: directly after the preamble nothing is closed and the delimiter stays, so that the
    // epilogue may meet it again. keeps_delimiter_of_a_multipart_closed_without_parts
    // keeps_repeated_separator_after_an_empty_multipart_opening_its_sibling
    if (!state.m_open.innermost().m_multipart) {
        close_part(state.m_open);
        state.m_delimiters.pop_back();
    }
    add_body_line(state, line);
    state.begin_epilogue();
}

/// Kept: a closing line in an epilogue closes one entity, and is an epilogue line of the enclosing
/// one, in no body and no contents.
/// keeps_closing_line_in_an_epilogue_as_an_epilogue_line_of_the_enclosing_entity
/// keeps_one_pop_for_a_closing_line_in_an_epilogue
void close_multipart_in_epilogue(classic_state& state, const input_line& line) {
    assert(!state.m_delimiters.empty()); // the line has matched the last one
    state.m_open.close();
    state.m_delimiters.pop_back();
    add_epilogue_line(state, line);
}

} // namespace

void on_body_line(classic_state& state, const input_line& line) {
    // Kept: an empty type gets its default here, from a delimiter line too, and not when the header
    // block ends. keeps_types_empty_until_a_body_line_comes keeps_defaults_from_boundary_lines
    default_type(state.m_open.innermost());
    switch (match_innermost(line.m_text, state.m_delimiters)) {
    case boundary_match::none:
        state.m_open.add_contents_lines(as_run(line));
        add_body_line(state, line);
        break;
    case boundary_match::separator:
        if (!state.m_open.innermost().m_multipart) close_part(state.m_open);
        open_part(state, line); // if a multipart is innermost, the separator ends its preamble
        break;
    case boundary_match::closing: close_multipart(state, line); break;
    }
}

void on_epilogue_line(classic_state& state, const input_line& line) {
    switch (match_innermost(line.m_text, state.m_delimiters)) {
    case boundary_match::none: add_epilogue_line(state, line); break;
    case boundary_match::separator:
        close_part(state.m_open);
        open_part(state, line);
        break;
    case boundary_match::closing: close_multipart_in_epilogue(state, line); break;
    }
}

void add_body_run(classic_state& state, const line_run& lines) {
    const std::string_view text = state.m_tree.make_room(body_text, lines);
    default_type(state.m_open.innermost());
    state.m_open.add_contents_lines(lines);
    state.m_open.add_body_lines(lines);
    state.m_tree.keep_run(body_text, text);
}

void add_epilogue_run(classic_state& state, const line_run& lines) {
    const std::string_view text = state.m_tree.make_room(epilogue_text, lines);
    state.m_open.add_epilogue_lines(lines);
    state.m_tree.keep_run(epilogue_text, text);
}

} // namespace mail_structure_detail::classic
