// Header fields by their exact names, and what the tools read out of them: transfer encoding,
// charset and file name.

#ifndef TOOLS_COMMON_FIELD_LOOKUP_H
#define TOOLS_COMMON_FIELD_LOOKUP_H

#include <mail_structure.h>

#include "common/tree_source.h"

#include <string>
#include <string_view>

/// The first, or the last, field of exactly this name, ASCII case ignored; null if there is none.
/// Linear in the number of fields.
const MailStructure::header* first_field(const MailStructure::MimeObj& entity,
                                         std::string_view name);
const MailStructure::header* last_field(const MailStructure::MimeObj& entity,
                                        std::string_view name);

// Where an entity has several fields of one name that describe its body (Content-...), the
// functions below read the one that counts for the library's media type: the first by the standard
// rules, the last by the classic ones.

/// The transfer encoding that the entity's Content-Transfer-Encoding field names, as written but
/// without comments; "" if there is no such field. By the standard rules this is the library's
/// m_encoding, which the classic rules do not set.
std::string transfer_encoding_of(const MailStructure::MimeObj& entity, MailStructure::rules by);

/// The charset parameter of the Content-Type field as written; "" if there is none.
std::string charset_of(const MailStructure::MimeObj& entity, const tree_source& source);

/// The entity's file name: the parameter filename of Content-Disposition or, if there is none, the
/// parameter name of Content-Type; "" if there is neither. It is decoded as decoded_parameter()
/// says. The sender chose it, and it may hold any byte.
std::string file_name_of(const MailStructure::MimeObj& entity, const tree_source& source);

#endif
