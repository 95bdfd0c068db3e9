// What somebody who has read from a stream leaves behind: what came out of him, the state of the
// stream, and the bytes that the next one will find. std::getline, called until it fails, is the
// measure of what Fill leaves.

#ifndef TESTS_ROBUSTNESS_AFTER_READING_H
#define TESTS_ROBUSTNESS_AFTER_READING_H

#include <mail_structure.h>

#include <cstddef>
#include <ios>
#include <istream>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

namespace test_support {

struct after_reading {
    std::string m_error; // in the words of test_support::fill
    std::ios_base::iostate m_state = std::ios_base::goodbit;
    std::ios_base::iostate m_mask = std::ios_base::goodbit;
    std::streamsize m_count = 0;     // gcount
    std::streamsize m_available = 0; // bytes in the get area
    std::string m_rest; // bytes that come from the buffer, up to the next end or exception

    bool operator==(const after_reading&) const = default;
};

std::ostream& operator<<(std::ostream& out, const after_reading& found);

inline constexpr std::size_t all_lines = std::numeric_limits<std::size_t>::max();

/// Reads so many lines with std::getline, or until one cannot be read. Takes what is left of the
/// stream.
/// @param own_error  what to tell when all of them could be read: the error that Fill finds in the
/// last one
after_reading after_getline(std::istream& in, std::size_t lines = all_lines,
                            const std::string& own_error = "");

/// Fills, and takes what is left of the stream.
after_reading after_fill(MailStructure& message, std::istream& in);

/// The line at which the parse of a text ends by an error of its own.
struct erroneous_line {
    std::size_t m_lines = all_lines; // up to and including it
    std::string m_error;
};

erroneous_line first_erroneous_line(std::string_view text);

} // namespace test_support

#endif
