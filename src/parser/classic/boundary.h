// The delimiter lines of a multipart (RFC 2046 section 5.1.1).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H

#include "../lines/delimiter_filter.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail::classic {

/// What a line is to a multipart: "--ab" separates the parts of a multipart with boundary "ab",
/// "--ab--" closes it.
enum class boundary_match : std::uint8_t { none, separator, closing };

struct registered_delimiter {
    explicit registered_delimiter(std::string_view boundary)
        : m_text(std::string("--").append(boundary)), m_filter(boundary) {}

    std::string m_text; // "--" and the boundary
    delimiter_filter m_filter;
};

/// The delimiters whose closing line has not come, in the order in which Content-Type fields
/// registered them.
using delimiter_stack = std::vector<registered_delimiter>;

/// Kept: byte for byte. A trailing blank, another case, or anything but "--" after the delimiter
/// makes the line no delimiter line. keeps_boundary_lines_exact
boundary_match match_boundary(std::string_view line, std::string_view delimiter) noexcept;

/// Compares with the last delimiter, which is that of the innermost multipart in usual mail.
// Kept: no other is looked at. A delimiter line of an outer multipart within an unclosed inner one
// is text of the inner one. To close the inner one there would move stored ranges.
// keeps_innermost_boundary_alone_in_force
boundary_match match_innermost(std::string_view line, const delimiter_stack& delimiters) noexcept;

} // namespace mail_structure_detail::classic

#endif
