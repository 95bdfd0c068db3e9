// Takes lines one by one.

#ifndef MAIL_STRUCTURE_SECTIONS_FIRST_LINE_H
#define MAIL_STRUCTURE_SECTIONS_FIRST_LINE_H

#include <cstddef>
#include <string_view>

namespace mail_structure_detail {

/// The first of the lines, with its terminator.
inline std::string_view first_line_of(std::string_view lines) noexcept {
    const std::size_t line_feed = lines.find('\n');
    return line_feed == std::string_view::npos ? lines : lines.substr(0, line_feed + 1);
}

} // namespace mail_structure_detail

#endif
