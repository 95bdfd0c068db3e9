// What the scans by blocks of 64 bytes have in common: bit n of a mask describes byte n of a block.
//
//     bytes     a b CR LF - - x LF
//     lf        0 0 0  1  0 0 0 1
//     suspect   0 0 1  0  0 0 0 0       a CR or NUL, which only an LF, or nothing, may follow
//     dash      0 0 0  0  1 1 0 0
//
// Processors differ only in how the masks are made. For each there is a struct, the parameter Make
// of the templates, with three functions that read the 64 bytes at p:
// - masks(p) makes the masks shown here.
// - look<Dashes, Strays>(p, probe) tells where the LFs are, and whether a line may end the run:
//   with Strays, because one of the bytes is suspect and not before an LF; by Dashes, because one
//   of the bytes is an LF before a line that begins with a dash. If Dashes is `probed`, that line
//   must also have what the probe asks for. This also reads the 64 bytes at p + 1 and, for the
//   probe, those at p + probe.m_ahead.
// - name<Names>(p) sets the bit of each byte that a field name may hold. Behind the first byte that
//   it may not hold, the bits mean nothing.
// Each processor's file includes this one where its own instructions are switched on, so everything
// here is local to that file.

#ifndef MAIL_STRUCTURE_PARSER_LINES_BLOCK_MASKS_H
#define MAIL_STRUCTURE_PARSER_LINES_BLOCK_MASKS_H

#include "character_class.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace mail_structure_detail {

namespace {

constexpr std::size_t block_bytes = 64;

/// What a quick look at a block tells.
struct block_look {
    std::uint64_t m_lf;
    bool m_may_end; // whether a line that begins or stands in the block may end the run
};

/// The lines that begin with a dash of which a quick look says that they may end the run: none of
/// them, each, or those that have what the probe asks for.
enum class dashed_look : std::uint8_t { none, each, probed };

/// One byte of a line, which lines that may be delimiter lines have in common.
struct filter_probe {
    std::size_t m_ahead; // from the LF before the line to this byte
    char m_bits;         // of the byte that count
    char m_value;        // of these bits; all other bits are 0
};

struct block_masks {
    std::uint64_t m_lf;
    std::uint64_t m_suspect;
    std::uint64_t m_dash;
};

/// The lowest `count` bits, or all.
constexpr std::uint64_t first_bits(std::size_t count) noexcept {
    return count < block_bytes ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

/// The first block of a text. If the text is shorter than a block, letters take the place of the
/// missing bytes; nothing past the end of the text is read.
template <class Make>
class padded_block {
public:
    explicit padded_block(std::string_view text) noexcept : m_begin(text.data()) {
        if (text.size() >= block_bytes) return;
        m_room.fill('x');
        if (!text.empty()) std::memcpy(m_room.data(), text.data(), text.size());
        m_begin = m_room.data();
    }
    padded_block(const padded_block&) = delete;
    padded_block& operator=(const padded_block&) = delete;

    block_masks masks() const noexcept { return Make::masks(m_begin); }
    /// The bytes that a field name may hold. The bits behind the first byte that it may not hold
    /// mean nothing.
    template <field_names Names>
    std::uint64_t name() const noexcept {
        return Make::template name<Names>(m_begin);
    }

private:
    const char* m_begin;
    std::array<char, block_bytes> m_room; // set only for a short text
};

} // namespace

} // namespace mail_structure_detail

#endif
