#include "kept_form.h"

#include <cstddef>

namespace mail_structure_detail {

std::string_view kept_form(std::string_view lines, std::string& room) {
    room.clear();
    std::size_t copied = 0; // so many bytes of the lines are in the room
    std::size_t line = 0;   // where the present line begins
    for (std::size_t lf = lines.find('\n'); lf != std::string_view::npos;
         lf = lines.find('\n', line)) {
        if (lf == line || lines[lf - 1] != '\r') {
            room.append(lines, copied, lf - copied).append("\r\n");
            copied = lf + 1;
        }
        line = lf + 1;
    }
    if (copied == 0) return lines;
    return room.append(lines, copied);
}

} // namespace mail_structure_detail
