#include "classic_grammar.h"

#include "body.h"
#include "header_block.h"

#include <stdexcept>
#include <utility>

namespace mail_structure_detail::classic {

void classic_grammar::take_line(const input_line& line) {
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

/// Takes the line down the path of the phase. A line that ends a header block goes on as a body
/// line, and one that finds an encapsulated message innermost opens the message within, as the
/// first line of that message's header block.
void classic_grammar::route(const input_line& line) {
    for (;;) { // at most four turns: end a block, open a message, end its block, be a body line
        // Kept: any line does this, be it a separator, an empty line or a line of an epilogue.
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

std::optional<run_limits> classic_grammar::may_take_run() const noexcept {
    if (m_state.m_phase == phase::header || m_state.m_just_opened) return std::nullopt;
    const open_entities& open = m_state.m_open;
    if (open.innermost().m_message) return std::nullopt; // the next line opens the message within
    const bool freely = m_state.m_phase == phase::body ? open.takes_body_lines_freely()
                                                       : open.takes_epilogue_lines_freely();
    if (!freely) return std::nullopt;
    return run_limits{m_state.m_delimiters.empty() ? dashed_lines::are_text
                                                   : dashed_lines::end_the_run,
                      stray_bytes::end_the_run};
}

void classic_grammar::take_run(const line_run& lines) {
    if (m_state.m_phase == phase::body)
        add_body_run(m_state, lines);
    else
        add_epilogue_run(m_state, lines);
}

} // namespace mail_structure_detail::classic
