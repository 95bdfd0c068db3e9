// Saves the attachments of a message in a folder.

#ifndef TOOLS_MAILSTRUCTURE_ATTACHMENT_SAVER_H
#define TOOLS_MAILSTRUCTURE_ATTACHMENT_SAVER_H

#include "common/message_reader.h"
#include "mailstructure/part_command.h"

/// Saves the attachments that the options choose in the folder that they name, decoded. Prints a
/// line for each: section, type, size and name, with tabs between them. The folder is created when
/// the first attachment is saved. Nothing that is there is replaced: a name that is taken gets a
/// number. Of a part that cannot be decoded this complains, and goes on.
/// @return false if not all attachments were saved whole, or if a pattern has chosen none
bool save_attachments(const part_options& options, const message_reader& reader);

#endif
