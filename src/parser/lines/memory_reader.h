// Reads lines from bytes that are all in memory. Nothing is copied, and nothing is read past the
// end of the bytes.

#ifndef MAIL_STRUCTURE_PARSER_LINES_MEMORY_READER_H
#define MAIL_STRUCTURE_PARSER_LINES_MEMORY_READER_H

#include "line_finder.h"

#include <cassert>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

class memory_reader {
public:
    /// @param bytes         the whole input, which must outlive the reader
    /// @param first_offset  see line_finder
    /// @param names         what m_name_bytes of each line counts
    memory_reader(std::string_view bytes, std::uint32_t first_offset, field_names names) noexcept
        : m_finder(first_offset, names), m_rest(bytes) {}

    /// Reads the next line. False at the end of the input.
    bool next(input_line& line) noexcept;

    /// Finds the longest run of whole lines at the front of what has not been read yet. False when
    /// there is none.
    bool find_run(line_run& run, const run_limits& limits) const noexcept {
        return m_finder.find_run(run, m_rest, limits);
    }
    /// Moves past the run, which is the one found last.
    void take(const line_run& run) noexcept {
        assert(run.m_bytes.data() == m_rest.data()); // nothing was read since the run was found
        m_rest.remove_prefix(run.m_bytes.size());
        m_finder.take(run);
    }

    /// The input read so far has passed 4 GiB, so that offsets have wrapped.
    bool has_wrapped() const noexcept { return m_finder.has_wrapped(); }

private:
    line_finder m_finder;
    std::string_view m_rest; // what has not been read yet
};

// Inline because the loop over lines calls it for every line.

inline bool memory_reader::next(input_line& line) noexcept {
    if (m_rest.empty()) return false;
    const scanned_line found = m_finder.scan(m_rest);
    const std::size_t terminator_bytes = found.m_has_lf ? 1 : 0;
    m_finder.describe(line, m_rest.substr(0, found.m_bytes), found, terminator_bytes);
    m_rest.remove_prefix(found.m_bytes + terminator_bytes);
    line.m_next_byte = line_finder::byte_at(m_rest, 0);
    return true;
}

} // namespace mail_structure_detail

#endif
