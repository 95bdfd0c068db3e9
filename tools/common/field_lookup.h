// Header fields by their exact names, and what the tools read out of them: transfer encoding,
// charset and file name.

#ifndef TOOLS_COMMON_FIELD_LOOKUP_H
#define TOOLS_COMMON_FIELD_LOOKUP_H

#include <mail_structure.h>

#include <string>
#include <string_view>

/// The first, or the last, field of exactly this name, ASCII case ignored; null if there is none.
/// Linear in the number of fields. Where an entity has several fields that describe its body
/// (Content-...), the last one counts, as it does for the library's media type.
const MailStructure::header* first_field(const MailStructure::MimeObj& entity,
                                         std::string_view name);
const MailStructure::header* last_field(const MailStructure::MimeObj& entity,
                                        std::string_view name);

/// The value of the entity's Content-Transfer-Encoding field as written, without comments and
/// without white space around it; "" if there is no such field, or nothing in it. (The library's
/// m_encoding does not hold this value.)
std::string transfer_encoding_of(const MailStructure::MimeObj& entity);

/// The charset parameter of the Content-Type field as written; "" if there is none.
/// @param bytes  the whole file. The field is read from these bytes, since the library keeps no
///               parameter with a digit or a star in its name, and ends a value at a semicolon
///               within quotes.
std::string charset_of(const MailStructure::MimeObj& entity, std::string_view bytes);

/// The entity's file name: the parameter filename of Content-Disposition or, if there is none, the
/// parameter name of Content-Type; "" if there is neither. It is decoded as decoded_parameter()
/// says. The sender chose it, and it may hold any byte.
std::string file_name_of(const MailStructure::MimeObj& entity, std::string_view bytes);

#endif
