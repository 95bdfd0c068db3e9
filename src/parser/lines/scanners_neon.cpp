// The scanners with NEON, which every 64-bit ARM processor has: 16 bytes a register.

#include "scanner_processors.h"

#ifdef MAIL_STRUCTURE_AARCH64

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"

#include <arm_neon.h>

namespace mail_structure_detail {

namespace {

struct neon {
    static uint8x16_t load(const char* p) noexcept {
        return vld1q_u8(reinterpret_cast<const std::uint8_t*>(p));
    }
    static uint8x16_t equal(uint8x16_t bytes, char c) noexcept {
        return vceqq_u8(bytes, vdupq_n_u8(static_cast<std::uint8_t>(c)));
    }
    static uint8x16_t lf(const char* p) noexcept { return equal(load(p), '\n'); }
    static uint8x16_t suspect(const char* p) noexcept {
        return vorrq_u8(equal(load(p), '\r'), equal(load(p), '\0'));
    }
    static uint8x16_t dash(const char* p) noexcept { return equal(load(p), '-'); }
    static uint8x16_t printable(const char* p) noexcept {
        const uint8x16_t bytes = load(p);
        const uint8x16_t from_first = vsubq_u8(bytes, vdupq_n_u8('!'));
        return vbicq_u8(vcltq_u8(from_first, vdupq_n_u8('\x7F' - '!')), equal(bytes, ':'));
    }
    static uint8x16_t letter_or_hyphen(const char* p) noexcept {
        const uint8x16_t bytes = load(p);
        const uint8x16_t from_a = vsubq_u8(vorrq_u8(bytes, vdupq_n_u8(0x20)), vdupq_n_u8('a'));
        return vorrq_u8(vcltq_u8(from_a, vdupq_n_u8(26)), equal(bytes, '-'));
    }

    /// Bit n is set where the test, given the place of 16 bytes, sets byte n. NEON has no
    /// instruction that gathers bits. So each byte keeps only the bit of its place among eight, and
    /// three additions of neighbours bring the bits of eight bytes together in one byte.
    template <class Test>
    static std::uint64_t gather(const char* p, Test test) noexcept {
        constexpr std::uint8_t places[16] = {1, 2, 4, 8, 16, 32, 64, 128,
                                             1, 2, 4, 8, 16, 32, 64, 128};
        const uint8x16_t place = vld1q_u8(places);
        const auto quarter = [p, place, test](std::size_t at) {
            return vandq_u8(test(p + at), place);
        };
        const uint8x16_t low = vpaddq_u8(quarter(0), quarter(16));
        const uint8x16_t high = vpaddq_u8(quarter(32), quarter(48));
        const uint8x16_t sums = vpaddq_u8(low, high);
        return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
    }

    static block_masks masks(const char* p) noexcept {
        return {gather(p, lf), gather(p, suspect), gather(p, dash)};
    }
    template <dashed_look Dashes, bool Strays>
    static uint8x16_t may_end(const char* p, const filter_probe& probe) noexcept {
        uint8x16_t found = vdupq_n_u8(0);
        if constexpr (Strays) found = vbicq_u8(suspect(p), lf(p + 1));
        if constexpr (Dashes != dashed_look::none) {
            uint8x16_t dashed = vandq_u8(lf(p), dash(p + 1));
            if constexpr (Dashes == dashed_look::probed) {
                const uint8x16_t bits = vdupq_n_u8(static_cast<std::uint8_t>(probe.m_bits));
                const uint8x16_t asked = vandq_u8(load(p + probe.m_ahead), bits);
                dashed = vandq_u8(dashed, equal(asked, probe.m_value));
            }
            found = vorrq_u8(found, dashed);
        }
        return found;
    }
    template <dashed_look Dashes, bool Strays>
    static block_look look(const char* p, const filter_probe& probe) noexcept {
        uint8x16_t found = vdupq_n_u8(0);
        for (unsigned at = 0; at < block_bytes; at += 16)
            found = vorrq_u8(found, may_end<Dashes, Strays>(p + at, probe));
        return {gather(p, lf), vmaxvq_u8(found) != 0};
    }
    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        constexpr auto test = Names == field_names::letters ? &letter_or_hyphen : &printable;
        return gather(p, test);
    }
};

} // namespace

scanned_lines scan_body_neon(std::string_view bytes, const run_limits& limits) noexcept {
    return scan_by_blocks<neon>(bytes, limits);
}

scanned_line scan_line_neon(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<neon>(bytes, names);
}

} // namespace mail_structure_detail

#endif
