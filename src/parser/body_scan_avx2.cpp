// The body scan with 32 bytes a register.

#include "body_scan_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>

// All standard headers are in by now: what follows is compiled for AVX2, and their functions must not be.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,popcnt")
#endif

#include "body_scan_blocks.h"

namespace mail_structure_detail {

namespace {

struct avx2 {
    static std::uint64_t equal(__m256i low, __m256i high, char c) noexcept {
        const __m256i wanted = _mm256_set1_epi8(c);
        const auto bits = [wanted](__m256i bytes) {
            return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, wanted)));
        };
        return bits(low) | std::uint64_t{bits(high)} << 32;
    }

    static block_masks masks(const char* p) noexcept {
        const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32));
        return {equal(low, high, '\n'), equal(low, high, '\r') | equal(low, high, '\0'), equal(low, high, '-')};
    }
};

} // namespace

scanned_lines scan_body_avx2(std::string_view bytes, dashed_lines dashed) noexcept {
    return scan_by_blocks<avx2>(bytes, dashed);
}

} // namespace mail_structure_detail

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif
