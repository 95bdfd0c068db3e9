// The parameters of a Content-Type field (RFC 2045 section 5.1): "; name=value", one after another.

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_PARAMETER_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_PARAMETER_H

#include <cstddef>
#include <string_view>

namespace mail_structure_detail::classic {

struct parameter {
    std::string_view m_name;
    std::string_view m_value; // without surrounding quotes
};

/// Cuts a line at its semicolons.
class parameter_segments {
public:
    /// @param before  position just before the first segment, npos when there is none
    parameter_segments(std::string_view text, std::size_t before)
        : m_text(text), m_before(before) {}

    /// The next segment, up to the next ';' or the end of the text. False when there is none.
    // Kept: quotes are not looked at, so "a;b" in quotes is cut at its ';'.
    // keeps_semicolon_inside_quotes_as_an_end
    bool next(std::string_view& segment) noexcept;

private:
    std::string_view m_text;
    std::size_t m_before;
};

/// Reads one parameter. False when the segment holds none with a name and a value; the caller then
/// looks at no later segment of the line.
bool read_parameter(std::string_view segment, parameter& found) noexcept;

} // namespace mail_structure_detail::classic

#endif
