// The scanners with 8 bytes a word, for processors without scanners of their own.

#include "body_scan_blocks.h"
#include "line_scan_blocks.h"
#include "scanner_processors.h"

namespace mail_structure_detail {

namespace {

struct portable {
    static constexpr std::uint64_t ones = 0x0101010101010101;

    /// Bit n is set where byte n of the word, counted from its low end, is c.
    static std::uint64_t equal(std::uint64_t word, char c) noexcept {
        constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7F;
        const std::uint64_t differing = word ^ ones * static_cast<unsigned char>(c);
        // 0x80 in each byte of `differing` that is 0; no carry passes from byte to byte.
        const std::uint64_t zero_bytes = ~(((differing & low7) + low7) | differing | low7);
        constexpr std::uint64_t gather =
            0x0002040810204081; // moves the 8 marks next to one another
        return ((zero_bytes >> 7) * gather >> 49 & 0x7F) | zero_bytes >> 63 << 7;
    }

    static std::uint64_t load(const char* p) noexcept {
        std::uint64_t word = 0;
        for (unsigned byte = 0; byte < 8; ++byte)
            word |= std::uint64_t{static_cast<unsigned char>(p[byte])} << 8 * byte;
        return word;
    }

    static block_masks masks(const char* p) noexcept {
        block_masks found{0, 0, 0};
        for (unsigned at = 0; at < block_bytes; at += 8) {
            const std::uint64_t word = load(p + at);
            found.m_lf |= equal(word, '\n') << at;
            found.m_suspect |= (equal(word, '\r') | equal(word, '\0')) << at;
            found.m_dash |= equal(word, '-') << at;
        }
        return found;
    }

    template <dashed_look Dashes, bool Strays>
    static std::uint64_t may_end(const char* p, const filter_probe& probe) noexcept {
        const std::uint64_t word = load(p);
        const std::uint64_t next = load(p + 1);
        std::uint64_t found = 0;
        if constexpr (Strays) found = (equal(word, '\r') | equal(word, '\0')) & ~equal(next, '\n');
        if constexpr (Dashes != dashed_look::none) {
            std::uint64_t dashed = equal(word, '\n') & equal(next, '-');
            if constexpr (Dashes == dashed_look::probed) {
                const std::uint64_t bits = ones * static_cast<unsigned char>(probe.m_bits);
                dashed &= equal(load(p + probe.m_ahead) & bits, probe.m_value);
            }
            found |= dashed;
        }
        return found;
    }
    template <dashed_look Dashes, bool Strays>
    static block_look look(const char* p, const filter_probe& probe) noexcept {
        block_look seen{0, false};
        for (unsigned at = 0; at < block_bytes; at += 8) {
            seen.m_lf |= equal(load(p + at), '\n') << at;
            seen.m_may_end |= may_end<Dashes, Strays>(p + at, probe) != 0;
        }
        return seen;
    }

    /// Names are short: the bytes are looked at one by one, and none behind the name.
    template <field_names Names>
    static std::uint64_t name(const char* p) noexcept {
        std::size_t count = 0;
        while (count < block_bytes && is_name_character(p[count], Names)) ++count;
        return first_bits(count);
    }
};

} // namespace

scanned_lines scan_body_portable(std::string_view bytes, const run_limits& limits) noexcept {
    return scan_by_blocks<portable>(bytes, limits);
}

scanned_line scan_line_portable(std::string_view bytes, field_names names) noexcept {
    return scan_line_by_blocks<portable>(bytes, names);
}

} // namespace mail_structure_detail
