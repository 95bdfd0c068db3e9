// The loop over the lines of a message. It knows no rule: it hands each line to a grammar, which
// grows the tree. A grammar is a class with the members that classic_grammar.h describes.

#include "fill.h"

#include "classic/classic_grammar.h"
#include "lines/line_reader.h"
#include "standard/standard_grammar.h"
#include "tree/growing_tree.h"

#include <new>
#include <optional>

std::uint32_t MailStructure::m_memlimit = 0xFFFFFFFF;

namespace mail_structure_detail {

namespace {

/// Takes as many lines at once as the reader finds to be nothing but text. This only saves time:
/// line by line the tree would come out the same.
template <class Grammar>
void take_run(Grammar& grammar, line_reader& reader) {
    const std::optional<run_limits> limits = grammar.may_take_run();
    line_run lines;
    if (!limits || !reader.find_run(lines, *limits)) return;
    grammar.take_run(lines); // if this throws, the lines are neither in the tree nor taken
    reader.take(lines);
}

/// Reads the next line. Where the stream throws, the grammar first completes the tree, as if the
/// input had ended with the line before.
template <class Grammar>
bool read_line(Grammar& grammar, line_reader& reader, input_line& line) {
    try {
        return reader.next(line);
    } catch (...) {
        try {
            grammar.end_input();
        } catch (const std::bad_alloc&) {} // the tree is as far as it was built
        throw;
    }
}

template <class Grammar>
void fill_by(MailStructure& message, std::istream& in, std::uint32_t first_offset) {
    growing_tree tree(message, Grammar::unset_body);
    Grammar grammar(tree);
    line_reader reader(in, first_offset, Grammar::names);
    input_line line;
    for (;;) {
        take_run(grammar, reader);
        if (!read_line(grammar, reader, line)) break;
        if (reader.has_wrapped()) tree.m_open.watch_for_lapses();
        grammar.take_line(line);
    }
    grammar.end_input();
    // Kept: m_done is not reset when Fill begins, so it stays true while the next message is read.
    // keeps_done_set_while_the_next_message_is_read
    message.m_done = true;
    tree.m_open.finalize();
}

} // namespace

void fill_from(MailStructure& message, std::istream& in, std::uint32_t first_offset,
               MailStructure::rules by) {
    if (by == MailStructure::rules::standard)
        fill_by<standard::standard_grammar>(message, in, first_offset);
    else
        fill_by<classic::classic_grammar>(message, in, first_offset);
}

} // namespace mail_structure_detail

void MailStructure::Fill(std::istream& in) { Fill(in, rules::classic); }

void MailStructure::Fill(std::istream& in, rules by) {
    mail_structure_detail::fill_from(*this, in, 0, by);
}
