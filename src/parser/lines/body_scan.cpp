#include "body_scan.h"

namespace mail_structure_detail {

scanned_lines scan_body_plain(std::string_view bytes, dashed_lines dashed) noexcept {
    scanned_lines found;
    for (std::size_t start = 0;;) {
        const std::size_t lf = bytes.find('\n', start);
        if (lf == std::string_view::npos) return found;
        std::string_view text = bytes.substr(start, lf - start);
        if (dashed == dashed_lines::end_the_run && text.starts_with("--")) return found;
        if (text.ends_with('\r') || text.ends_with('\0'))
            text.remove_suffix(1); // the one byte before an LF is free
        if (text.find_first_of(std::string_view("\r\0", 2)) != std::string_view::npos) return found;
        start = lf + 1;
        found.m_bytes = start;
        ++found.m_lines;
    }
}

} // namespace mail_structure_detail
