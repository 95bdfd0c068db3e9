// The list of all sections that a message has.

#ifndef TOOLS_MAILSTRUCTURE_SECTION_LIST_H
#define TOOLS_MAILSTRUCTURE_SECTION_LIST_H

#include <mail_structure.h>

#include "common/printable.h"
#include "common/tree_source.h"

#include <cstddef>
#include <iosfwd>

/// Prints one line for each section: offset, length, type and name, with tabs between them. The
/// name comes last because that of the whole message is empty. The type is that of the listed
/// bytes: text/rfc822-headers for a header block, message/rfc822 for a message, and else the type
/// that the library has recorded, in which all that is not printable ASCII is spelled out.
/// After the number of a part follows its disposition, if its header block has one, and then its
/// file name. Of a part that has a file name alone, the disposition is "-".
/// @param set  the characters of the file names; all others are spelled out
/// @return how many entities are left out because they are too deep to have a name
std::size_t list_sections(std::ostream& to, const MailStructure::MimeObj& root,
                          const tree_source& source, character_set set);

#endif
