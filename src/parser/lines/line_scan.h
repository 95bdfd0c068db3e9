// Looks a line over, in one pass: where it ends, whether it holds a stray byte, and how long the
// field name is that it may begin with.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_H

#include "character_class.h"

#include <cstddef>
#include <string_view>

namespace mail_structure_detail {

/// The line at the front of some bytes.
struct scanned_line {
    std::size_t m_bytes = 0; // before the first LF; all bytes where there is none
    bool m_has_lf = false;
    bool m_stray = false; // a CR or NUL stands among these bytes, the last of them not looked at
    std::size_t m_name_bytes = 0; // at the front of the line, of which a field name may be made
};

/// Reads every byte of the line once, and none past the end of `bytes`.
using line_scanner = scanned_line (*)(std::string_view bytes, field_names names) noexcept;

/// Byte by byte: the truth that the others are tested against.
scanned_line scan_line_plain(std::string_view bytes, field_names names) noexcept;

} // namespace mail_structure_detail

#endif
