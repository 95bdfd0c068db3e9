// Counts the bytes that decoding leaves out: a block at a time where the text is sound, and else a
// line at a time. See the header.

#include "common/quoted_printable_size.h"

#include "common/character_class.h"
#include "common/hex_digit.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace {

constexpr std::size_t block_bytes = 64;
constexpr std::size_t bytes_read_behind_block = 2;

// These functions give one if their claim holds, and else zero. They have no branch, so that the
// compiler can apply them to many bytes at once. (g++ 12 cannot if "value ? 1 : 0" stands here.)

constexpr std::uint8_t number_of(bool value) { return static_cast<std::uint8_t>(value); }

std::uint8_t counts_as_hex_digit(std::uint8_t byte) {
    const auto digit = static_cast<std::uint8_t>(byte - '0');
    const auto letter = static_cast<std::uint8_t>((byte | 0x20U) - 'a');
    return static_cast<std::uint8_t>(number_of(digit < 10) | number_of(letter < 6));
}

std::uint8_t counts_as_blank(std::uint8_t byte) {
    return static_cast<std::uint8_t>(number_of(byte == ' ') | number_of(byte == '\t'));
}

/// The number of bytes that are left out for the equals signs of a block: two of each "=41", and
/// all of each soft line break. Nothing if there is another equals sign, or a blank before a CR or
/// LF. The two bytes behind the block are looked at too.
std::optional<std::size_t> bytes_left_out_of_block(const char* block) {
    std::uint8_t left_out = 0;
    std::uint8_t unsound = 0;
    for (std::size_t at = 0; at < block_bytes; ++at) {
        const auto byte = static_cast<std::uint8_t>(block[at]);
        const auto second = static_cast<std::uint8_t>(block[at + 1]);
        const auto third = static_cast<std::uint8_t>(block[at + 2]);
        const std::uint8_t sign = number_of(byte == '=');
        const std::uint8_t lf = number_of(second == '\n');
        const std::uint8_t cr = number_of(second == '\r');
        const auto crlf = static_cast<std::uint8_t>(cr & number_of(third == '\n'));
        const auto encoded =
            static_cast<std::uint8_t>(counts_as_hex_digit(second) & counts_as_hex_digit(third));
        const auto sound = static_cast<std::uint8_t>(sign & (encoded | lf | crlf));
        left_out = static_cast<std::uint8_t>(left_out + sound + sound + (sign & crlf));
        unsound = static_cast<std::uint8_t>(unsound | (sign ^ sound)
                                            | (counts_as_blank(byte) & (lf | cr)));
    }
    if (unsound != 0) return std::nullopt;
    return left_out;
}

/// The length of the line end at the beginning of the text; 0 if there is none.
std::size_t line_end_of(std::string_view text) {
    if (text.substr(0, 1) == "\n") return 1;
    return text.substr(0, 2) == "\r\n" ? 2 : 0;
}

/// Counts two bytes of each "=41", and the "=" and the line end of each soft line break. Blanks
/// between these are at the end of a line.
void take_equals_signs(std::string_view text, quoted_printable_size& size) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text[at] != '=') { // equals signs often follow each other closely
            at = text.find('=', at);
            if (at == std::string_view::npos) return;
        }
        if (hex_byte(text.substr(at + 1))) {
            size.m_bytes -= 2;
            at += 3;
            continue;
        }
        std::size_t end = at + 1;
        while (end < text.size() && is_blank(text[end])) ++end;
        const std::size_t line_end = line_end_of(text.substr(end));
        if (line_end != 0 || end == text.size()) {
            size.m_bytes -= 1 + line_end;
            at = end + line_end;
        } else {
            size.m_is_damaged = true;
            at = end;
        }
    }
}

std::size_t blanks_at_end_of(std::string_view text) {
    std::size_t blanks = 0;
    while (blanks < text.size() && is_blank(text[text.size() - 1 - blanks])) ++blanks;
    return blanks;
}

/// Counts from that place to the end of its line.
/// @return where the next line begins
std::size_t take_line(std::string_view text, std::size_t begin, quoted_printable_size& size) {
    const std::size_t lf = text.find('\n', begin);
    const std::size_t end = lf == std::string_view::npos ? text.size() : lf + 1;
    take_equals_signs(text.substr(begin, end - begin), size);
    std::string_view line = text.substr(0, std::min(lf, text.size()));
    if (lf != std::string_view::npos && !line.empty() && line.back() == '\r') line.remove_suffix(1);
    size.m_bytes -= blanks_at_end_of(line); // the first of them may lie before that place
    return end;
}

} // namespace

quoted_printable_size quoted_printable_size_of(std::string_view text) {
    quoted_printable_size size = {text.size(), false};
    std::size_t at = 0;
    while (at < text.size()) {
        const bool has_block = text.size() - at >= block_bytes + bytes_read_behind_block;
        const std::optional<std::size_t> left_out =
            has_block ? bytes_left_out_of_block(text.data() + at) : std::nullopt;
        if (left_out) {
            size.m_bytes -= *left_out;
            at += block_bytes;
        } else { // a block at least, so that it costs no more than one look
            const std::size_t block_end = std::min(at + block_bytes, text.size());
            while (at < block_end) at = take_line(text, at, size);
        }
    }
    return size;
}
