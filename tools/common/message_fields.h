// What the header fields of a message tell a person, decoded.

#ifndef TOOLS_COMMON_MESSAGE_FIELDS_H
#define TOOLS_COMMON_MESSAGE_FIELDS_H

#include <mail_structure.h>

#include "common/address_list.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The functions read the entity's own header block, whether or not the entity is a message. Of
// several fields with one name they read the first. What cannot be decoded stays as written, so
// that a result may hold any byte.

/// The decoded Subject, its blanks as written; "" if there is none.
std::string subject_of(const MailStructure::MimeObj& entity);

/// The addresses in the field of that name: "from", "to", "cc".
std::vector<mail_address> addresses_of(const MailStructure::MimeObj& entity, std::string_view name);

/// The Date as written; "" if there is none.
std::string written_date_of(const MailStructure::MimeObj& entity);
/// The moment that it names; nothing if it names none.
std::optional<std::chrono::sys_seconds> date_of(const MailStructure::MimeObj& entity);

/// The identifier in the field of that name, "message-id" or "content-id", without its angle
/// brackets; "" if there is none.
std::string identifier_of(const MailStructure::MimeObj& entity, std::string_view name);

#endif
