// Reads the input line by line, gives each line its place, and refuses bytes that cannot stand in
// one.
//
// Lines are looked at where they lie in the stream's buffer; only one that straddles two fillings
// of it is copied. Position, state bits and exceptions of the stream are those of std::getline, but
// for one: when memory runs out, std::bad_alloc comes out, where std::getline would tell of a read
// error. A buffer without a get area, and a stream whose locale widens LF to another byte, are read
// by std::getline.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_READER_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_READER_H

#include "line_run.h"
#include "read_ahead.h"
#include "scanners.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace mail_structure_detail {

struct input_line {
    std::string_view
        m_text; // without its LF and without one CR before that; valid until the next line is read
    /// Where the scans of header lines end: at the end of a text that a CR followed, and one byte
    /// before the end of any other. See line_reader::next.
    std::size_t m_scan_end = 0;
    std::size_t m_name_bytes =
        0; // so many bytes of the text, from the first on, are letters or hyphens
    std::uint32_t m_start = 0; // offset of its first byte
    std::uint32_t m_end = 0;   // offset just past its LF, or past the last byte of the input
};

class line_reader {
public:
    /// @param first_offset  offset of the first byte that the stream yields: 0, but for tests of
    /// the wrap
    /// @throws std::bad_cast  the stream's locale cannot widen an LF
    line_reader(std::istream& in, std::uint32_t first_offset);

    /// Reads the next line. False at the end of the input, a read error included.
    /// @throws std::runtime_error  "error in io input data": a CR, LF or NUL inside the line
    /// @throws std::bad_alloc, and what std::getline throws on the stream
    bool next(input_line& line);

    /// Finds as many whole lines as need no look at their text: lines without a stray byte and,
    /// where those end the run, not beginning with "--". False when there is no such line in the
    /// stream's buffer. Reads nothing; the lines stay in the buffer until they are taken.
    bool find_run(line_run& run, dashed_lines dashed) const noexcept;
    /// Moves past the run found last.
    void take(const line_run& run) noexcept;

    /// The input read so far has passed 4 GiB, so that offsets have wrapped.
    bool has_wrapped() const noexcept { return m_position > 0xFFFFFFFF; }

private:
    std::streambuf& buffer() const noexcept;
    std::string_view ready() const noexcept;
    bool read_unfinished_line(std::string_view& line);
    bool read_straddling_line(std::string_view& line);
    bool read_by_getline(std::string_view& line);
    bool read_rest_by_getline(std::string_view& line);
    bool is_at_end();
    void set_badbit();

    std::istream& m_in;
    std::ios& m_state; // of the same stream; to reach a virtual base takes time
    const scanner_set& m_scanners;
    std::string m_carry;      // a line that straddles two fillings of the buffer
    bool m_in_place = false;  // lines are ended by LF, so the buffer may be searched for it
    std::uint64_t m_position; // of the next byte to be read
    std::optional<read_ahead>
        m_ahead; // what lines are read from, where the stream reads a plain file
};

} // namespace mail_structure_detail

#endif
