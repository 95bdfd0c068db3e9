#include "line_bytes.h"

#include <algorithm>

namespace mail_structure_detail::findings {

std::string_view without_line_end(const message_line& line) noexcept {
    std::string_view bytes = line.m_bytes;
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
        if (bytes.ends_with('\r')) bytes.remove_suffix(1);
    }
    return bytes;
}

line_bytes bytes_of(const message_line& line) noexcept {
    const std::string_view bytes = without_line_end(line);
    unsigned char all = 0;
    bool has_low = false;        // a NUL or a CR
    for (const char c : bytes) { // nearly always all that is needed; the compiler makes vectors
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
        has_low |= c == '\0';
        has_low |= c == '\r';
    }
    line_bytes found;
    if (has_low) {
        found.m_nul = bytes.find('\0');
        found.m_bare_cr = bytes.find('\r');
    }
    if (all > 127) {
        const auto is_high = [](char c) { return static_cast<unsigned char>(c) > 127; };
        const auto* const begin = std::find_if(bytes.begin(), bytes.end(), is_high);
        const auto* const end = std::find_if_not(begin, bytes.end(), is_high);
        found.m_8_bit = static_cast<std::size_t>(begin - bytes.begin());
        found.m_8_bit_length = static_cast<std::size_t>(end - begin);
    }
    return found;
}

} // namespace mail_structure_detail::findings
