// How one byte range takes one more line. Lines arrive in rising order, all arithmetic wraps modulo
// 2^32, and a range always ends where the line given last ends.

#ifndef MAIL_STRUCTURE_MODEL_LINE_RANGE_H
#define MAIL_STRUCTURE_MODEL_LINE_RANGE_H

#include <cstdint>

namespace mail_structure_detail {

/// For the whole-entity, header-block, epilogue and contents ranges, which are unset while their
/// length is 0. Given a line from 40 to 40, an unset range stays unset, since that line has no
/// bytes; given then a line from 60 to 70, it begins at 60 and is 10 bytes long.
/// @param start  offset of the line's first byte
/// @param end    offset just past its terminator
// Kept: a range of length 0 is unset, and a range ends where the line given last ends, wherever
// that line is. keeps_range_of_length_0_unset keeps_end_of_the_line_given_last
// keeps_unchecked_positions_wrapping
inline void grow_range(std::uint32_t& beg, std::uint32_t& len, std::uint32_t start,
                       std::uint32_t end) noexcept {
    if (len == 0) beg = start;
    len = end - beg;
}

/// For the body range.
// Kept: the body is unset while its offset is 0, so the first line of a body that begins at offset
// 0 drops out when the second comes. Hosts have stored ranges computed so; a test by length would
// move them. keeps_first_body_line_at_offset_0_out_of_the_body
// keeps_body_that_begins_at_the_wrap_short_of_its_first_line
// keeps_body_of_a_part_that_begins_at_the_wrap_short_of_its_first_line
inline void grow_body_range(std::uint32_t& beg, std::uint32_t& len, std::uint32_t start,
                            std::uint32_t end) noexcept {
    if (beg == 0) beg = start;
    len = end - beg;
}

} // namespace mail_structure_detail

#endif
