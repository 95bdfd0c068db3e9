// Finds how far a body runs on before a line needs a closer look. One pass over the bytes.

#ifndef MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_H
#define MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

/// Which lines end a run beside those with a stray byte.
enum class dashed_lines : std::uint8_t { are_text, end_the_run };

/// The whole lines at the front of some bytes.
struct scanned_lines {
    std::size_t m_bytes = 0; // up to and with the last LF
    std::size_t m_lines = 0;
};

/// The longest run of whole lines at the front of `bytes`, which begin at the beginning of a line,
/// such that no line in it holds a stray byte (a CR or NUL that is not directly before an LF) nor,
/// where that ends the run, begins with "--". Reads every byte once and none past the end.
using body_scanner = scanned_lines (*)(std::string_view bytes, dashed_lines dashed) noexcept;

/// Byte by byte: the truth that the others are tested against.
scanned_lines scan_body_plain(std::string_view bytes, dashed_lines dashed) noexcept;

} // namespace mail_structure_detail

#endif
