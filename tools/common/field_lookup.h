// What the tools read out of the header fields that describe a body: transfer encoding, charset,
// disposition and file name. Beside them, the media type that the library has recorded, and whether
// an entity holds others.

#ifndef TOOLS_COMMON_FIELD_LOOKUP_H
#define TOOLS_COMMON_FIELD_LOOKUP_H

#include <mail_structure.h>

#include "common/entity_fields.h"
#include "common/tree_source.h"

#include <string>

/// "text/plain": the media type that the library has recorded; "(no type)" if it has recorded none.
/// The classic rules fill in the default type only when the body begins.
std::string media_type_of(const MailStructure::MimeObj& entity);

/// Whether the entity holds parts or a message, or would hold them if it had not been cut off.
bool holds_others(const MailStructure::MimeObj& entity) noexcept;

// Where an entity has several fields of one name that describe its body (Content-...), the
// functions below read the one that counts for the library's media type: the first by the standard
// rules, the last by the classic ones.

/// The transfer encoding that the entity's Content-Transfer-Encoding field names, as written but
/// without comments; "" if there is no such field. By the standard rules this is the library's
/// m_encoding, which the classic rules do not set.
std::string transfer_encoding_of(const entity_fields& fields, MailStructure::rules by);

/// The transfer encoding to undo, as transfer_encoding_of() gives it. By the standard rules that of
/// an entity into which the library has looked has no effect: its parts, or its message, are there
/// as they are. The result is then "".
std::string encoding_in_effect(const entity_fields& fields, MailStructure::rules by);

/// The charset parameter of the Content-Type field as written; "" if there is none.
std::string charset_of(const entity_fields& fields, const tree_source& source);

/// The word with which the Content-Disposition field begins, as written: "attachment", "inline" or
/// what the sender chose; "" if there is no such field.
std::string disposition_of(const entity_fields& fields, MailStructure::rules by);

/// The entity's file name: the parameter filename of Content-Disposition or, if there is none, the
/// parameter name of Content-Type; "" if there is neither. It is decoded as decoded_parameter()
/// says. The sender chose it, and it may hold any byte.
std::string file_name_of(const entity_fields& fields, const tree_source& source);

#endif
