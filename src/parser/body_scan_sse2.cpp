// The body scan with 16 bytes a register.

#include "body_scan_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include "body_scan_blocks.h"

#include <emmintrin.h>

namespace mail_structure_detail {

namespace {

struct sse2 {
    static std::uint64_t equal(const __m128i (&quarters)[4], char c) noexcept {
        const __m128i wanted = _mm_set1_epi8(c);
        std::uint64_t bits = 0;
        for (unsigned at = 0; at < 4; ++at) {
            const int quarter = _mm_movemask_epi8(_mm_cmpeq_epi8(quarters[at], wanted));
            bits |= static_cast<std::uint64_t>(static_cast<unsigned>(quarter)) << 16 * at;
        }
        return bits;
    }

    static block_masks masks(const char* p) noexcept {
        __m128i quarters[4];
        for (std::size_t at = 0; at < 4; ++at)
            quarters[at] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * at));
        return {equal(quarters, '\n'), equal(quarters, '\r') | equal(quarters, '\0'), equal(quarters, '-')};
    }
};

} // namespace

scanned_lines scan_body_sse2(std::string_view bytes, dashed_lines dashed) noexcept {
    return scan_by_blocks<sse2>(bytes, dashed);
}

} // namespace mail_structure_detail

#endif
