// The body scan with 64 bytes a register.

#include "body_scan_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>

// All standard headers are in by now: what follows is compiled for AVX-512, and their functions must not be.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx2,bmi,bmi2,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx2,bmi,bmi2,popcnt")
#endif

#include "body_scan_blocks.h"

namespace mail_structure_detail {

namespace {

struct avx512 {
    static block_masks masks(const char* p) noexcept {
        const __m512i bytes = _mm512_loadu_si512(p);
        const auto equal = [bytes](char c) {
            return std::uint64_t{_mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(c))};
        };
        return {equal('\n'), equal('\r') | std::uint64_t{_mm512_testn_epi8_mask(bytes, bytes)}, equal('-')};
    }
};

} // namespace

scanned_lines scan_body_avx512(std::string_view bytes, dashed_lines dashed) noexcept {
    return scan_by_blocks<avx512>(bytes, dashed);
}

} // namespace mail_structure_detail

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif
