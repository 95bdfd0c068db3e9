#include "scan/pipeline/message_digests.h"

void message_digester::add(std::string_view bytes) {
    m_message.add(bytes);
    m_body.add(m_is_in_body ? bytes : body_in(bytes));
}

/// What of these bytes belongs to the body. An empty line may have any number of CRs before its LF.
std::string_view message_digester::body_in(std::string_view bytes) {
    while (!m_is_in_body && !bytes.empty()) {
        const std::size_t line_feed = bytes.find('\n');
        const std::string_view line = bytes.substr(0, line_feed);
        if (line.find_first_not_of('\r') != std::string_view::npos) m_is_line_empty = false;
        if (line_feed == std::string_view::npos) return {};
        bytes.remove_prefix(line_feed + 1);
        m_is_in_body = m_is_line_empty;
        m_is_line_empty = true;
    }
    return bytes;
}
