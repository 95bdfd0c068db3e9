// Appends names and values; see the header.

#include "scan/rows/row_writer.h"

#include "common/printable.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

/// Whether a byte stands for itself within quotes.
constexpr bool is_plain(char byte) {
    return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\';
}

} // namespace

void row_writer::begin(std::string_view kind) {
    m_out += "{\"kind\":\"";
    m_out += kind;
    m_out += '"';
}

void row_writer::write_text(std::string_view name, std::string_view value) {
    write_name(name);
    append_quoted(value);
}

void row_writer::write_text_or_null(std::string_view name, std::string_view value) {
    value.empty() ? write_null(name) : write_text(name, value);
}

void row_writer::write_number(std::string_view name, std::uint64_t value) {
    write_name(name);
    append_number(value);
}

void row_writer::write_flag(std::string_view name, bool value) {
    write_name(name);
    m_out += value ? "true" : "false";
}

void row_writer::write_null(std::string_view name) {
    write_name(name);
    m_out += "null";
}

void row_writer::write_range(std::string_view name, std::uint32_t offset, std::uint32_t length) {
    write_name(name);
    m_out += "{\"offset\":";
    append_number(offset);
    m_out += ",\"length\":";
    append_number(length);
    m_out += '}';
}

void row_writer::write_name(std::string_view name) {
    m_out += ",\"";
    m_out += name;
    m_out += "\":";
}

void row_writer::append_number(std::uint64_t value) {
    std::array<char, 20> digits{};
    m_out.append(digits.data(),
                 std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
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
