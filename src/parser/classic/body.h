// The body and epilogue phases: what follows a header block, up to the next one (RFC 2046
// section 5.1).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_BODY_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_BODY_H

#include "fill_state.h"

namespace mail_structure_detail {

/// Takes a line of a body, a preamble included, or a boundary line that ends one. @throws
/// std::bad_alloc
void on_body_line(fill_state& state, const input_line& line);

/// Takes a line of an epilogue, or a boundary line of an enclosing multipart that ends one. @throws
/// std::bad_alloc
void on_epilogue_line(fill_state& state, const input_line& line);

/// Reserves what add_run will need to keep the text of the lines. @throws std::bad_alloc
void make_room_for_text(fill_state& state, const line_run& lines);

/// Takes lines of a body, or of an epilogue, none of which is a boundary line. Room was made for
/// them.
void add_run(fill_state& state, const line_run& lines);

} // namespace mail_structure_detail

#endif
