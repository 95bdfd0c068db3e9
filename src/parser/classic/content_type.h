// What an entity's Content-Type and transfer-encoding fields say about it (RFC 2045 sections 5
// and 6).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_CONTENT_TYPE_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_CONTENT_TYPE_H

#include "classic_state.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace mail_structure_detail::classic {

/// The rule for the name of a Content-Type field: any prefix of "content-type", the empty one
/// included.
bool is_content_type_name(const std::string& name);

/// The rule for the name of a transfer-encoding field.
bool is_encoding_name(const std::string& name);

/// Sets type and subtype of the innermost entity from the value of the field in progress, marks an
/// encapsulated message, and reads the parameters of the field's first line.
/// @param semicolon  position of the first ';' after the colon, npos without one
/// @throws std::bad_alloc
void analyse_content_type(classic_state& state, std::string_view line, std::size_t semicolon);

/// Stores the parameters of one line of the Content-Type field in progress, and registers
/// boundaries.
/// @param before  position just before the first parameter, npos when there is none
/// @throws std::bad_alloc
void read_parameters(classic_state& state, std::string_view line, std::size_t before);

/// Makes an empty type "text" and an empty subtype "plain".
void default_type(MailStructure::MimeObj& entity);

} // namespace mail_structure_detail::classic

#endif
