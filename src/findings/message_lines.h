// The lines of a message that is in memory, with their places.

#ifndef MAIL_STRUCTURE_FINDINGS_MESSAGE_LINES_H
#define MAIL_STRUCTURE_FINDINGS_MESSAGE_LINES_H

#include "clean_lines.h"
#include "reporter.h"

#include <string_view>

namespace mail_structure_detail::findings {

class message_lines {
public:
    /// @param bytes  the message, which must outlive the object
    explicit message_lines(std::string_view bytes) noexcept : m_rest(bytes) {}

    /// The next line. False at the end of the message.
    bool next(message_line& line) noexcept {
        if (m_rest.empty()) return false;
        const std::size_t line_feed = m_rest.find('\n');
        line.m_bytes =
            m_rest.substr(0, line_feed == std::string_view::npos ? line_feed : line_feed + 1);
        line.m_text = line.m_bytes;
        if (line.m_text.ends_with('\n')) line.m_text.remove_suffix(1);
        while (line.m_text.ends_with('\r')) line.m_text.remove_suffix(1);
        line.m_offset = m_offset;
        line.m_number = ++m_count;
        m_offset += line.m_bytes.size();
        m_rest.remove_prefix(line.m_bytes.size());
        return true;
    }

    /// The bytes behind the last line.
    std::string_view rest() const noexcept { return m_rest; }
    /// Where they begin.
    place rest_place() const noexcept { return {m_offset, 0, m_count + 1}; }
    /// Passes over lines at their front.
    void pass(const clean_lines& lines) noexcept {
        m_rest.remove_prefix(lines.m_bytes);
        m_offset += lines.m_bytes;
        m_count += lines.m_lines;
    }

private:
    std::string_view m_rest;
    std::uint64_t m_offset = 0; // of the rest
    std::uint64_t m_count = 0;  // of the lines before the rest
};

} // namespace mail_structure_detail::findings

#endif
