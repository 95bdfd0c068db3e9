// Mail as today's readers read it: RFC 5322, 2045, 2046, 2231 and 6532 in practice.
//
//     a line -> delimiter line of an open multipart     delimiters.h
//            -> header phase                            header_block.h, which calls content_type.h
//            -> body or epilogue line                   grows the tree
//
// Nothing in the input is an error. doc/standard.md has the rules one by one.

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_STANDARD_GRAMMAR_H
#define MAIL_STRUCTURE_PARSER_STANDARD_STANDARD_GRAMMAR_H

#include "../lines/line_reader.h"
#include "../tree/growing_tree.h"
#include "header_block.h"
#include "standard_state.h"

#include <optional>

namespace mail_structure_detail::standard {

class standard_grammar {
public:
    /// @param rooms  must outlive this object; null where there are none
    standard_grammar(growing_tree& tree, parse_rooms* rooms);

    /// What a field name may be made of.
    static constexpr field_names names = field_names::printable;
    /// What tells that a body range has not been set yet.
    static constexpr unset_by unset_body = unset_by::length;

    /// Takes one line. @throws std::bad_alloc
    void take_line(const input_line& line);

    /// Whether lines that are nothing but text may be taken together, and what ends such a run.
    std::optional<run_limits> may_take_run() const noexcept;
    /// Takes a run at the cost of one line. The tree is then as take_line would leave it, line by
    /// line. @throws std::bad_alloc, and then no line of the run has been taken
    void take_run(const line_run& lines);

    /// To be called when the input has ended: ends the header block that is being read, if there is
    /// one. @throws std::bad_alloc
    void end_input();

private:
    void route(const input_line& line);
    void on_body_line(const input_line& line);
    void on_epilogue_line(const input_line& line);
    void end_header_blocks();
    void on_delimiter_line(const input_line& line, const delimiter_match& match);

    standard_state m_state;
};

// These functions are inline because the loop over lines calls them for every line or run.

/// The line without any CR before its LF: by these rules all of them are part of its terminator.
inline input_line without_crs(input_line line) noexcept {
    while (line.m_text.ends_with('\r')) line.m_text.remove_suffix(1);
    return line;
}

inline void standard_grammar::take_line(const input_line& line) {
    if (line.m_text.ends_with('\r'))
        route(without_crs(line));
    else
        route(line);
}

/// Gives the line to the function of the phase, unless it is a delimiter line: any line may be one,
/// those of a header block too, and of any open multipart.
inline void standard_grammar::route(const input_line& line) {
    if (const auto match = m_state.m_delimiters.match(line.m_text)) {
        on_delimiter_line(line, *match);
        return;
    }
    switch (m_state.m_phase) {
    case phase::header: on_header_line(m_state, line); break;
    case phase::body: on_body_line(line); break;
    case phase::epilogue: on_epilogue_line(line); break;
    }
}

inline std::optional<run_limits> standard_grammar::may_take_run() const noexcept {
    if (m_state.m_phase == phase::header) return std::nullopt;
    const bool freely = m_state.m_phase == phase::body
                            ? m_state.m_open.takes_body_lines_freely()
                            : m_state.m_open.takes_own_epilogue_lines_freely();
    if (!freely) return std::nullopt;
    if (m_state.m_delimiters.empty())
        return run_limits{dashed_lines::are_text, stray_bytes::are_text};
    return run_limits{dashed_lines::end_the_run, stray_bytes::are_text,
                      m_state.m_delimiters.filter()};
}

} // namespace mail_structure_detail::standard

#endif
