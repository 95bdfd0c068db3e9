// Finds the attachments of a message in a batch, and hashes what they hold.

#ifndef TOOLS_EXTRACT_ATTACHMENT_FINDER_H
#define TOOLS_EXTRACT_ATTACHMENT_FINDER_H

#include "scan/pipeline/message_worker.h"

/// Adds the attachments of the message to its batch. A fault is added where the bytes of the
/// message could not be held.
/// @throws std::bad_alloc
void find_attachments(batch& work, const message_facts& message, MailStructure::rules by);

#endif
