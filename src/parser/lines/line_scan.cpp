#include "line_scan.h"

#include <algorithm>

namespace mail_structure_detail {

scanned_line scan_line_plain(std::string_view bytes, field_names names) noexcept {
    scanned_line found;
    found.m_bytes = std::min(bytes.find('\n'), bytes.size());
    found.m_has_lf = found.m_bytes < bytes.size();
    const std::string_view line = bytes.substr(0, found.m_bytes);
    if (!line.empty())
        found.m_stray = line.substr(0, line.size() - 1).find_first_of(std::string_view("\r\0", 2))
                        != std::string_view::npos;
    while (found.m_name_bytes < line.size() && is_name_character(line[found.m_name_bytes], names))
        ++found.m_name_bytes;
    return found;
}

} // namespace mail_structure_detail
