// Tells what a line is to a header block: a field, a folded line of one, or its end (RFC 5322
// section 2.2).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_HEADER_LINE_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_HEADER_LINE_H

#include "../lines/line_reader.h"

#include <cstddef>
#include <cstdint>

namespace mail_structure_detail::classic {

enum class header_line_kind : std::uint8_t {
    empty,           // ends the block and belongs to it
    field,           // begins a field; m_at is the position of the colon, or where one would stand
    continuation,    // folds the field before it; m_at is the position of the blank before its text
    not_of_the_block // ends the block and does not belong to it
};

struct header_line {
    header_line_kind m_kind;
    std::size_t m_at;
};

/// @param in_field  the block has had a field line, which this line could continue
header_line classify_header_line(const input_line& line, bool in_field) noexcept;

} // namespace mail_structure_detail::classic

#endif
