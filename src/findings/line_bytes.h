// Which unusual bytes a line holds.

#ifndef MAIL_STRUCTURE_FINDINGS_LINE_BYTES_H
#define MAIL_STRUCTURE_FINDINGS_LINE_BYTES_H

#include "reporter.h"

#include <cstddef>
#include <string_view>

namespace mail_structure_detail::findings {

/// The most bytes that a line may have besides its terminator (RFC 5322 section 2.1.1).
inline constexpr std::size_t longest_line = 998;

constexpr std::size_t not_found = std::string_view::npos;

/// The places of the first bytes of each kind, or not_found.
struct line_bytes {
    std::size_t m_nul = not_found;
    std::size_t m_bare_cr = not_found; // a CR that is not the one before the LF
    std::size_t m_8_bit = not_found;
    std::size_t m_8_bit_length = 0; // of the run of such bytes
};

/// The line without its LF, and without one CR before that.
std::string_view without_line_end(const message_line& line) noexcept;

/// Looks at all bytes of a line but its terminator.
line_bytes bytes_of(const message_line& line) noexcept;

} // namespace mail_structure_detail::findings

#endif
