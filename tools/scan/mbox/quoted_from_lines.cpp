#include "scan/mbox/quoted_from_lines.h"

namespace {

constexpr std::size_t block_bytes = 64;
constexpr std::string_view unquoted = "From ";

/// Whether an LF that a '>' follows stands among the 64 bytes at p. Reads one byte more. The loop
/// has no branch, so that the compiler makes a few vector instructions of it.
bool may_hold_quoted_line(const char* p) {
    unsigned char found = 0;
    for (std::size_t i = 0; i < block_bytes; ++i)
        found = static_cast<unsigned char>(found
                                           | (static_cast<unsigned char>(p[i] == '\n')
                                              & static_cast<unsigned char>(p[i + 1] == '>')));
    return found != 0;
}

/// Just past the first LF that a '>' follows, from that place on; or the end of the text.
std::size_t find_quoted_line(std::string_view text, std::size_t at) {
    while (text.size() > block_bytes && at < text.size() - block_bytes
           && !may_hold_quoted_line(text.data() + at))
        at += block_bytes;
    const std::size_t found = text.find("\n>", at);
    return found == std::string_view::npos ? text.size() : found + 1;
}

} // namespace

void quoted_from_lines::add(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        if (m_come != past_any) {
            take(bytes[at++]);
            continue;
        }
        at = find_quoted_line(bytes, at);
        if (at != bytes.size() || bytes.ends_with('\n')) m_come = 0;
    }
}

/// Takes a byte of a line that may be such a one.
void quoted_from_lines::take(char byte) {
    if (byte == '\n')
        m_come = 0;
    else if (byte == '>' && m_come <= 1)
        m_come = 1;
    else if (m_come == 0 || byte != unquoted[m_come - 1])
        m_come = past_any;
    else if (++m_come > unquoted.size()) {
        ++m_count;
        m_come = past_any;
    }
}
