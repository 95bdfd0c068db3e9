// The trees that the two rule sets of the library give a message, side by side.

#ifndef TOOLS_MAILSTRUCTURE_RULES_TABLE_H
#define TOOLS_MAILSTRUCTURE_RULES_TABLE_H

#include <mail_structure.h>

#include "common/printable.h"

#include <string>

/// Lines of two columns, with an entity of the standard tree on the left and one of the classic
/// tree on the right: its section, its type and its place. Entities before the first difference and
/// behind the last one are left out, and so are those after the first hundred lines; a line tells
/// how many. Nothing of the message makes a terminal do anything. Linear in the entities.
/// @throws std::bad_alloc
std::string rules_table(const MailStructure::MimeObj& standard,
                        const MailStructure::MimeObj& classic, character_set set);

#endif
