// Fill: chooses the rules and the source of lines, and runs the loop of line_loop.h.

#include "fill.h"

#include "classic/classic_grammar.h"
#include "line_loop.h"
#include "lines/line_reader.h"
#include "lines/memory_reader.h"
#include "standard/standard_grammar.h"

std::uint32_t MailStructure::m_memlimit = 0xFFFFFFFF;

namespace mail_structure_detail {

namespace {

/// @param input  a stream, or the bytes themselves
template <class Grammar, class Source, class Input>
void fill_by(MailStructure& message, Input& input, std::uint32_t first_offset) {
    parse_rooms rooms;
    line_loop<Grammar> loop(message, &rooms);
    Source source(input, first_offset, Grammar::names);
    loop.take_lines(source);
    loop.end_input();
    loop.mark_done();
}

template <class Source, class Input>
void fill_from_source(MailStructure& message, Input& input, std::uint32_t first_offset,
                      MailStructure::rules by) {
    if (by == MailStructure::rules::standard)
        fill_by<standard::standard_grammar, Source>(message, input, first_offset);
    else
        fill_by<classic::classic_grammar, Source>(message, input, first_offset);
}

} // namespace

void fill_from(MailStructure& message, std::istream& in, std::uint32_t first_offset,
               MailStructure::rules by) {
    fill_from_source<line_reader>(message, in, first_offset, by);
}

void fill_from(MailStructure& message, std::string_view bytes, std::uint32_t first_offset,
               MailStructure::rules by) {
    fill_from_source<memory_reader>(message, bytes, first_offset, by);
}

} // namespace mail_structure_detail

void MailStructure::Fill(std::istream& in) { Fill(in, rules::classic); }

void MailStructure::Fill(std::istream& in, rules by) {
    mail_structure_detail::fill_from(*this, in, 0, by);
}

void MailStructure::Fill(std::string_view bytes, rules by) {
    mail_structure_detail::fill_from(*this, bytes, 0, by);
}
