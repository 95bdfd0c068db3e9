// Finds a message in a pile by what its row says: SOURCE@OFFSET, or SOURCE::MEMBER@OFFSET in an
// archive.

#ifndef TOOLS_SCAN_MESSAGE_ADDRESS_H
#define TOOLS_SCAN_MESSAGE_ADDRESS_H

#include "common/message_reader.h"

#include <optional>
#include <string>

/// Opens the message of that address. It ends where it ends for a scan by the default rules. What
/// stands before it is not read, unless the source is packed.
/// @return nothing if the name is no address: a file has that name, or no file has the name of the
///         source, or the name does not end with "@" and a number
std::optional<opened_message> open_addressed_message(const std::string& name);

#endif
