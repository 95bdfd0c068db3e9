// What a reader leaves behind: its exception, the state of the stream, and the bytes that the next
// reader will find. Fill must leave a stream as std::getline does when it is called until it fails.

#ifndef TESTS_ROBUSTNESS_AFTER_READING_H
#define TESTS_ROBUSTNESS_AFTER_READING_H

#include <mail_structure.h>

#include "differential/rule_sets.h"

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

/// Reads so many lines with std::getline, or fewer if one cannot be read. Then reads the rest of
/// the stream.
/// @param own_error  the error to report if all of them could be read: the one that Fill finds in
/// the last line
after_reading after_getline(std::istream& in, std::size_t lines = all_lines,
                            const std::string& own_error = "");

/// Calls Fill, and then reads the rest of the stream.
after_reading after_fill(MailStructure& message, std::istream& in, MailStructure::rules by);

/// The line at which the parse of a text ends with an error in the text itself.
struct erroneous_line {
    std::size_t m_lines = all_lines; // up to and including it
    std::string m_error;
};

erroneous_line first_erroneous_line(const differential::rule_set& by, std::string_view text);

} // namespace test_support

#endif
