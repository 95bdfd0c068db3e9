#include "body_scan.h"

#include "body_scan_processors.h"

namespace mail_structure_detail {

scanned_lines scan_body_plain(std::string_view bytes, dashed_lines dashed) noexcept {
    scanned_lines found;
    for (std::size_t start = 0;;) {
        const std::size_t lf = bytes.find('\n', start);
        if (lf == std::string_view::npos) return found;
        std::string_view text = bytes.substr(start, lf - start);
        if (dashed == dashed_lines::end_the_run && text.starts_with("--")) return found;
        if (text.ends_with('\r') || text.ends_with('\0')) text.remove_suffix(1); // the one byte before an LF is free
        if (text.find_first_of(std::string_view("\r\0", 2)) != std::string_view::npos) return found;
        start = lf + 1;
        found.m_bytes = start;
        ++found.m_lines;
    }
}

std::span<const named_body_scanner> body_scanners() noexcept {
    static constexpr named_body_scanner all[] = {
#ifdef MAIL_STRUCTURE_X86_64
        {"avx512", scan_body_avx512},
        {"avx2", scan_body_avx2},
        {"sse2", scan_body_sse2},
#endif
        {"portable", scan_body_portable},
        {"plain", scan_body_plain}};
    const std::span<const named_body_scanner> known = all;
#ifdef MAIL_STRUCTURE_X86_64
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2")
                      && __builtin_cpu_supports("popcnt");
    if (!avx2) return known.subspan(2);
    if (!__builtin_cpu_supports("avx512bw")) return known.subspan(1);
#endif
    return known;
}

scanned_lines scan_body(std::string_view bytes, dashed_lines dashed) noexcept {
#ifdef MAILSTRUCTURE_PLAIN
    return scan_body_plain(bytes, dashed);
#else
    static const body_scanner fastest = body_scanners().front().m_scan;
    return fastest(bytes, dashed);
#endif
}

} // namespace mail_structure_detail
