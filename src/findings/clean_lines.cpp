// Looks at bytes in blocks.

#include "clean_lines.h"

#include "byte_vector.h"
#include "line_bytes.h"

#include <array>
#include <cstring>

namespace mail_structure_detail::findings {

namespace {

constexpr std::size_t block_bytes = 64;
/// A line that is too long has at least this many whole blocks within it.
constexpr std::size_t blocks_of_long_line = (longest_line + 1) / block_bytes - 1;

/// Encodings, grouped by the bytes that are good in them.
enum class good_bytes : std::uint8_t { ascii, any, base64, quoted_printable };

good_bytes good_bytes_of(transfer_encoding encoding) noexcept {
    switch (encoding) {
    case transfer_encoding::base64: return good_bytes::base64;
    case transfer_encoding::quoted_printable: return good_bytes::quoted_printable;
    case transfer_encoding::seven_bit:
    case transfer_encoding::uuencode: return good_bytes::ascii;
    default: return good_bytes::any;
    }
}

byte_vector at_most(byte_vector bytes, unsigned char most) noexcept {
    return reinterpret_cast<byte_vector>(bytes <= most); // NOLINT: the same bits
}

/// Not 0 where a byte is bad, or is so before the next one.
template <good_bytes Good, bool CrLf>
byte_vector bad_ones(byte_vector bytes, byte_vector next) noexcept {
    const byte_vector returns = equal(bytes, '\r');
    byte_vector bad = CrLf ? returns ^ equal(next, '\n') : returns;
    if constexpr (Good == good_bytes::base64) {
        const byte_vector letters = at_most((bytes | 0x20) - 'a', 25);
        const byte_vector digits = at_most(bytes - '/', 10); // the slash comes before '0'
        return bad | ~(letters | digits | equal(bytes, '+') | equal(bytes, '\n') | returns);
    }
    bad |= equal(bytes, '\0') | (equal(bytes, '-') & equal(next, '-'));
    if constexpr (Good == good_bytes::quoted_printable)
        bad |= equal(bytes, '=') & ~(equal(next, '\n') | equal(next, '\r'));
    if constexpr (Good != good_bytes::any) bad |= bytes & 0x80;
    return bad;
}

/// How many lines end in a block of clean bytes; not_found if some are not clean. Reads the byte
/// behind the block.
template <good_bytes Good, bool CrLf>
std::size_t line_ends_in(const char* block) noexcept {
    byte_vector bad{};
    byte_vector line_ends{}; // a count in each byte
    for (std::size_t at = 0; at < block_bytes; at += sizeof(byte_vector)) {
        const byte_vector bytes = load(block + at);
        bad |= bad_ones<Good, CrLf>(bytes, load(block + at + 1));
        line_ends += equal(bytes, '\n') & 1;
    }
    if (is_any_set(bad)) return not_found;
    std::array<std::uint64_t, 2> words{};
    std::memcpy(words.data(), &line_ends, sizeof line_ends);
    // The highest byte of the product is the sum of all bytes of the other factor.
    constexpr std::uint64_t ones = 0x0101010101010101;
    return (words[0] + words[1]) * ones >> 56U;
}

template <good_bytes Good, bool CrLf>
clean_lines measure(std::string_view bytes) noexcept {
    if (CrLf && bytes.starts_with('\n')) return {};
    clean_lines found;
    std::size_t at = 0;
    std::size_t blocks_without_end = 0;
    for (; bytes.size() - at > block_bytes; at += block_bytes) {
        const std::size_t line_ends = line_ends_in<Good, CrLf>(bytes.data() + at);
        if (line_ends == not_found) break;
        blocks_without_end = line_ends == 0 ? blocks_without_end + 1 : 0;
        if (blocks_without_end == blocks_of_long_line) break;
        found.m_lines += line_ends;
    }
    if (found.m_lines != 0) found.m_bytes = bytes.substr(0, at).rfind('\n') + 1;
    return found;
}

} // namespace

clean_lines clean_lines_at_front(std::string_view bytes, transfer_encoding encoding,
                                 bool ends_with_cr_lf) noexcept {
    switch (good_bytes_of(encoding)) {
    case good_bytes::ascii:
        return ends_with_cr_lf ? measure<good_bytes::ascii, true>(bytes)
                               : measure<good_bytes::ascii, false>(bytes);
    case good_bytes::base64:
        return ends_with_cr_lf ? measure<good_bytes::base64, true>(bytes)
                               : measure<good_bytes::base64, false>(bytes);
    case good_bytes::quoted_printable:
        return ends_with_cr_lf ? measure<good_bytes::quoted_printable, true>(bytes)
                               : measure<good_bytes::quoted_printable, false>(bytes);
    case good_bytes::any: break;
    }
    return ends_with_cr_lf ? measure<good_bytes::any, true>(bytes)
                           : measure<good_bytes::any, false>(bytes);
}

} // namespace mail_structure_detail::findings
