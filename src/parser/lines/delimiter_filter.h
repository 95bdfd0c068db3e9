// Tells at little cost that a line which begins with "--" is no delimiter line. Signatures,
// differences of files and keys are full of such lines.
//
// A delimiter line begins with "--" and a boundary. The filter compares up to 8 bytes of the
// boundary, from the first one that is no dash: many boundaries begin with dashes, and so do lines
// that consist of dashes. Where several delimiters are in force, the filter compares only the bits
// in which all of them agree:
//
//     delimiters         ----=_a7     ----=_b9
//     place              4            behind the dashes of the first delimiter
//     bytes compared     = _ and those bits in which a and b agree, 7 and 9
//
// A line that does not pass is no delimiter line. A line that passes may be one.

#ifndef MAIL_STRUCTURE_PARSER_LINES_DELIMITER_FILTER_H
#define MAIL_STRUCTURE_PARSER_LINES_DELIMITER_FILTER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

class delimiter_filter {
public:
    /// Passes all lines that begin with "--".
    delimiter_filter() = default;
    /// Passes lines that begin with "--" and, as far as this compares them, with the boundary.
    /// Constant time.
    explicit delimiter_filter(std::string_view boundary) noexcept;

    /// Passes from now on also lines that begin with "--" and this boundary. Constant time.
    void admit(std::string_view boundary) noexcept;

    /// Whether the line passes. Constant time.
    /// @param line  may have an LF and more lines behind it
    bool passes(std::string_view line) const noexcept;

    /// One byte decides nearly always: in a line that passes, the byte at this place, of which only
    /// the given bits count, has this value. The place is from 2 to 63.
    std::size_t probe_place() const noexcept { return m_place + m_probe; }
    char probe_bits() const noexcept { return static_cast<char>(m_bits[m_probe]); }
    char probe_value() const noexcept { return static_cast<char>(m_bytes[m_probe]); }

private:
    using word = std::array<unsigned char, 8>;

    void choose_what_to_look_at() noexcept;

    std::uint8_t m_place = 2; // in a line: of the first byte that is compared
    std::uint8_t m_end = 2;   // in a line: behind the last byte that is compared
    std::uint8_t m_probe = 0; // the index of the byte of which the most bits are compared
    word m_bits = {};         // which bits are compared
    word m_bytes = {};        // their values; all other bits are 0
};

} // namespace mail_structure_detail

#endif
