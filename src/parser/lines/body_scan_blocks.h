// The scan of body_scan.h by blocks of 64 bytes; see block_masks.h.
//
//     bytes     a b CR LF - - x LF
//     lf        0 0 0  1  0 0 0 1
//     suspect   0 0 1  0  0 0 0 0       stray unless the next byte is an LF
//     dash      0 0 0  0  1 1 0 0       one behind an LF may begin a delimiter line
//
// Most lines that begin with dashes are no delimiter lines. In text that has many of them, a branch
// for each would often be mispredicted. There the scan also looks at the byte of each line that
// tells most of these lines from delimiter lines (see delimiter_filter.h), and branches only if
// that byte fits too. In other text the scan saves that look.

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

/// The number of bytes from p to where the next line of the cache begins: from 1 to a block's. It
/// takes longer to load a block that lies in two lines of the cache.
inline std::size_t bytes_to_next_line_of_cache(const char* p) noexcept {
    return block_bytes - reinterpret_cast<std::uintptr_t>(p) % block_bytes;
}

/// How far a scan has come.
struct scan_progress {
    std::size_t m_start = 0; // of the next block
    std::size_t m_lines = 0; // that end before it

    /// Goes on by so many bytes of the block, whose LFs the mask shows.
    void pass(std::uint64_t lf, std::size_t bytes = block_bytes) noexcept {
        m_start += bytes;
        m_lines += static_cast<std::size_t>(std::popcount(lf & first_bits(bytes)));
    }
};

/// Bit n is set where byte n is stray: its line ends the run.
/// @param rest  the bytes from the block on
template <bool Strays>
std::uint64_t stray_ends(const block_masks& masks, std::string_view rest) noexcept {
    if constexpr (!Strays) return 0;
    const bool lf_follows = rest.size() > block_bytes && rest[block_bytes] == '\n';
    return masks.m_suspect & ~(masks.m_lf >> 1 | std::uint64_t{lf_follows} << (block_bytes - 1));
}

/// Bit n is set where byte n is an LF before a line that ends the run as one that begins with "--".
/// After the first such LF, bits may be set for other lines too.
template <bool Dashes>
std::uint64_t dashed_ends(const block_masks& masks, const scan_progress& reached,
                          std::string_view bytes, const delimiter_filter& filter) noexcept {
    if constexpr (!Dashes) return 0;
    constexpr std::uint64_t last = std::uint64_t{1} << (block_bytes - 1);
    std::uint64_t dashed = masks.m_lf & (masks.m_dash >> 1 | last);
    for (; dashed != 0; dashed &= dashed - 1) {
        const auto lf = reached.m_start + static_cast<std::size_t>(std::countr_zero(dashed));
        if (filter.passes(bytes.substr(lf + 1))) break;
    }
    return dashed;
}

/// Passes over blocks in which no line can end the run. Stops at the first block that needs a
/// closer look, and where fewer bytes are left than a quick look reads. Not inline, so that the
/// compiler keeps the constants of the loop in registers.
template <class Make, dashed_look Dashes, bool Strays>
[[gnu::noinline]] scan_progress pass_over_text(scan_progress reached, std::string_view bytes,
                                               const delimiter_filter& filter) noexcept {
    const filter_probe probe{filter.probe_place() + 1, filter.probe_bits(), filter.probe_value()};
    const std::size_t needed = block_bytes + (Dashes == dashed_look::probed ? probe.m_ahead : 1);
    while (bytes.size() - reached.m_start >= needed) {
        const char* const block = bytes.data() + reached.m_start;
        fetch_ahead(block);
        const block_look seen = Make::template look<Dashes, Strays>(block, probe);
        if (seen.m_may_end) break; // which is rare
        reached.pass(seen.m_lf);
    }
    return reached;
}

template <class Make, bool Dashes, bool Strays>
scanned_lines scan_by_blocks(std::string_view bytes, const delimiter_filter& filter) noexcept {
    if (Dashes && filter.passes(bytes)) return {};
    // A stop before so many bytes shows that lines that begin with dashes come close together.
    constexpr std::size_t few_bytes = 1024;
    constexpr dashed_look at_first = Dashes ? dashed_look::each : dashed_look::none;
    constexpr dashed_look later = Dashes ? dashed_look::probed : dashed_look::none;
    bool has_many_dashes = false;
    scan_progress reached;
    std::uint64_t ends = 0;
    std::uint64_t lf = 0;
    for (;;) {
        std::string_view rest = bytes;
        rest.remove_prefix(reached.m_start);
        const block_masks masks = padded_block<Make>(rest).masks();
        ends = stray_ends<Strays>(masks, rest) | dashed_ends<Dashes>(masks, reached, bytes, filter);
        lf = masks.m_lf;
        if (ends != 0 || rest.size() <= block_bytes) break;
        // The bytes of this block that lie in the next line of the cache are looked at once more.
        reached.pass(masks.m_lf, bytes_to_next_line_of_cache(rest.data()));
        const std::size_t before = reached.m_start;
        reached = has_many_dashes ? pass_over_text<Make, later, Strays>(reached, bytes, filter)
                                  : pass_over_text<Make, at_first, Strays>(reached, bytes, filter);
        has_many_dashes = has_many_dashes || reached.m_start - before < few_bytes;
    }
    // The run ends with the last LF up to the first byte whose bit is set in `ends`.
    if (ends != 0) lf &= ends ^ (ends - 1);
    const std::size_t lines = reached.m_lines + static_cast<std::size_t>(std::popcount(lf));
    const std::size_t seen = reached.m_start + static_cast<std::size_t>(std::bit_width(lf));
    if (lines == 0) return {};
    if (lf != 0) return {seen, lines};
    const std::size_t last_lf = bytes.substr(0, seen).rfind('\n'); // in an earlier block
    return {last_lf + 1, lines};
}

template <class Make>
scanned_lines scan_by_blocks(std::string_view bytes, const run_limits& limits) noexcept {
    const bool strays = limits.m_stray == stray_bytes::end_the_run;
    if (limits.m_dashed == dashed_lines::end_the_run)
        return strays ? scan_by_blocks<Make, true, true>(bytes, limits.m_filter)
                      : scan_by_blocks<Make, true, false>(bytes, limits.m_filter);
    return strays ? scan_by_blocks<Make, false, true>(bytes, limits.m_filter)
                  : scan_by_blocks<Make, false, false>(bytes, limits.m_filter);
}

} // namespace

} // namespace mail_structure_detail

#endif
