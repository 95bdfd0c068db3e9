// Finds how far a body runs on before a line needs a closer look. One pass over the bytes.

#ifndef MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_H
#define MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_H

#include "delimiter_filter.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

/// Whether lines that begin with "--" end a run, if they pass the filter of delimiters.
enum class dashed_lines : std::uint8_t { are_text, end_the_run };

/// Whether lines with a stray byte (a CR or NUL that is not directly before an LF) end a run.
enum class stray_bytes : std::uint8_t { are_text, end_the_run };

/// What ends a run of lines.
struct run_limits {
    dashed_lines m_dashed;
    stray_bytes m_stray;
    delimiter_filter m_filter = {}; // of lines that begin with "--"
};

/// Some whole lines at the front of the bytes that were scanned.
struct scanned_lines {
    std::size_t m_bytes = 0; // up to and with the last LF
    std::size_t m_lines = 0;
};

/// The longest run of whole lines at the front of `bytes`, which begin at the beginning of a line,
/// such that no line in it is one that ends the run. Linear; reads no byte past the end.
using body_scanner = scanned_lines (*)(std::string_view bytes, const run_limits& limits) noexcept;

/// The plain twin, which goes byte by byte: the other scanners are tested against it.
scanned_lines scan_body_plain(std::string_view bytes, const run_limits& limits) noexcept;

} // namespace mail_structure_detail

#endif
