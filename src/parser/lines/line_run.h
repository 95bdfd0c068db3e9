// Lines that follow one another without a gap and mean the same to the tree.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_RUN_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_RUN_H

#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

/// At least one line. Offsets count from the first byte of the input and wrap past 4 GiB; the run
/// itself is shorter than that.
struct line_run {
    std::uint32_t m_start = 0; // of the first line
    /// Just past the first line, where the second one begins if there is one.
    std::uint32_t m_first_end = 0;
    std::uint32_t m_end = 0; // just past the last line
    std::uint64_t m_lines = 0;
    bool m_last_empty = false; // whether the last line is empty
    /// The lines as they stand in the input, each with its LF. Not set by one_line.
    std::string_view m_bytes;
};

inline line_run one_line(std::uint32_t start, std::uint32_t end, bool empty) noexcept {
    return {start, end, end, 1, empty, {}};
}

} // namespace mail_structure_detail

#endif
