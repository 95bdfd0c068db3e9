#include "body_scan.h"

namespace mail_structure_detail {

namespace {

/// Whether the line holds a CR or NUL that is not its last byte.
bool holds_stray_byte(std::string_view line) noexcept {
    if (line.ends_with('\r') || line.ends_with('\0')) line.remove_suffix(1);
    return line.find_first_of(std::string_view("\r\0", 2)) != std::string_view::npos;
}

} // namespace

scanned_lines scan_body_plain(std::string_view bytes, const run_limits& limits) noexcept {
    scanned_lines found;
    for (std::size_t start = 0;;) {
        const std::size_t lf = bytes.find('\n', start);
        if (lf == std::string_view::npos) return found;
        const std::string_view line = bytes.substr(start, lf - start);
        if (limits.m_dashed == dashed_lines::end_the_run && limits.m_filter.passes(line))
            return found;
        if (limits.m_stray == stray_bytes::end_the_run && holds_stray_byte(line)) return found;
        start = lf + 1;
        found.m_bytes = start;
        ++found.m_lines;
    }
}

} // namespace mail_structure_detail
