// The scanners with 32 bytes a register.

#include "character_class.h"
#include "scanner_processors.h"

#ifdef MAIL_STRUCTURE_X86_64

#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>
#include <string_view>

// Headers whose functions other files use too are included before this: all that follows is
// compiled for AVX2, and those functions must not be.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,popcnt")
#endif

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"

namespace mail_structure_detail {

namespace {

struct avx2 {
    static __m256i load(const char* p) noexcept {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static __m256i equal(__m256i bytes, char c) noexcept {
        return _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(c));
    }

    /// One bit for each byte.
    static std::uint64_t bits(__m256i low, __m256i high) noexcept {
        const auto half = [](__m256i bytes) {
            return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
        };
        return half(low) | std::uint64_t{half(high)} << 32;
    }

    static __m256i suspect(__m256i bytes) noexcept {
        return _mm256_or_si256(equal(bytes, '\r'), equal(bytes, '\0'));
    }

    static __m256i printable(__m256i bytes) noexcept {
        const __m256i above_blank = _mm256_cmpgt_epi8(bytes, _mm256_set1_epi8(' ')); // signed
        return _mm256_andnot_si256(_mm256_or_si256(equal(bytes, ':'), equal(bytes, '\x7F')),
                                   above_blank);
    }

    static __m256i letter_or_hyphen(__m256i bytes) noexcept {
        const __m256i lower = _mm256_or_si256(bytes, _mm256_set1_epi8(0x20));
        // There is only a signed comparison: 'a' is moved to -128, and 'z' to -103.
        const __m256i from_a =
            _mm256_add_epi8(lower, _mm256_set1_epi8(static_cast<char>(-128 - 'a')));
        return _mm256_or_si256(_mm256_cmpgt_epi8(_mm256_set1_epi8(-102), from_a),
                               equal(bytes, '-'));
    }

    static block_masks masks(const char* p) noexcept {
        const __m256i low = load(p);
        const __m256i high = load(p + 32);
        return {bits(equal(low, '\n'), equal(high, '\n')), bits(suspect(low), suspect(high)),
                bits(equal(low, '-'), equal(high, '-'))};
    }

    template <dashed_look Dashes, bool Strays>
    static __m256i may_end(const char* p, const filter_probe& probe) noexcept {
        const __m256i bytes = load(p);
        const __m256i next = load(p + 1);
        __m256i found = _mm256_setzero_si256();
        if constexpr (Strays) found = _mm256_andnot_si256(equal(next, '\n'), suspect(bytes));
        if constexpr (Dashes != dashed_look::none) {
            __m256i dashed = _mm256_and_si256(equal(bytes, '\n'), equal(next, '-'));
            if constexpr (Dashes == dashed_look::probed) {
                const __m256i asked =
                    _mm256_and_si256(load(p + probe.m_ahead), _mm256_set1_epi8(probe.m_bits));
                dashed = _mm256_and_si256(dashed, equal(asked, probe.m_value));
            }
            found = _mm256_or_si256(found, dashed);
        }
        return found;
    }
    template <dashed_look Dashes, bool Strays>
    static block_look look(const char* p, const filter_probe& probe) noexcept {
        const __m256i found = _mm256_or_si256(may_end<Dashes, Strays>(p, probe),
                                              may_end<Dashes, Strays>(p + 32, probe));
        return {bits(equal(load(p), '\n'), equal(load(p + 32), '\n')),
                _mm256_testz_si256(found, found) == 0};
    }

    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        if constexpr (Names == field_names::letters)
            return bits(letter_or_hyphen(load(p)), letter_or_hyphen(load(p + 32)));
        else
            return bits(printable(load(p)), printable(load(p + 32)));
    }
};

} // namespace

scanned_lines scan_body_avx2(std::string_view bytes, const run_limits& limits) noexcept {
    return scan_by_blocks<avx2>(bytes, limits);
}

scanned_line scan_line_avx2(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<avx2>(bytes, names);
}

} // namespace mail_structure_detail

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif
