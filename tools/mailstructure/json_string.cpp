// Escapes characters; see the header.

#include "mailstructure/json_string.h"

#include "common/printable.h"

#include <cstdint>
#include <cstring>

namespace {

using block = std::uint64_t;

/// A block whose bytes all have that value.
constexpr block each_byte(std::uint8_t value) { return 0x0101010101010101U * value; }

constexpr block high_bits = each_byte(0x80);

/// Whether a byte of the block is less than that value, which is at most 0x80. (A byte that is less
/// has its high bit set by the subtraction; the borrow can set that of further bytes too, but not
/// the first one.)
constexpr bool has_less(block bytes, std::uint8_t value) {
    return ((bytes - each_byte(value)) & ~bytes & high_bits) != 0;
}

constexpr bool has(block bytes, char value) {
    return has_less(bytes ^ each_byte(static_cast<std::uint8_t>(value)), 1);
}

/// Whether a JSON string holds all bytes of the block that begins here as they are.
bool is_plain_block(const char* begin) {
    block bytes = 0;
    std::memcpy(&bytes, begin, sizeof bytes);
    const bool has_beyond_ascii = (((bytes + each_byte(1)) | bytes) & high_bits) != 0; // or DEL
    return !has_beyond_ascii && !has_less(bytes, ' ') && !has(bytes, '"') && !has(bytes, '\\');
}

bool is_plain(char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; }

} // namespace

std::size_t plain_front_of(std::string_view text) {
    constexpr std::size_t block_bytes = sizeof(block);
    std::size_t plain = 0;
    while (text.size() - plain >= block_bytes && is_plain_block(text.data() + plain))
        plain += block_bytes;
    // The last block of the text may begin within the one before.
    const std::size_t rest = text.size() - plain;
    if (plain != 0 && rest < block_bytes && is_plain_block(text.data() + text.size() - block_bytes))
        return text.size();
    while (plain < text.size() && is_plain(text[plain])) ++plain;
    return plain;
}

json_character::json_character(std::string_view text) { // NOLINT: m_shown is filled as needed
    const utf8_character character = first_character(text);
    m_bytes = character.m_bytes;
    m_is_valid = character.m_valid;
    const char32_t code_point = character.m_valid ? character.m_code_point : 0xFFFD;
    if (code_point < ' ' || code_point == '"' || code_point == '\\')
        put_control(text.front());
    else if (is_spelled_out(code_point))
        put_escaped(code_point);
    else if (!character.m_valid)
        for (const char byte : std::string_view("\uFFFD")) put(byte);
    else
        for (const char byte : text.substr(0, m_bytes)) put(byte);
}

/// A control character, a quote or a backslash, for which JSON may have a shorter form.
void json_character::put_control(char control) {
    constexpr std::string_view short_forms = "\bb\tt\nn\ff\rr\"\"\\\\";
    for (std::size_t at = 0; at < short_forms.size(); at += 2) {
        if (short_forms[at] != control) continue;
        put('\\');
        return put(short_forms[at + 1]);
    }
    put_unit(static_cast<unsigned char>(control));
}

void json_character::put_escaped(char32_t code_point) {
    if (code_point > 0xFFFF) { // two surrogates
        put_unit(0xD7C0 + (code_point >> 10));
        put_unit(0xDC00 + (code_point & 0x3FF));
    } else {
        put_unit(code_point);
    }
}

void json_character::put_unit(unsigned unit) {
    put('\\');
    put('u');
    for (int shift = 12; shift >= 0; shift -= 4) put("0123456789ABCDEF"[(unit >> shift) & 0xF]);
}
