// Reads lines from chunks of bytes that come one after another. Lines are looked at where they lie
// in the chunk; only a line that straddles chunks is copied, once.

#ifndef MAIL_STRUCTURE_PARSER_LINES_CHUNK_READER_H
#define MAIL_STRUCTURE_PARSER_LINES_CHUNK_READER_H

#include "line_finder.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mail_structure_detail {

class chunk_reader {
public:
    /// @param first_offset  see line_finder
    /// @param names         what m_name_bytes of each line counts
    chunk_reader(std::uint32_t first_offset, field_names names) noexcept
        : m_finder(first_offset, names) {}

    /// The next bytes of the input. Of the chunk before, all lines must have been read. The bytes
    /// must stay where they are until next has returned false.
    void add(std::string_view chunk) noexcept;

    /// Reads the next whole line. False where the chunk has no more of them: the beginning of a
    /// line that it ends with is then held, and the bytes of the chunk are no longer needed. Linear
    /// in the bytes of the chunk, however many chunks the line takes.
    /// @throws std::bad_alloc, and then the reader is of no further use
    bool next(input_line& line);
    /// Reads what is held as a line that the end of the input ends. False where nothing is held. To
    /// be called once, after next has returned false.
    bool last(input_line& line) noexcept;

    /// Finds the longest run of whole lines at the front of what has not been read yet. False when
    /// there is none, or when the rest of a straddling line comes first.
    bool find_run(line_run& run, const run_limits& limits) const noexcept {
        return !m_is_unfinished && m_finder.find_run(run, m_rest, limits);
    }
    /// Moves past the run, which is the one found last.
    void take(const line_run& run) noexcept;

    /// The input read so far has passed 4 GiB, so that offsets have wrapped.
    bool has_wrapped() const noexcept { return m_finder.has_wrapped(); }

private:
    bool next_straddling(input_line& line);
    void give_back_room() noexcept;

    line_finder m_finder;
    std::string_view m_rest;      // of the chunk: what has not been read yet
    bool m_is_unfinished = false; // m_carry is the beginning of a line whose LF has not come yet
    std::string m_carry;          // a straddling line; its room is used again for the next one
};

} // namespace mail_structure_detail

#endif
