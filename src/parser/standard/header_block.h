// The lines of one entity's header block (RFC 5322 section 2.2), and what they make of the entity
// (RFC 2045, RFC 2046).

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_HEADER_BLOCK_H
#define MAIL_STRUCTURE_PARSER_STANDARD_HEADER_BLOCK_H

#include "../lines/line_reader.h"
#include "standard_state.h"

namespace mail_structure_detail::standard {

/// Takes a line of the header block, the empty line that ends it included.
/// @throws std::bad_alloc
void on_header_line(standard_state& state, const input_line& line);

/// Ends the header block, after which the entity's type is known. A multipart's delimiter comes
/// into force; in an entity that holds a message, that message opens with its own header block.
/// @throws std::bad_alloc
void end_header_block(standard_state& state);

} // namespace mail_structure_detail::standard

#endif
