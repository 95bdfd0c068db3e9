// The header phase: the lines of one entity's header block (RFC 5322 section 2.2).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_HEADER_BLOCK_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_HEADER_BLOCK_H

#include "../lines/line_reader.h"
#include "classic_state.h"

namespace mail_structure_detail::classic {

/// Takes a line in the header phase. A line that is not of the block ends it: the phase is then the
/// body phase, and the line is to be looked at again.
/// @throws std::length_error  a line ended by CR LF holds nothing but a field name
/// @throws std::bad_alloc
verdict on_header_line(classic_state& state, const input_line& line);

} // namespace mail_structure_detail::classic

#endif
