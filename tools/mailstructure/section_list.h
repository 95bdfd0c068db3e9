// The list of all sections that a message has.

#ifndef TOOLS_MAILSTRUCTURE_SECTION_LIST_H
#define TOOLS_MAILSTRUCTURE_SECTION_LIST_H

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string_view>

/// Prints one line a section: offset, length, type and the section itself, with a tab between them.
/// The section comes last, for that of the whole message is empty. Types are those of the bytes:
/// header blocks are text/rfc822-headers, messages message/rfc822, all else as the part's header
/// block has it, with what is no printable ASCII spelled out.
/// @param bytes          the whole file, from whose start the ranges of the tree are counted
/// @param message_start  where the message begins
/// @return how many entities are left out, since they lie too deep to have a name
std::size_t list_sections(std::ostream& to, const MailStructure::MimeObj& root,
                          std::string_view bytes, std::uint32_t message_start);

#endif
