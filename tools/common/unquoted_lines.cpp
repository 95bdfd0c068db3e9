#include "common/unquoted_lines.h"

namespace {

/// Whether a line begins with ">From ", or with several ">" and "From ".
bool is_quoted(std::string_view line) {
    const std::size_t quotes = line.find_first_not_of('>');
    return quotes != 0 && quotes != std::string_view::npos
           && line.substr(quotes).starts_with("From ");
}

} // namespace

unquoted_lines::unquoted_lines(std::string_view quoted) : m_quoted(quoted) {
    std::size_t copied = 0;
    for (std::size_t line = 0; line < quoted.size();) {
        const std::size_t end = quoted.find('\n', line);
        if (quoted[line] == '>' && is_quoted(quoted.substr(line, end - line))) {
            m_text += quoted.substr(copied, line - copied);
            copied = line + 1;
            m_removed.push_back(line);
        }
        line = end == std::string_view::npos ? quoted.size() : end + 1;
    }
    if (copied != 0) m_text += quoted.substr(copied);
}

std::size_t unquoted_lines::offset_in_quoted(std::size_t offset) const {
    std::size_t begin = 0; // the first of m_removed that lies behind the byte
    for (std::size_t end = m_removed.size(); begin != end;) {
        const std::size_t middle = begin + (end - begin) / 2;
        m_removed[middle] - middle <= offset ? begin = middle + 1 : end = middle;
    }
    return offset + begin;
}
