#include "scanners.h"

#include "scanner_processors.h"

namespace mail_structure_detail {

std::span<const scanner_set> all_scanners() noexcept {
    static constexpr scanner_set all[] = {
#ifdef MAIL_STRUCTURE_X86_64
        {"avx512", scan_body_avx512, scan_line_avx512},
        {"avx2", scan_body_avx2, scan_line_avx2},
        {"sse2", scan_body_sse2, scan_line_sse2},
#endif
#ifdef MAIL_STRUCTURE_AARCH64
        {"neon", scan_body_neon, scan_line_neon},
#endif
        {"portable", scan_body_portable, scan_line_portable},
        {"plain", scan_body_plain, scan_line_plain}};
    const std::span<const scanner_set> known = all;
#ifdef MAIL_STRUCTURE_X86_64
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi")
                      && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
    if (!avx2) return known.subspan(2);
    if (!__builtin_cpu_supports("avx512bw")) return known.subspan(1);
#endif
    return known;
}

const scanner_set& chosen_scanners() noexcept {
#ifdef MAILSTRUCTURE_PLAIN
    static const scanner_set& chosen = all_scanners().back();
#else
    static const scanner_set& chosen = all_scanners().front();
#endif
    return chosen;
}

} // namespace mail_structure_detail
