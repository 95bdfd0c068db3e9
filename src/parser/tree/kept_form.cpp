#include "kept_form.h"

#include <cstddef>

namespace mail_structure_detail {

namespace {

/// The line's bytes before its LF, less all CRs at their end.
std::string_view text_of(std::string_view line) noexcept {
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

} // namespace

std::string_view kept_form(std::string_view lines, std::string& room) {
    room.clear();
    std::size_t copied = 0; // bytes of the lines that have been copied to the room
    std::size_t start = 0;  // of the present line
    for (std::size_t lf = lines.find('\n'); lf != std::string_view::npos;
         lf = lines.find('\n', start)) {
        const std::size_t text_end = start + text_of(lines.substr(start, lf - start)).size();
        if (lf - text_end != 1) { // ended by something else than one CR and LF
            room.append(lines, copied, text_end - copied).append("\r\n");
            copied = lf + 1;
        }
        start = lf + 1;
    }
    if (copied == 0) return lines;
    return room.append(lines, copied);
}

} // namespace mail_structure_detail
