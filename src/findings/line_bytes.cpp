#include "line_bytes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace mail_structure_detail::findings {

namespace {

constexpr std::uint64_t low_bits = 0x0101010101010101;
constexpr std::uint64_t top_bits = 0x8080808080808080;
constexpr std::uint64_t letters = low_bits * 'a';

/// Not 0 if one of the eight bytes is 0.
constexpr std::uint64_t zero_byte_in(std::uint64_t word) noexcept {
    return (word - low_bits) & ~word & top_bits;
}

/// What words of eight bytes have in them.
struct unusual_bits {
    std::uint64_t m_all = 0;       // all words, one on top of the other
    std::uint64_t m_nul_or_cr = 0; // not 0 if there was one

    void add(std::uint64_t word) noexcept {
        m_all |= word;
        m_nul_or_cr |= zero_byte_in(word) | zero_byte_in(word ^ (low_bits * '\r'));
    }
};

} // namespace

std::string_view without_line_end(const message_line& line) noexcept {
    std::string_view bytes = line.m_bytes;
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
        if (bytes.ends_with('\r')) bytes.remove_suffix(1);
    }
    return bytes;
}

line_bytes bytes_of(const message_line& line) noexcept {
    const std::string_view bytes = without_line_end(line);
    unusual_bits bits;
    std::size_t at = 0;
    for (; bytes.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, sizeof word);
        bits.add(word);
    }
    std::uint64_t last = letters; // nothing unusual
    std::memcpy(&last, bytes.data() + at, bytes.size() - at);
    bits.add(last);
    line_bytes found;
    if (bits.m_nul_or_cr != 0) {
        found.m_nul = bytes.find('\0');
        found.m_bare_cr = bytes.find('\r');
    }
    if ((bits.m_all & top_bits) != 0) {
        const auto is_high = [](char c) { return static_cast<unsigned char>(c) > 127; };
        const auto* const begin = std::find_if(bytes.begin(), bytes.end(), is_high);
        const auto* const end = std::find_if_not(begin, bytes.end(), is_high);
        found.m_8_bit = static_cast<std::size_t>(begin - bytes.begin());
        found.m_8_bit_length = static_cast<std::size_t>(end - begin);
    }
    return found;
}

} // namespace mail_structure_detail::findings
