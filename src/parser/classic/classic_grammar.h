// The rules that the library was born with, as the loop over lines asks them.
//
//     a line -> dropped, if it is empty and the first after an entity has opened
//            -> header phase           header_block.h, which calls content_type.h
//            -> body, epilogue         body.h, which calls boundary.h

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_GRAMMAR_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_CLASSIC_GRAMMAR_H

#include "../lines/line_reader.h"
#include "../tree/growing_tree.h"
#include "classic_state.h"

#include <optional>

namespace mail_structure_detail::classic {

class classic_grammar {
public:
    explicit classic_grammar(growing_tree& tree) : m_state(tree) {}

    /// Takes one line.
    /// @throws std::runtime_error, std::length_error  see MailStructure::Fill
    /// @throws std::bad_alloc
    void take_line(const input_line& line);

    /// What a field name may be made of.
    static constexpr field_names m_names = field_names::letters;
    /// What tells that a body range has not been set yet; see grow_body_range.
    static constexpr unset_by m_unset_body = unset_by::offset;

    /// Whether lines that are nothing but text may be taken together, and what ends such a run.
    std::optional<run_limits> may_take_run() const noexcept;
    /// Takes a run at the cost of one line. The tree is then as take_line would leave it, line by
    /// line. @throws std::bad_alloc, and then no line of the run has been taken
    void take_run(const line_run& lines);

    /// The input has ended.
    void end_input() noexcept {}

private:
    void route(const input_line& line);

    classic_state m_state;
};

} // namespace mail_structure_detail::classic

#endif
