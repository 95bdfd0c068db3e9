// An attachment of a message in a batch.

#ifndef TOOLS_SCAN_PIPELINE_FOUND_ATTACHMENT_H
#define TOOLS_SCAN_PIPELINE_FOUND_ATTACHMENT_H

#include "scan/pipeline/decoded_body.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct found_attachment {
    std::uint64_t m_message = 0; ///< Offset of the message in the source.
    std::string m_section;       ///< Empty if the part is too deep to have a name.
    std::string m_type;
    std::string m_subtype;
    std::string m_disposition; ///< Empty if there is none.
    std::string m_sent_name;   ///< Empty if there is none.
    /// The body as it stands in the message, in memory that lasts as long as the batch.
    std::string_view m_body;
    std::uint64_t m_byte = 0; ///< Where it begins in the source.
    /// The encoding to undo; nothing if that is unknown, and the body is then taken as it is.
    std::optional<transfer_encoding> m_encoding;
    decoded_body m_decoded;
};

#endif
