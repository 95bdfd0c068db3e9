// Finds lines and runs of lines at the front of bytes that are in memory, and gives them their
// places in the input. This is the one definition of a line: every source of lines uses it.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_FINDER_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_FINDER_H

#include "input_line.h"
#include "line_run.h"
#include "scanners.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

class line_finder {
public:
    /// @param first_offset  offset of the first byte of the input: 0, except in tests of the wrap
    /// @param names         what m_name_bytes of each line counts
    line_finder(std::uint32_t first_offset, field_names names) noexcept
        : m_scanners(chosen_scanners()), m_names(names), m_position(first_offset) {}

    /// The line at the front of the bytes, which may end before the line does. Reads no byte past
    /// their end.
    scanned_line scan(std::string_view bytes) const noexcept {
        return m_scanners.m_scan_line(bytes, m_names);
    }
    /// Sets all members of the line but m_next_byte, and moves on past the line.
    /// @param bytes             the line without its terminator, the CR of a CR LF included
    /// @param found             what scan found in these bytes
    /// @param terminator_bytes  1, or 0 where the end of the input ends the line
    void describe(input_line& line, std::string_view bytes, const scanned_line& found,
                  std::size_t terminator_bytes) noexcept;

    /// The byte at the place, for m_next_byte of a line: a blank where the bytes end before it, and
    /// in a build without fast paths, since knowing the byte only saves time.
    static char byte_at([[maybe_unused]] std::string_view bytes,
                        [[maybe_unused]] std::size_t place) noexcept {
#ifdef MAILSTRUCTURE_PLAIN
        return ' ';
#else
        return place < bytes.size() ? bytes[place] : ' ';
#endif
    }

    /// Finds the longest run of whole lines at the front of the bytes. False when there is none,
    /// since the first line ends the run or is not all there. The run is not taken yet.
    bool find_run(line_run& run, std::string_view bytes, const run_limits& limits) const noexcept;
    /// Moves on past the run, which is the one found last.
    void take(const line_run& run) noexcept { m_position += run.m_bytes.size(); }

    /// The input so far has passed 4 GiB, so that offsets have wrapped.
    bool has_wrapped() const noexcept { return m_position > 0xFFFFFFFF; }

private:
    const scanner_set& m_scanners;
    const field_names m_names;
    std::uint64_t m_position; // of the next byte
};

// Inline because it is called for every line.

inline void line_finder::describe(input_line& line, std::string_view bytes,
                                  const scanned_line& found,
                                  std::size_t terminator_bytes) noexcept {
    line.m_start = static_cast<std::uint32_t>(m_position); // offsets wrap past 4 GiB
    m_position += bytes.size() + terminator_bytes;
    line.m_end = static_cast<std::uint32_t>(m_position);
    line.m_stray_byte = found.m_stray;
    line.m_name_bytes = found.m_name_bytes;
    line.m_cr_stripped = bytes.ends_with('\r');
    if (line.m_cr_stripped) bytes.remove_suffix(1);
    line.m_text = bytes;
}

} // namespace mail_structure_detail

#endif
