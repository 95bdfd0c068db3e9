// The scan of body_scan.h by blocks of 64 bytes; see block_masks.h.
//
//     bytes     a b CR LF - - x LF
//     lf        0 0 0  1  0 0 0 1
//     suspect   0 0 1  0  0 0 0 0       stray unless the next byte is an LF
//     dash      0 0 0  0  1 1 0 0       two of them behind an LF may begin a delimiter line
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

/// Bit n is set where byte n shows that a line ends the run: it follows a suspect byte and is no
/// LF, or it is the second of two dashes at the beginning of a line.
/// @param before  the masks of the previous block
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

/// Asks the processor to fetch bytes that the scan will come to soon: by itself the processor
/// fetches ahead only within a page of memory. The scan reads nothing there, so the address need
/// not be valid.
inline void fetch_ahead([[maybe_unused]] const char* p) noexcept {
#ifdef __GNUC__
    // The scan takes about as long for this many bytes as memory takes to answer.
    constexpr std::uintptr_t distance = 2048;
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(p) + distance;
    __builtin_prefetch(reinterpret_cast<const void*>(address)); // NOLINT(performance-no-int-to-ptr)
#endif
}

template <class Make, bool Dashes, bool Strays>
scanned_lines scan_by_blocks(std::string_view bytes) noexcept {
    // The bytes begin at the beginning of a line, as if an LF stood before them.
    block_masks before{std::uint64_t{1} << (block_bytes - 1), 0, 0};
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
    // The run ends with the last LF before the first byte whose bit is set in `ends`. Neither that
    // byte nor the one before it is an LF.
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
