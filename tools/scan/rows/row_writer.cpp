// Appends names and values; see the header.

#include "scan/rows/row_writer.h"

#include "common/printable.h"
#include "scan/rows/packed_rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

/// Whether a byte stands for itself within quotes.
constexpr bool is_plain(char byte) {
    return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\';
}

/// The number of plain bytes at the front.
std::size_t plain_bytes(std::string_view text) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t top_bits = 0x8080808080808080;
    const auto has_zero = [](std::uint64_t word) { return (word - ones) & ~word & top_bits; };
    std::size_t at = 0;
    for (; text.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        const std::uint64_t below = (word - ones * ' ') & ~word; // the top bit: less than a blank
        const std::uint64_t above = word | (word + ones);        // the top bit: 0x7f or more
        const std::uint64_t quotes = has_zero(word ^ ones * '"') | has_zero(word ^ ones * '\\');
        if (((below | above | quotes) & top_bits) != 0) break;
    }
    while (at < text.size() && is_plain(text[at])) ++at;
    return at;
}

constexpr bool is_ascii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

} // namespace

/// Appends to the row.
inline void row_writer::append(std::string_view bytes) {
    if (bytes.size() > m_piece.size() - m_piece_bytes) {
        flush();
        if (bytes.size() > m_piece.size()) {
            m_out += bytes;
            return;
        }
    }
    std::memcpy(m_piece.data() + m_piece_bytes, bytes.data(), bytes.size());
    m_piece_bytes += bytes.size();
}

inline void row_writer::append(char byte) {
    if (m_piece_bytes == m_piece.size()) flush();
    m_piece[m_piece_bytes++] = byte;
}

/// Appends to the output what is not there yet.
void row_writer::flush() {
    m_out.append(m_piece.data(), m_piece_bytes);
    m_piece_bytes = 0;
}

template <class Number>
void row_writer::append_digits(Number value) {
    constexpr std::size_t most = 20;
    if (m_piece.size() - m_piece_bytes < most) flush();
    char* const digits = m_piece.data() + m_piece_bytes;
    const char* const digits_end = std::to_chars(digits, digits + most, value).ptr;
    m_piece_bytes += static_cast<std::size_t>(digits_end - digits);
}

void row_writer::begin(row_kind kind) {
    if (m_form == row_form::packed) {
        append(static_cast<char>(packed_item::row));
        append(static_cast<char>(kind));
        return;
    }
    constexpr std::array names = {"message", "entity", "fault", "source", "finding"};
    begin(names[static_cast<std::size_t>(kind)]);
}

void row_writer::begin(std::string_view kind) {
    append("{\"kind\":\"");
    append(kind);
    append('"');
}

void row_writer::end() {
    if (m_form == row_form::packed)
        append(static_cast<char>(packed_item::end));
    else
        append("}\n");
    flush();
}

void row_writer::write_text(std::string_view name, std::string_view value) {
    if (m_form == row_form::packed) return pack_text(value);
    write_name(name);
    append_quoted(value);
}

void row_writer::write_text_or_null(std::string_view name, std::string_view value) {
    value.empty() ? write_null(name) : write_text(name, value);
}

void row_writer::write_number(std::string_view name, std::uint64_t value) {
    if (m_form == row_form::packed) return pack_number(value);
    write_name(name);
    append_digits(value);
}

void row_writer::write_signed(std::string_view name, std::int64_t value) {
    if (m_form == row_form::packed) return pack_number(static_cast<std::uint64_t>(value));
    write_name(name);
    append_digits(value);
}

void row_writer::write_flag(std::string_view name, bool value) {
    if (m_form == row_form::packed) return pack_number(value ? 1 : 0);
    write_name(name);
    append(value ? std::string_view("true") : std::string_view("false"));
}

void row_writer::write_null(std::string_view name) {
    if (m_form == row_form::packed) {
        append(static_cast<char>(packed_item::null));
        return;
    }
    write_name(name);
    append("null");
}

void row_writer::write_range(std::string_view name, std::uint32_t offset, std::uint32_t length) {
    if (m_form == row_form::packed) {
        pack_number(offset);
        return pack_number(length);
    }
    write_name(name);
    append("{\"offset\":");
    append_digits(offset);
    append(",\"length\":");
    append_digits(length);
    append('}');
}

void row_writer::write_name(std::string_view name) {
    append(",\"");
    append(name);
    append("\":");
}

void row_writer::append_quoted(std::string_view value) {
    append('"');
    while (!value.empty()) {
        const std::size_t plain = plain_bytes(value);
        append(value.substr(0, plain));
        value.remove_prefix(plain);
        if (!value.empty()) append_unusual(value);
    }
    append('"');
}

/// Appends the first character of the rest, which is not plain, and removes it there.
void row_writer::append_unusual(std::string_view& rest) {
    const utf8_character character = first_character(rest);
    const std::string_view bytes = rest.substr(0, character.m_bytes);
    rest.remove_prefix(character.m_bytes);
    const char32_t code_point = character.m_code_point;
    if (!character.m_valid) {
        append("\\ufffd");
    } else if (bytes == "\"" || bytes == "\\") {
        append('\\');
        append(bytes);
    } else if (code_point < 0x20 || code_point == 0x7f || is_spelled_out(code_point)) {
        append_escape(code_point);
    } else {
        append(bytes);
    }
}

/// Appends \uNNNN; two of them, a surrogate pair, for a character beyond U+FFFF.
void row_writer::append_escape(char32_t code_point) {
    constexpr std::string_view digits = "0123456789abcdef";
    if (code_point > 0xffff) {
        code_point -= 0x10000;
        append_escape(0xd800 + (code_point >> 10U));
        code_point = 0xdc00 + (code_point & 0x3ffU);
    }
    append("\\u");
    for (const unsigned shift : {12U, 8U, 4U, 0U}) append(digits[code_point >> shift & 0xfU]);
}

void row_writer::pack_number(std::uint64_t value) {
    std::array<char, 1 + sizeof value> item = {static_cast<char>(packed_item::number)};
    std::memcpy(item.data() + 1, &value, sizeof value);
    append({item.data(), item.size()});
}

void row_writer::pack_text(std::string_view value) {
    pack_number(0); // becomes the item of a text when its length is known
    flush();
    const std::size_t text_begin = m_out.size();
    while (!value.empty()) {
        const auto* const plain_end = std::find_if_not(
            value.begin(), value.end(), [](char byte) { return byte != '\0' && is_ascii(byte); });
        const auto plain = static_cast<std::size_t>(plain_end - value.begin());
        m_out.append(value.data(), plain);
        value.remove_prefix(plain);
        if (value.empty()) break;
        const utf8_character character = first_character(value);
        if (character.m_valid && character.m_code_point != 0)
            m_out.append(value.data(), character.m_bytes);
        else
            m_out += "\xef\xbf\xbd"; // U+FFFD
        value.remove_prefix(character.m_bytes);
    }
    const std::uint64_t length = m_out.size() - text_begin;
    char* const item = m_out.data() + text_begin - sizeof length - 1;
    *item = static_cast<char>(packed_item::text);
    std::memcpy(item + 1, &length, sizeof length);
}
