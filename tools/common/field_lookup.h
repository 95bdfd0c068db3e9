// Header fields by their exact names, and what the tools read out of them: transfer encoding,
// charset and file name.

#ifndef TOOLS_COMMON_FIELD_LOOKUP_H
#define TOOLS_COMMON_FIELD_LOOKUP_H

#include <mail_structure.h>

#include <string>
#include <string_view>

/// The first, or the last, field of exactly this name, ASCII case ignored; null where there is
/// none. Linear in the number of fields. Fields that describe an entity's body (Content-...) are
/// taken from the last one, as the library takes the media type.
const MailStructure::header* first_field(const MailStructure::MimeObj& entity,
                                         std::string_view name);
const MailStructure::header* last_field(const MailStructure::MimeObj& entity,
                                        std::string_view name);

/// The value of the entity's Content-Transfer-Encoding field as written, without comments and the
/// blanks around it; "" where there is no such field, or nothing in it. (The library's m_encoding
/// does not have it.)
std::string transfer_encoding_of(const MailStructure::MimeObj& entity);

/// The charset parameter of the Content-Type field as written; "" where there is none.
/// @param bytes  the whole file, from which the field is cut: the library keeps no parameter whose
/// name is not made of
///               letters, and takes a semicolon within quotes for the end of a value
std::string charset_of(const MailStructure::MimeObj& entity, std::string_view bytes);

/// The entity's file name: the parameter filename of Content-Disposition or, without one, name of
/// Content-Type; "" where there is none. Parameters in pieces are joined and percent signs undone
/// as RFC 2231 has it, encoded words as RFC 2047 has them; what cannot be decoded, or not to UTF-8,
/// stays as written. Hostile: may hold any byte.
std::string file_name_of(const MailStructure::MimeObj& entity, std::string_view bytes);

#endif
