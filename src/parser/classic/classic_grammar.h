// The library's first rules, in the form in which the loop over lines uses them.
//
//     a line -> dropped, if it is empty and the first after an entity has opened
//            -> header phase           header_block.h, which calls content_type.h
//            -> body, epilogue         body.h, which calls boundary.h

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_GRAMMAR_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_GRAMMAR_H

#include "../lines/line_reader.h"
#include "../tree/growing_tree.h"
#include "body.h"
#include "classic_state.h"
#include "header_block.h"

#include <optional>
#include <stdexcept>
#include <utility>

namespace mail_structure_detail::classic {

class classic_grammar {
public:
    /// @param rooms  must outlive this object; null where there are none
    classic_grammar(growing_tree& tree, parse_rooms* rooms) : m_state(tree, rooms) {}

    /// Takes one line.
    /// @throws std::runtime_error, std::length_error  see MailStructure::Fill
    /// @throws std::bad_alloc
    void take_line(const input_line& line);

    /// What a field name may be made of.
    static constexpr field_names names = field_names::letters;
    /// What tells that a body range has not been set yet; see grow_body_range.
    static constexpr unset_by unset_body = unset_by::offset;

    /// Whether lines that are nothing but text may be taken together, and what ends such a run.
    std::optional<run_limits> may_take_run() const noexcept;
    /// Takes a run at the cost of one line. The tree is then as take_line would leave it, line by
    /// line. @throws std::bad_alloc, and then no line of the run has been taken
    void take_run(const line_run& lines);

    /// To be called when the input has ended. Under these rules nothing is left to do then.
    void end_input() noexcept {}

private:
    void route(const input_line& line);

    classic_state m_state;
};

// These functions are inline because the loop over lines calls them for every line or run.

inline void classic_grammar::take_line(const input_line& line) {
    // Kept: the byte directly before the LF is not examined, so a NUL there passes.
    // keeps_nul_before_the_line_feed_unseen
    if (line.m_stray_byte) throw std::runtime_error("error in io input data");
    // Kept: an empty line after a separator is dropped from every range, and so is one after the
    // first header line of an encapsulated message. The phase stays, so a part that begins with an
    // empty line has its next line looked at as a header line.
    // keeps_empty_line_after_a_separator_dropped keeps_empty_line_after_its_first_line_dropped
    // keeps_empty_line_dropped_in_its_body keeps_empty_line_dropped_in_an_epilogue
    const bool just_opened = std::exchange(m_state.m_just_opened, false);
    if (!just_opened || !line.m_text.empty()) route(line);
}

/// Gives the line to the function of the phase. A line that ends a header block goes on as a body
/// line, and one that finds an encapsulated message innermost opens the message within, as the
/// first line of that message's header block.
inline void classic_grammar::route(const input_line& line) {
    for (;;) { // at most four turns: end a block, open a message, end its block, be a body line
        // Kept: any line opens it, even a separator, an empty line or a line of an epilogue.
        // keeps_separator_opening_it_first keeps_empty_first_line_as_its_header_block
        // keeps_message_opened_again_in_an_epilogue
        if (m_state.m_phase != phase::header && m_state.m_open.innermost().m_message)
            m_state.open_entity();
        switch (m_state.m_phase) {
        case phase::header:
            if (on_header_line(m_state, line) == verdict::consumed) return;
            break;
        case phase::body: on_body_line(m_state, line); return;
        case phase::epilogue: on_epilogue_line(m_state, line); return;
        default: throw std::runtime_error("error in parse mime body"); // a guard: no such phase
        }
    }
}

inline std::optional<run_limits> classic_grammar::may_take_run() const noexcept {
    if (m_state.m_phase == phase::header || m_state.m_just_opened) return std::nullopt;
    const open_entities& open = m_state.m_open;
    if (open.innermost().m_message) return std::nullopt; // the next line opens the message within
    const bool freely = m_state.m_phase == phase::body ? open.takes_body_lines_freely()
                                                       : open.takes_epilogue_lines_freely();
    if (!freely) return std::nullopt;
    if (m_state.m_delimiters.empty())
        return run_limits{dashed_lines::are_text, stray_bytes::end_the_run};
    return run_limits{dashed_lines::end_the_run, stray_bytes::end_the_run,
                      m_state.m_delimiters.filter()};
}

} // namespace mail_structure_detail::classic

#endif
