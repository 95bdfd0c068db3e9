// Moves a window over the file; see the header.

#include "scan/shards/separator_finder.h"

namespace {

constexpr std::size_t usual_window = std::size_t{1} << 20;

} // namespace

separator_finder::separator_finder(const std::string& name, const mbox_options& options)
    : m_file(name, [](std::uint64_t) {}),
      m_splitter(
          options, 0,
          [this](std::uint64_t offset, std::size_t count) { return m_file.peek(offset, count); }),
      m_window(usual_window), m_is_at_end(m_file.error() != 0) {}

std::optional<std::uint64_t> separator_finder::first_from(std::uint64_t offset) {
    using kind = mbox_finding::kind;
    do {
        for (; m_next < m_found.size(); ++m_next) {
            const mbox_finding& finding = m_found[m_next];
            const bool separates =
                finding.m_kind == kind::separator || finding.m_kind == kind::doubtful_separator;
            if (separates && finding.m_offset >= offset) return finding.m_offset;
        }
    } while (look());
    return std::nullopt;
}

/// Looks at the next window. False at the end of the file.
bool separator_finder::look() {
    if (m_is_at_end) return false;
    const std::uint64_t begin = m_splitter.needed_from();
    const std::string bytes = m_file.peek(begin, m_window);
    m_is_at_end = bytes.size() < m_window;
    m_found.clear();
    m_next = 0;
    m_splitter.look(bytes, begin, m_is_at_end, m_found);
    m_window = m_splitter.needed_from() == begin ? 2 * m_window : usual_window;
    return true;
}
