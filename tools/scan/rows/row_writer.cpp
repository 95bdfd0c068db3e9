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

constexpr bool is_ascii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

} // namespace

template <class Number>
void row_writer::append_digits(Number value) {
    std::array<char, 20> digits{};
    m_out.append(digits.data(),
                 std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

void row_writer::begin(row_kind kind) {
    if (m_form == row_form::packed) {
        m_out += static_cast<char>(packed_item::row);
        m_out += static_cast<char>(kind);
        return;
    }
    constexpr std::array names = {"message", "entity", "fault", "source", "finding"};
    begin(names[static_cast<std::size_t>(kind)]);
}

void row_writer::begin(std::string_view kind) {
    m_out += "{\"kind\":\"";
    m_out += kind;
    m_out += '"';
}

void row_writer::end() {
    if (m_form == row_form::packed)
        m_out += static_cast<char>(packed_item::end);
    else
        m_out += "}\n";
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
    m_out += value ? "true" : "false";
}

void row_writer::write_null(std::string_view name) {
    if (m_form == row_form::packed) {
        m_out += static_cast<char>(packed_item::null);
        return;
    }
    write_name(name);
    m_out += "null";
}

void row_writer::write_range(std::string_view name, std::uint32_t offset, std::uint32_t length) {
    if (m_form == row_form::packed) {
        pack_number(offset);
        return pack_number(length);
    }
    write_name(name);
    m_out += "{\"offset\":";
    append_digits(offset);
    m_out += ",\"length\":";
    append_digits(length);
    m_out += '}';
}

void row_writer::write_name(std::string_view name) {
    m_out += ",\"";
    m_out += name;
    m_out += "\":";
}

void row_writer::append_quoted(std::string_view value) {
    m_out += '"';
    while (!value.empty()) {
        const auto* const plain_end = std::find_if_not(value.begin(), value.end(), is_plain);
        const auto plain = static_cast<std::size_t>(plain_end - value.begin());
        m_out.append(value.data(), plain);
        value.remove_prefix(plain);
        if (!value.empty()) append_unusual(value);
    }
    m_out += '"';
}

/// Appends the first character of the rest, which is not plain, and removes it there.
void row_writer::append_unusual(std::string_view& rest) {
    const utf8_character character = first_character(rest);
    const std::string_view bytes = rest.substr(0, character.m_bytes);
    rest.remove_prefix(character.m_bytes);
    const char32_t code_point = character.m_code_point;
    if (!character.m_valid) {
        m_out += "\\ufffd";
    } else if (bytes == "\"" || bytes == "\\") {
        m_out += '\\';
        m_out += bytes;
    } else if (code_point < 0x20 || code_point == 0x7f || is_spelled_out(code_point)) {
        append_escape(code_point);
    } else {
        m_out += bytes;
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
    m_out += "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) m_out += digits[code_point >> shift & 0xfU];
}

void row_writer::pack_number(std::uint64_t value) {
    std::array<char, 1 + sizeof value> item = {static_cast<char>(packed_item::number)};
    std::memcpy(item.data() + 1, &value, sizeof value);
    m_out.append(item.data(), item.size());
}

void row_writer::pack_text(std::string_view value) {
    pack_number(0); // becomes the item of a text when its length is known
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
