#include "boundary.h"

namespace mail_structure_detail::classic {

boundary_match match_boundary(std::string_view line, std::string_view delimiter) noexcept {
    if (line.size() == delimiter.size())
        return line == delimiter ? boundary_match::separator : boundary_match::none;
    if (line.size() != delimiter.size() + 2) return boundary_match::none;
    return line.ends_with("--") && line.starts_with(delimiter) ? boundary_match::closing
                                                               : boundary_match::none;
}

boundary_match match_innermost(std::string_view line, const delimiter_stack& delimiters) noexcept {
    return delimiters.empty() ? boundary_match::none : match_boundary(line, delimiters.back());
}

} // namespace mail_structure_detail::classic
