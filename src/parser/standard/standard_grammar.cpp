#include "standard_grammar.h"

#include <string_view>

namespace mail_structure_detail::standard {

namespace {

/// The epilogue lines of an entity are not those of its ancestors.
constexpr kept_text epilogue_text{&MailStructure::MimeObj::m_epilogue_text, keepers::innermost};

void add_body_lines(standard_state& state, const line_run& lines) {
    state.m_open.add_contents_lines(lines);
    state.m_open.add_body_lines(lines);
}

void add_epilogue_lines(standard_state& state, const line_run& lines) {
    state.m_open.add_contents_lines_to_ancestors(lines);
    state.m_open.add_own_epilogue_lines(lines);
}

} // namespace

standard_grammar::standard_grammar(growing_tree& tree, parse_rooms* rooms) : m_state(tree, rooms) {
    MailStructure::MimeObj& root = m_state.m_open.innermost();
    root.m_type = "text";
    root.m_subtype = "plain";
    root.m_encoding = "7bit";
}

void standard_grammar::on_body_line(const input_line& line) {
    add_body_lines(m_state, as_run(line));
    m_state.m_tree.keep_line(body_text, line.m_text);
}

void standard_grammar::on_epilogue_line(const input_line& line) {
    add_epilogue_lines(m_state, as_run(line));
    m_state.m_tree.keep_line(epilogue_text, line.m_text);
}

/// A delimiter line ends all that is open within its multipart. A separator then opens a part; a
/// closing line is the last body line of the multipart, and what follows is the epilogue.
void standard_grammar::on_delimiter_line(const input_line& line, const delimiter_match& match) {
    end_header_blocks();
    m_state.m_delimiters.pop_from(match.m_index + 1);
    while (m_state.m_open.depth() > m_state.m_delimiters.depth_of(match.m_index))
        m_state.m_open.close();
    if (match.m_kind == delimiter_kind::separator) {
        m_state.m_open.add_contents_lines(as_run(line));
        m_state.open_entity();
    } else {
        m_state.m_phase = phase::epilogue;
        m_state.m_delimiters.pop_from(match.m_index);
        on_body_line(line);
    }
}

/// Ends the header block that is being read, if there is one. Where this opens an encapsulated
/// message, the header block of that message is ended too.
void standard_grammar::end_header_blocks() {
    while (m_state.m_phase == phase::header) end_header_block(m_state);
}

void standard_grammar::take_run(const line_run& lines) {
    const bool is_body = m_state.m_phase == phase::body;
    const kept_text& kept = is_body ? body_text : epilogue_text;
    const std::string_view text = m_state.m_tree.make_room(kept, lines);
    if (is_body)
        add_body_lines(m_state, lines);
    else
        add_epilogue_lines(m_state, lines);
    m_state.m_tree.keep_run(kept, text);
}

void standard_grammar::end_input() { end_header_blocks(); }

} // namespace mail_structure_detail::standard
