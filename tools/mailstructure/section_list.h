// The list of all sections that a message has.

#ifndef TOOLS_MAILSTRUCTURE_SECTION_LIST_H
#define TOOLS_MAILSTRUCTURE_SECTION_LIST_H

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string_view>

/// Prints one line for each section: offset, length, type and name, with tabs between them. The
/// name comes last because that of the whole message is empty. The type is that of the listed
/// bytes: text/rfc822-headers for a header block, message/rfc822 for a message, and else the type
/// from the part's header block, in which all that is not printable ASCII is spelled out.
/// @param bytes          the whole file; the ranges of the tree count from its start
/// @param message_start  where in the file the message begins
/// @return how many entities are left out because they are too deep to have a name
std::size_t list_sections(std::ostream& to, const MailStructure::MimeObj& root,
                          std::string_view bytes, std::uint32_t message_start);

#endif
