// The digests of a message that comes in pieces.

#ifndef TOOLS_SCAN_PIPELINE_MESSAGE_DIGESTS_H
#define TOOLS_SCAN_PIPELINE_MESSAGE_DIGESTS_H

#include "scan/pipeline/digest.h"

#include <string>
#include <string_view>

/// SHA-256 in hexadecimal; empty where none was asked for.
struct message_digests {
    std::string m_message; ///< Of all bytes.
    std::string m_body;    ///< Of what follows the first empty line, which ends the header block.
};

class message_digester {
public:
    /// Takes the next bytes of the message.
    void add(std::string_view bytes);
    /// The digests of the message, which has ended.
    message_digests finish() { return {m_message.text(), m_body.text()}; }

private:
    std::string_view body_in(std::string_view bytes);

    digest m_message;
    digest m_body;
    bool m_is_in_body = false;
    bool m_is_line_empty = true; // the line of the header block that has begun, so far
};

#endif
