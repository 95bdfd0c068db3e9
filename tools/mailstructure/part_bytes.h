// The bytes of a piece of a message as `mailstructure part` writes them: as they are, decoded,
// or in UTF-8.

#ifndef TOOLS_MAILSTRUCTURE_PART_BYTES_H
#define TOOLS_MAILSTRUCTURE_PART_BYTES_H

#include <mail_sections.h>

#include "common/message_file.h"
#include "common/transfer_decoding.h"
#include "mailstructure/part_command.h"

#include <optional>
#include <vector>

/// The bytes that were asked for, and the entity that they belong to.
struct chosen_piece {
    const MailStructure::MimeObj* m_entity = nullptr;
    mail_sections::byte_range m_bytes;
    /// What follows those bytes: of the chosen fields of a header block, all but the first range.
    std::vector<mail_sections::byte_range> m_more = {};
};

/// The encoding to undo. If it is unknown, this complains. Lenient decoding then takes the bytes as
/// they are, as mail readers do; there is no result otherwise.
std::optional<transfer_encoding> encoding_to_undo(const part_options& options,
                                                  const chosen_piece& piece);

/// Hands the bytes of the piece to the sink, decoded, and in UTF-8, if that is wanted. Complains
/// about damage.
/// @return false if they cannot be decoded or converted
bool give_piece(const part_options& options, const message_file& file, const chosen_piece& piece,
                transfer_encoding encoding, const byte_sink& sink);

#endif
