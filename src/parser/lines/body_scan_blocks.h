// The scan of body_scan.h by blocks of 64 bytes; see block_masks.h.
//
//     bytes     a b CR LF - - x LF
//     lf        0 0 0  1  0 0 0 1
//     suspect   0 0 1  0  0 0 0 0       stray unless the next byte is an LF
//     dash      0 0 0  0  1 1 0 0       two behind an LF may be a delimiter's
//
// The previous block's masks carry over what lies at its end.

#ifndef MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_BLOCKS_H
#define MAIL_STRUCTURE_PARSER_LINES_BODY_SCAN_BLOCKS_H

#include "block_masks.h"
#include "body_scan.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

namespace {

/// Bit n is set where byte n shows that the line it stands in, or the byte before it, ends the run.
/// @param before  the masks of the block before
template <bool Dashes, bool Strays>
std::uint64_t run_ends(const block_masks& masks, const block_masks& before) noexcept {
    std::uint64_t ends = 0;
    if constexpr (Strays)
        ends = (masks.m_suspect << 1 | before.m_suspect >> (block_bytes - 1)) & ~masks.m_lf;
    if constexpr (Dashes) {
        const std::uint64_t second_dashes =
            masks.m_dash & (masks.m_dash << 1 | before.m_dash >> (block_bytes - 1));
        if (second_dashes != 0) // which is rare
            ends |= second_dashes & (masks.m_lf << 2 | before.m_lf >> (block_bytes - 2));
    }
    return ends;
}

/// Has the processor fetch the bytes that the scan will come to from here in a while: by itself it
/// foresees them only within a page of memory. Nothing is read, so it does not matter if nothing is
/// there.
inline void fetch_ahead([[maybe_unused]] const char* p) noexcept {
#ifdef __GNUC__
    constexpr std::uintptr_t distance =
        2048; // takes the scan about as long as memory takes to answer
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(p) + distance;
    __builtin_prefetch(reinterpret_cast<const void*>(address)); // NOLINT(performance-no-int-to-ptr)
#endif
}

/// Make::masks(p) gives the masks of the 64 bytes at p.
template <class Make, bool Dashes, bool Strays>
scanned_lines scan_by_blocks(std::string_view bytes) noexcept {
    block_masks before{std::uint64_t{1} << (block_bytes - 1), 0,
                       0}; // the bytes begin at the beginning of a line
    std::size_t lines = 0;
    std::size_t start = 0;
    std::uint64_t ends = 0;
    std::uint64_t lf = 0;
    for (; bytes.size() - start >= block_bytes; start += block_bytes) {
        fetch_ahead(bytes.data() + start);
        const block_masks masks = Make::masks(bytes.data() + start);
        ends = run_ends<Dashes, Strays>(masks, before);
        lf = masks.m_lf;
        if (ends != 0) break;
        lines += static_cast<std::size_t>(std::popcount(lf));
        before = masks;
    }
    if (ends == 0) { // less than a block is left
        const block_masks masks = padded_block<Make>(bytes.substr(start)).masks();
        ends = run_ends<Dashes, Strays>(masks, before);
        lf = masks.m_lf;
    }
    // Neither the byte at the first end nor the one before it is an LF, so the run is what ends
    // with the last LF before it.
    if (ends != 0) lf &= (ends & (0 - ends)) - 1;
    lines += static_cast<std::size_t>(std::popcount(lf));
    const std::size_t seen = start + static_cast<std::size_t>(std::bit_width(lf));
    if (lines == 0) return {};
    if (lf != 0) return {seen, lines};
    const std::size_t last_lf = bytes.substr(0, seen).rfind('\n'); // in an earlier block
    return {last_lf + 1, lines};
}

template <class Make>
scanned_lines scan_by_blocks(std::string_view bytes, run_limits limits) noexcept {
    const bool strays = limits.m_stray == stray_bytes::end_the_run;
    if (limits.m_dashed == dashed_lines::end_the_run)
        return strays ? scan_by_blocks<Make, true, true>(bytes)
                      : scan_by_blocks<Make, true, false>(bytes);
    return strays ? scan_by_blocks<Make, false, true>(bytes)
                  : scan_by_blocks<Make, false, false>(bytes);
}

} // namespace

} // namespace mail_structure_detail

#endif
