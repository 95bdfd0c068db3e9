#include "scan/mbox/quoted_from_lines.h"

#include "scan/mbox/line_search.h"

namespace {

constexpr std::string_view unquoted = "From ";

} // namespace

void quoted_from_lines::add(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        if (m_come != past_any) {
            take(bytes[at++]);
            continue;
        }
        const std::size_t line_feed = find_line(bytes, at, "\n>");
        at = line_feed == std::string_view::npos ? bytes.size() : line_feed + 1;
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
