#include "chunk_reader.h"

#include <cassert>

namespace mail_structure_detail {

namespace {

/// Room for a line that is kept for the next one. A longer line gives its room back.
constexpr std::size_t most_idle_room = 65536;

} // namespace

void chunk_reader::add(std::string_view chunk) noexcept {
    assert(m_rest.empty());
    m_rest = chunk;
    if (!m_is_unfinished) give_back_room();
}

/// To be called when the line in m_carry is no longer needed.
void chunk_reader::give_back_room() noexcept {
    if (m_carry.capacity() > most_idle_room) std::string().swap(m_carry);
}

bool chunk_reader::next(input_line& line) {
    if (m_is_unfinished) return next_straddling(line);
    if (m_rest.empty()) return false;
    const scanned_line found = m_finder.scan(m_rest);
    if (found.m_has_lf) {
        m_finder.describe(line, m_rest.substr(0, found.m_bytes), found, 1);
        m_rest.remove_prefix(found.m_bytes + 1);
        line.m_next_byte = line_finder::byte_at(m_rest, 0);
        return true;
    }
    give_back_room();
    m_carry.assign(m_rest);
    m_is_unfinished = true;
    m_rest = {};
    return false;
}

/// Does what next does while the beginning of a line is held. What is held is not looked at again
/// until the line is whole.
bool chunk_reader::next_straddling(input_line& line) {
    const std::size_t lf = m_rest.find('\n');
    m_carry.append(m_rest.substr(0, lf));
    if (lf == std::string_view::npos) {
        m_rest = {};
        return false;
    }
    m_rest.remove_prefix(lf + 1);
    m_is_unfinished = false;
    m_finder.describe(line, m_carry, m_finder.scan(m_carry), 1);
    line.m_next_byte = line_finder::byte_at(m_rest, 0);
    return true;
}

bool chunk_reader::last(input_line& line) noexcept {
    if (!m_is_unfinished) return false;
    m_is_unfinished = false;
    m_finder.describe(line, m_carry, m_finder.scan(m_carry), 0);
    line.m_next_byte = ' ';
    return true;
}

void chunk_reader::take(const line_run& run) noexcept {
    assert(run.m_bytes.data() == m_rest.data()); // nothing was read since the run was found
    m_rest.remove_prefix(run.m_bytes.size());
    m_finder.take(run);
}

} // namespace mail_structure_detail
