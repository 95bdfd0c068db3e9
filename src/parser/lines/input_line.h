// One line of the input, with its place and the facts that a source of lines notes about it.

#ifndef MAIL_STRUCTURE_PARSER_LINES_INPUT_LINE_H
#define MAIL_STRUCTURE_PARSER_LINES_INPUT_LINE_H

#include "line_run.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

struct input_line {
    /// Without its LF and without one CR before that. Valid until the next line is read.
    std::string_view m_text;
    /// The first byte of the next line; a blank if the source of lines does not know that byte.
    char m_next_byte = ' ';
    bool m_cr_stripped = false;   // a CR stood between the text and the LF or the end of the input
    bool m_stray_byte = false;    // a CR, LF or NUL stands before the last byte of the line
    std::size_t m_name_bytes = 0; // at the front of the line: those that a field name may hold
    std::uint32_t m_start = 0;    // offset of the line's first byte
    std::uint32_t m_end = 0;      // offset just past its LF, or past the last byte of the input
};

/// The line as a run of its own.
inline line_run as_run(const input_line& line) noexcept {
    return one_line(line.m_start, line.m_end, line.m_text.empty());
}

} // namespace mail_structure_detail

#endif
