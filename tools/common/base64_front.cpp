// Counts digits a block at a time; see the header.

#include "common/base64_front.h"

#include <cstdint>
#include <optional>

namespace {

constexpr std::size_t block_bytes = 64;

// These functions give one if the byte is a digit of base64, or white space, and else zero. They
// have no branch, so that the compiler can apply them to many bytes at once.

// (With "value ? 1 : 0", g++ 12 does not.)
constexpr std::uint8_t number_of(bool value) { return static_cast<std::uint8_t>(value); }

std::uint8_t counts_as_digit(std::uint8_t byte) {
    const auto letter = static_cast<std::uint8_t>((byte | 0x20U) - 'a');
    const auto decimal_or_slash = static_cast<std::uint8_t>(byte - '/'); // '0' follows the slash
    return static_cast<std::uint8_t>(number_of(letter < 26) | number_of(decimal_or_slash < 11)
                                     | number_of(byte == '+'));
}

std::uint8_t counts_as_white_space(std::uint8_t byte) {
    const auto tab_to_cr = static_cast<std::uint8_t>(byte - '\t');
    return static_cast<std::uint8_t>(number_of(byte == ' ') | number_of(tab_to_cr < 5));
}

/// The number of digits in a block; nothing if it also holds bytes that are no white space.
std::optional<std::size_t> digits_of_block(const char* block) {
    std::uint8_t digits = 0;
    std::uint8_t white_space = 0;
    for (std::size_t at = 0; at < block_bytes; ++at) {
        const auto byte = static_cast<std::uint8_t>(block[at]);
        digits = static_cast<std::uint8_t>(digits + counts_as_digit(byte));
        white_space = static_cast<std::uint8_t>(white_space + counts_as_white_space(byte));
    }
    if (digits + white_space != block_bytes) return std::nullopt;
    return digits;
}

} // namespace

base64_front base64_front_of(std::string_view text) {
    std::size_t digits = 0;
    std::size_t bytes = 0;
    while (text.size() - bytes >= block_bytes) {
        const std::optional<std::size_t> more = digits_of_block(text.data() + bytes);
        if (!more) break;
        digits += *more;
        bytes += block_bytes;
    }
    // The digits of a group that the last block has cut are left to the decoder.
    for (std::size_t cut = digits % 4; cut != 0; --bytes)
        cut -= counts_as_digit(static_cast<std::uint8_t>(text[bytes - 1]));
    return {bytes, digits / 4 * 3};
}
