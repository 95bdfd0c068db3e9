// The body and epilogue phases: what follows a header block, up to the next one (RFC 2046
// section 5.1).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_BODY_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_BODY_H

#include "../lines/line_reader.h"
#include "classic_state.h"

namespace mail_structure_detail::classic {

/// Takes a line of a body (a preamble is one too), or a delimiter line that ends one.
/// @throws std::bad_alloc
void on_body_line(classic_state& state, const input_line& line);

/// Takes a line of an epilogue, or a delimiter line of an enclosing multipart that ends one.
/// @throws std::bad_alloc
void on_epilogue_line(classic_state& state, const input_line& line);

/// Take lines of a body, or of an epilogue, none of which is a delimiter line.
/// @throws std::bad_alloc, and then nothing has changed
void add_body_run(classic_state& state, const line_run& lines);
void add_epilogue_run(classic_state& state, const line_run& lines);

} // namespace mail_structure_detail::classic

#endif
