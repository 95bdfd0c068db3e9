// The boundary lines of a multipart (RFC 2046 section 5.1.1).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail::classic {

/// What a line is to a multipart: "--ab" separates the parts of a multipart with boundary "ab",
/// "--ab--" closes it.
enum class boundary_match : std::uint8_t { none, separator, closing };

/// The delimiters ("--" and the boundary) of the multiparts whose closing line has not come,
/// innermost last.
using delimiter_stack = std::vector<std::string>;

/// Byte for byte: neither trailing blanks nor another case are let pass, and anything but "--"
/// after the delimiter makes it another line. Reads no more than the delimiter's length.
boundary_match match_boundary(std::string_view line, std::string_view delimiter) noexcept;

/// Compares with the innermost delimiter.
// Kept: no other is looked at. A line of an outer multipart within an unclosed inner one is text of
// the inner one; to close the inner one there would move the ranges of every truncated multipart.
boundary_match match_innermost(std::string_view line, const delimiter_stack& delimiters) noexcept;

} // namespace mail_structure_detail::classic

#endif
