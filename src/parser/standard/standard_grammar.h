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
#include "standard_state.h"

#include <optional>

namespace mail_structure_detail::standard {

class standard_grammar {
public:
    explicit standard_grammar(growing_tree& tree);

    /// What a field name may be made of.
    static constexpr field_names m_names = field_names::printable;
    /// What tells that a body range has not been set yet.
    static constexpr unset_by m_unset_body = unset_by::length;

    /// Takes one line. @throws std::bad_alloc
    void take_line(const input_line& line);

    /// Whether lines that are nothing but text may be taken together, and what ends such a run.
    std::optional<run_limits> may_take_run() const noexcept;
    /// Takes a run at the cost of one line. The tree is then as take_line would leave it, line by
    /// line. @throws std::bad_alloc, and then no line of the run has been taken
    void take_run(const line_run& lines);

    /// The input has ended, and with it all open entities and header blocks. @throws std::bad_alloc
    void end_input();

private:
    void route(const input_line& line);
    void end_header_blocks();
    void on_delimiter_line(const input_line& line, const delimiter_match& match);

    standard_state m_state;
};

} // namespace mail_structure_detail::standard

#endif
