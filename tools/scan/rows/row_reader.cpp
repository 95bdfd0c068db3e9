// Divides the bytes into lines, and checks the order of the rows; see the header.

#include "scan/rows/row_reader.h"

#include <utility>

namespace {

/// So many bytes of packed rows are handed over together.
constexpr std::size_t enough_rows = std::size_t{1} << 20;

} // namespace

bool row_reader::add(std::string_view bytes) {
    while (!m_error && m_goes_on && !bytes.empty()) {
        const std::size_t line_end = bytes.find('\n');
        const std::string_view piece = bytes.substr(0, line_end);
        if (piece.size() > longest_line - m_line.size())
            return fail(longest_line,
                        "the line has more than " + std::to_string(longest_line) + " bytes");
        m_line += piece;
        if (line_end == std::string_view::npos) return true;
        bytes.remove_prefix(line_end + 1);
        if (!add_line()) return false;
    }
    return !m_error && m_goes_on;
}

bool row_reader::finish() {
    if (m_error || !m_goes_on || (!m_line.empty() && !add_line())) return false;
    if (m_is_in_source) return fail(0, "the rows end before the row of their source");
    return hand_over();
}

/// Takes the line that has been gathered.
bool row_reader::add_line() {
    const std::size_t size = m_line.size();
    if (const std::optional<line_error> wrong = m_row.parse(m_line))
        return fail(wrong->m_byte, wrong->m_what);
    if (!check_order()) return false;
    m_row.append_packed(m_packed);
    m_line.clear();
    ++m_line_number;
    m_line_begin += size + 1;
    return m_packed.size() < enough_rows || hand_over();
}

/// Tables take the source and the message of a row from the rows around it.
bool row_reader::check_order() {
    const row_kind kind = m_row.kind();
    if (!m_is_in_source) {
        m_source = m_row.source();
        m_member = m_row.member();
        m_message.reset();
    } else if (m_row.source() != m_source || m_row.member() != m_member) {
        return fail(0, "a row of another source comes before the row of the source");
    }
    m_is_in_source = kind != row_kind::source;
    if (kind == row_kind::message) m_message = m_row.message();
    if (row_kinds[static_cast<std::size_t>(kind)].m_follows_its_message
        && m_row.message() != m_message)
        return fail(0, "the row does not follow the row of its message");
    return true;
}

bool row_reader::hand_over() {
    m_goes_on = m_packed.empty() || m_take(m_packed);
    m_packed.clear();
    return m_goes_on;
}

bool row_reader::fail(std::size_t byte_of_line, std::string what) {
    m_error = row_error{m_line_number, m_line_begin + byte_of_line, std::move(what)};
    return false;
}
