// The loop over the lines of a message, and the way of a line through it:
//
//     line_reader --> drop an empty line right after an entity was opened
//                 --> header phase     header_block.h, which calls content_type.h
//                 --> body, epilogue   body.h, which calls boundary.h
//                        and all of them grow the tree through open_entities.h

#include "fill.h"

#include "classic/body.h"
#include "classic/fill_state.h"
#include "classic/header_block.h"
#include "lines/line_reader.h"

#include <stdexcept>
#include <utility>

std::uint32_t MailStructure::m_memlimit = 0xFFFFFFFF;

namespace mail_structure_detail {

namespace {

/// Takes the line down the path of the phase. A line that ends a header block goes on as a body
/// line, and one that finds an encapsulated message current opens the message within, as its first
/// header line.
void route(fill_state& state, const input_line& line) {
    for (;;) { // at most four turns: end a block, open a message, end its block, be body
        if (state.m_phase == phase::header) {
            if (on_header_line(state, line) == verdict::consumed) return;
        } else if (state.m_open.top().m_message) {
            state.open_entity();
        } else {
            switch (state.m_phase) {
            case phase::body: on_body_line(state, line); return;
            case phase::epilogue: on_epilogue_line(state, line); return;
            case phase::header: break;
            }
            throw std::runtime_error("error in parse mime body"); // a guard: there is no such phase
        }
    }
}

/// Whether any line that is not a boundary line is text of the entity that lines go to now.
bool is_at_text(const fill_state& state) noexcept {
    return state.m_phase != phase::header && !state.m_just_opened && !state.m_open.top().m_message;
}

/// Takes as many lines as the reader finds to be nothing but text. This only hastens things: route
/// would come to the same, line by line. What may fail comes before the lines are read, so a
/// failure never leaves a run half done.
void take_run(fill_state& state, line_reader& reader) {
    if (!is_at_text(state)) return;
    const bool freely = state.m_phase == phase::body ? state.m_open.takes_body_lines_freely()
                                                     : state.m_open.takes_epilogue_lines_freely();
    if (!freely) return;
    const dashed_lines dashed =
        state.m_delimiters.empty() ? dashed_lines::are_text : dashed_lines::end_the_run;
    line_run run;
    if (!reader.find_run(run, dashed)) return;
    make_room_for_text(state, run);
    reader.take(run);
    add_run(state, run);
}

} // namespace

void fill_from(MailStructure& message, std::istream& in, std::uint32_t first_offset) {
    fill_state state(message); // clears the root
    line_reader reader(in, first_offset);
    input_line line;
    for (;;) {
        take_run(state, reader);
        if (!reader.next(line)) break;
        // Kept: the last byte of a line that no CR ends is not examined: a NUL just before an LF
        // passes.
        if (line.m_stray_byte) throw std::runtime_error("error in io input data");
        if (reader.has_wrapped()) state.m_open.watch_for_lapses();
        // Kept: the empty line after a separator is dropped from every range, and so is the one
        // after the first header line of an encapsulated message. The phase stays, so a part that
        // begins with a blank line has its next line looked at as a header line.
        const bool just_opened = std::exchange(state.m_just_opened, false);
        if (!just_opened || !line.m_text.empty()) route(state, line);
    }
    message.m_done = true;
    state.m_open.finalize();
}

} // namespace mail_structure_detail

void MailStructure::Fill(std::istream& in) { mail_structure_detail::fill_from(*this, in, 0); }
