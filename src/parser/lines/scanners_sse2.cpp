// The scanners with 16 bytes a register.

#include "scanner_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"

#include <emmintrin.h>

namespace mail_structure_detail {

namespace {

struct sse2 {
    static __m128i load(const char* p) noexcept {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static __m128i equal(__m128i bytes, char c) noexcept {
        return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
    }
    static __m128i lf(const char* p) noexcept { return equal(load(p), '\n'); }
    static __m128i suspect(const char* p) noexcept {
        return _mm_or_si128(equal(load(p), '\r'), equal(load(p), '\0'));
    }
    static __m128i dash(const char* p) noexcept { return equal(load(p), '-'); }
    static __m128i printable(const char* p) noexcept {
        const __m128i bytes = load(p);
        const __m128i above_blank = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(' ')); // signed
        return _mm_andnot_si128(_mm_or_si128(equal(bytes, ':'), equal(bytes, '\x7F')), above_blank);
    }
    static __m128i letter_or_hyphen(const char* p) noexcept {
        const __m128i bytes = load(p);
        const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
        // There is only a signed comparison: 'a' is moved to -128, and 'z' to -103.
        const __m128i from_a = _mm_add_epi8(lower, _mm_set1_epi8(static_cast<char>(-128 - 'a')));
        return _mm_or_si128(_mm_cmplt_epi8(from_a, _mm_set1_epi8(-102)), equal(bytes, '-'));
    }

    /// Bit n is set where the test, given the place of 16 bytes, sets byte n.
    template <class Test>
    static std::uint64_t gather(const char* p, Test test) noexcept {
        std::uint64_t bits = 0;
        for (unsigned at = 0; at < block_bytes; at += 16) {
            bits |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(test(p + at)))} << at;
        }
        return bits;
    }

    static block_masks masks(const char* p) noexcept {
        return {gather(p, lf), gather(p, suspect), gather(p, dash)};
    }
    template <dashed_look Dashes, bool Strays>
    static __m128i may_end(const char* p, const filter_probe& probe) noexcept {
        __m128i found = _mm_setzero_si128();
        if constexpr (Strays) found = _mm_andnot_si128(lf(p + 1), suspect(p));
        if constexpr (Dashes != dashed_look::none) {
            __m128i dashed = _mm_and_si128(lf(p), dash(p + 1));
            if constexpr (Dashes == dashed_look::probed) {
                const __m128i asked =
                    _mm_and_si128(load(p + probe.m_ahead), _mm_set1_epi8(probe.m_bits));
                dashed = _mm_and_si128(dashed, equal(asked, probe.m_value));
            }
            found = _mm_or_si128(found, dashed);
        }
        return found;
    }
    template <dashed_look Dashes, bool Strays>
    static block_look look(const char* p, const filter_probe& probe) noexcept {
        __m128i found = _mm_setzero_si128();
        for (unsigned at = 0; at < block_bytes; at += 16)
            found = _mm_or_si128(found, may_end<Dashes, Strays>(p + at, probe));
        return {gather(p, lf), _mm_movemask_epi8(found) != 0};
    }
    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        constexpr auto test = Names == field_names::letters ? &letter_or_hyphen : &printable;
        return gather(p, test);
    }
};

} // namespace

scanned_lines scan_body_sse2(std::string_view bytes, const run_limits& limits) noexcept {
    return scan_by_blocks<sse2>(bytes, limits);
}

scanned_line scan_line_sse2(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<sse2>(bytes, names);
}

} // namespace mail_structure_detail

#endif
