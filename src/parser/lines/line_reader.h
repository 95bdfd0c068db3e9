// Reads the input line by line, gives each line its place, and notes facts about its bytes. What
// the facts mean is for the rules to decide.
//
// Lines are looked at where they lie in the stream's buffer; only a line that straddles two
// fillings of the buffer is copied. The reader leaves the stream with the position, state bits and
// exceptions that std::getline would leave, with one exception: when memory runs out, the reader
// throws std::bad_alloc where std::getline would report a read error. A buffer without a get area,
// and a stream whose locale widens LF to another byte, are read by std::getline.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_READER_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_READER_H

#include "input_line.h"
#include "line_finder.h"
#include "line_run.h"
#include "read_ahead.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace mail_structure_detail {

class line_reader {
public:
    /// @param first_offset  offset of the first byte that the stream yields: 0, except in tests of
    ///                      the wrap
    /// @param names         what m_name_bytes of each line counts
    /// @throws std::bad_cast  the stream's locale cannot widen an LF
    line_reader(std::istream& in, std::uint32_t first_offset, field_names names);

    /// Reads the next line. False at the end of the input; a read error ends the input too.
    /// @throws std::bad_alloc, and what std::getline throws on the stream
    bool next(input_line& line);

    /// Finds the longest run of whole lines at the front of the stream's buffer. False when there
    /// is none, since the first line ends the run or is not all there. Reads nothing; the lines
    /// stay in the buffer until they are taken.
    bool find_run(line_run& run, const run_limits& limits) const noexcept;
    /// Moves past the run, which is the one found last.
    void take(const line_run& run) noexcept;

    /// The input read so far has passed 4 GiB, so that offsets have wrapped.
    bool has_wrapped() const noexcept { return m_finder.has_wrapped(); }

private:
    const std::streambuf& buffer() const noexcept;
    std::streambuf& buffer() noexcept;
    std::string_view ready() const noexcept;
    bool next_unfinished(input_line& line);
    bool read_unfinished_line(std::string_view& line);
    bool read_straddling_line(std::string_view& line);
    bool read_by_getline(std::string_view& line);
    bool read_rest_by_getline(std::string_view& line);
    bool is_at_end();
    void set_badbit();

    std::istream& m_in;
    std::ios& m_state; // the virtual base of m_in, which is slow to reach from there
    line_finder m_finder;
    std::string m_carry;               // a line that straddles two fillings of the buffer
    bool m_in_place = false;           // LF ends lines, so the buffer may be searched for it
    std::optional<read_ahead> m_ahead; // reads a plain file in place of the stream's own buffer
};

} // namespace mail_structure_detail

#endif
