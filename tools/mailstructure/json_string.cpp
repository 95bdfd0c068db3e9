// Escapes characters; see the header.

#include "mailstructure/json_string.h"

#include "common/printable.h"

#include <cstdint>
#include <cstring>

namespace {

/// A block whose bytes all have that value.
template <class block>
constexpr block each_byte(std::uint8_t value) {
    return static_cast<block>(~block{0}) / 0xFF * value;
}

/// Whether all bytes of the block are plain: a JSON string holds them as they are. (The high bit of
/// a byte is set beyond ASCII. Adding one sets it for DEL; subtracting sets it for a byte that is
/// less. Only behind a byte that is not plain can a carry or a borrow change it.)
template <class block>
constexpr bool is_plain(block bytes) {
    constexpr auto ones = each_byte<block>(1);
    const block quotes = (bytes ^ each_byte<block>('"')) - ones;
    const block backslashes = (bytes ^ each_byte<block>('\\')) - ones;
    const block others = bytes | (bytes + ones) | (bytes - each_byte<block>(' '));
    return ((others | quotes | backslashes) & each_byte<block>(0x80)) == 0;
}

constexpr bool is_plain(char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; }

/// Copies a block.
/// @return whether all of its bytes are plain
template <class block>
bool copy_plain_block(const char* from, char* to) {
    block bytes = 0;
    std::memcpy(&bytes, from, sizeof bytes);
    std::memcpy(to, &bytes, sizeof bytes);
    return is_plain(bytes);
}

/// Copies plain bytes in blocks of that type.
/// @param plain  how many bytes of the text are copied
template <class block>
void copy_plain_blocks(std::string_view text, std::size_t& plain, char* to) {
    const char* const from = text.data();
    while (text.size() - plain >= sizeof(block)
           && copy_plain_block<block>(from + plain, to + plain))
        plain += sizeof(block);
    // The last block of the text may begin within the one before.
    const std::size_t rest = text.size() - plain;
    if (plain == 0 || rest == 0 || rest >= sizeof(block)) return;
    const std::size_t last = text.size() - sizeof(block);
    if (copy_plain_block<block>(from + last, to + last)) plain = text.size();
}

} // namespace

std::size_t copy_plain_front(std::string_view text, char* to) {
    std::size_t plain = 0;
    copy_plain_blocks<std::uint64_t>(text, plain, to);
    copy_plain_blocks<std::uint32_t>(text, plain, to);
    for (; plain < text.size() && is_plain(text[plain]); ++plain) to[plain] = text[plain];
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
