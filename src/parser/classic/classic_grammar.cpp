#include "classic_grammar.h"

namespace mail_structure_detail::classic {

void classic_grammar::take_run(const line_run& lines) {
    if (m_state.m_phase == phase::body)
        add_body_run(m_state, lines);
    else
        add_epilogue_run(m_state, lines);
}

} // namespace mail_structure_detail::classic
