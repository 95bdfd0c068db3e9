// The scanners with 16 bytes a register.

#include "scanner_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"

#include <emmintrin.h>

namespace mail_structure_detail {

namespace {

struct sse2 {
    static __m128i equal(__m128i bytes, char c) noexcept {
        return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
    }
    static __m128i lf(__m128i bytes) noexcept { return equal(bytes, '\n'); }
    static __m128i suspect(__m128i bytes) noexcept {
        return _mm_or_si128(equal(bytes, '\r'), equal(bytes, '\0'));
    }
    static __m128i dash(__m128i bytes) noexcept { return equal(bytes, '-'); }
    static __m128i printable(__m128i bytes) noexcept {
        const __m128i above_blank = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(' ')); // signed
        return _mm_andnot_si128(_mm_or_si128(equal(bytes, ':'), equal(bytes, '\x7F')), above_blank);
    }
    static __m128i letter_or_hyphen(__m128i bytes) noexcept {
        const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
        // There is only a signed comparison: 'a' is moved to -128, and 'z' to -103.
        const __m128i from_a = _mm_add_epi8(lower, _mm_set1_epi8(static_cast<char>(-128 - 'a')));
        return _mm_or_si128(_mm_cmplt_epi8(from_a, _mm_set1_epi8(-102)), equal(bytes, '-'));
    }

    /// Bit n is set where Test sets byte n.
    template <__m128i (*Test)(__m128i)>
    static std::uint64_t gather(const char* p) noexcept {
        std::uint64_t bits = 0;
        for (unsigned at = 0; at < block_bytes; at += 16) {
            const __m128i quarter = Test(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + at)));
            bits |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(quarter))} << at;
        }
        return bits;
    }

    static block_masks masks(const char* p) noexcept {
        return {gather<lf>(p), gather<suspect>(p), gather<dash>(p)};
    }
    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        constexpr auto test = Names == field_names::letters ? &letter_or_hyphen : &printable;
        return gather<test>(p);
    }
};

} // namespace

scanned_lines scan_body_sse2(std::string_view bytes, run_limits limits) noexcept {
    return scan_by_blocks<sse2>(bytes, limits);
}

scanned_line scan_line_sse2(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<sse2>(bytes, names);
}

} // namespace mail_structure_detail

#endif
