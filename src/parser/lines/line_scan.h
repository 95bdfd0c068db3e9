// Finds in one pass over a line where the line ends, whether it holds a stray byte, and how many
// bytes at its front may be a field name.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_H

#include "character_class.h"

#include <cstddef>
#include <string_view>

namespace mail_structure_detail {

/// The line at the front of the bytes that were scanned.
struct scanned_line {
    std::size_t m_bytes = 0; // before the first LF; all bytes where there is none
    bool m_has_lf = false;
    bool m_stray = false;         // a CR or NUL stands before the last of these bytes
    std::size_t m_name_bytes = 0; // at the front of the line: those that a field name may hold
};

/// Reads every byte of the line once, and none past the end of `bytes`.
using line_scanner = scanned_line (*)(std::string_view bytes, field_names names) noexcept;

/// The plain twin, which goes byte by byte: the other scanners are tested against it.
scanned_line scan_line_plain(std::string_view bytes, field_names names) noexcept;

} // namespace mail_structure_detail

#endif
