// The loop over the lines of a message. It knows no rule: it hands each line to a grammar, which
// grows the tree. A grammar is a class with the members that classic_grammar.h describes. The lines
// come from a source, a class with the members that memory_reader.h has in its simplest form.

#ifndef MAIL_STRUCTURE_PARSER_LINE_LOOP_H
#define MAIL_STRUCTURE_PARSER_LINE_LOOP_H

#include <mail_structure.h>

#include "lines/input_line.h"
#include "tree/growing_tree.h"

#include <new>
#include <optional>

namespace mail_structure_detail {

/// A message that is being parsed. When it goes away, the tree holds what was taken.
template <class Grammar>
class line_loop {
public:
    /// Takes over the message's old tree. @throws std::bad_alloc
    /// @param rooms  must outlive this object; null where the parse is to have none
    line_loop(MailStructure& message, parse_rooms* rooms)
        : m_message(message), m_tree(message, Grammar::unset_body, rooms),
          m_grammar(m_tree, rooms) {}
    line_loop(const line_loop&) = delete;
    line_loop& operator=(const line_loop&) = delete;

    /// Takes lines until the source has no more. @throws what the source and the grammar throw
    template <class Source>
    void take_lines(Source& source);
    /// Takes one line that a source has given. @throws what the grammar throws
    void take_line(const input_line& line, bool has_wrapped);
    /// Completes the tree; to be called when the input has ended. @throws std::bad_alloc
    void end_input() { m_grammar.end_input(); }
    /// Notes that the input was read to its end. To be called last.
    void mark_done() noexcept;

private:
    template <class Source>
    void take_run(Source& source);
    template <class Source>
    bool read_line(Source& source, input_line& line);

    MailStructure& m_message;
    growing_tree m_tree;
    Grammar m_grammar;
};

template <class Grammar>
template <class Source>
void line_loop<Grammar>::take_lines(Source& source) {
    input_line line;
    for (;;) {
        take_run(source);
        if (!read_line(source, line)) return;
        take_line(line, source.has_wrapped());
    }
}

/// Takes as many lines at once as the source finds to be nothing but text. This only saves time:
/// line by line the tree would come out the same.
template <class Grammar>
template <class Source>
void line_loop<Grammar>::take_run(Source& source) {
    const std::optional<run_limits> limits = m_grammar.may_take_run();
    line_run lines;
    if (!limits || !source.find_run(lines, *limits)) return;
    m_grammar.take_run(lines); // if this throws, the lines are neither in the tree nor taken
    source.take(lines);
}

/// Reads the next line. Where the source throws, the grammar first completes the tree, as if the
/// input had ended with the line before.
template <class Grammar>
template <class Source>
bool line_loop<Grammar>::read_line(Source& source, input_line& line) {
    try {
        return source.next(line);
    } catch (...) {
        try {
            m_grammar.end_input();
        } catch (const std::bad_alloc&) {} // the tree is as far as it was built
        throw;
    }
}

template <class Grammar>
void line_loop<Grammar>::take_line(const input_line& line, bool has_wrapped) {
    if (has_wrapped) m_tree.m_open.watch_for_lapses();
    m_grammar.take_line(line);
}

template <class Grammar>
void line_loop<Grammar>::mark_done() noexcept {
    // Kept: m_done is not reset when Fill begins, so it stays true while the next message is read.
    // keeps_done_set_while_the_next_message_is_read
    m_message.m_done = true;
    m_tree.m_open.finalize();
}

} // namespace mail_structure_detail

#endif
