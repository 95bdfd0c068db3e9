// What the header fields of a message tell a person, decoded.

#ifndef TOOLS_COMMON_MESSAGE_FIELDS_H
#define TOOLS_COMMON_MESSAGE_FIELDS_H

#include "common/address_list.h"
#include "common/entity_fields.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The functions read the entity's own header block, whether or not the entity is a message. Of
// several fields with one name they read the first. What cannot be decoded stays as written, so
// that a result may hold any byte.

/// The decoded Subject, its blanks as written; "" if there is none.
std::string subject_of(const entity_fields& fields);

/// The addresses in the field of that name: from, to, cc.
std::vector<mail_address> addresses_of(const entity_fields& fields, known_field name);

/// The Date as written, which lies in the entity; "" if there is none.
std::string_view written_date_of(const entity_fields& fields);
/// The moment that it names; nothing if it names none.
std::optional<std::chrono::sys_seconds> date_of(const entity_fields& fields);

/// The identifier in the field of that name, message_id or content_id, without its angle
/// brackets; "" if there is none.
std::string identifier_of(const entity_fields& fields, known_field name);

#endif
