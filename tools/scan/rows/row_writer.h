// Writes rows, as lines of JSON (RFC 8259: UTF-8, one object a line, no blanks) or packed, for
// packed_rows to read.

#ifndef TOOLS_SCAN_ROWS_ROW_WRITER_H
#define TOOLS_SCAN_ROWS_ROW_WRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

enum class row_form : std::uint8_t { json, packed };

/// What a row is about.
enum class row_kind : std::uint8_t { message, entity, fault, source, finding };

/// Appends to a text. Values may hold any bytes: what is no UTF-8 becomes U+FFFD. In JSON, control
/// characters, and characters that reorder or hide the text around them, are spelled out. In packed
/// rows NUL becomes U+FFFD as well, because a text of SQLite ends there for many functions.
///
/// What is written may lie in the object until the row ends.
class row_writer {
public:
    row_writer(std::string& out, row_form form) : m_out(out), m_form(form) {}
    row_writer(const row_writer&) = delete;
    row_writer& operator=(const row_writer&) = delete;

    /// Begins a row with the member "kind". The names of members are written as they are.
    void begin(row_kind kind);
    /// The same for a row of another kind, in JSON.
    void begin(std::string_view kind);
    void end();

    void write_text(std::string_view name, std::string_view value);
    /// As write_text; null for an empty text.
    void write_text_or_null(std::string_view name, std::string_view value);
    void write_number(std::string_view name, std::uint64_t value);
    void write_signed(std::string_view name, std::int64_t value);
    void write_flag(std::string_view name, bool value);
    void write_null(std::string_view name);
    /// A member with an offset and a length in it; two packed numbers.
    void write_range(std::string_view name, std::uint32_t offset, std::uint32_t length);

private:
    void append(std::string_view bytes);
    void append(char byte);
    void flush();
    void write_name(std::string_view name);
    template <class Number>
    void append_digits(Number value);
    void append_quoted(std::string_view value);
    void append_unusual(std::string_view& rest);
    void append_escape(char32_t code_point);
    void pack_number(std::uint64_t value);
    void pack_text(std::string_view value);

    std::string& m_out;
    row_form m_form;
    // What is still to be appended to m_out. A row has dozens of small pieces, and to append each
    // of them to a string costs more than to copy all of them once more.
    std::array<char, 512> m_piece{};
    std::size_t m_piece_bytes = 0;
};

#endif
