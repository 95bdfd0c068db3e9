// The scanners with 64 bytes a register.

#include "character_class.h"
#include "scanner_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>
#include <string_view>

// Headers whose functions other files use too are included before this: all that follows is
// compiled for AVX-512, and those functions must not be.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx2,bmi,bmi2,popcnt"))),     \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx2,bmi,bmi2,popcnt")
#endif

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"

namespace mail_structure_detail {

namespace {

struct avx512 {
    static block_masks masks(const char* p) noexcept {
        const __m512i bytes = _mm512_loadu_si512(p);
        const auto equal = [bytes](char c) {
            return std::uint64_t{_mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(c))};
        };
        return {equal('\n'), equal('\r') | std::uint64_t{_mm512_testn_epi8_mask(bytes, bytes)},
                equal('-')};
    }

    template <dashed_look Dashes, bool Strays>
    static block_look look(const char* p, const filter_probe& probe) noexcept {
        const __m512i bytes = _mm512_loadu_si512(p);
        const __m512i next = _mm512_loadu_si512(p + 1);
        const __m512i line_feed = _mm512_set1_epi8('\n');
        const __mmask64 lf = _mm512_cmpeq_epi8_mask(bytes, line_feed);
        __mmask64 stray = 0;
        if constexpr (Strays) {
            const __m512i no_cr = _mm512_xor_si512(bytes, _mm512_set1_epi8('\r'));
            const __m512i no_suspect = _mm512_min_epu8(bytes, no_cr);
            const __mmask64 suspect = _mm512_testn_epi8_mask(no_suspect, no_suspect);
            stray = _mm512_mask_cmpneq_epi8_mask(suspect, next, line_feed);
        }
        __mmask64 like_delimiter = 0;
        if constexpr (Dashes != dashed_look::none)
            like_delimiter = _mm512_mask_cmpeq_epi8_mask(lf, next, _mm512_set1_epi8('-'));
        if constexpr (Dashes == dashed_look::probed) {
            const __m512i differing = _mm512_xor_si512(_mm512_loadu_si512(p + probe.m_ahead),
                                                       _mm512_set1_epi8(probe.m_value));
            like_delimiter = _mm512_mask_testn_epi8_mask(like_delimiter, differing,
                                                         _mm512_set1_epi8(probe.m_bits));
        }
        return {std::uint64_t{lf}, _kortestz_mask64_u8(stray, like_delimiter) == 0};
    }

    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        const __m512i bytes = _mm512_loadu_si512(p);
        if constexpr (Names == field_names::printable) {
            const __m512i from_first = _mm512_sub_epi8(bytes, _mm512_set1_epi8('!'));
            const std::uint64_t printable =
                _mm512_cmplt_epu8_mask(from_first, _mm512_set1_epi8('\x7F' - '!'));
            const std::uint64_t colons = _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(':'));
            return printable & ~colons;
        }
        const __m512i lower = _mm512_or_si512(bytes, _mm512_set1_epi8(0x20));
        const __m512i from_a = _mm512_sub_epi8(lower, _mm512_set1_epi8('a'));
        return std::uint64_t{_mm512_cmplt_epu8_mask(from_a, _mm512_set1_epi8(26))}
               | std::uint64_t{_mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8('-'))};
    }
};

} // namespace

scanned_lines scan_body_avx512(std::string_view bytes, const run_limits& limits) noexcept {
    return scan_by_blocks<avx512>(bytes, limits);
}

scanned_line scan_line_avx512(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<avx512>(bytes, names);
}

} // namespace mail_structure_detail

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif
